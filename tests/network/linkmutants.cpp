#include "linkmutants.h"

#include "linknames.h"

#include <algorithm>

namespace
{
/** Collects the mutants of one row. */
class RowMutants
{
public:
    RowMutants(const LinkTable &table, int row, std::vector<LinkMutant> &mutants)
        : m_table(table), m_row(row), m_mutants(mutants)
    {
    }

    void remove()
    {
        std::vector<LinkRow> rows(m_table.begin(), m_table.end());
        rows.erase(rows.begin() + m_row);
        m_mutants.push_back({name("removed"), std::move(rows)});
    }

    template <typename Edit>
    void edit(const QString &what, Edit edit)
    {
        std::vector<LinkRow> rows(m_table.begin(), m_table.end());
        edit(rows[size_t(m_row)]);
        m_mutants.push_back({name(what), std::move(rows)});
    }

    const LinkRow &row() const { return m_table.rows[m_row]; }

private:
    QString name(const QString &what) const
    {
        return QString("row %1, %2: %3").arg(m_row).arg(nameOf(row().event), what);
    }

    const LinkTable &m_table;
    const int m_row;
    std::vector<LinkMutant> &m_mutants;
};

/** The states that a machine can reach: its start, and the targets of its rows. */
LinkSet reachableStates(const LinkTable &table)
{
    LinkSet states = setOf(KyTcpIpState::Idle);
    for (const LinkRow &row : table)
        states |= row.to.state ? setOf(*row.to.state) : 0U;
    return states;
}

LinkSet reachableOperations(const LinkTable &table)
{
    LinkSet operations = setOf(LinkOperation::None);
    for (const LinkRow &row : table)
        operations |= row.to.operation ? setOf(*row.to.operation) : 0U;
    return operations;
}

/**
 * Returns true if both targets lead to the same state from each state of @p from: they are equal,
 * or one names the state that the other leaves unchanged.
 */
template <typename Value>
bool isSame(std::optional<Value> one, std::optional<Value> other, LinkSet from)
{
    const std::optional<Value> value = one ? one : other;
    return one == other || ((!one || !other) && value && from == setOf(*value));
}

template <typename Value>
QString targetName(std::optional<Value> target)
{
    return target ? nameOf(*target) : QString("what it was");
}

/** Removes from the row one of the states or operations in which it is used. */
void narrow(RowMutants &mutants, const LinkUse &use)
{
    for (int state = KyTcpIpState::Idle; state <= KyTcpIpState::Online; ++state) {
        const LinkSet each = setOf(KyTcpIpState::State(state));
        if ((use.states & each) && use.states != each)
            mutants.edit("not in " + nameOf(KyTcpIpState::State(state)),
                         [each](LinkRow &row) { row.from.states &= ~each; });
    }
    for (const LinkOperation operation :
         {LinkOperation::None, LinkOperation::Scan, LinkOperation::Connect}) {
        const LinkSet each = setOf(operation);
        if ((use.operations & each) && use.operations != each)
            mutants.edit("not in operation " + nameOf(operation),
                         [each](LinkRow &row) { row.from.operations &= ~each; });
    }
}

void changeStates(RowMutants &mutants, LinkSet reachable)
{
    const LinkSet from = mutants.row().from.states & reachable;
    std::vector<std::optional<KyTcpIpState::State>> states = {std::nullopt};
    for (int state = KyTcpIpState::Idle; state <= KyTcpIpState::Online; ++state)
        states.emplace_back(KyTcpIpState::State(state));
    for (const auto &state : states) {
        if (!isSame(state, mutants.row().to.state, from))
            mutants.edit("to state " + targetName(state),
                         [state](LinkRow &row) { row.to.state = state; });
    }
}

void changeOperations(RowMutants &mutants, LinkSet reachable)
{
    const LinkSet from = mutants.row().from.operations & reachable;
    const std::optional<LinkOperation> operations[] = {std::nullopt, LinkOperation::None,
                                                       LinkOperation::Scan, LinkOperation::Connect};
    for (const auto &operation : operations) {
        if (!isSame(operation, mutants.row().to.operation, from))
            mutants.edit("to operation " + targetName(operation),
                         [operation](LinkRow &row) { row.to.operation = operation; });
    }
}

void changeActions(RowMutants &mutants)
{
    const LinkAction *const actions = mutants.row().actions;
    const int count =
        int(std::find(actions, actions + mostLinkActions, LinkAction::None) - actions);
    for (int place = 0; place < count; ++place) {
        mutants.edit("without " + nameOf(actions[place]), [place](LinkRow &row) {
            std::rotate(row.actions + place, row.actions + place + 1, std::end(row.actions));
            row.actions[mostLinkActions - 1] = LinkAction::None;
        });
        if (place + 1 < count)
            mutants.edit(
                nameOf(actions[place + 1]) + " before " + nameOf(actions[place]),
                [place](LinkRow &row) { std::swap(row.actions[place], row.actions[place + 1]); });
    }
}
} // namespace

std::vector<LinkMutant> mutantsOf(const LinkTable &table, const LinkUses &uses)
{
    std::vector<LinkMutant> all;
    for (int row = 0; row < table.size; ++row) {
        RowMutants mutants(table, row, all);
        mutants.remove();
        narrow(mutants, uses.value(table.rows + row));
        changeStates(mutants, reachableStates(table));
        changeOperations(mutants, reachableOperations(table));
        changeActions(mutants);
        const LinkCase &from = table.rows[row].from;
        if (from.firmware != LinkFirmware::Any)
            mutants.edit("with any firmware flag",
                         [](LinkRow &each) { each.from.firmware = LinkFirmware::Any; });
        if (from.condition != LinkCondition::Always)
            mutants.edit("with any condition",
                         [](LinkRow &each) { each.from.condition = LinkCondition::Always; });
    }
    return all;
}
