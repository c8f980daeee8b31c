#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "kyled.h"

#include <QRegularExpression>

/** The front-panel LEDs, on the running daemon. */
class TestLed : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void handlersOfOtherDevicesCannotBeCalled_data();
    void handlersOfOtherDevicesCannotBeCalled();

    void setLedStatusTakesEveryLedAndEveryState();
    void setLedStatusRefusesAnUnknownLed_data();
    void setLedStatusRefusesAnUnknownLed();
    void setLedStatusRefusesAnUnknownStatus_data();
    void setLedStatusRefusesAnUnknownStatus();
    void setLedStatusReportsTheUnknownLedFirst();
    void setLedStatusReportsAnLedThatCannotBeSet();
    void getLedStatusReturnsTheStateOfEveryLed();
    void getLedStatusLeavesOutAnLedThatCannotBeRead();
    void getLedStatusIsEmptyIfNoLedCanBeRead();
    void getLedStatusReturnsOnlyStateNames();
    void prepareForShutdownMakesThePowerButtonBlink();
    void slowLedsOnlyDelayTheReply();

    void theLedsShowTheBatteryStatusFromTheStart_data();
    void theLedsShowTheBatteryStatusFromTheStart();
    void failedLedsDoNotPreventTheStart();
    void anUnknownBatteryStatusChangesNoLed_data();
    void anUnknownBatteryStatusChangesNoLed();
    void aFailedLedDoesNotHideTheBatteryStatus();
    void onlyTheSdCardHasAnLed();

private:
    static QStringList ledSettings();

    const Remote led{QStringLiteral("/KyDeviceMgr"), QStringLiteral("LED")};
};

namespace
{
const QVector<NamedValue> &leds = ledNames();

const char *const states[] = {"OFF", "BLINK_1HZ", "BLINK_3HZ", "ON", "UNKNOWN"};

QString nameOf(int number)
{
    for (const NamedValue &led : leds) {
        if (led.value == number)
            return led.name;
    }
    return QString::number(number);
}
} // namespace

/** All LED settings since the journal was cleared, in order: "BAT_RS1=OFF". */
QStringList TestLed::ledSettings()
{
    static const QRegularExpression call("^KyLeds\\.setLedState\\((\\d+), ([0-4])\\) = ");
    QStringList settings;
    for (const QString &line : Board::journal()) {
        const QRegularExpressionMatch match = call.match(line);
        if (match.hasMatch())
            settings << nameOf(match.captured(1).toInt()) + '=' + states[match.captured(2).toInt()];
    }
    return settings;
}

void TestLed::handlersOfOtherDevicesCannotBeCalled_data()
{
    QTest::addColumn<QString>("handler");
    QTest::addColumn<QVariantList>("arguments");
    const QString status = "CHARGER_ON_BAT_FULL";
    QTest::newRow("battery gauge") << "handleAlimentation" << QVariantList{status};
    QTest::newRow("power button") << "handlePowerButton" << QVariantList{status};
    QTest::newRow("storage") << "handleStorage" << QVariantList{"SD", true};
}

void TestLed::handlersOfOtherDevicesCannotBeCalled()
{
    QFETCH(QString, handler);
    QFETCH(QVariantList, arguments);
    QVERIFY(daemon.start());
    Board::clearJournal();

    QVERIFY(led.call(handler, arguments).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(Board::journal(), QStringList());
}

void TestLed::setLedStatusTakesEveryLedAndEveryState()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    for (const NamedValue &row : leds) {
        for (int state = 0; state < 5; ++state) {
            Board::clearJournal();
            QCOMPARE(led.call("setLEDStatus", {row.name, states[state]}), QStringLiteral("()"));
            QCOMPARE(
                Board::journal(),
                QStringList(
                    QStringLiteral("KyLeds.setLedState(%1, %2) = 0").arg(row.value).arg(state)));
            QCOMPARE(Board::get(QStringLiteral("leds/") + row.name), QString(states[state]));
        }
    }
    QCOMPARE(recorder.take(), QStringList());
}

