#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"

#include <climits>

/** The screen backlight, on the running daemon. */
class TestBacklight : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDaemonStartsInManualModeAndKeepsTheBacklight();

    void getBacklightReadsThePercentage_data();
    void getBacklightReadsThePercentage();
    void aPercentageThatCannotBeReadIsAReadError();
    void readingTakesNoArguments();

    void setBacklightSetsThePercentage_data();
    void setBacklightSetsThePercentage();
    void setBacklightRejectsOtherNumbers_data();
    void setBacklightRejectsOtherNumbers();
    void setBacklightReportsAFailedWrite();
    void setBacklightKeepsTheMode();

    void enableBacklightSwitches();
    void enableBacklightReportsAFailedWrite();

    void getBacklightStepFindsThePercentageInTheTable_data();
    void getBacklightStepFindsThePercentageInTheTable();
    void aPercentageAboveTheTableIsStepFifteen();
    void aStepThatCannotBeReadIsAReadError();

    void setBacklightStepSetsThePercentageOfTheStep_data();
    void setBacklightStepSetsThePercentageOfTheStep();
    void setBacklightStepRejectsOtherNumbers_data();
    void setBacklightStepRejectsOtherNumbers();
    void aRefusedStepStillSwitchesAutomaticModeOn();
    void aRefusedStepStillSwitchesAutomaticModeOff();
    void aManualStepReportsAFailedWrite();
    void stepsComeFromTheSettings();
    void theFirstThreeKeysOfTheSettingsAreNotRead();
    void hostileSettingsDoNoHarm_data();
    void hostileSettingsDoNoHarm();

    void automaticModeSetsTheBacklightByTheLight_data();
    void automaticModeSetsTheBacklightByTheLight();
    void automaticModeIgnoresAValidStep();
    void automaticModeReportsLightThatCannotBeRead();
    void automaticModeReportsAnUninitialisedSensor();
    void automaticModeAnnouncesAFailedWrite();
    void automaticModeAnnouncesAStepThatIsNoPercentage();

    void manualModeDoesNotFollowTheLight();
    void automaticModeReadsTheLightAgain();
    void lightWithinTheSameStepKeepsTheBacklight();
    void lightAboveTheTableKeepsTheBacklight_data();
    void lightAboveTheTableKeepsTheBacklight();
    void aBacklightThatCannotBeReadIsAnnouncedAndLogged();
    void aBacklightThatCannotBeSetIsAnnounced();
    void aFailedSecondReadingOfTheLightKeepsTheBacklight();
    void automaticModeFollowsTheLightUpAndDown();
    void clientsCannotCallTheSlotsForTheLight();

private:
    QString set(bool automatic, int step) const
    {
        return backlight.call(QStringLiteral("setBacklightStep"), {automatic, step});
    }

    const Remote backlight{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Backlight")};
    const QString done = QStringLiteral("()");
    const QString invalid =
        failure("InvalidArguments", QStringLiteral("One of the argument is invalid."));
    const QString unreadable =
        failure("Read", QStringLiteral("Could not get the current backlight value"));
    const QString unwritable =
        failure("Write", QStringLiteral("Could not set the current backlight value"));
    const QString dark =
        failure("Read", QStringLiteral("Could not get the current brightness value"));
};

namespace
{
void configure(const QByteArray &lines)
{
    writeFile(QStringLiteral("/opt/settings.ini"), "[ScreenBacklight]\n" + lines);
}

void setLux(const QString &lux)
{
    Board::set(QStringLiteral("als/lux"), lux);
}

void setPercentage(int percentage)
{
    Board::set(QStringLiteral("backlight/brightness"), QString::number(percentage));
}

QString percentage()
{
    return Board::get(QStringLiteral("backlight/brightness"));
}

QString changed(int to, int step)
{
    return QStringLiteral("Backlight.backlightChanged(%1, %2)").arg(to).arg(step);
}

QString reached(const QString &lux, int level)
{
    return QStringLiteral("Brightness.reachedBrightnessThreshold(d:%1, %2)").arg(lux).arg(level);
}

/**
 * Filters the signals of backlight and light sensor, and sorts them: their order is not defined.
 */
QStringList onlyLight(const QStringList &recorded)
{
    return recorded.filter(QStringLiteral("Backlight.")) +
           recorded.filter(QStringLiteral("Brightness."));
}
} // namespace

