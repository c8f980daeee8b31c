#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "timing.h"

#include <climits>

/** The temperatures, on the running daemon. */
class TestTemperature : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void getTemperaturesReadsBothSensors();
    void getTemperaturesTakesAnyNumber();
    void aTemperatureAtOrAboveItsThresholdIsAnnounced_data();
    void aTemperatureAtOrAboveItsThresholdIsAnnounced();
    void bothSensorsAreAnnouncedInOrder();
    void aTemperatureIsAnnouncedBeforeItIsReturned();
    void everyCheckAnnouncesAHighTemperature();
    void eachSensorHasItsOwnThreshold();
    void aThresholdMayBeAnyNumber();
    void thresholdsReturnToTheDefaultAtTheNextStart();
    void anUnknownDeviceHasNoThreshold_data();
    void anUnknownDeviceHasNoThreshold();
    void anIntervalBelowOneSecondIsRefused_data();
    void anIntervalBelowOneSecondIsRefused();
    void anIntervalFromOneSecondIsAccepted();
    void aSensorThatFailsIsLeftOutAndLogged_data();
    void aSensorThatFailsIsLeftOutAndLogged();
    void bothSensorsFailingGiveAnEmptyMap();
    void slowSensorsOnlyDelayTheReply();

    void theCheckRunsEveryFiveMinutes();
    void theCheckRunsAtTheNewInterval();
    void theIntervalIsKeptToTheMillisecond();
    void aNewIntervalCountsFromTheMomentItIsSet();
    void aRefusedIntervalChangesNothing();

private:
    static QList<double> readingTimes();
    static double startTime();
    bool waitForReadings(int count) const;

    const Remote temperature{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Temperature")};
    const QString shortInterval = failure(
        "InvalidArguments", QStringLiteral("Intervall is too short, should be > 1s (1000)"));
};

/** The time of the daemon's first call to the hardware, just before the daemon set the timer. */
double TestTemperature::startTime()
{
    return Board::times(QString()).value(0);
}

/** The times at which the first sensor was read. */
QList<double> TestTemperature::readingTimes()
{
    return Board::times("KyTemperature.getTemperature(0)");
}

bool TestTemperature::waitForReadings(int count) const
{
    return QTest::qWaitFor([count] { return readingTimes().size() >= count; }, deadlineMs);
}

void TestTemperature::getTemperaturesReadsBothSensors()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(temperature.call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <38>, \"SOM\": <42>})"));

    QCOMPARE(Board::journal(), (QStringList{"KyTemperature.getTemperature(0) = 0 42",
                                            "KyTemperature.getTemperature(1) = 0 38"}));
    QCOMPARE(recorder.take(), QStringList());
}

void TestTemperature::getTemperaturesTakesAnyNumber()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/SOM", QString::number(INT_MIN));
    Board::set("temperature/ANALOG_CHAIN", QString::number(INT_MAX));

    QCOMPARE(temperature.call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <2147483647>, \"SOM\": <-2147483648>})"));
    QCOMPARE(recorder.take(),
             QStringList("Temperature.temperatureReached(\"ANALOG_CHAIN\", 2147483647)"));
}

void TestTemperature::aTemperatureAtOrAboveItsThresholdIsAnnounced_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<int>("degrees");
    QTest::addColumn<bool>("isAnnounced");
    for (const char *device : {"SOM", "ANALOG_CHAIN"}) {
        QTest::addRow("%s one below", device) << device << 79 << false;
        QTest::addRow("%s at", device) << device << 80 << true;
        QTest::addRow("%s one above", device) << device << 81 << true;
    }
}

void TestTemperature::aTemperatureAtOrAboveItsThresholdIsAnnounced()
{
    QFETCH(QString, device);
    QFETCH(int, degrees);
    QFETCH(bool, isAnnounced);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/" + device, QString::number(degrees));
    QStringList expected;
    if (isAnnounced)
        expected << QStringLiteral("Temperature.temperatureReached(\"%1\", %2)")
                        .arg(device)
                        .arg(degrees);

    const QString temperatures = temperature.call("getTemperatures");
    QVERIFY(temperatures.contains(QStringLiteral("\"%1\": <%2>").arg(device).arg(degrees)));
    QCOMPARE(recorder.take(), expected);

    QCOMPARE(temperature.call("periodicTemperatureCheck"), QStringLiteral("()"));
    QCOMPARE(recorder.take(), expected);
}

void TestTemperature::bothSensorsAreAnnouncedInOrder()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/SOM", "90");
    Board::set("temperature/ANALOG_CHAIN", "95");

    temperature.call("getTemperatures");

    QCOMPARE(recorder.take(),
             (QStringList{"Temperature.temperatureReached(\"SOM\", 90)",
                          "Temperature.temperatureReached(\"ANALOG_CHAIN\", 95)"}));
}

