#include "board.h"
#include "daemontest.h"
#include "deadline.h"
#include "documentedarguments.h"
#include "introspection.h"
#include "kernelevents.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QRegularExpression>

/** All devices together, on the running daemon: start, LEDs and preparation for shutdown. */
class TestDeviceMgr : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void aModelWithAScreenOffersBacklightAndBrightness_data();
    void aModelWithAScreenOffersBacklightAndBrightness();
    void anyOtherModelOffersNoBacklightAndNoBrightness_data();
    void anyOtherModelOffersNoBacklightAndNoBrightness();
    void aModelTextThatIsNoNumberHasNoScreen_data();
    void aModelTextThatIsNoNumberHasNoScreen();
    void aRecordThatCannotBeUsedHasNoScreen_data();
    void aRecordThatCannotBeUsedHasNoScreen();
    void theModelIsReadOnceAtTheStart();

    void theHardwareIsInitialisedInOrder();
    void theNameIsClaimedAfterAllHardwareIsInitialised();
    void theStartSendsNoSignal();

    void theLedsShowThePresentStateAtOnce_data();
    void theLedsShowThePresentStateAtOnce();
    void theSdCardLedShowsThePresentStateAtOnce_data();
    void theSdCardLedShowsThePresentStateAtOnce();
    void theLedsFollowTheBattery();
    void theSdCardLedFollowsTheCard();

    void shutdownPreparesLedsAndBatteryInOrder();
    void afterPreparationTheBatteryIsAnnouncedAndNoLedChanges();
    void afterPreparationThePeriodicCheckContinuesAndNoLedChanges();
    void afterPreparationTheTemperaturesAreStillChecked();
    void afterPreparationTheCardIsStillAnnounced();
    void afterPreparationTheBacklightStillFollowsTheLight();
    void afterPreparationTheOtherDevicesStillWork();
    void aSecondPreparationRepeatsTheSteps();
    void preparationNeverFails();
    void preparationTakesAnyArguments();

private:
    QString prepare() const { return manager.call(QStringLiteral("prepareForShutdown")); }
    QString batteryStatus() const { return alimentation.property(QStringLiteral("batteryStatus")); }
    void startWithModelText(const QString &model);

    const QString path = QStringLiteral("/KyDeviceMgr");
    const Remote manager{path, QStringLiteral("MGR")};
    const Remote alimentation{path, QStringLiteral("Alimentation")};
    const Remote backlight{path, QStringLiteral("Backlight")};
    const Remote brightness{path, QStringLiteral("Brightness")};
    const Remote version{path, QStringLiteral("Version")};
};

namespace
{
const QString ours = QStringLiteral("com.orvendis.Strandel.BoardManager.");
const QStringList shutdownCalls = {
    // Power button: green off, yellow blinking at 3 Hz.
    QStringLiteral("KyLeds.setLedState(24, 0) = 0"),
    QStringLiteral("KyLeds.setLedState(22, 2) = 0"),
    QStringLiteral("KyBatmonitor.prepareForShutdown() = 0"),
};

QStringList interfaces()
{
    QStringList names = introspect(QStringLiteral("/KyDeviceMgr")).interfaces.keys();
    names.replaceInStrings(ours, QString());
    return names.filter(QRegularExpression(QStringLiteral("^[A-Z]\\w+$")));
}

/** The interfaces of a model without a screen. */
QStringList withoutScreen()
{
    QStringList names = documentedInterfaces(QStringLiteral("/KyDeviceMgr"));
    if (names.removeAll("Backlight") != 1 || names.removeAll("Brightness") != 1)
        return {};
    return names;
}

/** The journal's calls that change something, without reads. */
QStringList changes()
{
    return Board::journal().filter(
        QRegularExpression(QStringLiteral("KyLeds\\.set|prepareForShutdown")));
}

/** The state of each LED. */
QStringList leds()
{
    QStringList shown;
    for (const char *led : {"BAT_RS1", "BAT_GS1", "BAT_GS2", "BAT_GS3", "BAT_GS4", "BAT_GS5",
                            "POWER_Y", "POWER_G", "SD_STATUS"})
        shown << Board::get(QStringLiteral("leds/") + QLatin1String(led));
    return shown;
}

void setCharger(bool present)
{
    Board::set(QStringLiteral("charger/present"), QString::number(present));
}
} // namespace

