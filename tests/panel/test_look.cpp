#include "defaults.h"
#include "drawing.h"
#include "files.h"
#include "hands.h"
#include "leds.h"
#include "look.h"
#include "traffic.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

Q_DECLARE_METATYPE(Scale)

/** How the panel interprets files, announcements and clicks; all of them are simulated. */
class TestLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLedHasAnElement_data();
    void everyLedHasAnElement();
    void everyLedBearsItsNameAndColour_data();
    void everyLedBearsItsNameAndColour();
    void everyFileOfTheBoardIsSeen_data();
    void everyFileOfTheBoardIsSeen();
    void everyElementThatCanBePressedIsDrawn();
    void everyElementOfALookIsInTheDrawing();
    void ledsBlink_data();
    void ledsBlink();
    void nonsenseInTheFilesIsShownAsUnknown();
    void textsFollowTheFiles_data();
    void textsFollowTheFiles();
    void theBandOfLightIncludesItsCodes();
    void theWatchdogStarves_data();
    void theWatchdogStarves();
    void backlightDimsTheScreen();
    void aBatteryThatIsLowIsRed();
    void theStrengthIsShownInBars_data();
    void theStrengthIsShownInBars();
    void aKnobIsWhereTheValueEnds();
    void aBlinkIsDrawnOnce();
    void theJoinedNetworkIsMarked();
    void aPressRunsItsCommand_data();
    void aPressRunsItsCommand();
    void aSecondPressUndoesTheFirst();
    void aProfileThatChangesIsSeen();
    void accessPointsAreDescribed();
    void placesOnAScaleAndValuesCorrespond_data();
    void placesOnAScaleAndValuesCorrespond();
    void commandsAreShownAsTheyAreTyped();
    void commandsQuoteAnyName();
    void everyOperationOfTheLibrariesCanFail();
    void everyChoiceOfTheMenuHasItsCommand();
    void everyCommandOfTheMenuFitsIntoItsLine();
    void theLastCommandAndItsResultAreShown();
    void messagesAreLines_data();
    void messagesAreLines();
    void repliesBearTheNameOfTheirCall();
    void longValuesAreCut();
    void aLineBearsTheTimeOfItsMessage();
    void callsWithoutAReplyAreForgotten();

private:
    static Instrument newInstrument();
};

Instrument TestLook::newInstrument()
{
    Instrument instrument;
    for (const board::DefaultFile &file : board::defaultFiles())
        instrument.board.insert(QString::fromStdString(file.name),
                                QByteArray::fromStdString(file.content));
    instrument.board.insert("soc/0x601", "17\n");
    instrument.isBusThere = instrument.isDaemonThere = true;
    instrument.profile = "user1";
    for (int count = 0; count < airRows + 1; ++count) {
        AirPoint point;
        point.directory = QStringLiteral("point%1").arg(count);
        point.ssid = QStringLiteral("Name %1").arg(count);
        instrument.air << point;
    }
    return instrument;
}

void TestLook::everyLedHasAnElement_data()
{
    QTest::addColumn<QString>("led");
    const QMetaObject &meta = Leds::staticMetaObject;
    const QMetaEnum leds = meta.enumerator(meta.indexOfEnumerator("Led"));
    QVERIFY(leds.keyCount() > 0);
    for (int index = 0; index < leds.keyCount(); ++index)
        QTest::newRow(leds.key(index)) << leds.key(index);
}

void TestLook::everyLedHasAnElement()
{
    QFETCH(QString, led);
    const Drawing drawing{DRAWING};
    QVERIFY(drawing.has(led));
    QVERIFY(drawing.bounds(led).width() > 8);
    Instrument instrument = newInstrument();
    instrument.board["leds/" + led] = "ON\n";
    QCOMPARE(lookOf(instrument, 0).opacities.value(led, -1), 1.0);
    instrument.board["leds/" + led] = "OFF\n";
    QCOMPARE(lookOf(instrument, 0).opacities.value(led, -1), 0.0);
}

void TestLook::everyLedBearsItsNameAndColour_data()
{
    everyLedHasAnElement_data();
}

