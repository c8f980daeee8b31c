#include "linkrules.h"

#include <algorithm>

namespace
{
using namespace KyTcpIpState;
using Event = LinkEvent;
using Do = LinkAction;
using Outcome = const LinkOutcome &;

bool isReply(LinkAction action)
{
    return action >= Do::ReplyCannotSwitch && action <= Do::ReplyDisconnectedAlready;
}

bool isCall(LinkEvent event)
{
    return event == Event::ScanCalled || event == Event::ConnectCalled ||
           event == Event::DisconnectCalled;
}

LinkAction replyOf(Outcome o)
{
    const auto found = std::find_if(o.acts.begin(), o.acts.end(),
                                    [](const LinkAct &act) { return isReply(act.action); });
    return found == o.acts.end() ? Do::None : found->action;
}

int count(Outcome o, bool (*matches)(LinkAction))
{
    return int(std::count_if(o.acts.begin(), o.acts.end(),
                             [matches](const LinkAct &act) { return matches(act.action); }));
}

bool isSame(const Link &one, const Link &other)
{
    return one.state == other.state && one.operation == other.operation &&
           one.isFirmwareLoaded == other.isFirmwareLoaded && one.isTimed == other.isTimed &&
           one.hasService == other.hasService && one.isNetworkKept == other.isNetworkKept &&
           one.isRequestedReady == other.isRequestedReady;
}

bool isResting(State state)
{
    return state == Idle || state == Failure;
}

/** Whether a client's call is one that begins something. */
bool isAccepted(Outcome o)
{
    const Link &link = o.before.link;
    if (o.event == Event::ConnectCalled)
        return isResting(link.state);
    return o.event == Event::ScanCalled &&
           (link.state == Failure ||
            (link.state == Idle && link.operation != LinkOperation::Connect));
}

/** The error that clients are to get. */
LinkAction dueReply(Outcome o, LinkKind kind)
{
    const bool isAccessPoint = kind == LinkKind::AccessPoint;
    if (o.event == Event::DisconnectCalled) {
        if (isAccessPoint)
            return o.before.link.state == Idle ? Do::ReplyDisconnectedAlready : Do::None;
        if (o.has(Event::NetworkKept))
            return Do::ReplyNotForgotten;
        return o.has(Event::PowerOffRefused) ? Do::ReplyNotPoweredOff : Do::None;
    }
    if (!isAccepted(o))
        return isAccessPoint ? Do::ReplyBusy : Do::None;
    if (o.has(Event::ConfigurationRefused))
        return Do::ReplyNotConfigured;
    if (o.has(Event::ScriptRefused))
        return isAccessPoint ? Do::ReplyCannotSwitchAccessPoint : Do::ReplyCannotSwitch;
    return Do::None;
}

/** Whether something ends a machine's present state by itself. */
bool isBounded(const LinkWorld &world, LinkKind kind)
{
    const bool isModuleDue = world.isScriptRunning || world.moduleDelays > 0;
    switch (world.link.state) {
    case Idle:
    case Failure:
    case Online:
        return true;
    case Association:
        return world.link.isTimed;
    case Configuration:
        // The address of a service that is "ready" may still come, however late.
        if (kind == LinkKind::Station)
            return world.link.isTimed || world.link.isRequestedReady;
        // The script of the access point has no time.
        return isModuleDue;
    case Ready:
        return kind == LinkKind::AccessPoint ? world.checks > 0 : world.link.isTimed;
    case Disconnect:
        return world.isLeavingTimed;
    }
    return false;
}

bool isOrdered(Outcome o, std::initializer_list<LinkAction> actions)
{
    int last = -1;
    for (const LinkAction action : actions) {
        const int index = o.indexOf(action);
        if (index <= last)
            return false;
        last = index;
    }
    return true;
}

bool isFirst(Outcome o, LinkAction action, State state)
{
    return !o.acts.empty() && o.acts.front().action == action && o.acts.front().link.state == state;
}

/** Whether @p action was carried out in @p state. */
bool isDoneIn(Outcome o, LinkAction action, State state)
{
    return std::any_of(o.acts.begin(), o.acts.end(), [action, state](const LinkAct &act) {
        return act.action == action && act.link.state == state;
    });
}

bool isLast(Outcome o, LinkAction action, State state)
{
    return !o.acts.empty() && o.acts.back().action == action && o.acts.back().link.state == state;
}
} // namespace

