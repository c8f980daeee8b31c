#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "thresholdcode.h"

/** The ambient light, on the running daemon. */
class TestBrightness : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theSensorIsInitialisedInOrderAtTheStart();
    void theBandLiesAroundTheLightOfTheStart_data();
    void theBandLiesAroundTheLightOfTheStart();
    void theBandGoesToTheSensorAsItsCodes_data();
    void theBandGoesToTheSensorAsItsCodes();
    void theTimerIsCutToOneEvenByte_data();
    void theTimerIsCutToOneEvenByte();
    void levelsComeFromTheSettings();
    void otherSettingsChangeNothing();

    void anyFailedInitialisationStepIsAnInitialisationError_data();
    void anyFailedInitialisationStepIsAnInitialisationError();
    void levelsOutOfOrderAreAnInitialisationError_data();
    void levelsOutOfOrderAreAnInitialisationError();
    void anUninitialisedSensorStaysUnusableUntilTheNextStart();
    void theInterruptOfAnUninitialisedSensorIsNotWatched_data();
    void theInterruptOfAnUninitialisedSensorIsNotWatched();
    void aNegativeDescriptorIsNotWatched();
    void anInvalidDescriptorDoesNoHarm();

    void getBrightnessReadsTheLight_data();
    void getBrightnessReadsTheLight();
    void aFailedReadingIsAReadError();
    void nonsenseFromTheSensorIsPassedOn();
    void getBrightnessTakesNoArguments();

    void lightThatLeavesItsBandIsAnnounced();
    void lightThatStaysInItsBandIsNotAnnounced();
    void anInterruptWithoutAChangeIsAnnouncedToo();
    void aFailedReadingCountsAsMinusOneLux();
    void anInterruptThatCannotBeReadIsOnlyLogged();
    void aBandThatCannotBeSetIsSetAtTheNextInterrupt();
    void aBandOutOfOrderIsOnlyLogged();
    void aBurstOfInterruptsEndsAtTheLastLight();
    void aSlowSensorLosesNoInterrupt();

    void hostileSettingsDoNoHarm_data();
    void hostileSettingsDoNoHarm();
    void clientsCannotCallTheInterruptHandler();

private:
    QString getBrightness() const { return brightness.call("getBrightness"); }

    const Remote brightness{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Brightness")};
    const QString uninitialised =
        failure("Initialisation", QStringLiteral("The initialisation of the ALS failed"));
    const QString handler = QStringLiteral("void KyBrightness::handleAlsActivation(int)");
};

namespace
{
void configure(const QByteArray &lines)
{
    writeFile(QStringLiteral("/opt/settings.ini"), "[Brightness]\n" + lines);
}

void setLux(const QString &lux)
{
    Board::set(QStringLiteral("als/lux"), lux);
}

/** Returns true if the sensor's code of @p lux is within the sensor's thresholds. */
bool isWithinBand(const QString &lux)
{
    const int code = board::thresholdCode(lux.toFloat());
    return code >= Board::get(QStringLiteral("als/threshold_low")).toInt() &&
           code <= Board::get(QStringLiteral("als/threshold_high")).toInt();
}

/** Makes the sensor interrupt, whatever the light. */
void raiseInterrupt()
{
    Board::set(QStringLiteral("als/interrupt"), QStringLiteral("1"));
}

QString announced(const QString &arguments)
{
    return QStringLiteral("Brightness.reachedBrightnessThreshold(") + arguments + QLatin1Char(')');
}

/** Filters the signals of the ambient light. */
QStringList onlyBrightness(const QStringList &recorded)
{
    return recorded.filter(QStringLiteral("Brightness."));
}
} // namespace

void TestBrightness::theSensorIsInitialisedInOrderAtTheStart()
{
    setLux("120");
    QVERIFY(daemon.start());

    QStringList calls = Board::journal().filter("KyAls.");
    QVERIFY(!calls.isEmpty());
    const QString last = calls.takeLast();
    QCOMPARE(calls,
             (QStringList{"KyAls.init() = 0", "KyAls.readLux() = 0 120",
                          "KyAls.convLuxInExponentMantissaByte(175) = 101",
                          "KyAls.convLuxInExponentMantissaByte(100) = 89",
                          "KyAls.setThresholds(101, 89) = 0", "KyAls.setThresholdsTimer(50) = 0",
                          "KyAls.interruptEnable(true) = 0"}));
    QVERIFY2(last.startsWith("KyAls.getinterruptHandler() = "), qPrintable(last));
}