/** Detects swapped ids in the drawing: each LED is above its own name. */
void TestLook::everyLedBearsItsNameAndColour()
{
    QFETCH(QString, led);
    Drawing drawing{DRAWING};
    const QRectF place = drawing.bounds(led);
    QDomDocument document;
    QVERIFY(document.setContent(readFile(DRAWING)));
    QStringList below;
    const QDomNodeList texts = document.elementsByTagName("text");
    for (int index = 0; index < texts.size(); ++index) {
        const QDomElement text = texts.at(index).toElement();
        const double y = text.attribute("y").toDouble();
        if (qAbs(text.attribute("x").toDouble() - place.center().x()) < 1 && y > place.bottom() &&
            y < place.bottom() + 20)
            below << text.text();
    }
    QCOMPARE(below, QStringList{QString(led).remove("BAT_").replace('_', ' ')});

    Instrument instrument = newInstrument();
    instrument.board["leds/" + led] = "ON\n";
    drawing.apply(lookOf(instrument, 0));
    const QColor colour = drawing.render({640, 400}).pixelColor((place.center() / 2).toPoint());
    const bool isRed = colour.red() > colour.green() + 80;
    const bool isGreen = colour.green() > colour.red() + 20;
    if (led.contains("_RS"))
        QVERIFY(isRed && !isGreen);
    else if (led.contains("_G"))
        QVERIFY(isGreen && !isRed);
    else if (led.endsWith("_Y"))
        QVERIFY(!isRed && !isGreen && colour.blue() < colour.red());
}

void TestLook::everyFileOfTheBoardIsSeen_data()
{
    QTest::addColumn<QString>("file");
    for (const board::DefaultFile &file : board::defaultFiles())
        QTest::newRow(file.name.c_str()) << QString::fromStdString(file.name);
    QTest::newRow("a register") << "soc/0x601";
    QTest::newRow("a fault") << "faults/KyLeds.setLedState";
}

void TestLook::everyFileOfTheBoardIsSeen()
{
    QFETCH(QString, file);
    Instrument instrument = newInstrument();
    const Look before = lookOf(instrument, 0);
    QByteArray &content = instrument.board[file];
    if (file.startsWith("eeprom/") && content.size() > 20)
        content[20] = char(content.at(20) + 1);
    else if (file.startsWith("leds/"))
        content = "ON\n";
    else
        content = content == "1\n" ? "0\n" : "1\n";
    QVERIFY(lookOf(instrument, 0) != before);
}

void TestLook::everyElementThatCanBePressedIsDrawn()
{
    const Drawing drawing{DRAWING};
    for (const QString &element : handElements())
        QVERIFY2(drawing.has(element) && !drawing.bounds(element).isEmpty(), qPrintable(element));
}

void TestLook::everyElementOfALookIsInTheDrawing()
{
    const Look look = lookOf(newInstrument(), 0);
    QCOMPARE(Drawing{DRAWING}.missing(look), QStringList());
    QCOMPARE(look.texts.value("air-more"), QStringLiteral("and 1 more"));
    QCOMPARE(look.texts.value("speed-text"), QString());
    Instrument fast = newInstrument();
    fast.speed = 60;
    QCOMPARE(lookOf(fast, 0).texts.value("speed-text"),
             QStringLiteral("time passes 60 times faster"));
    Look other;
    other.texts["no such thing"] = "";
    QCOMPARE(Drawing{DRAWING}.missing(other), QStringList{"no such thing"});
    QVERIFY(Drawing{DRAWING ".none"}.size().isEmpty());
}

void TestLook::ledsBlink_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<int>("changes");
    QTest::newRow("off") << QByteArray("OFF") << 0;
    QTest::newRow("on") << QByteArray("ON") << 0;
    QTest::newRow("1 Hz") << QByteArray("BLINK_1HZ") << 2 * 1 * 4 - 1;
    QTest::newRow("3 Hz") << QByteArray("BLINK_3HZ") << 2 * 3 * 4 - 1;
}

void TestLook::ledsBlink()
{
    QFETCH(QByteArray, state);
    int changes = 0;
    int lit = 0;
    for (int time = 0; time < 4000; ++time) {
        lit += ledOpacity(state, time) > 0;
        if (time > 0)
            changes += ledOpacity(state, time) != ledOpacity(state, time - 1);
    }
    QTEST(changes, "changes");
    QVERIFY(state == "ON" ? lit == 4000 : state == "OFF" ? lit == 0 : lit > 1990 && lit < 2010);
}