void TestDeviceMgr::aModelWithAScreenOffersBacklightAndBrightness_data()
{
    QTest::addColumn<int>("model");
    QTest::newRow("8345") << 0x8345;
    QTest::newRow("8347") << 0x8347;
}

void TestDeviceMgr::aModelWithAScreenOffersBacklightAndBrightness()
{
    QFETCH(int, model);
    Board::setModel(static_cast<ushort>(model));
    QVERIFY(daemon.start());

    QCOMPARE(interfaces(), documentedInterfaces(path));
    QCOMPARE(backlight.call("getBacklight"), QStringLiteral("(55)"));
    QCOMPARE(brightness.call("getBrightness"), QStringLiteral("(d:120)"));
}

void TestDeviceMgr::anyOtherModelOffersNoBacklightAndNoBrightness_data()
{
    QTest::addColumn<int>("model");
    for (const int model : {0x8343, 0x8344, 0x8346, 0x8348, 0, 0x0345, 0x8355, 0xFFFF})
        QTest::newRow(qPrintable(QString::number(model, 16))) << model;
}

/** Verifies that the daemon runs as a model without a screen, with all other interfaces. */
#define VERIFY_NO_SCREEN()                                                                         \
    do {                                                                                           \
        QCOMPARE(interfaces(), withoutScreen());                                                   \
        QVERIFY(backlight.call("getBacklight")                                                     \
                    .startsWith("org.freedesktop.DBus.Error.UnknownInterface: "));                 \
        QVERIFY(brightness.call("getBrightness")                                                   \
                    .startsWith("org.freedesktop.DBus.Error.UnknownInterface: "));                 \
        QCOMPARE(Board::journal().filter("KyAls."), QStringList());                                \
        QCOMPARE(Board::journal().filter("KyBacklight."), QStringList());                          \
    } while (false)

void TestDeviceMgr::anyOtherModelOffersNoBacklightAndNoBrightness()
{
    QFETCH(int, model);
    Board::setModel(static_cast<ushort>(model));
    QVERIFY(daemon.start());
    VERIFY_NO_SCREEN();
}

/** Makes the daemon write the record of a model, and restarts it. */
void TestDeviceMgr::startWithModelText(const QString &model)
{
    QVERIFY(daemon.start());
    const QDBusMessage reply = version.reply("getEepromInstrument");
    QVariantMap record = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    QVERIFY(record.contains("Model"));
    record.insert("Model", model);
    QCOMPARE(version.call("setEepromInstrument", {record}), QStringLiteral("()"));
    daemon.stop();
    Board::clearJournal();
    QVERIFY(daemon.start());
}

void TestDeviceMgr::aModelTextThatIsNoNumberHasNoScreen_data()
{
    QTest::addColumn<QString>("model");
    // The record stores each of these texts as model 0.
    QTest::newRow("empty") << "";
    QTest::newRow("not hexadecimal") << "Strandel";
    QTest::newRow("a number and more") << "8345 plus";
}

void TestDeviceMgr::aModelTextThatIsNoNumberHasNoScreen()
{
    QFETCH(QString, model);
    startWithModelText(model);
    VERIFY_NO_SCREEN();
}

void TestDeviceMgr::aRecordThatCannotBeUsedHasNoScreen_data()
{
    QTest::addColumn<bool>("isCorrupt");
    QTest::newRow("corrupt") << true;
    QTest::newRow("unreadable") << false;
}

void TestDeviceMgr::aRecordThatCannotBeUsedHasNoScreen()
{
    QFETCH(bool, isCorrupt);
    if (isCorrupt) {
        QByteArray image = Board::bytes("eeprom/instrument");
        image[20] = static_cast<char>(image[20] ^ 1);
        Board::setBytes("eeprom/instrument", image);
    } else {
        Board::fault("KyEeprom.readEeprom", "1");
    }
    QVERIFY(daemon.start());
    VERIFY_NO_SCREEN();
    QCOMPARE(version.call("getEepromInstrument"), QStringLiteral("({\"CRC\": <false>})"));
}

