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

/** Returns true if a client's call starts an operation. */
bool isAccepted(Outcome o)
{
    const Link &link = o.before.link;
    if (o.event == Event::ConnectCalled)
        return isResting(link.state);
    return o.event == Event::ScanCalled &&
           (link.state == Failure ||
            (link.state == Idle && link.operation != LinkOperation::Connect));
}

/** Returns the error that the client must get. */
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

/** Returns true if the machine rests in its state, or will leave it without a client's call. */
bool isBounded(const LinkWorld &world, LinkKind kind)
{
    const bool isModuleDue = world.isScriptRunning || world.moduleDelays > 0;
    switch (world.link.state) {
    case Idle:
    case Failure:
    // At rest; a connect or scan in progress has a timeout, which other rules check.
    case Online:
        // Lasts until a call of a client or an error of the service.
        return true;
    case Association:
        return world.link.isTimed;
    case Configuration:
        // The address of a "ready" service may come at any time.
        if (kind == LinkKind::Station)
            return world.link.isTimed || world.link.isRequestedReady;
        // The access point's script has no timeout.
        return isModuleDue;
    case Ready:
        // The access point's carrier may come at any time.
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

/** Returns true if @p action was carried out in @p state. */
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
    {"every new state is announced, except idle at the start of a connect",
     [](Outcome o, LinkKind) {
         return o.silentStates.isEmpty() ||
                (o.event == Event::ConnectCalled && o.silentStates == QStringList("idle"));
     }},
    {"no event causes a loop", [](Outcome o, LinkKind) { return o.acts.size() < 30; }},
    {"an ignored event changes nothing",
     [](Outcome o, LinkKind) {
         return o.isDecided || (o.acts.empty() && isSame(o.before.link, o.after.link));
     }},

    // Calls.
    {"a call that starts no operation only replies",
     [](Outcome o, LinkKind) {
         if (!isCall(o.event) || isAccepted(o) || o.event == Event::DisconnectCalled)
             return true;
         return int(o.acts.size()) == count(o, isReply) && isSame(o.before.link, o.after.link);
     }},
    {"a refused call gets its error, and no other event sends an error",
     [](Outcome o, LinkKind kind) {
         const LinkAction due = isCall(o.event) ? dueReply(o, kind) : Do::None;
         return replyOf(o) == due && count(o, isReply) == (due == Do::None ? 0 : 1);
     }},
    {"an accepted call that then fails ends in failure, announced after the error",
     [](Outcome o, LinkKind) {
         if (!isAccepted(o) || replyOf(o) == Do::None)
             return true;
         return isLast(o, Do::Announce, Failure) && o.acts.size() > 1 &&
                isReply(o.acts[o.acts.size() - 2].action);
     }},
    {"a wired connect starts its timeout and the script",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Ethernet || !isAccepted(o) ||
                isOrdered(o, {Do::StartConnectTime, Do::SwitchToEthernet});
     }},
    {"a station's connect forgets the service of the previous attempt",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Station || !isAccepted(o) || o.event != Event::ConnectCalled)
             return true;
         return isOrdered(o, {Do::ForgetService, Do::SwitchToStation}) &&
                isOrdered(o, {Do::StartConnectTime, Do::SwitchToStation}) &&
                isOrdered(o, {Do::TakeRequest, Do::SwitchToStation}) &&
                o.after.link.operation == LinkOperation::Connect && !o.after.link.hasService &&
                (o.has(Event::ScriptRefused) || o.after.link.state == Idle);
     }},
    {"a scan keeps the service, and its state is idle",
     [](Outcome o, LinkKind) {
         if (o.event != Event::ScanCalled || !isAccepted(o))
             return true;
         return isOrdered(o, {Do::Announce, Do::SwitchToStation}) &&
                isOrdered(o, {Do::StartScanTime, Do::SwitchToStation}) && o.announces(Idle) &&
                o.after.link.hasService == o.before.link.hasService &&
                o.after.link.operation == LinkOperation::Scan;
     }},
    {"an access point is configured before the script starts",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::AccessPoint || !isAccepted(o))
             return true;
         return isOrdered(o, {Do::Announce, Do::WriteConfiguration}) &&
                o.announces(Configuration) &&
                o.has(Do::SwitchToAccessPoint) == o.has(Event::ConfigurationWritten);
     }},

    // Disconnecting.
    {"a disconnect is announced first",
     [](Outcome o, LinkKind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         return isFirst(o, Do::Announce, Disconnect) &&
                o.after.link.operation == LinkOperation::None;
     }},
    {"a disconnect switches the radio off",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         return kind == LinkKind::AccessPoint ? o.has(Do::SwitchToEthernet) : o.has(Do::PowerOff);
     }},
    {"a station's disconnect forgets its network, if any, and unregisters the agent",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Station || o.event != Event::DisconnectCalled)
             return true;
         return o.has(Do::ForgetNetwork) == o.before.link.hasService &&
                (!o.before.link.hasService || isOrdered(o, {Do::ForgetNetwork, Do::PowerOff})) &&
                isOrdered(o, {Do::PowerOff, Do::UnregisterAgent}) &&
                isDoneIn(o, Do::UnregisterAgent, Disconnect) &&
                (replyOf(o) == Do::None || isOrdered(o, {Do::UnregisterAgent, replyOf(o)}));
     }},
    {"a disconnect leads to idle at once, unless a station waits for its radio",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::DisconnectCalled || replyOf(o) == Do::ReplyDisconnectedAlready)
             return true;
         if (kind == LinkKind::Station && o.has(Event::PowerOffAccepted))
             return o.after.link.state == Disconnect && o.has(Do::StartLeavingTime);
         return isLast(o, Do::Announce, Idle);
     }},
    {"the technology's power off or the timeout ends a disconnect",
     [](Outcome o, LinkKind) {
         const bool isEnd = o.event == Event::TechnologyOff || o.event == Event::LeavingIsOver;
         return o.before.link.state != Disconnect || !isEnd || isLast(o, Do::Announce, Idle);
     }},
    {"only the power off, the timeout or another disconnect ends a disconnect",
     [](Outcome o, LinkKind) {
         const bool isEnd = o.event == Event::TechnologyOff || o.event == Event::LeavingIsOver;
         return o.before.link.state != Disconnect || isEnd || o.after.link.state == Disconnect ||
                o.event == Event::DisconnectCalled;
     }},
    {"after a disconnect only the script of a wired connect switches anything on",
     [](Outcome o, LinkKind kind) {
         if (!o.before.isLeft || isCall(o.event))
             return true;
         if (kind == LinkKind::Ethernet && o.event == Event::ScriptEnded)
             return true;
         return !o.has(Do::PowerOn) && !o.has(Do::RequestConnect) && !o.has(Do::SwitchToStation) &&
                !o.has(Do::SwitchToAccessPoint);
     }},

    // Timeouts.
    {"every state is a resting state or ends without a call",
     [](Outcome o, LinkKind kind) { return isBounded(o.after, kind); }},
    {"the event that bounds a state ends it",
     [](Outcome o, LinkKind) {
         const State before = o.before.link.state;
         const Link &after = o.after.link;
         if (isResting(before) || before == Online || after.state != before)
             return true;
         if (o.event == Event::TimeIsOver)
             return before == Disconnect || (before == Configuration && after.isRequestedReady);
         if (o.event == Event::CheckIsDue)
             return before != Ready || o.has(Do::StartCheckDelay);
         return o.event != Event::ModuleReady || !o.has(Do::CheckAccessPoint);
     }},
    {"an attempt ends at its timeout",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::TimeIsOver || !o.before.isConnectOwed)
             return true;
         return o.announces(Failure) || o.announces(Online) ||
                (kind == LinkKind::Station && o.after.link.state == Configuration &&
                 o.after.link.isRequestedReady);
     }},
    {"an attempt in progress has a timeout",
     [](Outcome o, LinkKind kind) {
         return !o.after.isConnectOwed || kind == LinkKind::AccessPoint || o.after.link.isTimed ||
                (o.after.link.state == Configuration && o.after.link.isRequestedReady);
     }},
    {"only its outcome or a disconnect ends an attempt",
     [](Outcome o, LinkKind) {
         return !o.before.isConnectOwed || o.after.isConnectOwed || o.announces(Failure) ||
                o.announces(Online) || o.event == Event::DisconnectCalled;
     }},
    {"at each timeout a wired attempt fails and the technology is switched off",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Ethernet || o.event != Event::TimeIsOver ||
                (o.announces(Failure) && isOrdered(o, {Do::Announce, Do::PowerOff}));
     }},

    // Scans.
    {"only a pending scan sends a list, and the radio is off afterwards",
     [](Outcome o, LinkKind) {
         if (!o.has(Do::GiveList))
             return true;
         return o.before.isScanOwed && isOrdered(o, {Do::GiveList, Do::PowerOff}) &&
                count(o, [](LinkAction action) { return action == Do::GiveList; }) == 1 &&
                o.after.link.state == Idle && o.after.link.operation == LinkOperation::None;
     }},
    {"a pending scan sends its list at a change of the services or its timeout",
     [](Outcome o, LinkKind) {
         const bool isDue = o.before.isScanOwed && o.before.link.isFirmwareLoaded &&
                            (o.event == Event::ServicesChanged || o.event == Event::TimeIsOver);
         return !isDue || o.has(Do::GiveList);
     }},
    {"a scan in progress has a timeout",
     [](Outcome o, LinkKind) {
         return !o.after.isScanOwed || o.after.link.isTimed || o.after.isScriptRunning ||
                o.after.moduleDelays > 0;
     }},
    {"only its list, a failure, another call or an address ends a scan",
     [](Outcome o, LinkKind) {
         return !o.before.isScanOwed || o.after.isScanOwed || o.has(Do::GiveList) ||
                o.announces(Failure) || isCall(o.event) || o.event == Event::ServiceAddress;
     }},

    // The service.
    {"a service is watched and announced before it gets the settings",
     [](Outcome o, LinkKind) {
         return !o.has(Do::HandOver) || (isOrdered(o, {Do::WatchService, Do::HandOver}) &&
                                         (o.announces(Configuration) || o.announces(Ready)));
     }},
    {"a service gets the settings exactly when configuration or ready is announced",
     [](Outcome o, LinkKind kind) {
         if (kind == LinkKind::AccessPoint)
             return true;
         const bool isNew = o.announces(Configuration) || o.announces(Ready);
         return isNew == o.has(Do::HandOver);
     }},
    {"an address or an online service stops the timeout",
     [](Outcome o, LinkKind) {
         return (!o.has(Event::AddressThere) && !o.has(Event::RequestedOnline)) ||
                (o.after.link.state == Online && !o.after.link.isTimed && o.has(Do::StopTime));
     }},
    {"with firmware, an error of the service leads to failure and power off",
     [](Outcome o, LinkKind) {
         const bool isDue = o.event == Event::ServiceError && o.before.link.isFirmwareLoaded &&
                            o.before.link.state != Disconnect;
         return o.event != Event::ServiceError ||
                (isDue ? o.announces(Failure) && isOrdered(o, {Do::Announce, Do::PowerOff}) &&
                             o.after.link.operation == LinkOperation::None
                       : o.acts.empty());
     }},
    {"with firmware, an address of the service leads to online",
     [](Outcome o, LinkKind kind) {
         if (o.event != Event::ServiceAddress || kind != LinkKind::Station)
             return true;
         const bool isDue = o.before.link.isFirmwareLoaded && o.before.link.state != Disconnect;
         return o.announces(Online) == isDue && (isDue || o.acts.empty());
     }},
    {"with firmware, the strength is passed on",
     [](Outcome o, LinkKind) {
         return o.event != Event::ServiceStrength ||
                o.has(Do::PassOn) == o.before.link.isFirmwareLoaded;
     }},
    {"while ready, a wired service's addresses are passed on after the state",
     [](Outcome o, LinkKind kind) {
         if (kind != LinkKind::Ethernet ||
             (o.event != Event::ServiceAddress && o.event != Event::ServiceIPv4))
             return true;
         const bool isReady = o.before.link.state == Ready;
         return o.has(Do::PassOn) == isReady &&
                (!isReady || o.event == Event::ServiceIPv4 ||
                 (o.announces(Online) && isOrdered(o, {Do::Announce, Do::PassOn})));
     }},

    // Before the module is ready, ConnMan's signals do not apply to it.
    {"without firmware, signals of ConnMan only end a disconnect",
     [](Outcome o, LinkKind kind) {
         const bool isSignal = o.event >= Event::TechnologyOn && o.event <= Event::ServiceOther;
         return kind != LinkKind::Station || !isSignal || o.before.link.isFirmwareLoaded ||
                o.before.link.state == Disconnect || o.acts.empty();
     }},
    {"when the module is ready, only a pending operation continues",
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
    {"an error reply to Connect fails the attempt, in association only",
     [](Outcome o, LinkKind) {
         if (o.event != Event::ConnectFailed)
             return true;
         return o.before.link.state == Association
                    ? o.announces(Failure) && !o.has(Do::PowerOff) &&
                          o.after.link.operation == LinkOperation::None
                    : o.acts.empty();
     }},
    {"Connect is called only while the technology is not connected",
     [](Outcome o, LinkKind) {
         return o.has(Do::RequestConnect) == o.has(Event::TechnologyIsDown);
     }},

    // Events and results to which the machine reacts in every state.
    {"the end of the Wi-Fi module's script starts its delay",
     [](Outcome o, LinkKind kind) {
         return kind == LinkKind::Ethernet || o.event != Event::ScriptEnded ||
                o.has(Do::StartModuleDelay);
     }},
    {"a station notes that its module is ready",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Station || o.event != Event::ModuleReady || o.has(Do::NoteModule);
     }},
    {"a technology that is on already is used at once",
     [](Outcome o, LinkKind kind) {
         return !o.has(Event::AlreadyOn) ||
                o.has(kind == LinkKind::Station ? Do::AskFound : Do::AskService);
     }},
    {"listed networks are evaluated",
     [](Outcome o, LinkKind) {
         return (!o.has(Event::NetworksListed) && !o.has(Event::NetworksFound)) ||
                o.has(Do::Evaluate);
     }},
    {"a scan is requested exactly when no network is found",
     [](Outcome o, LinkKind) { return o.has(Event::NoNetworkFound) == o.has(Do::RequestScan); }},
    {"a network that ConnMan does not list fails",
     [](Outcome o, LinkKind) {
         return !o.has(Event::RequestedMissing) ||
                (o.announces(Failure) && o.after.link.state == Failure &&
                 o.after.link.operation == LinkOperation::None);
     }},
    {"a station is judged at each timeout",
     [](Outcome o, LinkKind kind) {
         return kind != LinkKind::Station || o.event != Event::TimeIsOver ||
                isOrdered(o, {Do::Evaluate, Do::JudgeTime});
     }},
    {"each check of the access point decides",
     [](Outcome o, LinkKind) {
         return (o.event != Event::CheckIsDue || o.has(Do::CheckInterface)) &&
                (!o.has(Event::InterfaceMissing) || o.announces(Failure)) &&
                (!o.has(Event::InterfaceRunning) || o.announces(Online)) &&
                (!o.has(Event::InterfaceDown) || o.has(Do::StartCheckDelay));
     }},
};