void TestBacklight::theDaemonStartsInManualModeAndKeepsTheBacklight()
{
    QVERIFY(daemon.start());
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
    QCOMPARE(percentage(), QStringLiteral("55"));
}

void TestBacklight::getBacklightReadsThePercentage_data()
{
    QTest::addColumn<int>("percentage");
    for (const int percentage : {0, 1, 55, 100})
        QTest::newRow(qPrintable(QString::number(percentage))) << percentage;
}

void TestBacklight::getBacklightReadsThePercentage()
{
    QFETCH(int, percentage);
    QVERIFY(daemon.start());
    setPercentage(percentage);
    QCOMPARE(backlight.call("getBacklight"), QStringLiteral("(%1)").arg(percentage));
}

void TestBacklight::aPercentageThatCannotBeReadIsAReadError()
{
    QVERIFY(daemon.start());
    Board::fault("KyBacklight.getBrightness", "1");
    QCOMPARE(backlight.call("getBacklight"), unreadable);
    QCOMPARE(backlight.call("getBacklight"), QStringLiteral("(55)"));
}

void TestBacklight::readingTakesNoArguments()
{
    QVERIFY(daemon.start());
    for (const char *method : {"getBacklight", "getBacklightStep"})
        QVERIFY(
            backlight.call(method, {1}).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

void TestBacklight::setBacklightSetsThePercentage_data()
{
    getBacklightReadsThePercentage_data();
}

void TestBacklight::setBacklightSetsThePercentage()
{
    QFETCH(int, percentage);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(backlight.call("setBacklight", {percentage}), done);

    QCOMPARE(Board::journal().filter("KyBacklight."),
             QStringList{QStringLiteral("KyBacklight.setBrightness(%1) = 0").arg(percentage)});
    QCOMPARE(onlyLight(recorder.take()), QStringList());
}

void TestBacklight::setBacklightRejectsOtherNumbers_data()
{
    QTest::addColumn<int>("percentage");
    // The last three numbers would be percentages if they were truncated to a byte.
    for (const int percentage : {101, -1, 255, INT_MAX, INT_MIN, 256, 356, -246})
        QTest::newRow(qPrintable(QString::number(percentage))) << percentage;
}

void TestBacklight::setBacklightRejectsOtherNumbers()
{
    QFETCH(int, percentage);
    QVERIFY(daemon.start());
    BusMonitor monitor;
    QCOMPARE(backlight.call("setBacklight", {percentage}), invalid);
    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + invalid, "return ()"}));
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

void TestBacklight::setBacklightReportsAFailedWrite()
{
    QVERIFY(daemon.start());
    Board::fault("KyBacklight.setBrightness", "1");
    QCOMPARE(backlight.call("setBacklight", {70}), unwritable);
    QCOMPARE(backlight.call("setBacklight", {70}), done);
    QCOMPARE(percentage(), QStringLiteral("70"));
}

void TestBacklight::setBacklightKeepsTheMode()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    QCOMPARE(backlight.call("setBacklight", {100}), done);
    SignalRecorder recorder("/KyDeviceMgr");

    setLux("60");
    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(35, 4), reached("60", 5)}));
}

void TestBacklight::enableBacklightSwitches()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(backlight.call("enableBacklight", {false}), done);
    QCOMPARE(Board::get("backlight/enabled"), QStringLiteral("0"));
    QCOMPARE(backlight.call("enableBacklight", {true}), done);
    QCOMPARE(Board::get("backlight/enabled"), QStringLiteral("1"));

    QCOMPARE(Board::journal().filter("KyBacklight."),
             (QStringList{"KyBacklight.enableBacklight(false) = 0",
                          "KyBacklight.enableBacklight(true) = 0"}));
    QCOMPARE(onlyLight(recorder.take()), QStringList());
}