void TestLook::nonsenseInTheFilesIsShownAsUnknown()
{
    Instrument instrument = newInstrument();
    for (auto file = instrument.board.begin(); file != instrument.board.end(); ++file)
        *file = "nonsense that is much too long to be any value of a board";
    const Look look = lookOf(instrument, 0);
    QCOMPARE(look.texts.value("battery-charge"), QStringLiteral("?"));
    QCOMPARE(look.texts.value("battery-voltage"), QStringLiteral("? mV"));
    QCOMPARE(look.texts.value("temperature-SOM-text"), QStringLiteral("?"));
    QCOMPARE(look.texts.value("light-text"), QStringLiteral("?"));
    QCOMPARE(look.texts.value("eeprom-text"), QStringLiteral("instrument ?, measure ?"));
    QCOMPARE(look.opacities.value("BT"), 0.35);
    const Look empty = lookOf(Instrument(), 0);
    QCOMPARE(empty.texts.value("daemon-text"), QStringLiteral("the bus is away"));
    QCOMPARE(empty.texts.value("battery-status"), QStringLiteral("nothing"));
    QCOMPARE(empty.opacities.value("air-1"), 0.0);
}

void TestLook::textsFollowTheFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("element");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *file, const char *content, const char *element,
                        const char *text) {
        QTest::addRow("%s=%s", file, content)
            << file << QByteArray(content) << element << QString::fromUtf8(text);
    };
    row("powerman/wifi_supply", "1", "module-text", "has power");
    row("powerman/wifi_supply", "0", "module-text", "without power");
    row("charger/present", "1", "charger-text", "Pull the charger");
    row("charger/present", "0", "charger-text", "Plug charger in");
    row("storage/SD/inserted", "1", "SD-hand-text", "Pull");
    row("storage/SD/inserted", "0", "SD-hand-text", "Insert");
    row("storage/USB/mounted", "1", "USB-mount-text", "Unmount");
    row("storage/USB/mounted", "0", "USB-mount-text", "Mount");
    row("storage/USB/mounted", "1\n", "screen-storage", "USB key");
    row("storage/SD/mounted", "1", "screen-storage", "SD card");
    row("als/timer", "25", "light-timer", "persistence 2.5 s");
    row("als/interrupt_enabled", "1", "light-interrupt", "interrupt on");
    row("als/interrupt_enabled", "0", "light-interrupt", "interrupt off");
    row("als/interrupt", "1", "light-interrupt", "interrupt pending");
    row("backlight/enabled", "0", "backlight-text", "backlight 55 %, switched off");
    row("revision/FPGA", "0x00040007", "revision-text", "SOM 3, HPS 1, FPGA 4.7, card 2");
    row("eeprom/write_enabled", "1", "eeprom-protection", "writable");
    row("eeprom/write_enabled", "0", "eeprom-protection", "write-protected");
    row("eeprom/instrument", "short", "eeprom-text", "instrument ?, measure ok");
    row("watchdog/feeds", "0", "watchdog-text", "never fed, starving");
}

void TestLook::textsFollowTheFiles()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, element);
    Instrument instrument = newInstrument();
    instrument.board[file] = content;
    QTEST(lookOf(instrument, 0).texts.value(element), "text");
}

void TestLook::theBandOfLightIncludesItsCodes()
{
    Instrument instrument = newInstrument();
    const auto bandOf = [&](const char *low, const char *high) {
        instrument.board["als/threshold_low"] = low;
        instrument.board["als/threshold_high"] = high;
        return lookOf(instrument, 0).spans.value("light-band");
    };
    QVERIFY(bandOf("100", "100").first < bandOf("100", "100").second);
    QCOMPARE(bandOf("0", "255").first, 0.0);
    QCOMPARE(bandOf("0", "255").second, 1.0);
}

void TestLook::theWatchdogStarves_data()
{
    QTest::addColumn<qint64>("fedBefore");
    QTest::addColumn<QString>("text");
    QTest::newRow("never") << qint64(-1) << "fed 7 times, starving";
    QTest::newRow("now") << qint64(0) << "fed 7 times";
    QTest::newRow("just in time") << qint64(29999) << "fed 7 times";
    QTest::newRow("too late") << qint64(30000) << "fed 7 times, starving";
}

void TestLook::theWatchdogStarves()
{
    QFETCH(qint64, fedBefore);
    QFETCH(QString, text);
    Instrument instrument = newInstrument();
    instrument.board["watchdog/feeds"] = "7\n";
    instrument.fedBefore = fedBefore;
    const Look look = lookOf(instrument, 0);
    QCOMPARE(look.texts.value("watchdog-text"), text);
    QCOMPARE(look.opacities.value("watchdog-fed") > 0, !text.contains("starving"));
}

