#include "linkstories.h"

#include "linknames.h"

#include <QHash>

#include <algorithm>

namespace
{
LinkEvent eventNamed(const QString &name)
{
    static const QHash<QString, LinkEvent> events = [] {
        QHash<QString, LinkEvent> named;
        for (int event = 0; event < int(LinkEvent::Count); ++event)
            named[nameOf(LinkEvent(event))] = LinkEvent(event);
        return named;
    }();
    return events.value(name, LinkEvent::None);
}

QString lineOf(const LinkOutcome &outcome)
{
    QStringList told = {nameOf(outcome.event)};
    for (const LinkEvent answer : outcome.answers)
        told << nameOf(answer);
    QStringList actions;
    for (const LinkAct &act : outcome.acts)
        actions << nameOf(act.action);
    return QString("%1 | %2 | %3")
        .arg(told.join(' '), actions.join(' '), describe(outcome.after.link));
}
} // namespace

QStringList tell(const LinkStory &story, const LinkTable &table)
{
    LinkExplorer explorer(table, story.kind, 1);
    LinkWorld world;
    QStringList told;
    for (const char *line : story.lines) {
        const QString question = QString(line).section(" | ", 0, 0);
        std::vector<LinkEvent> events;
        for (const QString &name : question.split(' '))
            events.push_back(eventNamed(name));
        const std::vector<LinkEvent> answers(events.begin() + 1, events.end());
        const std::vector<LinkOutcome> outcomes = explorer.outcomes(world, events.front());
        const auto outcome =
            std::find_if(outcomes.begin(), outcomes.end(),
                         [&answers](const LinkOutcome &each) { return each.answers == answers; });
        told << (outcome == outcomes.end() ? question + " | not asked" : lineOf(*outcome));
        // After a difference, the following lines do not apply.
        if (told.last() != line)
            return told;
        world = outcome->after;
    }
    return told;
}