void TestBrightness::theBandLiesAroundTheLightOfTheStart_data()
{
    QTest::addColumn<QString>("lux");
    QTest::addColumn<int>("high");
    QTest::addColumn<int>("low");

    QTest::newRow("dark") << "0" << 15 << 0;
    QTest::newRow("level 1") << "10" << 15 << 0;
    QTest::newRow("level 2") << "12" << 25 << 10;
    QTest::newRow("level 3") << "25" << 50 << 15;
    QTest::newRow("level 4") << "50" << 75 << 25;
    QTest::newRow("level 5") << "75" << 100 << 50;
    QTest::newRow("level 6") << "100" << 150 << 75;
    QTest::newRow("level 7") << "150" << 175 << 100;
    QTest::newRow("level 8") << "175" << 200 << 150;
    QTest::newRow("level 9") << "200" << 250 << 175;
    QTest::newRow("level 10") << "250" << 300 << 200;
    QTest::newRow("level 11") << "300" << 350 << 250;
    QTest::newRow("level 12") << "350" << 400 << 300;
    QTest::newRow("level 13") << "400" << 450 << 350;
    QTest::newRow("level 14") << "450" << 500 << 400;
    QTest::newRow("level 15") << "500" << 1000 << 450;
    QTest::newRow("level 16") << "1000" << 10000 << 500;
    QTest::newRow("above the table") << "20000" << 10000 << 500;
}

void TestBrightness::theBandLiesAroundTheLightOfTheStart()
{
    QFETCH(QString, lux);
    QFETCH(int, high);
    QFETCH(int, low);
    setLux(lux);
    QVERIFY(daemon.start());
    const QString conversion = QStringLiteral("KyAls.convLuxInExponentMantissaByte(%1) = ");
    const QStringList conversions = Board::journal().filter("KyAls.conv");
    QCOMPARE(conversions.size(), 2);
    QVERIFY2(conversions[0].startsWith(conversion.arg(high)), qPrintable(conversions[0]));
    QVERIFY2(conversions[1].startsWith(conversion.arg(low)), qPrintable(conversions[1]));
}

void TestBrightness::theBandGoesToTheSensorAsItsCodes_data()
{
    QTest::addColumn<QString>("lux");
    QTest::addColumn<QString>("thresholds");

    // The thresholds are the codes of these bands: 15 and 0 lux, 25 and 10, 500 and 400, 10000 and
    // 500.
    QTest::newRow("dark") << "0"
                          << "46, 0";
    QTest::newRow("level 2") << "12"
                             << "57, 36";
    QTest::newRow("level 14") << "450"
                              << "127, 121";
    QTest::newRow("above the table") << "20000"
                                     << "195, 127";
}

void TestBrightness::theBandGoesToTheSensorAsItsCodes()
{
    QFETCH(QString, lux);
    QFETCH(QString, thresholds);
    setLux(lux);
    QVERIFY(daemon.start());
    QCOMPARE(Board::journal().filter("KyAls.setThresholds("),
             QStringList{QStringLiteral("KyAls.setThresholds(%1) = 0").arg(thresholds)});
}

void TestBrightness::theTimerIsCutToOneEvenByte_data()
{
    QTest::addColumn<QByteArray>("timer");
    QTest::addColumn<int>("byte");

    QTest::newRow("factory setting") << QByteArray("5") << 50;
    QTest::newRow("none") << QByteArray("0") << 0;
    QTest::newRow("30") << QByteArray("30") << 0x2C;
    QTest::newRow("largest") << QByteArray("4294967295") << 0xF6;
    QTest::newRow("negative") << QByteArray("-1") << 0;
    QTest::newRow("no number") << QByteArray("long") << 0;
    QTest::newRow("a list") << QByteArray("30,40") << 0;
    QTest::newRow("empty") << QByteArray() << 0;
}

void TestBrightness::theTimerIsCutToOneEvenByte()
{
    QFETCH(QByteArray, timer);
    QFETCH(int, byte);
    configure("timer=" + timer + '\n');
    QVERIFY(daemon.start());
    QVERIFY(
        Board::journal().contains(QStringLiteral("KyAls.setThresholdsTimer(%1) = 0").arg(byte)));
}