void TestLook::backlightDimsTheScreen()
{
    Instrument instrument = newInstrument();
    const auto shade = [&](const char *brightness, const char *enabled) {
        instrument.board["backlight/brightness"] = brightness;
        instrument.board["backlight/enabled"] = enabled;
        return lookOf(instrument, 0).opacities.value("screen-shade");
    };
    QCOMPARE(shade("100", "1"), 0.0);
    QVERIFY(shade("50", "1") > 0.2);
    QVERIFY(shade("0", "1") > shade("50", "1"));
    QVERIFY(shade("100", "0") > shade("0", "1"));
}

void TestLook::aBatteryThatIsLowIsRed()
{
    Instrument instrument = newInstrument();
    const auto isRed = [&](const char *charge) {
        instrument.board["battery/charge"] = charge;
        return lookOf(instrument, 0).opacities.value("battery-low") > 0;
    };
    QVERIFY(isRed("0"));
    QVERIFY(isRed("20"));
    // The charge is negative while the battery is being charged.
    QVERIFY(isRed("-20"));
    QVERIFY(!isRed("21"));
    QVERIFY(!isRed("nonsense"));
}

void TestLook::theStrengthIsShownInBars_data()
{
    QTest::addColumn<int>("strength");
    QTest::addColumn<int>("bars");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << -1 << 0 << "";
    QTest::newRow("nothing") << 0 << 0 << "0 %";
    QTest::newRow("weak") << 5 << 1 << "5 %";
    QTest::newRow("half") << 54 << 2 << "54 %";
    QTest::newRow("good") << 72 << 3 << "72 %";
    QTest::newRow("full") << 100 << 4 << "100 %";
}

void TestLook::theStrengthIsShownInBars()
{
    QFETCH(int, strength);
    Instrument instrument = newInstrument();
    instrument.strength = strength;
    const Look look = lookOf(instrument, 0);
    int bars = 0;
    for (int bar = 1; bar <= 4; ++bar)
        bars += look.opacities.value(QStringLiteral("strength-%1").arg(bar)) > 0;
    QTEST(bars, "bars");
    QTEST(look.texts.value("strength-text"), "text");
}

void TestLook::aKnobIsWhereTheValueEnds()
{
    Drawing drawing{DRAWING};
    const QPoint middle = drawing.bounds("light-track").center().toPoint();
    Look look;
    look.spans["light-level"] = {0, 0.5};
    drawing.apply(look);
    const auto colour = [&] { return drawing.render({1280, 800}).pixelColor(middle); };
    QCOMPARE(colour(), QColor(Qt::white));
    look.spans["light-level"] = {0, 0.6};
    drawing.apply(look);
    QVERIFY(colour() != QColor(Qt::white));
}

void TestLook::aBlinkIsDrawnOnce()
{
    Instrument instrument = newInstrument();
    instrument.board["leds/BT"] = "BLINK_1HZ";
    instrument.board["leds/WPS"] = "BLINK_3HZ";
    Drawing drawing{DRAWING};
    const QSize size{640, 400};
    const auto drawn = [&](int time) { return drawing.picture(lookOf(instrument, time), size); };
    QSet<qint64> images;
    for (int time = 0; time < 2000; time += 50)
        images.insert(drawn(time).cacheKey());
    QCOMPARE(images.size(), 4);
    // Each cached image equals a new drawing of the same state.
    Drawing other{DRAWING};
    for (int time : {0, 250, 550, 700}) {
        other.apply(lookOf(instrument, time));
        QVERIFY(drawn(time) == other.render(size));
        QVERIFY(images.contains(drawn(time).cacheKey()));
    }
    QVERIFY(drawn(0) != drawn(250));
    // Four other images replace the cached ones.
    instrument.board["battery/charge"] = "7\n";
    for (int time : {0, 250, 550, 700})
        QVERIFY(!images.contains(drawn(time).cacheKey()));
    instrument.board = newInstrument().board;
    QVERIFY(!images.contains(drawn(550).cacheKey()));
    QCOMPARE(drawing.picture(Look(), {320, 200}).size(), QSize(320, 200));
}

void TestLook::theJoinedNetworkIsMarked()
{
    Instrument instrument = newInstrument();
    instrument.joinedService = "/net/connman/service/wifi_02_4e616d652031_managed_psk";
    const Look look = lookOf(instrument, 0);
    QCOMPARE(look.opacities.value("air-1-joined"), 0.0);
    QCOMPARE(look.opacities.value("air-2-joined"), 1.0);
}