const std::vector<LinkStory> linkStories = {
    {"a cable is connected",
     LinkKind::Ethernet,
     {
         "Started PowerOffAccepted | PowerOff | idle/none",
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | idle/none timed",
         "ScriptEnded ConnmanRuns PowerOnAccepted | AskConnman Announce PowerOn | association/none "
         "timed",
         "TechnologyOn NoServiceListed | AskService | association/none timed",
         "ServicesChanged ServiceListed AddressMissing | AskService Announce WatchService HandOver "
         "| ready/none timed service",
         "TechnologyConnected AddressMissing | AskAddress | ready/none timed service",
         "TechnologyConnected AddressThere | AskAddress StopTime Announce | online/none service",
         "DisconnectCalled PowerOffAccepted | Announce PowerOff Announce | idle/none service",
     }},
    {"a technology that is on already is used at once",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | idle/none timed",
         "ScriptEnded ConnmanRuns AlreadyOn ServiceListed AddressThere | AskConnman Announce "
         "PowerOn AskService Announce WatchService HandOver StopTime Announce | online/none "
         "service",
         "ConnectCalled |  | online/none service",
         "DisconnectCalled PowerOffRefused | Announce PowerOff ReplyNotPoweredOff Announce | "
         "idle/none service",
     }},
    {"a service announces its address",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | idle/none timed",
         "ScriptEnded ConnmanRuns AlreadyOn NoServiceListed | AskConnman Announce PowerOn "
         "AskService | association/none timed",
         "TechnologyOn ServiceListed AddressMissing | AskService Announce WatchService HandOver | "
         "ready/none timed service",
         "ServiceIPv4 | PassOn | ready/none timed service",
         "ServiceAddress | Announce PassOn | online/none timed service",
         "ServiceAddress |  | online/none timed service",
         "TimeIsOver PowerOffAccepted | Announce PowerOff | failure/none timed service",
         "TimeIsOver PowerOffRefused | Announce PowerOff | failure/none timed service",
     }},
    {"a script that cannot be started",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptRefused | StartConnectTime SwitchToEthernet ReplyCannotSwitch "
         "Announce | failure/none timed",
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | failure/none timed",
         "ConnectCalled ScriptRefused | StartConnectTime SwitchToEthernet ReplyCannotSwitch "
         "Announce | failure/none timed",
         "ScriptEnded ConnmanAbsent | AskConnman Announce | failure/none timed",
     }},
    {"a disconnect while the script runs",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | idle/none timed",
         "DisconnectCalled PowerOffRefused | Announce PowerOff ReplyNotPoweredOff Announce | "
         "idle/none timed",
         "ScriptEnded ConnmanRuns PowerOnAccepted | AskConnman Announce PowerOn | association/none "
         "timed",
         "DisconnectCalled PowerOffAccepted | Announce PowerOff Announce | idle/none timed",
         "TimeIsOver PowerOffRefused | Announce PowerOff | failure/none timed",
     }},
    {"a connect after a failure",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptRefused | StartConnectTime SwitchToEthernet ReplyCannotSwitch "
         "Announce | failure/none timed",
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | failure/none timed",
         "ScriptEnded ConnmanRuns PowerOnAccepted | AskConnman Announce PowerOn | association/none "
         "timed",
     }},
    {"a cable without ConnMan",
     LinkKind::Ethernet,
     {
         "ConnectCalled ScriptStarted | StartConnectTime SwitchToEthernet | idle/none timed",
         "ScriptEnded ConnmanAbsent | AskConnman Announce | failure/none timed",
     }},
    {"a connect without ConnMan",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanAbsent | NoteModule AskConnman Announce | failure/connect firmware "
         "timed",
     }},
    {"a scan when ConnMan lists no network",
     LinkKind::Station,
     {
         "Started PowerOffRefused | PowerOff | idle/none",
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "TechnologyOn |  | idle/scan timed",
         "ServicesChanged |  | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule AskConnman "
         "AskListed PowerOn | idle/scan firmware timed",
         "TechnologyOn NoNetworkFound | AskFound RequestScan | idle/scan firmware timed",
         "ServicesChanged PowerOffAccepted | GiveList PowerOff | idle/none firmware timed",
         "TechnologyOff |  | idle/none firmware timed",
         "ServicesChanged |  | idle/none firmware timed",
         "TimeIsOver ServicesChanged TimeJudged | Evaluate JudgeTime | idle/none firmware",
     }},
    {"a scan when ConnMan lists networks already",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged PowerOffAccepted | NoteModule "
         "AskConnman AskListed Evaluate GiveList PowerOff | idle/none firmware timed",
     }},
    {"a scan with a technology that is on already",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanRuns NoNetworkListed AlreadyOn NoNetworkFound | NoteModule AskConnman "
         "AskListed PowerOn AskFound RequestScan | idle/scan firmware timed",
         "TechnologyOn NetworksFound ServicesChanged PowerOffAccepted | AskFound Evaluate GiveList "
         "PowerOff | idle/none firmware timed",
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanRuns NoNetworkListed AlreadyOn NetworksFound ServicesChanged "
         "PowerOffAccepted | NoteModule AskConnman AskListed PowerOn AskFound Evaluate GiveList "
         "PowerOff | idle/none firmware timed",
     }},
    {"a scan that finds nothing",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule AskConnman "
         "AskListed PowerOn | idle/scan firmware timed",
         "TimeIsOver ServicesChanged PowerOffAccepted TimeJudged | Evaluate GiveList PowerOff "
         "JudgeTime | idle/none firmware",
     }},
    {"a scan whose script takes long",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "TimeIsOver ServicesChanged TimeJudged | Evaluate JudgeTime | idle/scan",
         "ScanCalled ScriptRefused | StartScanTime Announce SwitchToStation ReplyCannotSwitch "
         "Announce | failure/scan timed",
         "ScriptEnded | StartModuleDelay | failure/scan timed",
         "ModuleReady | NoteModule | failure/scan firmware timed",
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "TimeIsOver ServicesChanged TimeJudged | Evaluate JudgeTime | idle/scan",
         "ScriptEnded | StartModuleDelay | idle/scan",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule StartScanTime "
         "AskConnman AskListed PowerOn | idle/scan firmware timed",
         "TimeIsOver ServicesChanged PowerOffAccepted TimeJudged | Evaluate GiveList PowerOff "
         "JudgeTime | idle/none firmware",
     }},
    {"a scan without ConnMan",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ModuleReady ConnmanAbsent | NoteModule AskConnman Announce | failure/scan firmware timed",
         "TimeIsOver ServicesChanged TimeJudged | Evaluate JudgeTime | failure/scan firmware",
     }},
    {"a network is joined",
     LinkKind::Station,
     {
         "Started PowerOffAccepted | PowerOff | idle/none",
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScanCalled |  | idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule AskConnman "
         "AskListed PowerOn | idle/connect firmware timed",
         "TechnologyOn NoNetworkFound | AskFound RequestScan | idle/connect firmware timed",
         "ServicesChanged RequestedIdle TechnologyIsDown | Judge Announce AskTechnology "
         "RequestConnect | association/connect firmware timed",
         "ConnectCalled |  | association/connect firmware timed",
         "ScanCalled |  | association/connect firmware timed",
         "ServicesChanged RequestedOther | Judge | association/connect firmware timed",
         "ServicesChanged RequestedReady AddressMissing | Judge WatchService Announce HandOver | "
         "configuration/connect firmware timed service ready",
         "ServicesChanged RequestedReady | Judge | configuration/connect firmware timed service "
         "ready",
         "ServiceStrength | PassOn | configuration/connect firmware timed service ready",
         "ServiceOther |  | configuration/connect firmware timed service ready",
         "ServiceAddress | Announce | online/connect firmware timed service ready",
         "ServicesChanged RequestedOnline | Judge StopTime Announce | online/none firmware service",
         "DisconnectCalled NetworkForgotten PowerOffAccepted | Announce ForgetNetwork PowerOff "
         "UnregisterAgent StartLeavingTime | disconnect/none firmware service",
         "ServiceAddress |  | disconnect/none firmware service",
         "ServiceStrength | PassOn | disconnect/none firmware service",
         "TechnologyOff | Announce | idle/none firmware service",
     }},
    {"a network that has its address at once",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsUp "
         "AddressThere | NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology "
         "WatchService Announce HandOver StopTime Announce | online/connect firmware service",
         "DisconnectCalled NetworkKept PowerOffRefused Left | Announce ForgetNetwork PowerOff "
         "UnregisterAgent ReplyNotForgotten Leave Announce | idle/none firmware service kept",
     }},
    {"a technology that connects by itself",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule AskConnman "
         "AskListed PowerOn | idle/connect firmware timed",
         "TechnologyConnected NoServiceListed | AskService | idle/connect firmware timed",
         "TechnologyConnected ServiceListed AddressMissing | AskService WatchService Announce "
         "HandOver | configuration/connect firmware timed service",
         "TechnologyConnected |  | configuration/connect firmware timed service",
         "DisconnectCalled NetworkKept PowerOffAccepted | Announce ForgetNetwork PowerOff "
         "UnregisterAgent ReplyNotForgotten StartLeavingTime | disconnect/none firmware timed "
         "service kept",
         "LeavingIsOver | Announce | idle/none firmware timed service kept",
     }},
    {"a network that ConnMan does not list",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedMissing | NoteModule "
         "AskConnman AskListed Evaluate Judge Announce | failure/none firmware timed",
         "ServicesChanged |  | failure/none firmware timed",
     }},
    {"a network that fails while it is joined",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsDown | "
         "NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology RequestConnect | "
         "association/connect firmware timed",
         "ServicesChanged RequestedFailed | Judge Announce | failure/connect firmware timed",
         "ServicesChanged RequestedOther | Judge | failure/connect firmware timed",
         "TimeIsOver ServicesChanged RequestedOther TimeJudged | Evaluate Judge JudgeTime | "
         "failure/connect firmware",
         "ServicesChanged RequestedOnline | Judge StopTime Announce | online/none firmware",
     }},
    {"ConnMan refuses to connect",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsDown | "
         "NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology RequestConnect | "
         "association/connect firmware timed",
         "ConnectFailed | Announce | failure/none firmware timed",
         "ServicesChanged |  | failure/none firmware timed",
         "DisconnectCalled PowerOffRefused Left | Announce PowerOff UnregisterAgent "
         "ReplyNotPoweredOff Leave Announce | idle/none firmware timed",
     }},
    {"a service in use fails",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsDown | "
         "NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology RequestConnect | "
         "association/connect firmware timed",
         "ServicesChanged RequestedReady AddressThere | Judge WatchService Announce HandOver "
         "StopTime Announce | online/connect firmware service ready",
         "ServiceError PowerOffAccepted | Announce PowerOff | failure/none firmware service ready",
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed "
         "service ready",
         "ServiceError |  | idle/scan timed service ready",
         "ScriptEnded | StartModuleDelay | idle/scan timed service ready",
         "ModuleReady ConnmanRuns NoNetworkListed PowerOnAccepted | NoteModule AskConnman "
         "AskListed PowerOn | idle/scan firmware timed service ready",
         "ServiceAddress | Announce | online/scan firmware timed service ready",
         "DisconnectCalled NetworkForgotten PowerOffRefused Left | Announce ForgetNetwork PowerOff "
         "UnregisterAgent ReplyNotPoweredOff Leave Announce | idle/none firmware timed service "
         "ready",
     }},
    {"an attempt times out while the script runs",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "TimeIsOver ServicesChanged TimeJudged | Evaluate JudgeTime Announce | failure/none",
         "ScriptEnded | StartModuleDelay | failure/none",
         "ModuleReady | NoteModule | failure/none firmware",
     }},
    {"an attempt times out while ConnMan connects",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsDown | "
         "NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology RequestConnect | "
         "association/connect firmware timed",
         "TimeIsOver ServicesChanged RequestedOther TimeJudged | Evaluate Judge JudgeTime Announce "
         "| failure/none firmware",
     }},
    {"an attempt times out while its service is configured",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsUp "
         "AddressMissing | NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology "
         "WatchService Announce HandOver | configuration/connect firmware timed service",
         "TimeIsOver ServicesChanged RequestedOther TimeJudged | Evaluate Judge JudgeTime Announce "
         "| failure/none firmware service",
     }},
    {"an attempt times out while its service is ready",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ScriptEnded | StartModuleDelay | idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsUp "
         "AddressMissing | NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology "
         "WatchService Announce HandOver | configuration/connect firmware timed service",
         "TimeIsOver ServicesChanged RequestedReady TimeJudged | Evaluate Judge JudgeTime | "
         "configuration/connect firmware service ready",
         "ServicesChanged RequestedReady TimeJudged | Judge JudgeTime | configuration/connect "
         "firmware service ready",
         "ServicesChanged RequestedOther TimeJudged | Judge JudgeTime Announce | failure/none "
         "firmware service",
     }},
    {"a disconnect while the script runs",
     LinkKind::Station,
     {
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "DisconnectCalled PowerOffAccepted | Announce PowerOff UnregisterAgent StartLeavingTime | "
         "disconnect/none timed",
         "TechnologyOff | Announce | idle/none timed",
         "ScriptEnded | StartModuleDelay | idle/none timed",
         "ModuleReady | NoteModule | idle/none firmware timed",
         "TechnologyOn NetworksFound ServicesChanged | AskFound Evaluate | idle/none firmware "
         "timed",
     }},
    {"a connect replaces a scan",
     LinkKind::Station,
     {
         "ScanCalled ScriptStarted | StartScanTime Announce SwitchToStation | idle/scan timed",
         "ScriptEnded | StartModuleDelay | idle/scan timed",
         "ConnectCalled ScriptStarted | ForgetService StartConnectTime TakeRequest SwitchToStation "
         "| idle/connect timed",
         "ModuleReady ConnmanRuns NetworksListed ServicesChanged RequestedIdle TechnologyIsDown | "
         "NoteModule AskConnman AskListed Evaluate Judge Announce AskTechnology RequestConnect | "
         "association/connect firmware timed",
     }},
    {"an access point comes on line",
     LinkKind::AccessPoint,
     {
         "ConnectCalled ConfigurationWritten ScriptStarted | Announce WriteConfiguration "
         "SwitchToAccessPoint | configuration/none",
         "ScriptEnded | StartModuleDelay | configuration/none",
         "ModuleReady AccessPointRuns | CheckAccessPoint Announce StartCheckDelay | ready/none",
         "ConnectCalled | ReplyBusy | ready/none",
         "CheckIsDue InterfaceDown | CheckInterface StartCheckDelay | ready/none",
         "CheckIsDue InterfaceRunning | CheckInterface Announce | online/none",
         "DisconnectCalled ScriptStarted | Announce SwitchToEthernet Announce | idle/none",
         "DisconnectCalled | ReplyDisconnectedAlready | idle/none",
     }},
    {"an access point that cannot be configured",
     LinkKind::AccessPoint,
     {
         "ConnectCalled ConfigurationRefused | Announce WriteConfiguration ReplyNotConfigured "
         "Announce | failure/none",
         "ConnectCalled ConfigurationWritten ScriptRefused | Announce WriteConfiguration "
         "SwitchToAccessPoint ReplyCannotSwitchAccessPoint Announce | failure/none",
         "DisconnectCalled ScriptRefused | Announce SwitchToEthernet Announce | idle/none",
     }},
    {"an access point that does not start",
     LinkKind::AccessPoint,
     {
         "ConnectCalled ConfigurationWritten ScriptStarted | Announce WriteConfiguration "
         "SwitchToAccessPoint | configuration/none",
         "ScriptEnded | StartModuleDelay | configuration/none",
         "ModuleReady AccessPointMissing | CheckAccessPoint Announce | failure/none",
         "ConnectCalled ConfigurationWritten ScriptStarted | Announce WriteConfiguration "
         "SwitchToAccessPoint | configuration/none",
         "ScriptEnded | StartModuleDelay | configuration/none",
         "ModuleReady AccessPointRuns | CheckAccessPoint Announce StartCheckDelay | ready/none",
         "CheckIsDue InterfaceMissing | CheckInterface Announce | failure/none",
     }},
    {"a disconnect before the module is ready",
     LinkKind::AccessPoint,
     {
         "ConnectCalled ConfigurationWritten ScriptStarted | Announce WriteConfiguration "
         "SwitchToAccessPoint | configuration/none",
         "DisconnectCalled ScriptRefused | Announce SwitchToEthernet Announce | idle/none",
         "ScriptEnded | StartModuleDelay | idle/none",
         "ModuleReady |  | idle/none",
     }},
    {"a check after a disconnect",
     LinkKind::AccessPoint,
     {
         "ConnectCalled ConfigurationWritten ScriptStarted | Announce WriteConfiguration "
         "SwitchToAccessPoint | configuration/none",
         "ScriptEnded | StartModuleDelay | configuration/none",
         "ModuleReady AccessPointRuns | CheckAccessPoint Announce StartCheckDelay | ready/none",
         "DisconnectCalled ScriptStarted | Announce SwitchToEthernet Announce | idle/none",
         "CheckIsDue InterfaceDown | CheckInterface StartCheckDelay | idle/none",
         "CheckIsDue InterfaceRunning | CheckInterface Announce | online/none",
     }},
};