void TestDeviceMgr::theModelIsReadOnceAtTheStart()
{
    Board::setModel(0x8347);
    QVERIFY(daemon.start());
    QCOMPARE(Board::get("revision/model"), QStringLiteral("2"));
    QCOMPARE(Board::get("revision/brand"), QStringLiteral("1"));

    Board::setModel(0x8346);
    version.call("getEepromInstrument");

    QCOMPARE(Board::journal().filter("KyEeprom.").size(), 1);
    QVERIFY(interfaces().contains("Backlight"));
}

void TestDeviceMgr::theHardwareIsInitialisedInOrder()
{
    QVERIFY(daemon.start());

    QStringList operations;
    const QStringList journal = Board::journal();
    for (const QString &line : journal)
        operations << line.left(line.indexOf('('));
    operations.removeDuplicates();
    QCOMPARE(
        operations,
        (QStringList{"KySocManager.initSPI", "KySocManager.getSoCRegister", "KyBatmonitor.update",
                     "KyFaccess.isDeviceInserted", "KyEeprom.readEeprom", "KyBoardRev.setBrand",
                     "KyBoardRev.setModel", "KyAls.init", "KyAls.readLux",
                     "KyAls.convLuxInExponentMantissaByte", "KyAls.setThresholds",
                     "KyAls.setThresholdsTimer", "KyAls.interruptEnable",
                     "KyAls.getinterruptHandler", "KyBatmonitor.getCmeterType",
                     "KyBatmonitor.getBatteryInfo", "KyLeds.setLedState", "KyFaccess.isMounted"}));
}

void TestDeviceMgr::theNameIsClaimedAfterAllHardwareIsInitialised()
{
    // Delay the last but one call of the start: if the daemon claimed its name too early, the
    // journal of that moment would lack the last two calls.
    Board::fault("KyFaccess.isMounted", "delay 300");
    QStringList journal;
    QDBusServiceWatcher watcher("com.orvendis.Strandel.BoardManager", QDBusConnection::systemBus(),
                                QDBusServiceWatcher::WatchForRegistration);
    connect(&watcher, &QDBusServiceWatcher::serviceRegistered,
            [&journal] { journal = Board::journal(); });

    daemon.launch();

    QTRY_VERIFY_WITH_TIMEOUT(!journal.isEmpty(), deadlineMs);
    QCOMPARE(journal.mid(journal.size() - 2),
             (QStringList{"KyFaccess.isMounted(0) = false", "KyLeds.setLedState(26, 0) = 0"}));
    manager.call("noSuchMethod");
    QCOMPARE(Board::journal(), journal);
}

void TestDeviceMgr::theStartSendsNoSignal()
{
    SignalRecorder recorder(path);
    QVERIFY(daemon.start());
    QCOMPARE(recorder.take(), QStringList());
}

void TestDeviceMgr::theLedsShowThePresentStateAtOnce_data()
{
    QTest::addColumn<QString>("charge");
    QTest::addColumn<bool>("charger");
    QTest::addColumn<QString>("shown");

    QTest::newRow("80 %") << "80" << false << "OFF ON ON ON ON OFF ON OFF OFF";
    QTest::newRow("flat") << "5" << false << "BLINK_1HZ OFF OFF OFF OFF OFF BLINK_1HZ OFF OFF";
    QTest::newRow("charging") << "-30" << true << "OFF ON BLINK_1HZ OFF OFF OFF OFF BLINK_1HZ OFF";
    QTest::newRow("full") << "100" << true << "OFF ON ON ON ON ON OFF ON OFF";
}

void TestDeviceMgr::theLedsShowThePresentStateAtOnce()
{
    QFETCH(QString, charge);
    QFETCH(bool, charger);
    QFETCH(QString, shown);
    Board::set("battery/charge", charge);
    setCharger(charger);
    QVERIFY(daemon.start());
    QCOMPARE(leds().join(' '), shown);
}