void TestLook::aPressRunsItsCommand_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<double>("place");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("command");
    const auto row = [](const char *name, const char *element, double place, const char *file,
                        const char *content, const char *command) {
        QTest::newRow(name) << element << place << file << QByteArray(content) << command;
    };
    row("plug", "charger", 0.5, "charger/present", "0\n", "charger plug");
    row("unplug", "charger", 0.5, "charger/present", "1\n", "charger unplug");
    row("battery", "battery-track", 0.354, "", "", "battery 35");
    row("battery, rounded up", "battery-track", 0.356, "", "", "battery 36");
    row("dark", "light-track", 0, "", "", "light 1");
    row("light", "light-track", 0.5, "", "", "light 320");
    row("bright", "light-track", 1, "", "", "light 100000");
    row("cold", "temperature-SOM-track", 0, "", "", "temperature SOM -40");
    row("warm", "temperature-ANALOG_CHAIN-track", 1, "", "", "temperature ANALOG_CHAIN 120");
    row("warmer, rounded up", "temperature-SOM-track", 0.5042, "", "", "temperature SOM 41");
    row("insert", "SD-hand", 0, "storage/SD/inserted", "0", "storage insert SD");
    row("the card itself", "SD", 0, "storage/SD/inserted", "0", "storage insert SD");
    row("pull", "USB-hand", 0, "storage/USB/inserted", "1", "storage remove USB");
    row("mount", "SD-mount", 0, "storage/SD/inserted", "1", "storage mount SD");
    row("mount nothing", "SD-mount", 0, "storage/SD/inserted", "0", "");
    row("cable", "cable", 0, "", "", "ethernet unplug");
    row("server", "dhcp", 0, "", "", "ethernet mute");
    row("server of the air", "wifi-dhcp", 0, "", "", "wifi mute");
    row("start", "daemon-start", 0, "", "", "daemon start");
    row("stop", "daemon-stop", 0, "", "", "daemon stop");
    row("restart", "daemon-restart", 0, "", "", "daemon restart");
    row("kill", "daemon-kill", 0, "", "", "daemon kill");
    row("far", "air-2-track", 0, "", "", "echo -100 >/run/strandel-air/point1/signal");
    row("nearer, rounded", "air-1-track", 0.5057, "", "",
        "echo -65 >/run/strandel-air/point0/signal");
    row("off the air", "air-2-switch", 0, "", "", "echo 0 >/run/strandel-air/point1/in_range");
    row("the menu", "faults", 0, "", "", "");
    row("nothing", "screen", 0, "", "", "");
}

void TestLook::aPressRunsItsCommand()
{
    QFETCH(QString, element);
    QFETCH(double, place);
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    Instrument instrument = newInstrument();
    if (!file.isEmpty())
        instrument.board[file] = content;
    QTEST(commandFor(element, place, instrument), "command");
}

void TestLook::aSecondPressUndoesTheFirst()
{
    Instrument instrument = newInstrument();
    for (bool isIn : {true, false}) {
        instrument.isCableIn = isIn ? 1 : 0;
        instrument.isDhcpMute = instrument.isWifiDhcpMute = isIn ? 0 : 1;
        instrument.air[0].isInRange = isIn;
        instrument.board["storage/SD/inserted"] = "1";
        instrument.board["storage/SD/mounted"] = isIn ? "1" : "0";
        const Look look = lookOf(instrument, 0);
        QCOMPARE(look.opacities.value("cable-in") > 0, isIn);
        QCOMPARE(look.opacities.value("cable-out") > 0, !isIn);
        QCOMPARE(look.opacities.value("air-1-on") > 0, isIn);
        QCOMPARE(look.opacities.value("air-1-off") > 0, !isIn);
        QCOMPARE(look.texts.value("cable-text").startsWith("Pull"), isIn);
        QCOMPARE(look.texts.value("dhcp-text").startsWith("Mute"), isIn);
        QCOMPARE(look.texts.value("wifi-dhcp-text").startsWith("Mute"), isIn);
        const auto command = [&](const char *element) {
            return commandFor(element, 0, instrument);
        };
        QVERIFY(command("cable").endsWith(isIn ? "ethernet unplug" : "ethernet plug"));
        QVERIFY(command("dhcp").endsWith(isIn ? "ethernet mute" : "ethernet unmute"));
        QVERIFY(command("wifi-dhcp").endsWith(isIn ? "wifi mute" : "wifi unmute"));
        QCOMPARE(command("SD-mount"), isIn ? "storage unmount SD" : "storage mount SD");
        QVERIFY(command("air-1-switch").startsWith(isIn ? "echo 0 " : "echo 1 "));
    }
}