void TestBrightness::levelsComeFromTheSettings()
{
    configure("level3=30\n");
    setLux("12");
    QVERIFY(daemon.start());
    // The codes of 30 and 10 lux.
    QVERIFY(Board::journal().contains("KyAls.setThresholds(62, 36) = 0"));
}

void TestBrightness::otherSettingsChangeNothing()
{
    writeFile("/opt/settings.ini", "level3=30\n[Brightness]\nlevel18=30\nlevel=30\n"
                                   "[brightness]\nlevel3=30\n[ScreenBacklight]\nlevel3=30\n");
    setLux("12");
    QVERIFY(daemon.start());
    QVERIFY(Board::journal().contains("KyAls.setThresholds(57, 36) = 0"));
}

void TestBrightness::anyFailedInitialisationStepIsAnInitialisationError_data()
{
    QTest::addColumn<QString>("operation");
    for (const char *operation : {"init", "readLux", "setThresholds", "setThresholdsTimer",
                                  "interruptEnable", "getinterruptHandler"})
        QTest::newRow(operation) << QStringLiteral("KyAls.") + operation;
}

void TestBrightness::anyFailedInitialisationStepIsAnInitialisationError()
{
    QFETCH(QString, operation);
    Board::fault(operation, "1");
    QVERIFY(daemon.start());

    QVERIFY(Board::journal().filter("KyAls.").last().startsWith(operation + '('));
    Board::clearJournal();
    QCOMPARE(getBrightness(), uninitialised);
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
}

void TestBrightness::levelsOutOfOrderAreAnInitialisationError_data()
{
    QTest::addColumn<QByteArray>("levels");
    QTest::addColumn<QString>("lux");

    QTest::newRow("descending") << QByteArray("level0=40\nlevel1=30\nlevel2=20\nlevel3=10\n")
                                << "5";
    QTest::newRow("upside down around the light") << QByteArray("level3=9\n") << "12";
    QTest::newRow("negative") << QByteArray("level0=-1\n") << "0";
}

void TestBrightness::levelsOutOfOrderAreAnInitialisationError()
{
    QFETCH(QByteArray, levels);
    QFETCH(QString, lux);
    configure(levels);
    setLux(lux);
    QVERIFY(daemon.start());
    QCOMPARE(getBrightness(), uninitialised);
    QCOMPARE(Board::journal().filter("KyAls."),
             (QStringList{"KyAls.init() = 0", "KyAls.readLux() = 0 " + lux}));
}

void TestBrightness::anUninitialisedSensorStaysUnusableUntilTheNextStart()
{
    Board::fault("KyAls.init", "1");
    QVERIFY(daemon.start());
    QCOMPARE(getBrightness(), uninitialised);
    QCOMPARE(getBrightness(), uninitialised);
    daemon.stop();

    QVERIFY(daemon.start());
    QCOMPARE(getBrightness(), QStringLiteral("(d:120)"));
}

void TestBrightness::theInterruptOfAnUninitialisedSensorIsNotWatched_data()
{
    QTest::addColumn<QString>("operation");
    for (const char *operation : {"setThresholdsTimer", "getinterruptHandler"})
        QTest::newRow(operation) << QStringLiteral("KyAls.") + operation;
}

void TestBrightness::theInterruptOfAnUninitialisedSensorIsNotWatched()
{
    QFETCH(QString, operation);
    Board::fault(operation, "1");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    Board::set("als/interrupt_enabled", "1");
    setLux("20000");

    QVERIFY(Board::waitFor("als/interrupt", "1"));
    QCOMPARE(onlyBrightness(recorder.take()), QStringList());
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
}

void TestBrightness::aNegativeDescriptorIsNotWatched()
{
    daemon.setEnvironment("LD_PRELOAD", OTHER_DESCRIPTOR);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    setLux("20000");

    QVERIFY(Board::waitFor("als/interrupt", "1"));
    QCOMPARE(onlyBrightness(recorder.take()), QStringList());
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
    QCOMPARE(getBrightness(), QStringLiteral("(d:20000)"));
    QCOMPARE(daemon.log(), QString());
}

void TestBrightness::anInvalidDescriptorDoesNoHarm()
{
    Board::fault("KyAls.getinterruptHandler", "garbage");
    QVERIFY(daemon.start());
    QCOMPARE(getBrightness(), QStringLiteral("(d:120)"));
}