void TestLed::setLedStatusRefusesAnUnknownLed_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"wifi", "", "WIFI ", " WIFI", "18", "LED_WIFI", "KyLED::WIFI",
                             "Led::WIFI", "WIFI|WPS", "OFF"})
        QTest::addRow("\"%s\"", name) << name;
}

void TestLed::setLedStatusRefusesAnUnknownLed()
{
    QFETCH(QString, name);
    QVERIFY(daemon.start());
    Board::clearJournal();

    QCOMPARE(led.call("setLEDStatus", {name, "ON"}),
             failure("InvalidArguments", "The LED is unknown"));
    QCOMPARE(Board::journal(), QStringList());
}

void TestLed::setLedStatusRefusesAnUnknownStatus_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"on", "", "ON ", " ON", "3", "BLINK", "LED_ON", "KyLED::ON",
                             "State::ON", "ON|OFF", "WIFI"})
        QTest::addRow("\"%s\"", name) << name;
}

void TestLed::setLedStatusRefusesAnUnknownStatus()
{
    QFETCH(QString, name);
    QVERIFY(daemon.start());
    Board::clearJournal();

    QCOMPARE(led.call("setLEDStatus", {"WIFI", name}),
             failure("InvalidArguments", "The status is unknown"));
    QCOMPARE(Board::journal(), QStringList());
}

void TestLed::setLedStatusReportsTheUnknownLedFirst()
{
    QVERIFY(daemon.start());
    const QString unknownLed = failure("InvalidArguments", "The LED is unknown");
    BusMonitor monitor;

    QCOMPARE(led.call("setLEDStatus", {"wifi", "on"}), unknownLed);

    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + unknownLed, "return ()"}));
}

void TestLed::setLedStatusReportsAnLedThatCannotBeSet()
{
    QVERIFY(daemon.start());
    Board::fault("KyLeds.setLedState", "always");
    QCOMPARE(led.call("setLEDStatus", {"WIFI", "ON"}),
             failure("Write", "Enable to set led WIFI to status ON"));
    QCOMPARE(led.call("setLEDStatus", {"BAT_GS5", "BLINK_3HZ"}),
             failure("Write", "Enable to set led BAT_GS5 to status BLINK_3HZ"));

    Board::clearFaults();
    QCOMPARE(led.call("setLEDStatus", {"WIFI", "ON"}), QStringLiteral("()"));
}

void TestLed::getLedStatusReturnsTheStateOfEveryLed()
{
    QVERIFY(daemon.start());
    QStringList calls;
    QStringList entries;
    for (int row = 0; row < leds.size(); ++row) {
        const int state = row % 5;
        Board::set(QStringLiteral("leds/") + leds[row].name, states[state]);
        calls << QStringLiteral("KyLeds.getLedState(%1) = 0 %2").arg(leds[row].value).arg(state);
        entries << QStringLiteral("\"%1\": <\"%2\">").arg(leds[row].name, states[state]);
    }
    entries.sort();
    Board::clearJournal();

    QCOMPARE(led.call("getLEDStatus"), "({" + entries.join(", ") + "})");
    QCOMPARE(Board::journal(), calls);
}

void TestLed::getLedStatusLeavesOutAnLedThatCannotBeRead()
{
    QVERIFY(daemon.start());
    const QString all = led.call("getLEDStatus");
    QVERIFY(all.contains("\"BT\": <\"OFF\">, "));

    Board::set("leds/BT", "GLOWING");

    QCOMPARE(led.call("getLEDStatus"), QString(all).remove("\"BT\": <\"OFF\">, "));
}

void TestLed::getLedStatusIsEmptyIfNoLedCanBeRead()
{
    QVERIFY(daemon.start());
    Board::fault("KyLeds.getLedState", "always");
    Board::clearJournal();

    QCOMPARE(led.call("getLEDStatus"), QStringLiteral("({})"));
    QCOMPARE(Board::journal().size(), leds.size());
}

