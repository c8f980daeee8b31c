#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "timing.h"

#include <QDBusVariant>

/** The power supply and the battery, on the running daemon. */
class TestAlimentation : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theCheckCannotBeCalled();

    void theChargerIsReadAndReportedToTheMonitorAtTheStart_data();
    void theChargerIsReadAndReportedToTheMonitorAtTheStart();
    void theStatusIsMeasuredAtEachReading();
    void theStatusFollowsChargerMeterAndBattery_data();
    void theStatusFollowsChargerMeterAndBattery();
    void theChargerIsOneBitOfTheRegister();
    void readingThePropertyAnnouncesANewChargerState();
    void readingThePropertyAnnouncesAnUnknownBattery();
    void getAllMeasuresToo();
    void thePropertyCannotBeWritten();

    void theVoltageIsThatOfTheLastReading();
    void theVoltageIsZeroBeforeAnyMeasurement();
    void theVoltageStaysWhenTheBatteryCannotBeRead();

    void aChargerThatCannotBeReadCountsAsAbsent_data();
    void aChargerThatCannotBeReadCountsAsAbsent();
    void aSerialBusThatCannotBeOpenedIsIgnored();
    void aFailedReportToTheMonitorIsIgnored();
    void aMeterThatReturnsNonsenseMeansAnUnknownBattery();
    void failingHardwareMeansAnUnknownBattery();
    void slowHardwareOnlyDelaysTheReply();

    void aNewStatusIsAnnouncedBeforeItIsReturned();
    void theCheckRunsElevenTimesEveryTenSecondsAndThenEveryFiveMinutes();
    void theCheckIsDueToTheMillisecond();
    void eachCheckAnnouncesTheStatusOnce();
    void theLedsFollowTheChecks();

private:
    void setBattery(int charger, int type, int flag, const QString &charge);
    QString status() const;

    const Remote alimentation{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Alimentation")};
    const QString initialise = QStringLiteral("KySocManager.initSPI() = 0");
    const QString absent = QStringLiteral("KySocManager.getSoCRegister(1536) = 0 0");
    const QString present = QStringLiteral("KySocManager.getSoCRegister(1536) = 0 1073741824");
};

namespace
{
QString announced(const char *status)
{
    return QStringLiteral("Alimentation.batteryStatus(\"%1\")").arg(status);
}
} // namespace

void TestAlimentation::setBattery(int charger, int type, int flag, const QString &charge)
{
    Board::set("charger/present", QString::number(charger));
    Board::set("battery/type", QString::number(type));
    Board::set("battery/flag", QString::number(flag));
    Board::set("battery/charge", charge);
}

/** The value of "batteryStatus"; the whole reply if it is not a text. */
QString TestAlimentation::status() const
{
    const QString value = alimentation.property("batteryStatus");
    const bool isText = value.startsWith("(<\"") && value.endsWith("\">)");
    return isText ? value.mid(3, value.size() - 6) : value;
}

void TestAlimentation::theCheckCannotBeCalled()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    for (const char *method : {"periodicBatteryCheck", "refresh", "readBatteryStatus",
                               "batteryStatus", "prepareForShutdown"})
        QVERIFY2(alimentation.call(method).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "),
                 method);
    QCOMPARE(recorder.take(), QStringList());
}

void TestAlimentation::theChargerIsReadAndReportedToTheMonitorAtTheStart_data()
{
    QTest::addColumn<int>("charger");
    QTest::addColumn<QString>("reading");
    QTest::addColumn<QString>("telling");
    QTest::newRow("absent") << 0 << absent << "KyBatmonitor.update(false) = 0";
    QTest::newRow("present") << 1 << present << "KyBatmonitor.update(true) = 0";
}