void TestBacklight::enableBacklightReportsAFailedWrite()
{
    QVERIFY(daemon.start());
    Board::fault("KyBacklight.enableBacklight", "2");
    QCOMPARE(backlight.call("enableBacklight", {false}), unwritable);
    QCOMPARE(backlight.call("enableBacklight", {true}), unwritable);
    QCOMPARE(Board::get("backlight/enabled"), QStringLiteral("1"));
}

void TestBacklight::getBacklightStepFindsThePercentageInTheTable_data()
{
    QTest::addColumn<int>("percentage");
    QTest::addColumn<int>("step");

    QTest::newRow("off") << 0 << 1;
    QTest::newRow("at step 0, which is never returned") << 15 << 1;
    QTest::newRow("above step 1") << 21 << 2;
    QTest::newRow("within step 8") << 55 << 8;
    QTest::newRow("full") << 100 << 12;
}

void TestBacklight::getBacklightStepFindsThePercentageInTheTable()
{
    QFETCH(int, percentage);
    QFETCH(int, step);
    QVERIFY(daemon.start());
    setPercentage(percentage);
    QCOMPARE(backlight.call("getBacklightStep"), QStringLiteral("(%1)").arg(step));
}

void TestBacklight::aPercentageAboveTheTableIsStepFifteen()
{
    configure("step15=95\n");
    setPercentage(96);
    QVERIFY(daemon.start());
    QCOMPARE(backlight.call("getBacklightStep"), QStringLiteral("(15)"));
}

void TestBacklight::aStepThatCannotBeReadIsAReadError()
{
    QVERIFY(daemon.start());
    Board::fault("KyBacklight.getBrightness", "1");
    QCOMPARE(backlight.call("getBacklightStep"), unreadable);
    QCOMPARE(backlight.call("getBacklightStep"), QStringLiteral("(8)"));
}

void TestBacklight::setBacklightStepSetsThePercentageOfTheStep_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("percentage");

    const int percentages[] = {15, 20, 25, 30, 35, 40, 45, 50, 60, 70, 80, 90, 100};
    for (int step = 0; step <= 12; ++step)
        QTest::newRow(qPrintable(QString::number(step))) << step << percentages[step];
    QTest::newRow("13, the last one, too") << 13 << 100;
}

void TestBacklight::setBacklightStepSetsThePercentageOfTheStep()
{
    QFETCH(int, step);
    QFETCH(int, percentage);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(set(false, step), done);

    QCOMPARE(Board::journal().filter("KyBacklight."),
             QStringList{QStringLiteral("KyBacklight.setBrightness(%1) = 0").arg(percentage)});
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
    QCOMPARE(onlyLight(recorder.take()), QStringList());
}

void TestBacklight::setBacklightStepRejectsOtherNumbers_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<int>("step");
    for (const bool automatic : {false, true}) {
        for (const int step : {14, 15, -1, -2, INT_MAX, INT_MIN, 256})
            QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(automatic).arg(step)))
                << automatic << step;
    }
}

void TestBacklight::setBacklightStepRejectsOtherNumbers()
{
    QFETCH(bool, automatic);
    QFETCH(int, step);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    QCOMPARE(set(automatic, step), invalid);

    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
    QCOMPARE(Board::journal().filter("KyAls."), QStringList());
    QCOMPARE(onlyLight(recorder.take()), QStringList());
}

void TestBacklight::aRefusedStepStillSwitchesAutomaticModeOn()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 14), invalid);
    SignalRecorder recorder("/KyDeviceMgr");

    setLux("60");

    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(35, 4), reached("60", 5)}));
    QCOMPARE(percentage(), QStringLiteral("35"));
}

void TestBacklight::aRefusedStepStillSwitchesAutomaticModeOff()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    QCOMPARE(set(false, 14), invalid);
    SignalRecorder recorder("/KyDeviceMgr");

    setLux("60");

    QCOMPARE(onlyLight(recorder.waitFor(1)), QStringList{reached("60", 5)});
    QCOMPARE(percentage(), QStringLiteral("45"));
}