void TestLed::getLedStatusReturnsOnlyStateNames()
{
    QVERIFY(daemon.start());
    Board::fault("KyLeds.getLedState", "garbage");
    QStringList entries;
    for (const NamedValue &row : leds)
        entries << QStringLiteral("\"%1\": <\"UNKNOWN\">").arg(row.name);
    entries.sort();

    QCOMPARE(led.call("getLEDStatus"), "({" + entries.join(", ") + "})");
}

void TestLed::prepareForShutdownMakesThePowerButtonBlink()
{
    QVERIFY(daemon.start());
    const QStringList shutdown = {"POWER_G=OFF", "POWER_Y=BLINK_3HZ"};
    Board::clearJournal();
    QCOMPARE(led.call("prepareForShutdown"), QStringLiteral("()"));
    QCOMPARE(ledSettings(), shutdown);
    QCOMPARE(Board::journal().size(), 2);

    Board::fault("KyLeds.setLedState", "always");
    Board::clearJournal();
    QCOMPARE(led.call("prepareForShutdown"), QStringLiteral("()"));
    QCOMPARE(ledSettings(), shutdown);
}

void TestLed::slowLedsOnlyDelayTheReply()
{
    QVERIFY(daemon.start());
    const QString all = led.call("getLEDStatus");
    Board::fault("KyLeds.getLedState", "delay 200");
    Board::fault("KyLeds.setLedState", "delay 200");

    QCOMPARE(led.call("getLEDStatus"), all);
    QCOMPARE(led.call("setLEDStatus", {"WIFI", "ON"}), QStringLiteral("()"));
    QCOMPARE(Board::get("leds/WIFI"), QStringLiteral("ON"));
    QCOMPARE(led.call("prepareForShutdown"), QStringLiteral("()"));
    QCOMPARE(Board::get("leds/POWER_Y"), QStringLiteral("BLINK_3HZ"));
}

void TestLed::theLedsShowTheBatteryStatusFromTheStart_data()
{
    QTest::addColumn<int>("charger");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("charge");
    QTest::addColumn<QString>("gauge");
    QTest::addColumn<QString>("button");
    const auto addRow = [](const char *status, int charger, int type, int charge, const char *gauge,
                           const char *button) {
        QTest::newRow(status) << charger << type << charge << gauge << button;
    };
    addRow("CHARGER_OFF_UNKNOWN_BAT", 1, 1, -101, "BAT_RS1=BLINK_3HZ", "");
    addRow("CHARGER_ON_NO_BAT", 1, 0, 50, "BAT_RS1=BLINK_1HZ", "");
    addRow("CHARGER_OFF_BAT_PRWT", 0, 1, 10, "BAT_RS1=BLINK_1HZ", "POWER_Y=BLINK_1HZ");
    addRow("CHARGER_OFF_BAT_INF_20", 0, 1, 20, "BAT_RS1=ON", "POWER_Y=ON");
    addRow("CHARGER_OFF_BAT_INF_40", 0, 1, 40, "BAT_GS2=ON BAT_GS1=ON", "POWER_Y=ON");
    addRow("CHARGER_OFF_BAT_INF_60", 0, 1, 60, "BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON", "POWER_Y=ON");
    addRow("CHARGER_OFF_BAT_INF_80", 0, 1, 80, "BAT_GS4=ON BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON",
           "POWER_Y=ON");
    addRow("CHARGER_OFF_BAT_INF_100", 0, 1, 100,
           "BAT_GS5=ON BAT_GS4=ON BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON", "POWER_Y=ON");
    addRow("CHARGER_ON_BAT_INF_20", 1, 1, -20, "BAT_GS1=BLINK_1HZ", "POWER_G=BLINK_1HZ");
    addRow("CHARGER_ON_BAT_INF_40", 1, 1, -40, "BAT_GS1=ON BAT_GS2=BLINK_1HZ", "POWER_G=BLINK_1HZ");
    addRow("CHARGER_ON_BAT_INF_60", 1, 1, -60, "BAT_GS2=ON BAT_GS1=ON BAT_GS3=BLINK_1HZ",
           "POWER_G=BLINK_1HZ");
    addRow("CHARGER_ON_BAT_INF_80", 1, 1, -80, "BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON BAT_GS4=BLINK_1HZ",
           "POWER_G=BLINK_1HZ");
    addRow("CHARGER_ON_BAT_INF_100", 1, 1, -100,
           "BAT_GS4=ON BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON BAT_GS5=BLINK_1HZ", "POWER_G=BLINK_1HZ");
    addRow("CHARGER_ON_BAT_FULL", 1, 1, 0, "BAT_GS5=ON BAT_GS4=ON BAT_GS3=ON BAT_GS2=ON BAT_GS1=ON",
           "POWER_G=ON");
}