void TestTemperature::aTemperatureIsAnnouncedBeforeItIsReturned()
{
    Board::set("temperature/SOM", "80");
    QVERIFY(daemon.start());
    BusMonitor monitor;

    temperature.call("getTemperatures");

    QCOMPARE(monitor.takeFromDaemon(),
             (QStringList{"signal com.orvendis.Strandel.BoardManager.Temperature."
                          "temperatureReached(si)",
                          "return (a{sv})"}));
}

void TestTemperature::everyCheckAnnouncesAHighTemperature()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/SOM", "80");
    const QString reached = "Temperature.temperatureReached(\"SOM\", 80)";

    for (int check = 0; check < 3; ++check)
        QCOMPARE(temperature.call("periodicTemperatureCheck"), QStringLiteral("()"));
    QCOMPARE(recorder.take(), (QStringList{reached, reached, reached}));

    // There is no hysteresis below the threshold.
    Board::set("temperature/SOM", "79");
    temperature.call("periodicTemperatureCheck");
    QCOMPARE(recorder.take(), QStringList());
}

void TestTemperature::eachSensorHasItsOwnThreshold()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(temperature.call("setTemperatureThreshold", {"SOM", 42}), QStringLiteral("()"));
    temperature.call("getTemperatures");
    QCOMPARE(recorder.take(), QStringList("Temperature.temperatureReached(\"SOM\", 42)"));

    QCOMPARE(temperature.call("setTemperatureThreshold", {"SOM", 43}), QStringLiteral("()"));
    QCOMPARE(temperature.call("setTemperatureThreshold", {"ANALOG_CHAIN", 37}),
             QStringLiteral("()"));
    temperature.call("getTemperatures");
    QCOMPARE(recorder.take(), QStringList("Temperature.temperatureReached(\"ANALOG_CHAIN\", 38)"));
}

void TestTemperature::aThresholdMayBeAnyNumber()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/SOM", "-40");

    QCOMPARE(temperature.call("setTemperatureThreshold", {"SOM", INT_MIN}), QStringLiteral("()"));
    QCOMPARE(temperature.call("setTemperatureThreshold", {"ANALOG_CHAIN", INT_MAX}),
             QStringLiteral("()"));
    temperature.call("getTemperatures");
    QCOMPARE(recorder.take(), QStringList("Temperature.temperatureReached(\"SOM\", -40)"));
}

void TestTemperature::thresholdsReturnToTheDefaultAtTheNextStart()
{
    QVERIFY(daemon.start());
    temperature.call("setTemperatureThreshold", {"SOM", 10});
    daemon.stop();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    temperature.call("getTemperatures");
    QCOMPARE(recorder.take(), QStringList());
}

void TestTemperature::anUnknownDeviceHasNoThreshold_data()
{
    QTest::addColumn<QString>("device");
    for (const char *device : {"som", "Analog_Chain", "", "SOM ", "0", "SOM|ANALOG_CHAIN",
                               "KyTemperatureWatcher::SOM", "Device::SOM"})
        QTest::addRow("\"%s\"", device) << device;
}

void TestTemperature::anUnknownDeviceHasNoThreshold()
{
    QFETCH(QString, device);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(temperature.call("setTemperatureThreshold", {device, 10}),
             failure("InvalidArguments", "Unknown device"));

    temperature.call("getTemperatures");
    QCOMPARE(recorder.take(), QStringList());
}

void TestTemperature::anIntervalBelowOneSecondIsRefused_data()
{
    QTest::addColumn<int>("interval");
    for (const int interval : {999, 1, 0, -1, -1000, INT_MIN})
        QTest::addRow("%d", interval) << interval;
}

void TestTemperature::anIntervalBelowOneSecondIsRefused()
{
    QFETCH(int, interval);
    QVERIFY(daemon.start());
    BusMonitor monitor;
    QCOMPARE(temperature.call("setInterval", {interval}), shortInterval);
    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + shortInterval, "return ()"}));
}

void TestTemperature::anIntervalFromOneSecondIsAccepted()
{
    QVERIFY(daemon.start());
    for (const int interval : {1000, 1001, 300000, INT_MAX})
        QCOMPARE(temperature.call("setInterval", {interval}), QStringLiteral("()"));
}

void TestTemperature::aSensorThatFailsIsLeftOutAndLogged_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("temperatures");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("otherLine");
    const QString som = "Failed to get SoM chain temperature !";
    const QString analogChain = "Failed to get analog chain temperature !";
    QTest::newRow("SOM") << "SOM"
                         << "({\"ANALOG_CHAIN\": <38>})" << som << analogChain;
    QTest::newRow("ANALOG_CHAIN") << "ANALOG_CHAIN"
                                  << "({\"SOM\": <42>})" << analogChain << som;
}