void TestBacklight::aManualStepReportsAFailedWrite()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyBacklight.setBrightness", "1");
    QCOMPARE(set(false, 3), unwritable);
    QCOMPARE(onlyLight(recorder.take()), QStringList());
    QCOMPARE(percentage(), QStringLiteral("55"));
}

void TestBacklight::stepsComeFromTheSettings()
{
    configure("step3=1\nstep9=44\nstep15=99\n");
    QVERIFY(daemon.start());
    const struct {
        int step;
        const char *percentage;
    } rows[] = {{0, "1"}, {1, "20"}, {6, "44"}, {12, "99"}, {13, "99"}};
    for (const auto &row : rows) {
        QCOMPARE(set(false, row.step), done);
        QCOMPARE(percentage(), QString(row.percentage));
    }
}

void TestBacklight::theFirstThreeKeysOfTheSettingsAreNotRead()
{
    configure("step0=1\nstep1=2\nstep2=3\nstep16=4\n");
    QVERIFY(daemon.start());
    for (const int step : {0, 1, 2, 13})
        QCOMPARE(set(false, step), done);
    QCOMPARE(
        Board::journal().filter("KyBacklight."),
        (QStringList{"KyBacklight.setBrightness(15) = 0", "KyBacklight.setBrightness(20) = 0",
                     "KyBacklight.setBrightness(25) = 0", "KyBacklight.setBrightness(100) = 0"}));
}

void TestBacklight::hostileSettingsDoNoHarm_data()
{
    QTest::addColumn<QByteArray>("step");
    QTest::addColumn<QString>("expected");

    QTest::newRow("text for a number") << QByteArray("bright") << "0";
    QTest::newRow("empty") << QByteArray() << "0";
    QTest::newRow("a list") << QByteArray("30,40") << "0";
    QTest::newRow("a fraction") << QByteArray("30.5") << "0";
    QTest::newRow("another type") << QByteArray("@Rect(1 2 3 4)") << "0";
    QTest::newRow("a broken type") << QByteArray("@Variant(nonsense)") << "0";
    QTest::newRow("just too large") << QByteArray("101") << "refused";
    QTest::newRow("a percentage if truncated to a byte") << QByteArray("306") << "refused";
    QTest::newRow("negative") << QByteArray("-1") << "refused";
    QTest::newRow("the largest number") << QByteArray("2147483647") << "refused";
    QTest::newRow("the smallest number") << QByteArray("-2147483648") << "refused";
    QTest::newRow("larger than any number") << QByteArray("99999999999999999999") << "0";
}

void TestBacklight::hostileSettingsDoNoHarm()
{
    QFETCH(QByteArray, step);
    QFETCH(QString, expected);
    configure("step6=" + step + '\n');
    QVERIFY(daemon.start());

    const QString reply = set(false, 3);

    QCOMPARE(reply, expected == "refused" ? invalid : done);
    QCOMPARE(percentage(), expected == "refused" ? QStringLiteral("55") : expected);
    QVERIFY(backlight.call("getBacklightStep").startsWith('('));
}

void TestBacklight::automaticModeSetsTheBacklightByTheLight_data()
{
    QTest::addColumn<QString>("lux");
    QTest::addColumn<int>("percentage");
    QTest::addColumn<int>("step");

    QTest::newRow("level 1") << "0" << 15 << 0;
    QTest::newRow("level 2") << "12" << 20 << 1;
    QTest::newRow("level 3") << "20" << 25 << 2;
    QTest::newRow("level 4") << "40" << 30 << 3;
    QTest::newRow("level 5") << "60" << 35 << 4;
    QTest::newRow("level 6") << "90" << 40 << 5;
    QTest::newRow("level 7") << "120" << 45 << 6;
    QTest::newRow("level 8") << "160" << 50 << 7;
    QTest::newRow("level 9") << "180" << 60 << 8;
    QTest::newRow("level 10") << "220" << 70 << 9;
    QTest::newRow("level 11") << "280" << 80 << 10;
    QTest::newRow("level 12") << "320" << 90 << 11;
    QTest::newRow("level 13") << "380" << 100 << 12;
    QTest::newRow("level 14, full as well") << "420" << 100 << 12;
    QTest::newRow("level 15, full as well") << "470" << 100 << 12;
    QTest::newRow("level 16, full as well") << "20000" << 100 << 12;
}