void TestAlimentation::theChargerIsReadAndReportedToTheMonitorAtTheStart()
{
    QFETCH(int, charger);
    QFETCH(QString, reading);
    QFETCH(QString, telling);
    setBattery(charger, 1, 0, "50");
    SignalRecorder recorder("/KyDeviceMgr");

    QVERIFY(daemon.start());

    QCOMPARE(Board::journal().mid(0, 3), (QStringList{initialise, reading, telling}));
    // The measurement for the LEDs does not report the charger to the monitor again.
    QCOMPARE(Board::journal().filter("getSoCRegister(1536)"), (QStringList{reading, reading}));
    QCOMPARE(Board::journal().filter("KyBatmonitor."),
             (QStringList{telling, "KyBatmonitor.getCmeterType() = 1",
                          "KyBatmonitor.getBatteryInfo() = 0 0 50 7600"}));
    QCOMPARE(recorder.take().filter("Alimentation."), QStringList());
}

void TestAlimentation::theStatusIsMeasuredAtEachReading()
{
    setBattery(0, 1, 0, "80");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_INF_80"));
    QCOMPARE(Board::journal(), (QStringList{initialise, absent, "KyBatmonitor.getCmeterType() = 1",
                                            "KyBatmonitor.getBatteryInfo() = 0 0 80 7600"}));

    Board::set("battery/charge", "15");
    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_INF_20"));
    QCOMPARE(recorder.take(), QStringList());
}

void TestAlimentation::theStatusFollowsChargerMeterAndBattery_data()
{
    QTest::addColumn<int>("charger");
    QTest::addColumn<QList<int>>("types");
    QTest::addColumn<int>("flag");
    QTest::addColumn<QStringList>("charges");
    QTest::addColumn<QString>("expected");

    const QList<int> gauges = {1, 2};
    const QList<int> others = {0, 3, 4};
    const QList<int> all = gauges + others;
    const auto addRow = [](const char *name, int charger, const QList<int> &types, int flag,
                           const QStringList &charges, const char *expected) {
        QTest::newRow(name) << charger << types << flag << charges << expected;
    };
    addRow("empty", 0, all, 0, {"-2147483648", "-1", "0", "10"}, "CHARGER_OFF_BAT_PRWT");
    addRow("to 20", 0, all, 1, {"11", "20"}, "CHARGER_OFF_BAT_INF_20");
    addRow("to 40", 0, all, 0, {"21", "40"}, "CHARGER_OFF_BAT_INF_40");
    addRow("to 60", 0, all, 0, {"41", "60"}, "CHARGER_OFF_BAT_INF_60");
    addRow("to 80", 0, all, 0, {"61", "80"}, "CHARGER_OFF_BAT_INF_80");
    addRow("above", 0, all, 0, {"81", "100", "2147483647"}, "CHARGER_OFF_BAT_INF_100");
    addRow("charging to 20", 1, gauges, 0, {"-1", "-20"}, "CHARGER_ON_BAT_INF_20");
    addRow("charging to 40", 1, gauges, 1, {"-21", "-40"}, "CHARGER_ON_BAT_INF_40");
    addRow("charging to 60", 1, gauges, 0, {"-41", "-60"}, "CHARGER_ON_BAT_INF_60");
    addRow("charging to 80", 1, gauges, 0, {"-61", "-80"}, "CHARGER_ON_BAT_INF_80");
    addRow("charging to 100", 1, gauges, 0, {"-81", "-100"}, "CHARGER_ON_BAT_INF_100");
    addRow("charging above", 1, gauges, 0, {"-101", "-2147483648"}, "CHARGER_OFF_UNKNOWN_BAT");
    addRow("full", 1, gauges, 0, {"0", "50", "2147483647"}, "CHARGER_ON_BAT_FULL");
    addRow("not full", 1, gauges, 1, {"0", "50", "2147483647"}, "CHARGER_ON_BAT_INF_20");
    addRow("no gauge", 1, others, 1, {"-2147483648", "-20", "0", "50"}, "CHARGER_ON_NO_BAT");
}

