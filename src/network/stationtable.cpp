#include "stationtable.h"

#include "linksets.h"

namespace
{
using namespace linksets;

// From: state, operation, firmware flag, condition. Event. To: state, operation. Actions.
const LinkRow rows[] = {
    // The radio is off until a scan or a connect needs it.
    row({idle, none}, Event::Started, {}, Do::PowerOff),

    // A scan or a connect starts the mode script first. A connect does not announce the state
    // "idle": clients would take it for the end of the attempt.
    row({idle, none | scan}, Event::ScanCalled, {toIdle, toScan}, Do::StartScanTime, Do::Announce,
        Do::SwitchToStation),
    row({failure}, Event::ScanCalled, {toIdle, toScan}, Do::StartScanTime, Do::Announce,
        Do::SwitchToStation),
    row({idle | failure}, Event::ConnectCalled, {toIdle, toConnect}, Do::ForgetService,
        Do::StartConnectTime, Do::TakeRequest, Do::SwitchToStation),
    row({idle, scan | connect}, Event::ScriptRefused, {toFailure}, Do::ReplyCannotSwitch,
        Do::Announce),
    row({all}, Event::ScriptEnded, {}, Do::StartModuleDelay),

    // If the module becomes ready after a disconnect, the station only records it. If a scan has
    // timed out before the module is ready, its timer starts again now: otherwise a scan for which
    // ConnMan sends no signal would never end.
    row({idle, scan, either, When::TimeRuns}, Event::ModuleReady, {}, Do::NoteModule,
        Do::AskConnman),
    row({idle, scan, either, When::TimeIsOver}, Event::ModuleReady, {}, Do::NoteModule,
        Do::StartScanTime, Do::AskConnman),
    row({idle, connect}, Event::ModuleReady, {}, Do::NoteModule, Do::AskConnman),
    row({idle, none}, Event::ModuleReady, {}, Do::NoteModule),
    row({~idle}, Event::ModuleReady, {}, Do::NoteModule),
    row({idle}, Event::ConnmanAbsent, {toFailure}, Do::Announce),
    row({idle}, Event::ConnmanRuns, {}, Do::AskListed),
    row({idle}, Event::NetworksListed, {}, Do::Evaluate),
    row({idle}, Event::NoNetworkListed, {}, Do::PowerOn),
    row({idle}, Event::AlreadyOn, {}, Do::AskFound),
    row({idle, all, loaded}, Event::TechnologyOn, {}, Do::AskFound),
    row({idle}, Event::NetworksFound, {}, Do::Evaluate),
    row({idle}, Event::NoNetworkFound, {}, Do::RequestScan),

    // A scan ends with the list of networks. A connect checks the state of the requested service.
    row({idle, scan, loaded}, Event::ServicesChanged, {stays, toNone}, Do::GiveList, Do::PowerOff),
    row({~configuration, connect, loaded}, Event::ServicesChanged, {}, Do::Judge),
    row({configuration, connect, loaded, When::TimeRuns}, Event::ServicesChanged, {}, Do::Judge),
    row({configuration, connect, loaded, When::TimeIsOver}, Event::ServicesChanged, {}, Do::Judge,
        Do::JudgeTime),
    row({all, connect}, Event::RequestedMissing, {toFailure, toNone}, Do::Announce),
    row({idle, connect}, Event::RequestedIdle, {toAssociation}, Do::Announce, Do::AskTechnology),
    row({association, connect}, Event::TechnologyIsUp, {toConfiguration}, Do::WatchService,
        Do::Announce, Do::HandOver),
    row({association, connect}, Event::TechnologyIsDown, {}, Do::RequestConnect),
    row({association, connect}, Event::RequestedFailed, {toFailure}, Do::Announce),
    row({association, connect}, Event::RequestedReady, {toConfiguration}, Do::WatchService,
        Do::Announce, Do::HandOver),
    row({all, connect}, Event::RequestedOnline, {toOnline, toNone}, Do::StopTime, Do::Announce),
    row({configuration, connect}, Event::AddressThere, {toOnline}, Do::StopTime, Do::Announce),

    // ConnMan connected the technology before the daemon called Connect.
    row({idle, connect, loaded}, Event::TechnologyConnected, {}, Do::AskService),
    row({idle, connect}, Event::ServiceListed, {toConfiguration}, Do::WatchService, Do::Announce,
        Do::HandOver),

    // Leave the radio on after a failed Connect. A power off would make ConnMan forget that the key
    // was wrong: ConnMan would keep the key and never ask for another one.
    row({association}, Event::ConnectFailed, {toFailure, toNone}, Do::Announce),

    // Signals of the current service. During a disconnect, an error or an address of the service
    // does not change the state.
    row({all, all, loaded}, Event::ServiceStrength, {}, Do::PassOn),
    row({~leaving, all, loaded}, Event::ServiceError, {toFailure, toNone}, Do::Announce,
        Do::PowerOff),
    row({~leaving, all, loaded}, Event::ServiceAddress, {toOnline}, Do::Announce),

    // An attempt without a result fails at its timeout, unless the service is "ready": such a
    // service may still get an address. The daemon checks it again at each change of the services.
    row({all}, Event::TimeIsOver, {}, Do::Evaluate, Do::JudgeTime),
    row({idle | association, connect}, Event::TimeJudged, {toFailure, toNone}, Do::Announce),
    row({configuration, connect, either, When::RequestedIsNotReady}, Event::TimeJudged,
        {toFailure, toNone}, Do::Announce),

    // A disconnect always ends in "idle". If ConnMan refuses to power the technology off, it will
    // send no signal: the station goes to "idle" at once.
    row({all, all, either, When::HasService}, Event::DisconnectCalled, {toDisconnect, toNone},
        Do::Announce, Do::ForgetNetwork, Do::PowerOff),
    row({all, all, either, When::HasNoService}, Event::DisconnectCalled, {toDisconnect, toNone},
        Do::Announce, Do::PowerOff),
    row({leaving, none, either, When::NetworkIsForgotten}, Event::PowerOffAccepted, {},
        Do::UnregisterAgent, Do::StartLeavingTime),
    row({leaving, none, either, When::NetworkIsKept}, Event::PowerOffAccepted, {},
        Do::UnregisterAgent, Do::ReplyNotForgotten, Do::StartLeavingTime),
    row({leaving, none, either, When::NetworkIsForgotten}, Event::PowerOffRefused, {},
        Do::UnregisterAgent, Do::ReplyNotPoweredOff, Do::Leave),
    row({leaving, none, either, When::NetworkIsKept}, Event::PowerOffRefused, {},
        Do::UnregisterAgent, Do::ReplyNotForgotten, Do::Leave),
    row({leaving, none}, Event::Left, {toIdle}, Do::Announce),
    row({leaving, none}, Event::TechnologyOff, {toIdle}, Do::Announce),
    row({leaving, none}, Event::LeavingIsOver, {toIdle}, Do::Announce),
};

const struct {
    const char *serviceState;
    LinkEvent event;
} serviceStates[] = {
    {"idle", Event::RequestedIdle},
    {"failure", Event::RequestedFailed},
    {"ready", Event::RequestedReady},
    {"online", Event::RequestedOnline},
};

const QLatin1String connmanErrors("net.connman.Error.");
} // namespace

const LinkTable stationTable = {rows, sizeof rows / sizeof *rows, false};

LinkEvent requestedEvent(const QString &serviceState)
{
    for (const auto &row : serviceStates) {
        if (serviceState == QLatin1String(row.serviceState))
            return row.event;
    }
    return LinkEvent::RequestedOther;
}

bool failsConnect(const QString &errorName)
{
    return errorName.startsWith(connmanErrors) &&
           errorName != connmanErrors + QStringLiteral("InProgress") &&
           errorName != connmanErrors + QStringLiteral("AlreadyConnected");
}