void TestDeviceMgr::theSdCardLedShowsThePresentStateAtOnce_data()
{
    QTest::addColumn<QString>("mounted");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("mounted") << "1"
                             << "OFF"
                             << "ON";
    QTest::newRow("not mounted") << "0"
                                 << "ON"
                                 << "OFF";
}

void TestDeviceMgr::theSdCardLedShowsThePresentStateAtOnce()
{
    QFETCH(QString, mounted);
    QFETCH(QString, before);
    QFETCH(QString, after);
    Board::set("storage/SD/mounted", mounted);
    // Only the mounted state counts.
    Board::set("storage/SD/inserted", mounted == "1" ? "0" : "1");
    Board::set("leds/SD_STATUS", before);
    QVERIFY(daemon.start());
    QCOMPARE(Board::get("leds/SD_STATUS"), after);
}

void TestDeviceMgr::theLedsFollowTheBattery()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder(path);
    Board::set("battery/charge", "-30");
    setCharger(true);

    QCOMPARE(batteryStatus(), QStringLiteral("(<\"CHARGER_ON_BAT_INF_40\">)"));

    QCOMPARE(leds().join(' '), QStringLiteral("OFF ON BLINK_1HZ OFF OFF OFF OFF BLINK_1HZ OFF"));
    QCOMPARE(recorder.take(), QStringList{"Alimentation.batteryStatus(\"CHARGER_ON_BAT_INF_40\")"});
}

void TestDeviceMgr::theSdCardLedFollowsTheCard()
{
    Board::set("storage/SD/mounted", "1");
    Board::set("storage/SD/inserted", "1");
    QVERIFY(daemon.start());
    QCOMPARE(Board::get("leds/SD_STATUS"), QStringLiteral("ON"));
    Remote(path, "Storage").call("umount", {"SD"});
    QCOMPARE(Board::get("leds/SD_STATUS"), QStringLiteral("OFF"));
}

void TestDeviceMgr::shutdownPreparesLedsAndBatteryInOrder()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder(path);
    Board::clearJournal();

    QCOMPARE(prepare(), QStringLiteral("()"));

    QCOMPARE(Board::journal().join("\n"), shutdownCalls.join("\n"));
    QCOMPARE(recorder.take(), QStringList());
}

void TestDeviceMgr::afterPreparationTheBatteryIsAnnouncedAndNoLedChanges()
{
    QVERIFY(daemon.start());
    QCOMPARE(prepare(), QStringLiteral("()"));
    const QStringList before = leds();
    SignalRecorder recorder(path);
    Board::clearJournal();

    setCharger(true);
    Board::set("battery/charge", "-30");
    QCOMPARE(batteryStatus(), QStringLiteral("(<\"CHARGER_ON_BAT_INF_40\">)"));
    setCharger(false);
    Board::set("battery/charge", "5");
    QCOMPARE(batteryStatus(), QStringLiteral("(<\"CHARGER_OFF_BAT_PRWT\">)"));

    QCOMPARE(recorder.take(),
             (QStringList{"Alimentation.batteryStatus(\"CHARGER_ON_BAT_INF_40\")",
                          "Alimentation.batteryStatus(\"CHARGER_OFF_BAT_PRWT\")"}));
    QCOMPARE(changes(), QStringList());
    QCOMPARE(leds(), before);
}

void TestDeviceMgr::afterPreparationThePeriodicCheckContinuesAndNoLedChanges()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    QCOMPARE(prepare(), QStringLiteral("()"));
    SignalRecorder recorder(path);
    Board::clearJournal();

    Board::set("battery/charge", "5");
    daemon.letTimePass(10);

    QCOMPARE(recorder.waitFor(1),
             QStringList{"Alimentation.batteryStatus(\"CHARGER_OFF_BAT_PRWT\")"});
    QCOMPARE(changes(), QStringList());
}

void TestDeviceMgr::afterPreparationTheTemperaturesAreStillChecked()
{
    daemon.controlClock();
    QVERIFY(daemon.start());
    QCOMPARE(prepare(), QStringLiteral("()"));
    SignalRecorder recorder(path);
    Board::set("temperature/SOM", "80");

    daemon.letTimePass(300);

    QVERIFY(Board::waitForJournal("KyTemperature.getTemperature(0) = 0 80"));
    QCOMPARE(recorder.take().filter("Temperature."),
             QStringList{"Temperature.temperatureReached(\"SOM\", 80)"});
}

