#include "linkmachine.h"

#include <algorithm>

namespace
{
bool holds(LinkCondition condition, const Link &link)
{
    switch (condition) {
    case LinkCondition::Always:
        break;
    case LinkCondition::TimeRuns:
        return link.isTimed;
    case LinkCondition::TimeIsOver:
        return !link.isTimed;
    case LinkCondition::HasService:
        return link.hasService;
    case LinkCondition::HasNoService:
        return !link.hasService;
    case LinkCondition::NetworkIsKept:
        return link.isNetworkKept;
    case LinkCondition::NetworkIsForgotten:
        return !link.isNetworkKept;
    case LinkCondition::RequestedIsReady:
        return link.isRequestedReady;
    case LinkCondition::RequestedIsNotReady:
        return !link.isRequestedReady;
    }
    return true;
}

/** Updates the flags of the link for an event, even if no row applies. */
void updateFlags(Link &link, LinkEvent event, bool isTimeRepeated)
{
    switch (event) {
    case LinkEvent::TimeJudged:
        link.isTimed = isTimeRepeated;
        break;
    case LinkEvent::DisconnectCalled:
        link.isNetworkKept = false;
        break;
    case LinkEvent::NetworkKept:
        link.isNetworkKept = true;
        break;
    case LinkEvent::RequestedReady:
        link.isRequestedReady = true;
        break;
    case LinkEvent::RequestedMissing:
    case LinkEvent::RequestedIdle:
    case LinkEvent::RequestedFailed:
    case LinkEvent::RequestedOnline:
    case LinkEvent::RequestedOther:
        link.isRequestedReady = false;
        break;
    default:
        break;
    }
}

/** Updates the flags of the link for a completed action. */
void updateFlags(Link &link, LinkAction action)
{
    switch (action) {
    case LinkAction::StartScanTime:
    case LinkAction::StartConnectTime:
        link.isTimed = true;
        break;
    case LinkAction::StopTime:
        link.isTimed = false;
        break;
    case LinkAction::NoteModule:
        link.isFirmwareLoaded = true;
        break;
    case LinkAction::SwitchToEthernet:
    case LinkAction::SwitchToStation:
    case LinkAction::SwitchToAccessPoint:
        link.isFirmwareLoaded = false;
        break;
    case LinkAction::WatchService:
        link.hasService = true;
        break;
    case LinkAction::ForgetService:
        link.hasService = false;
        break;
    default:
        break;
    }
}
} // namespace

bool holds(const LinkRow &row, const Link &link, LinkEvent event)
{
    const LinkCase &from = row.from;
    return row.event == event && (from.states & setOf(link.state)) &&
           (from.operations & setOf(link.operation)) &&
           (from.firmware == LinkFirmware::Any || link.isFirmwareLoaded) &&
           holds(from.condition, link);
}

LinkStep next(const LinkTable &table, Link link, LinkEvent event)
{
    updateFlags(link, event, table.isTimeRepeated);
    const LinkRow *row = std::find_if(
        table.begin(), table.end(), [&](const LinkRow &each) { return holds(each, link, event); });
    if (row == table.end())
        return {link, nullptr};
    link.state = row->to.state.value_or(link.state);
    link.operation = row->to.operation.value_or(link.operation);
    for (const LinkAction action : row->actions)
        updateFlags(link, action);
    return {link, row};
}

void LinkMachine::handle(LinkEvent event)
{
    const LinkStep step = next(m_table, m_link, event);
    m_link = step.link;
    if (step.row) {
        for (const LinkAction action : step.row->actions) {
            const LinkEvent answer = perform(action);
            if (answer != LinkEvent::None)
                handle(answer);
        }
    }
    handled(event, step.row);
}