void TestTemperature::aSensorThatFailsIsLeftOutAndLogged()
{
    QFETCH(QString, device);
    QFETCH(QString, temperatures);
    QFETCH(QString, line);
    QFETCH(QString, otherLine);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    // Every temperature is above this threshold: even a stale or uninitialised value would be
    // announced.
    temperature.call("setTemperatureThreshold", {device, INT_MIN});
    Board::set("temperature/" + device, "warm");

    QCOMPARE(temperature.call("getTemperatures"), temperatures);

    QCOMPARE(recorder.take(), QStringList());
    QVERIFY(daemon.waitForLog(line + '\n'));
    QVERIFY(!daemon.log().contains(otherLine));
}

void TestTemperature::bothSensorsFailingGiveAnEmptyMap()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyTemperature.getTemperature", "always");

    QCOMPARE(temperature.call("getTemperatures"), QStringLiteral("({})"));
    QCOMPARE(temperature.call("periodicTemperatureCheck"), QStringLiteral("()"));
    QCOMPARE(recorder.take(), QStringList());

    Board::clearFaults();
    QCOMPARE(temperature.call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <38>, \"SOM\": <42>})"));
}

void TestTemperature::slowSensorsOnlyDelayTheReply()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyTemperature.getTemperature", "delay 200");
    Board::set("temperature/SOM", "80");
    const QString reached = "Temperature.temperatureReached(\"SOM\", 80)";

    QCOMPARE(temperature.call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <38>, \"SOM\": <80>})"));
    QCOMPARE(temperature.call("periodicTemperatureCheck"), QStringLiteral("()"));
    QCOMPARE(recorder.take(), (QStringList{reached, reached}));
}

void TestTemperature::theCheckRunsEveryFiveMinutes()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::set("temperature/SOM", "80");
    const QStringList reached = {"Temperature.temperatureReached(\"SOM\", 80)"};

    for (int check = 1; check <= 3; ++check) {
        daemon.letTimePass(270);
        QCOMPARE(recorder.take().filter("Temperature."), QStringList());
        daemon.letTimePass(30);
        QVERIFY(waitForReadings(check));
        QCOMPARE(recorder.take().filter("Temperature."), reached);
        VERIFY_NOT_EARLY(readingTimes()[check - 1], startTime(), check * 300);
    }
}

void TestTemperature::theCheckRunsAtTheNewInterval()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    Board::clearJournal();
    temperature.call("getTemperatures");
    QCOMPARE(temperature.call("setInterval", {20000}), QStringLiteral("()"));

    for (int check = 1; check <= 3; ++check) {
        daemon.letTimePass(20);
        QVERIFY(waitForReadings(1 + check));
        VERIFY_NOT_EARLY(readingTimes()[check], readingTimes()[0], check * 20);
    }
    const double passed = readingTimes()[3] - readingTimes()[0];
    QVERIFY2(passed < 75, qPrintable(QString::number(passed)));
}

void TestTemperature::theIntervalIsKeptToTheMillisecond()
{
    daemon.stopClock();
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    for (const int interval : {300000, 7000}) {
        if (interval != 300000)
            QCOMPARE(temperature.call("setInterval", {interval}), QStringLiteral("()"));
        for (int check = 1; check <= 2; ++check) {
            Board::clearJournal();
            daemon.letMillisecondsPass(interval - 1);
            // The daemon may answer take() before it handles an expired timer: call take() twice.
            recorder.take();
            recorder.take();
            QCOMPARE(readingTimes().size(), 0);
            daemon.letMillisecondsPass(1);
            QVERIFY(waitForReadings(1));
        }
    }
}

void TestTemperature::aNewIntervalCountsFromTheMomentItIsSet()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    QCOMPARE(temperature.call("setInterval", {100000}), QStringLiteral("()"));
    SignalRecorder recorder("/KyDeviceMgr");
    daemon.letTimePass(60);
    Board::clearJournal();

    temperature.call("getTemperatures");
    QCOMPARE(temperature.call("setInterval", {100000}), QStringLiteral("()"));
    // Advance the clock in two steps, to detect a check in between.
    daemon.letTimePass(60);
    recorder.take();
    recorder.take();
    daemon.letTimePass(40);
    QVERIFY(waitForReadings(2));

    VERIFY_NOT_EARLY(readingTimes()[1], readingTimes()[0], 100);
}

void TestTemperature::aRefusedIntervalChangesNothing()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    daemon.letTimePass(60);
    QCOMPARE(temperature.call("setInterval", {999}), shortInterval);

    daemon.letTimePass(240);
    QVERIFY(waitForReadings(1));

    VERIFY_NOT_EARLY(readingTimes()[0], startTime(), 300);
    const double passed = readingTimes()[0] - startTime();
    QVERIFY2(passed < 345, qPrintable(QString::number(passed)));
}

WORLD_TEST_MAIN(TestTemperature)
#include "test_temperature.moc"
