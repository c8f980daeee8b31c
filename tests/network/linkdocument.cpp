#include "linkdocument.h"

#include "accesspointtable.h"
#include "ethernettable.h"
#include "linknames.h"
#include "stationtable.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

namespace
{
const char anyState[] = "any";

const struct {
    const char *name;
    const LinkTable &table;
} machines[] = {
    {"Ethernet", ethernetTable}, {"station", stationTable}, {"access point", accessPointTable}};

LinkSet statesOf(const LinkTable &table)
{
    LinkSet states = setOf(KyTcpIpState::Idle);
    for (const LinkRow &row : table)
        states |= row.to.state ? setOf(*row.to.state) : 0U;
    return states;
}

/** Converts "ScanCalled" to "scan called". */
QString words(QString name)
{
    name.replace(QRegularExpression("([a-z0-9])([A-Z])"), "\\1 \\2");
    return name.left(1).toLower() + name.mid(1).toLower();
}

QStringList namesOf(LinkSet states, LinkSet all)
{
    if ((states & all) == all)
        return {anyState};
    QStringList names;
    for (int state = KyTcpIpState::Idle; state <= KyTcpIpState::Online; ++state) {
        if (states & all & setOf(KyTcpIpState::State(state)))
            names << nameOf(KyTcpIpState::State(state));
    }
    return names;
}

QString operationsOf(LinkSet operations)
{
    QStringList names;
    for (const LinkOperation operation :
         {LinkOperation::None, LinkOperation::Scan, LinkOperation::Connect}) {
        if (operations & setOf(operation))
            names << nameOf(operation);
    }
    return names.size() == 3 ? QString(anyState) : names.join(", ");
}

QString targetOf(const LinkTarget &to)
{
    QStringList names;
    if (to.state)
        names << nameOf(*to.state);
    if (to.operation)
        names << "operation " + nameOf(*to.operation);
    return names.join(", ");
}

/** The transitions between states, each with its events. */
QStringList diagramOf(const LinkTable &table)
{
    const LinkSet all = statesOf(table);
    QStringList order;
    QMap<QString, QStringList> events;
    for (const LinkRow &row : table) {
        if (!row.to.state)
            continue;
        for (const QString &from : namesOf(row.from.states, all)) {
            if (from == nameOf(*row.to.state))
                continue;
            const QString edge = "    " + from + " --> " + nameOf(*row.to.state);
            if (!events.contains(edge))
                order << edge;
            const QString event = words(nameOf(row.event));
            if (!events[edge].contains(event))
                events[edge] << event;
        }
    }
    QStringList lines = {"```mermaid", "stateDiagram-v2", "    [*] --> idle"};
    for (const QString &edge : order)
        lines << edge + " : " + events[edge].join(", ");
    return lines << "```";
}

QStringList rowsOf(const LinkTable &table)
{
    QStringList lines = {
        "| state | operation | firmware | event | condition | actions | next state |",
        "|---|---|---|---|---|---|---|"};
    for (const LinkRow &row : table) {
        QStringList actions;
        for (const LinkAction action : row.actions) {
            if (action != LinkAction::None)
                actions << words(nameOf(action));
        }
        const QStringList cells = {namesOf(row.from.states, statesOf(table)).join(", "),
                                   operationsOf(row.from.operations),
                                   row.from.firmware == LinkFirmware::Loaded ? "loaded" : "",
                                   words(nameOf(row.event)),
                                   nameOf(row.from.condition),
                                   actions.join(", "),
                                   targetOf(row.to)};
        lines << "| " + cells.join(" | ").replace("  ", " ") + " |";
    }
    return lines;
}
} // namespace

QString withMachines(const QString &document)
{
    QString text = document;
    for (const auto &machine : machines) {
        const QString first = QString("<!-- machine: %1 -->\n").arg(machine.name);
        const int begin = text.indexOf(first) + first.size();
        const int end = text.indexOf("<!-- end of machine -->", begin);
        if (begin < first.size() || end < 0)
            continue;
        const QStringList lines = diagramOf(machine.table)
                                  << QString() << rowsOf(machine.table) << QString();
        text.replace(begin, end - begin, lines.join('\n'));
    }
    return text;
}