void TestLook::aProfileThatChangesIsSeen()
{
    Instrument instrument = newInstrument();
    QCOMPARE(lookOf(instrument, 0).texts.value("daemon-profile"), QStringLiteral("profile user1"));
    instrument.isChangingProfile = true;
    QCOMPARE(lookOf(instrument, 0).texts.value("daemon-profile"),
             QStringLiteral("profile user1 \u2192 \u2026"));
}

void TestLook::accessPointsAreDescribed()
{
    Instrument instrument = newInstrument();
    instrument.air[0].directory = "name 0";
    instrument.air[1].isHidden = true;
    instrument.air[1].ssid = "Vault";
    instrument.air[1].signal = -65;
    const Look look = lookOf(instrument, 0);
    QCOMPARE(look.texts.value("air-1-name"), QStringLiteral("Name 0"));
    QCOMPARE(look.texts.value("air-2-name"), QStringLiteral("Vault (point1), hid\u2026"));
    QCOMPARE(look.texts.value("air-2-signal"), QStringLiteral("-65 dBm"));
    QCOMPARE(look.spans.value("air-2-level").second, 0.5);
}

void TestLook::placesOnAScaleAndValuesCorrespond_data()
{
    QTest::addColumn<Scale>("scale");
    QTest::newRow("temperature") << temperatureScale;
    QTest::newRow("light") << lightScale;
    QTest::newRow("signal") << signalScale;
}

void TestLook::placesOnAScaleAndValuesCorrespond()
{
    QFETCH(Scale, scale);
    for (double place : {0.0, 0.1, 0.5, 0.77, 1.0})
        QVERIFY(qAbs(scale.placeOf(scale.valueAt(place)) - place) < 1e-9);
    QCOMPARE(scale.placeOf(scale.lowest - 1000), 0.0);
    QCOMPARE(scale.placeOf(scale.highest * 1000 + 1e6), 1.0);
    QCOMPARE(scale.valueAt(-3), scale.lowest);
}

void TestLook::commandsAreShownAsTheyAreTyped()
{
    QCOMPARE(asTyped("storage insert SD"), QStringLiteral("./run -- storage insert SD"));
    QCOMPARE(asTyped("echo 1 >file"), QStringLiteral("./run -- sh -c 'echo 1 >file'"));
    QCOMPARE(asTyped(healAllCommand()),
             QStringLiteral("./run -- sh -c 'rm -f /run/strandel-board/faults/*'"));
    qputenv("INSTRUMENT_COMMAND", "kyboard-instrument");
    QCOMPARE(asTyped("storage insert SD"),
             QStringLiteral("kyboard-instrument -- storage insert SD"));
    QCOMPARE(asTyped("echo 1 >file"), QStringLiteral("kyboard-instrument -- sh -c 'echo 1 >file'"));
    qunsetenv("INSTRUMENT_COMMAND");
    QCOMPARE(asTyped(shellCommand({"sh", "-c", "echo 1 >x"})),
             QStringLiteral("./run -- sh -c 'echo 1 >x'"));
}

void TestLook::commandsQuoteAnyName()
{
    Instrument instrument = newInstrument();
    instrument.air[0].directory = "my cafe's";
    QTemporaryDir directory;
    QVERIFY(QDir(directory.path()).mkpath("my cafe's"));
    QString command = commandFor("air-1-switch", 0, instrument);
    QVERIFY(command.contains("/run/strandel-air/my cafe"));
    command.replace("/run/strandel-air", directory.path());
    // Two shells parse it: the user's and the one in the world.
    const QString typed = asTyped(command).remove("./run -- ");
    QVERIFY(typed.startsWith("sh -c "));
    QCOMPARE(QProcess::execute("sh", {"-c", typed}), 0);
    QCOMPARE(readFile(directory.path() + "/my cafe's/in_range"), QByteArray("0\n"));
}

void TestLook::everyOperationOfTheLibrariesCanFail()
{
    QStringList operations;
    const QRegularExpression name("\"(Ky[A-Za-z]+\\.[A-Za-z]+)\"");
    for (const QString &source : QDir(BOARD_SOURCES).entryList({"ky*.cpp"})) {
        auto matches = name.globalMatch(readFile(BOARD_SOURCES "/" + source));
        while (matches.hasNext())
            operations << matches.next().captured(1);
    }
    operations.sort();
    operations.removeDuplicates();
    QVERIFY(operations.size() > 30);
    QCOMPARE(faultOperations(), operations);
}