void TestAlimentation::theStatusFollowsChargerMeterAndBattery()
{
    QFETCH(int, charger);
    QFETCH(QList<int>, types);
    QFETCH(int, flag);
    QFETCH(QStringList, charges);
    QFETCH(QString, expected);
    QVERIFY(daemon.start());
    for (const int type : types) {
        for (const QString &charge : charges) {
            setBattery(charger, type, flag, charge);
            QCOMPARE(status(), expected);
        }
    }
}

void TestAlimentation::theChargerIsOneBitOfTheRegister()
{
    setBattery(0, 0, 0, "50");
    QVERIFY(daemon.start());
    Board::clearJournal();

    Board::set("soc/0x600", "0xffffffff");
    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_INF_60"));
    QVERIFY(Board::journal().contains("KySocManager.getSoCRegister(1536) = 0 3221225471"));

    Board::set("charger/present", "1");
    Board::set("soc/0x600", "0");
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_NO_BAT"));
}

void TestAlimentation::readingThePropertyAnnouncesANewChargerState()
{
    setBattery(0, 1, 0, "-35");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    Board::set("charger/present", "1");
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_INF_40"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_ON_BAT_INF_40")));
    QCOMPARE(Board::journal().mid(0, 5),
             (QStringList{initialise, present, "KyBatmonitor.update(true) = 0",
                          "KyBatmonitor.getCmeterType() = 1",
                          "KyBatmonitor.getBatteryInfo() = 0 0 -35 7600"}));

    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_INF_40"));
    QCOMPARE(recorder.take(), QStringList());

    Board::clearJournal();
    Board::set("charger/present", "0");
    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_PRWT"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_OFF_BAT_PRWT")));
    QCOMPARE(Board::journal().value(2), QStringLiteral("KyBatmonitor.update(false) = 0"));
}

void TestAlimentation::readingThePropertyAnnouncesAnUnknownBattery()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyBatmonitor.getBatteryInfo", "always");
    Board::set("charger/present", "1");

    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_UNKNOWN_BAT"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_OFF_UNKNOWN_BAT")));
}

void TestAlimentation::getAllMeasuresToo()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("charger/present", "1");
    const Remote properties("com.orvendis.Strandel.BoardManager", "/KyDeviceMgr",
                            "org.freedesktop.DBus.Properties");

    QCOMPARE(properties.call("GetAll", {"com.orvendis.Strandel.BoardManager.Alimentation"}),
             QStringLiteral("({\"batteryStatus\": <\"CHARGER_ON_BAT_FULL\">})"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_ON_BAT_FULL")));
}

void TestAlimentation::thePropertyCannotBeWritten()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    const Remote properties("com.orvendis.Strandel.BoardManager", "/KyDeviceMgr",
                            "org.freedesktop.DBus.Properties");

    QVERIFY(properties
                .call("Set", {"com.orvendis.Strandel.BoardManager.Alimentation", "batteryStatus",
                              QVariant::fromValue(QDBusVariant("CHARGER_ON_BAT_FULL"))})
                .startsWith("org.freedesktop.DBus.Error.PropertyReadOnly: "));

    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_INF_60"));
    QCOMPARE(recorder.take(), QStringList());
}

void TestAlimentation::theVoltageIsThatOfTheLastReading()
{
    Board::set("battery/voltage", "7321");
    QVERIFY(daemon.start());
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:7321)"));

    Board::set("battery/voltage", "65535");
    Board::clearJournal();
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:7321)"));
    QCOMPARE(Board::journal(), QStringList());

    status();
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:65535)"));
}

void TestAlimentation::theVoltageIsZeroBeforeAnyMeasurement()
{
    Board::fault("KyBatmonitor.getBatteryInfo", "always");
    QVERIFY(daemon.start());
    status();
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:0)"));
}

void TestAlimentation::theVoltageStaysWhenTheBatteryCannotBeRead()
{
    Board::set("battery/voltage", "7321");
    QVERIFY(daemon.start());
    Board::fault("KyBatmonitor.getBatteryInfo", "always");
    Board::set("battery/voltage", "7000");

    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_UNKNOWN_BAT"));
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:7321)"));
}

