#include "battery.h"
#include "link.h"

#include <QSignalSpy>
#include <QTest>

/** The parts of the status bar that do not use the bus. */
class TestStatusBarParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBatteryStatusIsRead_data();
    void aBatteryStatusIsRead();
    void aLinkFollowsTheSignals();
    void aLinkWithoutSignalsIsUnknown();
    void anAnswerShowsThatALinkIsUp();
    void aSignalOverridesAReply();
    void aLinkThatIsDownHasNoAddress();
    void aDaemonThatStartsBeginsIdle();
};

void TestStatusBarParts::aBatteryStatusIsRead_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("isChargerThere");
    const auto row = [](const char *status, int level, bool isChargerThere) {
        QTest::newRow(status) << level << isChargerThere;
    };
    row("CHARGER_OFF_UNKNOWN_BAT", -1, false);
    row("CHARGER_ON_NO_BAT", -1, true);
    row("CHARGER_OFF_BAT_PRWT", 10, false);
    row("CHARGER_OFF_BAT_INF_20", 20, false);
    row("CHARGER_OFF_BAT_INF_40", 40, false);
    row("CHARGER_OFF_BAT_INF_60", 60, false);
    row("CHARGER_OFF_BAT_INF_80", 80, false);
    row("CHARGER_OFF_BAT_INF_100", 100, false);
    row("CHARGER_ON_BAT_INF_20", 20, true);
    row("CHARGER_ON_BAT_INF_100", 100, true);
    row("CHARGER_ON_BAT_FULL", 100, true);
    row("", -1, false);
    row("CHARGER_OFF_BAT_INF_x", -1, false);
}

void TestStatusBarParts::aBatteryStatusIsRead()
{
    QFETCH(int, level);
    QFETCH(bool, isChargerThere);
    const Battery battery = batteryFrom(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(battery.level, level);
    QCOMPARE(battery.isChargerThere, isChargerThere);
}

void TestStatusBarParts::aLinkFollowsTheSignals()
{
    Link link;
    QSignalSpy states(&link, &Link::stateChanged);
    QSignalSpy wanted(&link, &Link::addressWanted);
    link.takeProperty("State", "association");
    link.takeProperty("State", "association");
    QCOMPARE(link.state(), QString("association"));
    QCOMPARE(states.size(), 1);
    QVERIFY(!link.isOnline());
    QCOMPARE(wanted.size(), 0);
    link.takeProperty("State", "online");
    QVERIFY(link.isOnline());
    QCOMPARE(wanted.size(), 1);
    link.takeProperty("IPv4", QVariant());
    QCOMPARE(wanted.size(), 2);
    link.takeProperty("Strength", QVariant::fromValue(uchar(61)));
    QCOMPARE(link.strength(), 61);
    link.takeProperty("Name", "Lab");
    QCOMPARE(states.size(), 2);
}

void TestStatusBarParts::aLinkWithoutSignalsIsUnknown()
{
    Link link;
    QCOMPARE(link.state(), QString("unknown"));
    link.takeEvidence(false);
    QCOMPARE(link.state(), QString("unknown"));
    QCOMPARE(link.strength(), -1);
}

void TestStatusBarParts::anAnswerShowsThatALinkIsUp()
{
    Link link;
    link.takeEvidence(true);
    link.takeAddress("10.77.0.50");
    QCOMPARE(link.state(), QString("online"));
    QCOMPARE(link.address(), QString("10.77.0.50"));
}

void TestStatusBarParts::aSignalOverridesAReply()
{
    Link link;
    link.takeProperty("State", "failure");
    link.takeEvidence(true);
    link.takeAddress("10.77.0.50");
    QCOMPARE(link.state(), QString("failure"));
    QCOMPARE(link.address(), QString());
}

void TestStatusBarParts::aLinkThatIsDownHasNoAddress()
{
    Link link;
    link.takeProperty("State", "online");
    link.takeAddress("10.77.0.50");
    link.takeStrength(61);
    QSignalSpy addresses(&link, &Link::addressChanged);
    QSignalSpy strengths(&link, &Link::strengthChanged);
    link.takeProperty("State", "disconnect");
    QCOMPARE(link.address(), QString());
    QCOMPARE(link.strength(), -1);
    QCOMPARE(addresses.size(), 1);
    QCOMPARE(strengths.size(), 1);
    link.takeStrength(61);
    QCOMPARE(link.strength(), -1);
}

void TestStatusBarParts::aDaemonThatStartsBeginsIdle()
{
    Link link;
    link.takeProperty("State", "online");
    link.forget();
    QCOMPARE(link.state(), QString("unknown"));
    link.beginIdle();
    QCOMPARE(link.state(), QString("idle"));
}

QTEST_GUILESS_MAIN(TestStatusBarParts)
#include "campaign_statusbarparts.moc"