void TestLook::everyChoiceOfTheMenuHasItsCommand()
{
    QStringList choices;
    for (const FaultChoice &choice : faultChoices)
        choices << QString(choice.title) + ": " + faultCommand("KyAls.init", choice.words);
    const QString file = " >/run/strandel-board/faults/KyAls.init";
    QCOMPARE(choices, QStringList({"fails: echo always" + file, "fails once: echo 1" + file,
                                   "hangs until it is healed: echo hold" + file,
                                   "takes two seconds: echo delay 2000" + file,
                                   "lies: echo garbage" + file}));
    QCOMPARE(healCommand("KyAls.init"), QStringLiteral("rm /run/strandel-board/faults/KyAls.init"));
}

void TestLook::everyCommandOfTheMenuFitsIntoItsLine()
{
    for (const QString &operation : faultOperations()) {
        for (const FaultChoice &choice : faultChoices) {
            Instrument instrument;
            instrument.command = asTyped(faultCommand(operation, choice.words));
            QCOMPARE(lookOf(instrument, 0).texts.value("command"), instrument.command);
        }
    }
}

void TestLook::theLastCommandAndItsResultAreShown()
{
    Instrument instrument;
    const auto text = [&](const char *element) {
        return lookOf(instrument, 0).texts.value(element);
    };
    QCOMPARE(text("command"),
             QStringLiteral("press or drag something: here is the command for it"));
    QCOMPARE(text("command-result"), QString());
    instrument.command = QString(100, 'x');
    instrument.complaint = QString(60, 'y');
    QCOMPARE(text("command"), instrument.command);
    QCOMPARE(text("command-result"), instrument.complaint);
    instrument.command += 'x';
    instrument.complaint += 'y';
    QCOMPARE(text("command"), QString(QString(99, 'x') + QChar(0x2026)));
    QCOMPARE(text("command-result"), QString(QString(59, 'y') + QChar(0x2026)));
}

void TestLook::messagesAreLines_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("text");
    const QByteArray ours = "\"interface\":\"com.orvendis.Strandel.BoardManager.";
    QTest::newRow("call") << "{\"type\":\"method_call\",\"sender\":\":1.7\"," + ours +
                                 "LED\",\"member\":\"setLEDStatus\",\"payload\":{\"type\":\"ss\","
                                 "\"data\":[\"WIFI\",\"ON\"]}}"
                          << "  call    LED.setLEDStatus(\"WIFI\", \"ON\")";
    QTest::newRow("signal") << "{\"type\":\"signal\",\"sender\":\":1.4\"," + ours +
                                   "WIFI\",\"member\":\"propertyChanged\",\"payload\":{\"data\":["
                                   "\"\",\"Strength\",{\"type\":\"y\",\"data\":72}]}}"
                            << "  signal  WIFI.propertyChanged(\"\", \"Strength\", 72)";
    QTest::newRow("every type")
        << QByteArray("{\"type\":\"signal\",\"interface\":\"a.b\",\"member\":\"c\",\"payload\":{"
                      "\"data\":[true,1.5,[1,2],{\"x\":{\"type\":\"s\",\"data\":\"y\"}}]}}")
        << "  signal  a.b.c(true, 1.5, [1, 2], {x: \"y\"})";
    QTest::newRow("no and a long number")
        << QByteArray("{\"type\":\"signal\",\"interface\":\"a.b\",\"member\":\"c\",\"payload\":{"
                      "\"data\":[false,1234567890]}}")
        << "  signal  a.b.c(false, 1234567890)";
    QTest::newRow("keys like those of a variant")
        << QByteArray("{\"type\":\"signal\",\"interface\":\"a.b\",\"member\":\"c\",\"payload\":{"
                      "\"data\":[{\"data\":1,\"more\":2,\"type\":\"y\"}]}}")
        << "  signal  a.b.c({data: 1, more: 2, type: \"y\"})";
    QTest::newRow("a property")
        << QByteArray("{\"type\":\"method_call\",\"sender\":\":1.4\",\"interface\":\"org."
                      "freedesktop.DBus.Properties\",\"member\":\"Get\",\"payload\":{\"data\":["
                      "\"a.b\",\"c\"]}}")
        << "  call    org.freedesktop.DBus.Properties.Get(\"a.b\", \"c\")";
    QTest::newRow("our own") << "{\"type\":\"method_call\",\"sender\":\":1.9\"," + ours +
                                    "Users\",\"member\":\"getUser\"}"
                             << "";
    QTest::newRow("the bus's") << QByteArray("{\"type\":\"method_call\",\"sender\":\":1.4\","
                                             "\"interface\":\"org.freedesktop.DBus\","
                                             "\"member\":\"Hello\"}")
                               << "";
    QTest::newRow("a reply without its call")
        << QByteArray("{\"type\":\"method_return\",\"destination\":\":1.7\",\"reply_cookie\":3}")
        << "";
    QTest::newRow("no message") << QByteArray("{}") << "";
}