void TestBacklight::automaticModeSetsTheBacklightByTheLight()
{
    QFETCH(QString, lux);
    QFETCH(int, percentage);
    QFETCH(int, step);
    setLux(lux);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");

    QCOMPARE(set(true, 5), done);

    QCOMPARE(onlyLight(recorder.take()).value(0), changed(percentage, step));
    QCOMPARE(::percentage(), QString::number(percentage));
}

void TestBacklight::automaticModeIgnoresAValidStep()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    for (const int step : {0, 12, 13}) {
        QCOMPARE(set(true, step), done);
        QCOMPARE(onlyLight(recorder.take()), QStringList{changed(45, 6)});
    }
}

void TestBacklight::automaticModeReportsLightThatCannotBeRead()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyAls.readLux", "1");

    QCOMPARE(set(true, 3), dark);

    QCOMPARE(onlyLight(recorder.take()), QStringList());
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
    setLux("60");
    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(35, 4), reached("60", 5)}));
}

void TestBacklight::automaticModeReportsAnUninitialisedSensor()
{
    Board::fault("KyAls.init", "1");
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 3), dark);
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
    QCOMPARE(set(false, 3), done);
    QCOMPARE(percentage(), QStringLiteral("30"));
}

void TestBacklight::automaticModeAnnouncesAFailedWrite()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyBacklight.setBrightness", "1");
    QCOMPARE(set(true, 3), done);
    QCOMPARE(onlyLight(recorder.take()), QStringList{changed(-1, -1)});
}

void TestBacklight::automaticModeAnnouncesAStepThatIsNoPercentage()
{
    configure("step9=101\n");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    QCOMPARE(set(true, 3), done);
    QCOMPARE(onlyLight(recorder.take()), QStringList{changed(-1, -1)});
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

void TestBacklight::manualModeDoesNotFollowTheLight()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    setLux("60");
    QCOMPARE(onlyLight(recorder.waitFor(1)), QStringList{reached("60", 5)});
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

void TestBacklight::automaticModeReadsTheLightAgain()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    setLux("60");

    recorder.waitFor(2);
    QCOMPARE(Board::journal().filter("KyAls.").filter("readLux").size(), 2);
    QCOMPARE(
        Board::journal().filter("KyBacklight."),
        (QStringList{"KyBacklight.getBrightness() = 45", "KyBacklight.setBrightness(35) = 0"}));
}

void TestBacklight::lightWithinTheSameStepKeepsTheBacklight()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    setPercentage(33);
    Board::clearJournal();

    setLux("60");

    QCOMPARE(onlyLight(recorder.waitFor(1)), QStringList{reached("60", 5)});
    QCOMPARE(Board::journal().filter("KyBacklight."),
             QStringList{"KyBacklight.getBrightness() = 33"});
}

void TestBacklight::lightAboveTheTableKeepsTheBacklight_data()
{
    QTest::addColumn<QString>("lux");
    QTest::addColumn<int>("level");
    QTest::newRow("level 14") << "430" << 14;
    QTest::newRow("level 15") << "480" << 15;
    QTest::newRow("level 16") << "600" << 16;
}

void TestBacklight::lightAboveTheTableKeepsTheBacklight()
{
    QFETCH(QString, lux);
    QFETCH(int, level);
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();

    setLux(lux);

    QCOMPARE(onlyLight(recorder.waitFor(1)), QStringList{reached(lux, level)});
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

void TestBacklight::aBacklightThatCannotBeReadIsAnnouncedAndLogged()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();
    Board::fault("KyBacklight.getBrightness", "1");

    setLux("60");

    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(-1, -1), reached("60", 5)}));
    QCOMPARE(Board::journal().filter("KyBacklight."),
             QStringList{"KyBacklight.getBrightness() = -1"});
    QVERIFY(daemon.waitForLog("void KyScreenBacklight::handleBrightnessChange(double, int)"
                              "Could not retrieve current backlight\n"));
}