void TestAlimentation::aChargerThatCannotBeReadCountsAsAbsent_data()
{
    QTest::addColumn<QString>("fault");
    QTest::newRow("fails") << "always";
    QTest::newRow("fails slowly") << "always delay 200";
}

void TestAlimentation::aChargerThatCannotBeReadCountsAsAbsent()
{
    QFETCH(QString, fault);
    setBattery(1, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));

    Board::fault("KySocManager.getSoCRegister", fault);
    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_BAT_INF_60"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_OFF_BAT_INF_60")));
    QCOMPARE(Board::get("battery/charger_told"), QStringLiteral("0"));

    Board::clearFaults();
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_ON_BAT_FULL")));
}

void TestAlimentation::aSerialBusThatCannotBeOpenedIsIgnored()
{
    setBattery(1, 1, 0, "50");
    Board::fault("KySocManager.initSPI", "always");
    QVERIFY(daemon.start());
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
}

void TestAlimentation::aFailedReportToTheMonitorIsIgnored()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyBatmonitor.update", "always");
    Board::set("charger/present", "1");

    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_ON_BAT_FULL")));
}

void TestAlimentation::aMeterThatReturnsNonsenseMeansAnUnknownBattery()
{
    setBattery(1, 1, 0, "50");
    QVERIFY(daemon.start());
    Board::fault("KyBatmonitor.getBatteryInfo", "garbage");
    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_UNKNOWN_BAT"));

    Board::fault("KyBatmonitor.getCmeterType", "garbage");
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_NO_BAT"));
}

void TestAlimentation::failingHardwareMeansAnUnknownBattery()
{
    for (const char *operation :
         {"KySocManager.initSPI", "KySocManager.getSoCRegister", "KyBatmonitor.update",
          "KyBatmonitor.getCmeterType", "KyBatmonitor.getBatteryInfo", "KyLeds.setLedState"})
        Board::fault(operation, "always");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(status(), QStringLiteral("CHARGER_OFF_UNKNOWN_BAT"));
    QCOMPARE(alimentation.call("getBatteryVoltage"), QStringLiteral("(u:0)"));
    QCOMPARE(recorder.take(), QStringList());
}

void TestAlimentation::slowHardwareOnlyDelaysTheReply()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    for (const char *operation :
         {"KySocManager.initSPI", "KySocManager.getSoCRegister", "KyBatmonitor.update",
          "KyBatmonitor.getCmeterType", "KyBatmonitor.getBatteryInfo", "KyLeds.setLedState"})
        Board::fault(operation, "delay 200");
    Board::set("charger/present", "1");

    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
    QCOMPARE(recorder.take(), QStringList(announced("CHARGER_ON_BAT_FULL")));
    QCOMPARE(Board::get("leds/POWER_G"), QStringLiteral("ON"));
    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));
}

void TestAlimentation::aNewStatusIsAnnouncedBeforeItIsReturned()
{
    setBattery(0, 1, 0, "50");
    QVERIFY(daemon.start());
    Board::set("charger/present", "1");
    BusMonitor monitor;

    QCOMPARE(status(), QStringLiteral("CHARGER_ON_BAT_FULL"));

    QCOMPARE(monitor.takeFromDaemon(),
             (QStringList{"signal com.orvendis.Strandel.BoardManager.Alimentation.batteryStatus(s)",
                          "return (v)"}));
}