void TestDeviceMgr::afterPreparationTheCardIsStillAnnounced()
{
    QVERIFY(daemon.start());
    QVERIFY(KernelEvents::waitForListeners(1));
    QCOMPARE(prepare(), QStringLiteral("()"));
    SignalRecorder recorder(path);

    QVERIFY(Board::storage("insert", "SD"));

    QCOMPARE(recorder.waitFor(2), (QStringList{"Storage.deviceChangedMountState(\"SD\", true)",
                                               "Storage.sdcardPresence(true)"}));
    QCOMPARE(Board::get("leds/SD_STATUS"), QStringLiteral("ON"));
}

void TestDeviceMgr::afterPreparationTheBacklightStillFollowsTheLight()
{
    QVERIFY(daemon.start());
    QCOMPARE(backlight.call("setBacklightStep", {true, 0}), QStringLiteral("()"));
    QCOMPARE(prepare(), QStringLiteral("()"));
    SignalRecorder recorder(path);

    Board::set("als/lux", "60");

    QCOMPARE(recorder.waitFor(2).filter("Backlight."),
             QStringList{"Backlight.backlightChanged(35, 4)"});
    QCOMPARE(Board::get("backlight/brightness"), QStringLiteral("35"));
}

void TestDeviceMgr::afterPreparationTheOtherDevicesStillWork()
{
    Board::set("storage/SD/mounted", "1");
    QVERIFY(daemon.start());
    QCOMPARE(prepare(), QStringLiteral("()"));
    Board::clearJournal();

    // The connection of the storage to its LED still works.
    QCOMPARE(Remote(path, "Storage").call("umount", {"SD"}), QStringLiteral("()"));
    QCOMPARE(changes(), QStringList{"KyLeds.setLedState(26, 0) = 0"});
    QCOMPARE(backlight.call("setBacklight", {70}), QStringLiteral("()"));
    QCOMPARE(brightness.call("getBrightness"), QStringLiteral("(d:120)"));
    QCOMPARE(Remote(path, "Watchdog").call("keepAlive"), QStringLiteral("()"));
    QCOMPARE(Remote(path, "Network").call("redpinePower", {true}), QStringLiteral("()"));
    QCOMPARE(Remote(path, "LED").call("setLEDStatus", {"WIFI", "ON"}), QStringLiteral("()"));
    QCOMPARE(Remote(path, "Temperature").call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <38>, \"SOM\": <42>})"));
}

void TestDeviceMgr::aSecondPreparationRepeatsTheSteps()
{
    QVERIFY(daemon.start());
    QCOMPARE(prepare(), QStringLiteral("()"));
    Board::clearJournal();

    QCOMPARE(prepare(), QStringLiteral("()"));

    QCOMPARE(Board::journal().join("\n"), shutdownCalls.join("\n"));
    QCOMPARE(Board::get("battery/shutdowns_prepared"), QStringLiteral("2"));
    QCOMPARE(daemon.log(), QString());
}

void TestDeviceMgr::preparationNeverFails()
{
    QVERIFY(daemon.start());
    Board::fault("KyLeds.setLedState", "always");
    Board::fault("KyBatmonitor.prepareForShutdown", "always");
    Board::clearJournal();
    QCOMPARE(prepare(), QStringLiteral("()"));
    QCOMPARE(changes().size(), 3);
}

void TestDeviceMgr::preparationTakesAnyArguments()
{
    QVERIFY(daemon.start());
    const QList<QVariantList> surplus = {{1}, {"now"}, {true, QVariantMap{{"Reason", "power"}}}};
    for (const QVariantList &arguments : surplus) {
        Board::clearJournal();
        QCOMPARE(manager.call("prepareForShutdown", arguments), QStringLiteral("()"));
        QCOMPARE(Board::journal().join("\n"), shutdownCalls.join("\n"));
    }
}

WORLD_TEST_MAIN(TestDeviceMgr)
#include "test_devicemgr.moc"
