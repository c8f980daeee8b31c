#include "accesspointtable.h"
#include "ethernettable.h"
#include "linkexplorer.h"
#include "linknames.h"
#include "stationtable.h"

#include <QTest>

Q_DECLARE_METATYPE(LinkKind)

/** Every order of events, with every answer, of the network interfaces' machines. */
class TestLinkExploration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOrderKeepsTheRules_data();
    void everyOrderKeepsTheRules();
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

QTEST_GUILESS_MAIN(TestLinkExploration)
#include "test_linkexploration.moc"