void TestAlimentation::theCheckRunsElevenTimesEveryTenSecondsAndThenEveryFiveMinutes()
{
    // A settings file may contain this key, but the daemon does not read the key.
    writeFile("/opt/settings.ini", "[Alimentation]\nintervalBattery=1\n");
    setBattery(0, 1, 0, "50");
    daemon.controlClock();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    const QStringList check = {announced("CHARGER_OFF_BAT_INF_60")};

    for (int number = 1; number <= 11; ++number) {
        // Advance the clock in two steps, to detect a check that comes too early.
        daemon.letTimePass(6);
        const QStringList early = recorder.take();
        daemon.letTimePass(4);
        QCOMPARE(early + recorder.waitFor(1 - early.size()), check);
    }
    for (int number = 12; number <= 13; ++number) {
        daemon.letTimePass(270);
        QCOMPARE(recorder.take(), QStringList());
        daemon.letTimePass(30);
        QCOMPARE(recorder.waitFor(1), check);
    }

    // The monitor gets the charger's state at the start and at each check.
    const QList<double> times = Board::times("KyBatmonitor.update(false)");
    QCOMPARE(times.size(), 14);
    for (int number = 1; number <= 11; ++number)
        VERIFY_NOT_EARLY(times[number], times[0], number * 10);
    QVERIFY2(times[11] - times[0] < 125, qPrintable(QString::number(times[11] - times[0])));
    VERIFY_NOT_EARLY(times[12], times[11], 300);
    VERIFY_NOT_EARLY(times[13], times[11], 600);
}

void TestAlimentation::theCheckIsDueToTheMillisecond()
{
    setBattery(0, 1, 0, "50");
    daemon.stopClock();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    for (int number = 1; number <= 13; ++number) {
        daemon.letMillisecondsPass((number <= 11 ? 10000 : 300000) - 1);
        // The daemon may answer take() before it handles an expired timer: call take() twice.
        QCOMPARE(recorder.take() + recorder.take(), QStringList());
        daemon.letMillisecondsPass(1);
        QCOMPARE(recorder.waitFor(1), QStringList{announced("CHARGER_OFF_BAT_INF_60")});
    }
}

void TestAlimentation::eachCheckAnnouncesTheStatusOnce()
{
    setBattery(0, 1, 0, "50");
    daemon.controlClock();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    daemon.letTimePass(10);
    QCOMPARE(recorder.waitFor(1), QStringList(announced("CHARGER_OFF_BAT_INF_60")));

    // The check stores the charger's new state before it reads the status. The daemon therefore
    // announces the status for the check, but not once more for the changed charger.
    Board::set("charger/present", "1");
    Board::clearJournal();
    daemon.letTimePass(10);
    QCOMPARE(recorder.waitFor(1), QStringList(announced("CHARGER_ON_BAT_FULL")));
    QCOMPARE(Board::journal().mid(0, 7),
             (QStringList{initialise, present, "KyBatmonitor.update(true) = 0", initialise, present,
                          "KyBatmonitor.getCmeterType() = 1",
                          "KyBatmonitor.getBatteryInfo() = 0 0 50 7600"}));

    Board::fault("KyBatmonitor.getBatteryInfo", "always");
    daemon.letTimePass(10);
    QCOMPARE(recorder.waitFor(1), QStringList(announced("CHARGER_OFF_UNKNOWN_BAT")));
}

void TestAlimentation::theLedsFollowTheChecks()
{
    setBattery(0, 1, 0, "50");
    daemon.controlClock();
    QVERIFY(daemon.start());
    QCOMPARE(Board::get("leds/BAT_GS3"), QStringLiteral("ON"));
    SignalRecorder recorder("/KyDeviceMgr");

    Board::set("battery/charge", "15");
    daemon.letTimePass(10);

    QCOMPARE(recorder.waitFor(1), QStringList(announced("CHARGER_OFF_BAT_INF_20")));
    for (const char *off : {"BAT_GS1", "BAT_GS2", "BAT_GS3", "BAT_GS4", "BAT_GS5", "POWER_G"})
        QCOMPARE(Board::get(QStringLiteral("leds/") + off), QStringLiteral("OFF"));
    for (const char *on : {"BAT_RS1", "POWER_Y"})
        QCOMPARE(Board::get(QStringLiteral("leds/") + on), QStringLiteral("ON"));
}

WORLD_TEST_MAIN(TestAlimentation)
#include "test_alimentation.moc"
