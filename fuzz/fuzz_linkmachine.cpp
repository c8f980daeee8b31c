#include "accesspointtable.h"
#include "choices.h"
#include "ethernettable.h"
#include "linkmachine.h"
#include "require.h"
#include "stationtable.h"
#include "tcpipstate.h"

#include <algorithm>
#include <cstring>

namespace
{
const LinkTable *const tables[] = {&ethernetTable, &stationTable, &accessPointTable};

LinkEvent anyEvent(Choices &choices)
{
    return static_cast<LinkEvent>(choices.below(static_cast<unsigned>(LinkEvent::Count)));
}
} // namespace

/** Events in any order, including events that the state makes impossible. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const LinkTable &table = *choices.among(tables);
    Link link;
    for (std::size_t left = size; left > 0; --left) {
        const LinkEvent event = anyEvent(choices);
        const LinkStep step = next(table, link, event);
        const auto count = std::count_if(table.begin(), table.end(), [&](const LinkRow &row) {
            return &row != step.row && holds(row, step.link, event) && holds(row, link, event);
        });
        require(step.row || count == 0, "an event with a row is not ignored");
        require(step.row || step.link.state == link.state, "an ignored event changes no state");
        require(step.row || step.link.operation == link.operation,
                "an ignored event changes no operation");
        require(std::strlen(KyTcpIpState::tpc_i_tcpIpState[step.link.state]) > 0,
                "every state has a name");
        link = step.link;
    }
    return 0;
}