void TestBrightness::getBrightnessReadsTheLight_data()
{
    QTest::addColumn<QString>("lux");
    QTest::addColumn<QString>("reply");

    QTest::newRow("dark") << "0"
                          << "(d:0)";
    QTest::newRow("a fraction") << "12.5"
                                << "(d:12.5)";
    // The sensor measures in single precision.
    QTest::newRow("a tenth") << "0.1"
                             << "(d:0.10000000149011612)";
    QTest::newRow("bright") << "20000"
                            << "(d:20000)";
}

void TestBrightness::getBrightnessReadsTheLight()
{
    QFETCH(QString, lux);
    QFETCH(QString, reply);
    QVERIFY(daemon.start());
    setLux(lux);
    QCOMPARE(getBrightness(), reply);
}

void TestBrightness::aFailedReadingIsAReadError()
{
    QVERIFY(daemon.start());
    Board::fault("KyAls.readLux", "1");
    const QString unreadable = failure("Read", "Could not get the current brightness value");
    BusMonitor monitor;
    QCOMPARE(getBrightness(), unreadable);
    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + unreadable, "return (d)"}));
    QCOMPARE(getBrightness(), QStringLiteral("(d:120)"));
}

void TestBrightness::nonsenseFromTheSensorIsPassedOn()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyAls.readLux", "garbage");

    QCOMPARE(getBrightness(), QStringLiteral("(d:nan)"));
    raiseInterrupt();
    QCOMPARE(onlyBrightness(recorder.waitFor(1)).value(0), announced("d:nan, 16"));
}

void TestBrightness::getBrightnessTakesNoArguments()
{
    QVERIFY(daemon.start());
    Board::clearJournal();
    QVERIFY(brightness.call("getBrightness", {1})
                .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
}

void TestBrightness::lightThatLeavesItsBandIsAnnounced()
{
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    setLux("30");

    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:30, 4")});
    // The new band is 25 to 75 lux.
    QCOMPARE(Board::journal().filter("KyAls."),
             (QStringList{"KyAls.readLux() = 0 30", "KyAls.interruptRead() = 0 true",
                          "KyAls.convLuxInExponentMantissaByte(75) = 82",
                          "KyAls.convLuxInExponentMantissaByte(25) = 57",
                          "KyAls.setThresholds(82, 57) = 0"}));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
}

void TestBrightness::lightThatStaysInItsBandIsNotAnnounced()
{
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    for (const char *lux : {"10", "25", "11.5", "15", "24", "16"}) {
        setLux(lux);
        QVERIFY2(isWithinBand(lux), lux);
    }
    setLux("60");

    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:60, 5")});
}

void TestBrightness::anInterruptWithoutAChangeIsAnnouncedToo()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    raiseInterrupt();
    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:120, 7")});
    raiseInterrupt();
    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:120, 7")});
}

void TestBrightness::aFailedReadingCountsAsMinusOneLux()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();
    Board::fault("KyAls.readLux", "1");

    raiseInterrupt();

    QCOMPARE(onlyBrightness(recorder.waitFor(1)).value(0), announced("d:-1, 1"));
    QVERIFY(Board::journal().contains("KyAls.setThresholds(46, 0) = 0"));
}

void TestBrightness::anInterruptThatCannotBeReadIsOnlyLogged()
{
    daemon.controlClock();
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();
    Board::fault("KyAls.interruptRead", "1");

    setLux("30");

    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:30, 4")});
    QCOMPARE(Board::get("als/threshold_high"), QStringLiteral("82"));
    QVERIFY(daemon.waitForLog(handler + "Read interrupt ALS failed\n"));
    QCOMPARE(daemon.log().count('\n'), 1);
    // No timer repeats the failed read.
    daemon.letTimePass(10);
    QCOMPARE(brightness.call("getBrightness"), QStringLiteral("(d:30)"));
    QCOMPARE(Board::journal().filter("interruptRead"), QStringList{"KyAls.interruptRead() = 1"});
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("1"));
}

void TestBrightness::aBandThatCannotBeSetIsSetAtTheNextInterrupt()
{
    configure("timer=0\n");
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyAls.setThresholds", "1");

    setLux("30");

    // The light stays outside the old band, so the sensor interrupts again.
    QVERIFY(daemon.waitForLog(handler + "Setting the new theresholds for ALS failed\n"));
    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:30, 4")});
    QCOMPARE(Board::journal().filter("KyAls.").filter("setThresholds("),
             (QStringList{"KyAls.setThresholds(57, 36) = 0", "KyAls.setThresholds(82, 57) = 1",
                          "KyAls.setThresholds(82, 57) = 0"}));
    QCOMPARE(daemon.log().count('\n'), 1);
}

