#include "linknames.h"

namespace
{
const char *const eventNames[] = {
    "None",
    "Started",
    "ScanCalled",
    "ConnectCalled",
    "DisconnectCalled",
    "ScriptEnded",
    "ModuleReady",
    "TimeIsOver",
    "LeavingIsOver",
    "CheckIsDue",
    "TechnologyOn",
    "TechnologyOff",
    "TechnologyConnected",
    "TechnologyOther",
    "ServicesChanged",
    "ServiceStrength",
    "ServiceError",
    "ServiceAddress",
    "ServiceIPv4",
    "ServiceOther",
    "ConnectFailed",
    "ScriptStarted",
    "ScriptRefused",
    "ConnmanRuns",
    "ConnmanAbsent",
    "NetworksListed",
    "NoNetworkListed",
    "NetworksFound",
    "NoNetworkFound",
    "PowerOnAccepted",
    "AlreadyOn",
    "PowerOffAccepted",
    "PowerOffRefused",
    "RequestedMissing",
    "RequestedIdle",
    "RequestedFailed",
    "RequestedReady",
    "RequestedOnline",
    "RequestedOther",
    "ServiceListed",
    "NoServiceListed",
    "TechnologyIsUp",
    "TechnologyIsDown",
    "AddressThere",
    "AddressMissing",
    "NetworkForgotten",
    "NetworkKept",
    "Left",
    "TimeJudged",
    "ConfigurationWritten",
    "ConfigurationRefused",
    "AccessPointRuns",
    "AccessPointMissing",
    "InterfaceRunning",
    "InterfaceDown",
    "InterfaceMissing",
};
static_assert(sizeof eventNames / sizeof *eventNames == size_t(LinkEvent::Count));

const char *const actionNames[] = {
    "None",
    "Announce",
    "PassOn",
    "GiveList",
    "TakeRequest",
    "StartScanTime",
    "StartConnectTime",
    "StopTime",
    "StartLeavingTime",
    "StartModuleDelay",
    "StartCheckDelay",
    "NoteModule",
    "SwitchToEthernet",
    "SwitchToStation",
    "SwitchToAccessPoint",
    "AskConnman",
    "AskListed",
    "AskFound",
    "PowerOn",
    "PowerOff",
    "RequestScan",
    "Evaluate",
    "Judge",
    "AskService",
    "AskTechnology",
    "RequestConnect",
    "WatchService",
    "ForgetService",
    "HandOver",
    "AskAddress",
    "JudgeTime",
    "ForgetNetwork",
    "UnregisterAgent",
    "Leave",
    "WriteConfiguration",
    "CheckAccessPoint",
    "CheckInterface",
    "ReplyCannotSwitch",
    "ReplyCannotSwitchAccessPoint",
    "ReplyNotForgotten",
    "ReplyNotPoweredOff",
    "ReplyBusy",
    "ReplyNotConfigured",
    "ReplyDisconnectedAlready",
};
static_assert(sizeof actionNames / sizeof *actionNames == size_t(LinkAction::Count));

const char *const operations[] = {"none", "scan", "connect"};
const char *const conditions[] = {
    "",          "time runs",     "time over",         "service", "no service", "not forgotten",
    "forgotten", "service ready", "service not ready",
};
} // namespace

QString nameOf(LinkEvent event)
{
    return eventNames[int(event)];
}

QString nameOf(LinkAction action)
{
    return actionNames[int(action)];
}

QString nameOf(LinkOperation operation)
{
    return operations[int(operation)];
}

QString nameOf(KyTcpIpState::State state)
{
    return KyTcpIpState::tpc_i_tcpIpState[state];
}

QString nameOf(LinkCondition condition)
{
    return conditions[int(condition)];
}

QString describe(const Link &link)
{
    QString text = nameOf(link.state) + "/" + nameOf(link.operation);
    const struct {
        bool holds;
        const char *name;
    } flags[] = {{link.isFirmwareLoaded, "firmware"},
                 {link.isTimed, "timed"},
                 {link.hasService, "service"},
                 {link.isNetworkKept, "kept"},
                 {link.isRequestedReady, "ready"}};
    for (const auto &flag : flags) {
        if (flag.holds)
            text += QString(" ") + flag.name;
    }
    return text;
}