void TestBacklight::aBacklightThatCannotBeSetIsAnnounced()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    Board::fault("KyBacklight.setBrightness", "1");

    setLux("60");

    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(-1, -1), reached("60", 5)}));
    QCOMPARE(percentage(), QStringLiteral("45"));
    QCOMPARE(daemon.log(), QString());
}

void TestBacklight::aFailedSecondReadingOfTheLightKeepsTheBacklight()
{
    QVERIFY(daemon.start());
    QCOMPARE(set(true, 0), done);
    SignalRecorder recorder("/KyDeviceMgr");
    Board::clearJournal();
    // Two reads of the light fail. After the first, the daemon announces level 1; the second would
    // determine the new backlight.
    Board::fault("KyAls.readLux", "2");

    Board::set("als/interrupt", "1");

    QCOMPARE(onlyLight(recorder.waitFor(1)).value(0), reached("-1", 1));
    QCOMPARE(Board::journal().filter("KyBacklight.").value(0),
             QStringLiteral("KyBacklight.getBrightness() = 45"));
    QVERIFY(!Board::journal().filter("KyBacklight.").value(1).contains("set"));
}

void TestBacklight::automaticModeFollowsTheLightUpAndDown()
{
    // For each change: light inside the old level's band, light outside the band, the new level,
    // and the new percentage and step of the backlight (-1 if they do not change).
    const struct {
        const char *quiet;
        const char *lux;
        int level;
        int percentage;
        int step;
    } rows[] = {
        {"14", "20", 3, 25, 2},       {"40", "60", 5, 35, 4},      {"90", "120", 7, 45, 6},
        {"170", "180", 9, 60, 8},     {"240", "280", 11, 80, 10},  {"340", "380", 13, 100, 12},
        {"440", "470", 15, -1, -1},   {"700", "5000", 16, -1, -1}, {"9000", "20000", 16, -1, -1},
        {"20000", "480", 15, -1, -1}, {"900", "440", 14, -1, -1},  {"420", "390", 13, -1, -1},
        {"360", "330", 12, 90, 11},   {"310", "280", 11, 80, 10},  {"260", "220", 10, 70, 9},
        {"290", "190", 9, 60, 8},     {"180", "160", 8, 50, 7},    {"155", "110", 7, 45, 6},
        {"105", "60", 5, 35, 4},      {"52", "30", 4, 30, 3},      {"26", "12", 2, 20, 1},
        {"11", "4", 1, 15, 0},
    };
    // For light above every band, the sensor repeats the interrupt after its persistence time. With
    // this setting, that time is longer than the test.
    writeFile("/opt/settings.ini", "[Brightness]\ntimer=25\n");
    setLux("0");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    QCOMPARE(set(true, 0), done);
    QCOMPARE(onlyLight(recorder.take()), QStringList{changed(15, 0)});

    for (const auto &row : rows) {
        setLux(row.quiet);
        QCOMPARE(onlyLight(recorder.take()), QStringList());
        setLux(row.lux);
        QStringList expected = {reached(row.lux, row.level)};
        if (row.percentage >= 0)
            expected.prepend(changed(row.percentage, row.step));
        QCOMPARE(onlyLight(recorder.waitFor(expected.size())).join('\n'), expected.join('\n'));
    }
    QCOMPARE(percentage(), QStringLiteral("15"));

    // Step 0 is never derived from the percentage, so each interrupt applies it again.
    Board::set("als/interrupt", "1");
    QCOMPARE(onlyLight(recorder.waitFor(2)), (QStringList{changed(15, 0), reached("4", 1)}));
}

void TestBacklight::clientsCannotCallTheSlotsForTheLight()
{
    QVERIFY(daemon.start());
    QVERIFY(backlight.call("handleBrightnessChange", {60.0, 5})
                .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());
}

WORLD_TEST_MAIN(TestBacklight)
#include "test_backlight.moc"