void TestLook::messagesAreLines()
{
    QFETCH(QByteArray, message);
    Traffic traffic;
    TrafficLine line;
    const bool isLine = traffic.take(QJsonDocument::fromJson(message).object(), ":1.9", line);
    QTEST(isLine ? line.text().mid(12) : QString(), "text");
}

void TestLook::repliesBearTheNameOfTheirCall()
{
    Traffic traffic;
    TrafficLine line;
    const auto take = [&](const QByteArray &message) {
        return traffic.take(QJsonDocument::fromJson(message).object(), ":1.9", line);
    };
    const QByteArray call = "{\"type\":\"method_call\",\"cookie\":5,\"sender\":\":1.7\","
                            "\"interface\":\"com.orvendis.Strandel.BoardManager.Users\","
                            "\"member\":\"getUser\"}";
    QVERIFY(take(call));
    QVERIFY(!take("{\"type\":\"method_return\",\"reply_cookie\":5,\"destination\":\":1.8\"}"));
    QVERIFY(take("{\"type\":\"method_return\",\"reply_cookie\":5,\"destination\":\":1.7\","
                 "\"payload\":{\"data\":[\"user1\"]}}"));
    QCOMPARE(line.text().mid(12), QStringLiteral("  reply   Users.getUser: \"user1\""));
    QVERIFY(take(call));
    QVERIFY(take("{\"type\":\"error\",\"reply_cookie\":5,\"destination\":\":1.7\","
                 "\"error_name\":\"a.b\",\"payload\":{\"data\":[\"why\"]}}"));
    QCOMPARE(line.text().mid(12), QStringLiteral("  error   Users.getUser: a.b \"why\""));
    // The call already has its reply: a second reply belongs to no call.
    QVERIFY(!take("{\"type\":\"method_return\",\"reply_cookie\":5,\"destination\":\":1.7\"}"));
    // The sender ":1.9" is the panel itself, whose calls and their replies are not shown.
    QVERIFY(!take(QByteArray(call).replace(":1.7", ":1.9")));
    QVERIFY(!take("{\"type\":\"method_return\",\"reply_cookie\":5,\"destination\":\":1.9\"}"));
}

void TestLook::longValuesAreCut()
{
    Traffic traffic;
    TrafficLine line;
    const auto valuesOf = [&](int size) {
        traffic.take({{"type", "signal"},
                      {"member", "c"},
                      {"payload", QJsonObject{{"data", QJsonArray{QString(size, 'x')}}}}},
                     QString(), line);
        return line.values;
    };
    // The quotation marks count towards the limit of 400 characters.
    QCOMPARE(valuesOf(398), QString(QString(398, 'x').prepend('"') + '"'));
    QCOMPARE(valuesOf(399), QString(QString(399, 'x').prepend('"') + QChar(0x2026)));
}

void TestLook::aLineBearsTheTimeOfItsMessage()
{
    Traffic traffic;
    TrafficLine line;
    QVERIFY(traffic.take(
        {{"type", "signal"}, {"member", "c"}, {"timestamp-realtime", 1700000000123456.0}},
        QString(), line));
    const QString time = QDateTime::fromMSecsSinceEpoch(1700000000123).toString("HH:mm:ss.zzz");
    QCOMPARE(line.text(), time + "  signal  .c()");
}

void TestLook::callsWithoutAReplyAreForgotten()
{
    Traffic traffic;
    TrafficLine line;
    const auto call = [&](int serial) {
        traffic.take({{"type", "method_call"},
                      {"sender", ":1.7"},
                      {"cookie", serial},
                      {"member", "setUser"}},
                     QString(), line);
    };
    const auto isKnownReply = [&](int serial) {
        return traffic.take(
            {{"type", "method_return"}, {"destination", ":1.7"}, {"reply_cookie", serial}},
            QString(), line);
    };
    for (int serial = 0; serial <= Traffic::mostCalls; ++serial)
        call(serial);
    QVERIFY(!isKnownReply(0));
    QVERIFY(isKnownReply(1));
    QVERIFY(isKnownReply(Traffic::mostCalls));
    // The two replies left room for two calls.
    call(0);
    call(1);
    QVERIFY(isKnownReply(2));
}

QTEST_MAIN(TestLook)
#include "test_look.moc"
