#include "accesspointtable.h"

#include "linksets.h"

namespace
{
using namespace linksets;

constexpr LinkSet busy = ~(idle | failure);

// From, event, to, actions.
const LinkRow rows[] = {
    row({idle | failure}, Event::ConnectCalled, {toConfiguration}, Do::Announce,
        Do::WriteConfiguration),
    row({busy}, Event::ConnectCalled, {}, Do::ReplyBusy),
    row({configuration}, Event::ConfigurationRefused, {toFailure}, Do::ReplyNotConfigured,
        Do::Announce),
    row({configuration}, Event::ConfigurationWritten, {}, Do::SwitchToAccessPoint),
    row({configuration}, Event::ScriptRefused, {toFailure}, Do::ReplyCannotSwitchAccessPoint,
        Do::Announce),

    row({all}, Event::ScriptEnded, {}, Do::StartModuleDelay),
    row({configuration}, Event::ModuleReady, {}, Do::CheckAccessPoint),
    row({configuration}, Event::AccessPointMissing, {toFailure}, Do::Announce),
    row({configuration}, Event::AccessPointRuns, {toReady}, Do::Announce, Do::StartCheckDelay),

    // These rows apply in any state. A check that is pending at a disconnect still changes the
    // state afterwards; clients rely on it.
    row({all}, Event::CheckIsDue, {}, Do::CheckInterface),
    row({all}, Event::InterfaceMissing, {toFailure}, Do::Announce),
    row({all}, Event::InterfaceRunning, {toOnline}, Do::Announce),
    row({all}, Event::InterfaceDown, {}, Do::StartCheckDelay),

    row({idle}, Event::DisconnectCalled, {}, Do::ReplyDisconnectedAlready),
    row({~idle}, Event::DisconnectCalled, {toDisconnect}, Do::Announce, Do::SwitchToEthernet),
    row({leaving}, Event::ScriptStarted, {toIdle}, Do::Announce),
    row({leaving}, Event::ScriptRefused, {toIdle}, Do::Announce),
};
} // namespace

const LinkTable accessPointTable = {rows, sizeof rows / sizeof *rows, false};