const std::vector<LinkRule> linkRules = {
    {"every state is announced, but for the idle of a connect",
     [](Outcome o, LinkKind) {
         return o.silentStates.isEmpty() ||
                (o.event == Event::ConnectCalled && o.silentStates == QStringList("idle"));
     }},
    {"nothing goes in circles", [](Outcome o, LinkKind) { return o.acts.size() < 30; }},
    {"what is ignored changes nothing",
     [](Outcome o, LinkKind) {
         return o.isDecided || (o.acts.empty() && isSame(o.before.link, o.after.link));
     }},

    // Calls.
    {"a call that begins nothing does nothing but answer",
     [](Outcome o, LinkKind) {
         if (!isCall(o.event) || isAccepted(o) || o.event == Event::DisconnectCalled)
             return true;
         return int(o.acts.size()) == count(o, isReply) && isSame(o.before.link, o.after.link);
     }},
    {"a call gets the error that is due, and no event else any",
     [](Outcome o, LinkKind kind) {
         const LinkAction due = isCall(o.event) ? dueReply(o, kind) : Do::None;
         return replyOf(o) == due && count(o, isReply) == (due == Do::None ? 0 : 1);
     }},
    {"a call that is accepted and refused then ends in failure, told after the error",
     [](Outcome o, LinkKind) {
         if (!isAccepted(o) || replyOf(o) == Do::None)
             return true;
         return isLast(o, Do::Announce, Failure) && o.acts.size() > 1 &&
                isReply(o.acts[o.acts.size() - 2].action);
     }},
    {"a wired connect starts its time and the script",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Ethernet || !isAccepted(o) ||
                isOrdered(o, {Do::StartConnectTime, Do::SwitchToEthernet});
     }},
    {"a connect of the station forgets the service of the attempt before",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Station || !isAccepted(o) || o.event != Event::ConnectCalled)
             return true;
         return isOrdered(o, {Do::ForgetService, Do::SwitchToStation}) &&
                isOrdered(o, {Do::StartConnectTime, Do::SwitchToStation}) &&
                isOrdered(o, {Do::TakeRequest, Do::SwitchToStation}) &&
                o.after.link.operation == LinkOperation::Connect &&
                (o.has(Event::ScriptRefused) || o.after.link.state == Idle);
     }},
    {"a scan keeps the service and is idle",
     [](Outcome o, LinkKind) {
         if (o.event != Event::ScanCalled || !isAccepted(o))
             return true;
         return isOrdered(o, {Do::Announce, Do::SwitchToStation}) &&
                isOrdered(o, {Do::StartScanTime, Do::SwitchToStation}) && o.announces(Idle) &&
                o.after.link.hasService == o.before.link.hasService &&
                o.after.link.operation == LinkOperation::Scan;
     }},
    {"an access point is configured before the script is started",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::AccessPoint || !isAccepted(o))
             return true;
         return isOrdered(o, {Do::Announce, Do::WriteConfiguration}) &&
                o.announces(Configuration) &&
                o.has(Do::SwitchToAccessPoint) == o.has(Event::ConfigurationWritten);
     }},

    // The end of a connection.
    {"a disconnect is announced first",
     [](Outcome o, LinkKind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         return isFirst(o, Do::Announce, Disconnect) &&
                o.after.link.operation == LinkOperation::None;
     }},
    {"a disconnect orders the radio off",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         return kind == LinkKind::AccessPoint ? o.has(Do::SwitchToEthernet) : o.has(Do::PowerOff);
     }},
    {"a disconnect of the station forgets the network, if there is one, and takes the agent back",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Station || o.event != Event::DisconnectCalled)
             return true;
         return o.has(Do::ForgetNetwork) == o.before.link.hasService &&
                (!o.before.link.hasService || isOrdered(o, {Do::ForgetNetwork, Do::PowerOff})) &&
                isOrdered(o, {Do::PowerOff, Do::UnregisterAgent}) &&
                isDoneIn(o, Do::UnregisterAgent, Disconnect) &&
                (replyOf(o) == Do::None || isOrdered(o, {Do::UnregisterAgent, replyOf(o)}));
     }},
    {"a disconnect ends idle, at once where nothing else will end it",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         if (kind == LinkKind::Station && o.has(Event::PowerOffAccepted))
             return o.after.link.state == Disconnect && o.has(Do::StartLeavingTime);
         return isLast(o, Do::Announce, Idle);
     }},
    {"a technology that is off ends a disconnect, and so does its time",
     [](Outcome o, LinkKind) {
         const bool isEnd = o.event == Event::TechnologyOff || o.event == Event::LeavingIsOver;
         return o.before.link.state != Disconnect || !isEnd || isLast(o, Do::Announce, Idle);
     }},
    {"nothing else ends a disconnect",
     [](Outcome o, LinkKind) {
         const bool isEnd = o.event == Event::TechnologyOff || o.event == Event::LeavingIsOver;
         return o.before.link.state != Disconnect || isEnd || o.after.link.state == Disconnect ||
                o.event == Event::DisconnectCalled;
     }},
    {"after a disconnect nothing is switched on, but by the script of a wired connect",
     [](Outcome o, LinkKind kind) {
         if (!o.before.isLeft || isCall(o.event))
             return true;
         if (kind == LinkKind::Ethernet && o.event == Event::ScriptEnded)
             return true;
         return !o.has(Do::PowerOn) && !o.has(Do::RequestConnect) && !o.has(Do::SwitchToStation) &&
                !o.has(Do::SwitchToAccessPoint);
     }},

    // Bounds.
    {"every state ends by itself, or is one to rest in",
     [](Outcome o, LinkKind kind) { return isBounded(o.after, kind); }},
    {"when the time is over, so is the attempt",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::TimeIsOver || !o.before.isConnectOwed)
             return true;
         return o.announces(Failure) || o.announces(Online) ||
                (kind == LinkKind::Station && o.after.link.state == Configuration &&
                 o.after.link.isRequestedReady);
     }},
    {"an attempt under way is bounded",
     [](Outcome o, LinkKind kind) {
         return !o.after.isConnectOwed || kind == LinkKind::AccessPoint || o.after.link.isTimed ||
                (o.after.link.state == Configuration && o.after.link.isRequestedReady);
     }},
    {"an attempt is ended by its outcome or by a disconnect",
     [](Outcome o, LinkKind) {
         return !o.before.isConnectOwed || o.after.isConnectOwed || o.announces(Failure) ||
                o.announces(Online) || o.event == Event::DisconnectCalled;
     }},
    {"every minute a wired interface fails and is switched off",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Ethernet || o.event != Event::TimeIsOver ||
                (o.announces(Failure) && isOrdered(o, {Do::Announce, Do::PowerOff}));
     }},

    // Scans.
    {"a list is one that a scan still owes, and the radio is off after it",
     [](Outcome o, LinkKind) {
         if (!o.has(Do::GiveList))
             return true;
         return o.before.isScanOwed && isOrdered(o, {Do::GiveList, Do::PowerOff}) &&
                count(o, [](LinkAction action) { return action == Do::GiveList; }) == 1 &&
                o.after.link.state == Idle && o.after.link.operation == LinkOperation::None;
     }},
    {"a change of the services or the end of the time gives the list",
     [](Outcome o, LinkKind) {
         const bool isDue = o.before.isScanOwed && o.before.link.isFirmwareLoaded &&
                            (o.event == Event::ServicesChanged || o.event == Event::TimeIsOver);
         return !isDue || o.has(Do::GiveList);
     }},
    {"a scan under way is bounded",
     [](Outcome o, LinkKind) {
         return !o.after.isScanOwed || o.after.link.isTimed || o.after.isScriptRunning ||
                o.after.moduleDelays > 0;
     }},
    {"a scan is ended by its list, by a failure, by another call or by the service's address",
     [](Outcome o, LinkKind) {
         return !o.before.isScanOwed || o.after.isScanOwed || o.has(Do::GiveList) ||
                o.announces(Failure) || isCall(o.event) || o.event == Event::ServiceAddress;
     }},

    // The service.
    {"a service is watched and told before the settings are handed over",
     [](Outcome o, LinkKind) {
         return !o.has(Do::HandOver) || (isOrdered(o, {Do::WatchService, Do::HandOver}) &&
                                         (o.announces(Configuration) || o.announces(Ready)));
     }},
    {"a service in use is watched and has the settings",
     [](Outcome o, LinkKind kind) {
         if (kind == LinkKind::AccessPoint)
             return true;
         const bool isNew = o.announces(Configuration) || o.announces(Ready);
         return isNew == o.has(Do::HandOver);
     }},
    {"an address that is there, or a service that is online, ends the time",
     [](Outcome o, LinkKind) {
         return (!o.has(Event::AddressThere) && !o.has(Event::RequestedOnline)) ||
                (o.after.link.state == Online && !o.after.link.isTimed && o.has(Do::StopTime));
     }},
    {"an error of the service fails and switches off, once there is firmware",
     [](Outcome o, LinkKind) {
         const bool isDue = o.event == Event::ServiceError && o.before.link.isFirmwareLoaded &&
                            o.before.link.state != Disconnect;
         return o.event != Event::ServiceError ||
                (isDue ? o.announces(Failure) && isOrdered(o, {Do::Announce, Do::PowerOff}) &&
                             o.after.link.operation == LinkOperation::None
                       : o.acts.empty());
     }},
    {"an address of the service is online, once there is firmware",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::ServiceAddress || kind != LinkKind::Station)
             return true;
         const bool isDue = o.before.link.isFirmwareLoaded && o.before.link.state != Disconnect;
         return o.announces(Online) == isDue && (isDue || o.acts.empty());
     }},
    {"the strength is passed on, once there is firmware",
     [](Outcome o, LinkKind) {
         return o.event != Event::ServiceStrength ||
                o.has(Do::PassOn) == o.before.link.isFirmwareLoaded;
     }},
    {"a wired service's addresses are passed on while ready, after the state",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Ethernet ||
             (o.event != Event::ServiceAddress && o.event != Event::ServiceIPv4))
             return true;
         const bool isReady = o.before.link.state == Ready;
         return o.has(Do::PassOn) == isReady &&
                (!isReady || o.event == Event::ServiceIPv4 ||
                 (o.announces(Online) && isOrdered(o, {Do::Announce, Do::PassOn})));
     }},

    // Before the module is ready ConnMan's signals say nothing about it.
    {"without firmware no signal of ConnMan is acted on, but the end of a disconnect",
     [](Outcome o, LinkKind kind) {
         const bool isSignal = o.event >= Event::TechnologyOn && o.event <= Event::ServiceOther;
         return kind != LinkKind::Station || !isSignal || o.before.link.isFirmwareLoaded ||
                o.before.link.state == Disconnect || o.acts.empty();
     }},
    {"only a module that was asked for is evaluated",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::ModuleReady)
             return true;
         const Link &link = o.before.link;
         if (kind == LinkKind::AccessPoint)
             return o.has(Do::CheckAccessPoint) == (link.state == Configuration);
         return o.after.link.isFirmwareLoaded &&
                o.has(Do::AskConnman) ==
                    (link.state == Idle && link.operation != LinkOperation::None);
     }},
    {"ConnMan's answer to Connect decides in association alone",
     [](Outcome o, LinkKind) {
         if (o.event != Event::ConnectFailed)
             return true;
         return o.before.link.state == Association
                    ? o.announces(Failure) && !o.has(Do::PowerOff) &&
                          o.after.link.operation == LinkOperation::None
                    : o.acts.empty();
     }},
    {"only a technology that is not connected is asked to connect",
     [](Outcome o, LinkKind) {
         return o.has(Do::RequestConnect) == o.has(Event::TechnologyIsDown);
     }},
};
