#include "accesspointtable.h"
#include "ethernettable.h"
#include "linkexplorer.h"
#include "linkmutants.h"
#include "linknames.h"
#include "linkstories.h"
#include "stationtable.h"

#include <QTest>

#include <algorithm>

/** Explores the network interfaces' machines: every order of events, with every result. */
class TestLinkExploration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOrderKeepsTheRules_data();
    void everyOrderKeepsTheRules();
    void everyStoryEndsAsWritten_data();
    void everyStoryEndsAsWritten();
    void atMostOneRowApplies();
    void everyMutantIsKilled();
};

namespace
{
const struct Machine {
    const char *name;
    LinkKind kind;
    const LinkTable &table;
} machines[] = {
    {"Ethernet", LinkKind::Ethernet, ethernetTable},
    {"station", LinkKind::Station, stationTable},
    {"access point", LinkKind::AccessPoint, accessPointTable},
};

const LinkTable &tableOf(LinkKind kind)
{
    for (const Machine &machine : machines) {
        if (machine.kind == kind)
            return machine.table;
    }
    qFatal("unknown machine");
}

QStringList linesOf(const LinkStory &story)
{
    QStringList lines;
    for (const char *line : story.lines)
        lines << line;
    return lines;
}

/** A link and an event to which two rows of @p table apply; empty if every event is unambiguous. */
QString ambiguity(const LinkTable &table)
{
    for (unsigned bits = 0; bits < 7U * 3 * 32; ++bits) {
        Link link;
        link.state = KyTcpIpState::State(bits % 7);
        link.operation = LinkOperation(bits / 7 % 3);
        const unsigned flags = bits / 21;
        link.isFirmwareLoaded = flags & 1U;
        link.isTimed = flags & 2U;
        link.hasService = flags & 4U;
        link.isNetworkKept = flags & 8U;
        link.isRequestedReady = flags & 16U;
        for (int event = 0; event < int(LinkEvent::Count); ++event) {
            const auto isHeld = [&](const LinkRow &row) {
                return holds(row, link, LinkEvent(event));
            };
            if (std::count_if(table.begin(), table.end(), isHeld) > 1)
                return describe(link) + ": " + nameOf(LinkEvent(event));
        }
    }
    return QString();
}

bool keepsTheStories(const LinkTable &table, LinkKind kind)
{
    return std::all_of(linkStories.begin(), linkStories.end(), [&](const LinkStory &story) {
        return story.kind != kind || tell(story, table) == linesOf(story);
    });
}

bool keepsTheRules(const LinkTable &table, LinkKind kind)
{
    LinkExplorer explorer(table, kind, 1);
    explorer.explore();
    return explorer.violations().isEmpty();
}

/** Mutants that behave like the original table, each with the reason. */
const struct {
    const char *machine;
    const char *mutant;
    const char *reason;
} equivalentMutants[] = {
    {"station", "row 21, ServicesChanged: with any firmware flag",
     "configuration is only reached with firmware, and a call clears that flag only in idle"},
    {"station", "row 22, ServicesChanged: with any firmware flag", "the same"},
};
} // namespace

void TestLinkExploration::everyOrderKeepsTheRules_data()
{
    QTest::addColumn<int>("machine");
    for (int machine = 0; machine < 3; ++machine)
        QTest::newRow(machines[machine].name) << machine;
}

void TestLinkExploration::everyOrderKeepsTheRules()
{
    QFETCH(int, machine);
    const Machine &explored = machines[machine];
    LinkExplorer explorer(explored.table, explored.kind, 10);

    explorer.explore();

    for (const QString &violation : explorer.violations())
        qWarning("%s", qPrintable(violation));
    qInfo("%s: %d states, %d transitions, %d rows", explored.name, explorer.states(),
          explorer.transitions(), explored.table.size);
    QCOMPARE(explorer.violations(), QStringList());
    QCOMPARE(explorer.usedRows().size(), explored.table.size);
}

void TestLinkExploration::everyStoryEndsAsWritten_data()
{
    QTest::addColumn<int>("number");
    for (size_t number = 0; number < linkStories.size(); ++number)
        QTest::newRow(linkStories[number].name) << int(number);
}

void TestLinkExploration::everyStoryEndsAsWritten()
{
    QFETCH(int, number);
    const LinkStory &story = linkStories[size_t(number)];
    QCOMPARE(tell(story, tableOf(story.kind)), linesOf(story));
}

void TestLinkExploration::atMostOneRowApplies()
{
    for (const Machine &machine : machines)
        QCOMPARE(ambiguity(machine.table), QString());
}

void TestLinkExploration::everyMutantIsKilled()
{
    QStringList survivors;
    for (const Machine &machine : machines) {
        int byStories = 0;
        int byRules = 0;
        int total = 0;
        LinkExplorer explorer(machine.table, machine.kind, 1);
        explorer.explore();
        for (const LinkMutant &mutant : mutantsOf(machine.table, explorer.usedRows())) {
            const LinkTable table = {mutant.rows.data(), int(mutant.rows.size()),
                                     machine.table.isTimeRepeated};
            ++total;
            if (!keepsTheStories(table, machine.kind))
                ++byStories;
            else if (!ambiguity(table).isEmpty() || !keepsTheRules(table, machine.kind))
                ++byRules;
            else
                survivors << QString("%1, %2").arg(machine.name, mutant.name);
        }
        qInfo("%s: %d mutants, %d noticed by the stories, %d more by the rules", machine.name,
              total, byStories, byRules);
    }
    QStringList equivalents;
    for (const auto &row : equivalentMutants)
        equivalents << QString("%1, %2").arg(row.machine, row.mutant);
    for (const QString &survivor : survivors)
        qInfo("survives: %s", qPrintable(survivor));
    QCOMPARE(survivors, equivalents);
}

QTEST_GUILESS_MAIN(TestLinkExploration)
#include "test_linkexploration.moc"