void TestBrightness::aBandOutOfOrderIsOnlyLogged()
{
    configure("level5=20\n");
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    // Level 4, with an inverted band from 25 to 20 lux.
    setLux("30");

    QVERIFY(daemon.waitForLog(handler + "Setting the new theresholds for ALS failed\n"));
    QCOMPARE(onlyBrightness(recorder.take()), QStringList());
    QCOMPARE(Board::journal().filter("KyAls.").filter("setThresholds("), QStringList());
    QCOMPARE(getBrightness(), QStringLiteral("(d:30)"));
}

void TestBrightness::aBurstOfInterruptsEndsAtTheLastLight()
{
    setLux("12");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    for (int burst = 0; burst < 200; ++burst) {
        setLux(burst % 2 == 0 ? "20000" : "12");
        raiseInterrupt();
    }
    setLux("320");

    // The last band is 300 to 400 lux, and 121 is the code of 400 lux.
    QVERIFY(Board::waitFor("als/threshold_high", "121"));
    QVERIFY(Board::waitFor("als/interrupt", "0"));
    const QStringList signalsSent = onlyBrightness(recorder.waitFor(1));
    QCOMPARE(signalsSent.last(), announced("d:320, 12"));
    QCOMPARE(signalsSent.size(), Board::journal().filter("KyAls.").filter("setThresholds(").size());
    QCOMPARE(getBrightness(), QStringLiteral("(d:320)"));
    QCOMPARE(daemon.log(), QString());
}

void TestBrightness::aSlowSensorLosesNoInterrupt()
{
    setLux("12");
    for (const char *operation : {"init", "readLux", "convLuxInExponentMantissaByte",
                                  "setThresholds", "interruptEnable", "interruptRead"})
        Board::fault(QStringLiteral("KyAls.") + operation, "delay 50");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    setLux("30");
    QCOMPARE(getBrightness(), QStringLiteral("(d:30)"));
    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:30, 4")});
    setLux("320");
    QCOMPARE(onlyBrightness(recorder.waitFor(1)), QStringList{announced("d:320, 12")});
}

void TestBrightness::hostileSettingsDoNoHarm_data()
{
    QTest::addColumn<QByteArray>("levels");
    QTest::addColumn<QString>("lux");
    QTest::addColumn<bool>("usable");

    QTest::newRow("text for a number") << QByteArray("level3=bright\n") << "12" << false;
    QTest::newRow("text, elsewhere") << QByteArray("level3=bright\n") << "120" << true;
    QTest::newRow("empty") << QByteArray("level3=\n") << "12" << false;
    QTest::newRow("a list") << QByteArray("level3=25,50\n") << "12" << false;
    QTest::newRow("a fraction") << QByteArray("level3=25.5\n") << "12" << false;
    QTest::newRow("bytes") << QByteArray("level3=@ByteArray(\\0\\xff)\n") << "12" << false;
    QTest::newRow("another type") << QByteArray("level3=@Rect(1 2 3 4)\n") << "12" << false;
    QTest::newRow("a broken type") << QByteArray("level3=@Variant(nonsense)\n") << "12" << false;
    QTest::newRow("all negative") << QByteArray("level0=-2147483648\nlevel1=-9\nlevel2=-9\n"
                                                "level3=-9\n")
                                  << "0" << false;
    QTest::newRow("the largest number") << QByteArray("level17=2147483647\n") << "20000" << true;
    QTest::newRow("larger than any number")
        << QByteArray("level17=99999999999999999999\n") << "20000" << false;
}

void TestBrightness::hostileSettingsDoNoHarm()
{
    QFETCH(QByteArray, levels);
    QFETCH(QString, lux);
    QFETCH(bool, usable);
    configure(levels);
    setLux(lux);
    QVERIFY(daemon.start());
    QCOMPARE(getBrightness(), usable ? QStringLiteral("(d:%1)").arg(lux) : uninitialised);
}

void TestBrightness::clientsCannotCallTheInterruptHandler()
{
    QVERIFY(daemon.start());
    Board::clearJournal();
    QVERIFY(brightness.call("handleAlsActivation", {0})
                .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
}

WORLD_TEST_MAIN(TestBrightness)
#include "test_brightness.moc"