void TestLed::theLedsShowTheBatteryStatusFromTheStart()
{
    QFETCH(int, charger);
    QFETCH(int, type);
    QFETCH(int, charge);
    QFETCH(QString, gauge);
    QFETCH(QString, button);
    Board::set("charger/present", QString::number(charger));
    Board::set("battery/type", QString::number(type));
    Board::set("battery/flag", "0");
    Board::set("battery/charge", QString::number(charge));
    const QString settings = "BAT_RS1=OFF BAT_GS1=OFF BAT_GS2=OFF BAT_GS3=OFF BAT_GS4=OFF "
                             "BAT_GS5=OFF " +
                             gauge + " POWER_G=OFF POWER_Y=OFF " + button + " SD_STATUS=OFF";

    QVERIFY(daemon.start());

    QCOMPARE(ledSettings().join(' '), settings.simplified());
    const QString status = QTest::currentDataTag();
    QCOMPARE(Remote("/KyDeviceMgr", "Alimentation").property("batteryStatus"),
             "(<\"" + status + "\">)");
}

void TestLed::failedLedsDoNotPreventTheStart()
{
    Board::fault("KyLeds.setLedState", "always");
    QVERIFY(daemon.start());
    QCOMPARE(ledSettings().size(), 14);
    QVERIFY(led.call("getLEDStatus").contains("\"POWER_Y\": <\"OFF\">"));
}

void TestLed::anUnknownBatteryStatusChangesNoLed_data()
{
    QTest::addColumn<QString>("status");
    for (const char *status : {"", "charger_on_bat_full", "CHARGER_ON_BAT_FULL ", "13",
                               "KyAlimentation::CHARGER_ON_BAT_FULL", "CHARGER_ON_BAT_INF_10"})
        QTest::addRow("\"%s\"", status) << status;
}

void TestLed::anUnknownBatteryStatusChangesNoLed()
{
    QFETCH(QString, status);
    QObject root;
    KyLED handlers(&root);

    handlers.handleAlimentation(status);
    handlers.handlePowerButton(status);

    QCOMPARE(Board::journal(), QStringList());
}

void TestLed::aFailedLedDoesNotHideTheBatteryStatus()
{
    QObject root;
    KyLED handlers(&root);
    Board::fault("KyLeds.setLedState", "7");

    handlers.handleAlimentation("CHARGER_OFF_BAT_INF_40");

    QCOMPARE(ledSettings(),
             (QStringList{"BAT_RS1=OFF", "BAT_GS1=OFF", "BAT_GS2=OFF", "BAT_GS3=OFF", "BAT_GS4=OFF",
                          "BAT_GS5=OFF", "BAT_GS2=ON", "BAT_GS1=ON"}));
    QCOMPARE(Board::get("leds/BAT_GS1"), QStringLiteral("ON"));
}

void TestLed::onlyTheSdCardHasAnLed()
{
    QObject root;
    KyLED handlers(&root);

    for (const char *device : {"USB", "sd", "", "SD ", "SD1"}) {
        handlers.handleStorage(device, true);
        handlers.handleStorage(device, false);
    }
    QCOMPARE(Board::journal(), QStringList());

    handlers.handleStorage("SD", true);
    handlers.handleStorage("SD", false);
    QCOMPARE(ledSettings(), (QStringList{"SD_STATUS=ON", "SD_STATUS=OFF"}));
}

WORLD_TEST_MAIN(TestLed)
#include "test_led.moc"
