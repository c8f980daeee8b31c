#include "ethernettable.h"

#include "linksets.h"

namespace
{
using namespace linksets;

// From, event, to, actions.
const LinkRow rows[] = {
    row({idle}, Event::Started, {}, Do::PowerOff),

    row({idle | failure}, Event::ConnectCalled, {}, Do::StartConnectTime, Do::SwitchToEthernet),
    row({idle | failure}, Event::ScriptRefused, {toFailure}, Do::ReplyCannotSwitch, Do::Announce),
    // This row applies after a disconnect, too: clients rely on it.
    row({idle | failure}, Event::ScriptEnded, {}, Do::AskConnman),
    row({idle | failure}, Event::ConnmanAbsent, {toFailure}, Do::Announce),
    row({idle | failure}, Event::ConnmanRuns, {toAssociation}, Do::Announce, Do::PowerOn),

    row({association}, Event::AlreadyOn, {}, Do::AskService),
    row({association}, Event::TechnologyOn, {}, Do::AskService),
    row({association}, Event::ServicesChanged, {}, Do::AskService),
    row({association}, Event::ServiceListed, {toReady}, Do::Announce, Do::WatchService,
        Do::HandOver),

    row({ready}, Event::TechnologyConnected, {}, Do::AskAddress),
    row({ready}, Event::AddressThere, {toOnline}, Do::StopTime, Do::Announce),
    // Do not stop the timer: clients rely on the timeout.
    row({ready}, Event::ServiceAddress, {toOnline}, Do::Announce, Do::PassOn),
    row({ready}, Event::ServiceIPv4, {}, Do::PassOn),

    // This row applies in every state, even after a disconnect, and again every minute: clients
    // rely on it.
    row({all}, Event::TimeIsOver, {toFailure}, Do::Announce, Do::PowerOff),

    row({all}, Event::DisconnectCalled, {toDisconnect}, Do::Announce, Do::PowerOff),
    row({leaving}, Event::PowerOffAccepted, {toIdle}, Do::Announce),
    row({leaving}, Event::PowerOffRefused, {toIdle}, Do::ReplyNotPoweredOff, Do::Announce),
};
} // namespace

const LinkTable ethernetTable = {rows, sizeof rows / sizeof *rows, true};
