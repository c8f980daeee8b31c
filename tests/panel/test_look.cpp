#include "defaults.h"
#include "drawing.h"
#include "files.h"
#include "hands.h"
#include "leds.h"
#include "look.h"
#include "traffic.h"

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QTest>

/** How the panel interprets files, announcements and clicks; all of them are simulated. */
class TestLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLedHasAnElement_data();
    void everyLedHasAnElement();
    void everyFileOfTheBoardIsSeen_data();
    void everyFileOfTheBoardIsSeen();
    void everyHandFindsItsElement();
    void everythingThatIsShownIsDrawn();
    void ledsBlink_data();
    void ledsBlink();
    void whatMakesNoSenseIsShownAsThat();
    void theWatchdogStarves_data();
    void theWatchdogStarves();
    void backlightDimsTheScreen();
    void handsRunCommands_data();
    void handsRunCommands();
    void whatIsDraggedComesBackAsItWas_data();
    void whatIsDraggedComesBackAsItWas();
    void commandsAreShownAsTheyAreTyped();
    void everyOperationOfTheLibrariesCanFail();
    void messagesAreLines_data();
    void messagesAreLines();
    void repliesBearTheNameOfTheirCall();

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

void TestLook::everyHandFindsItsElement()
{
    const Drawing drawing{DRAWING};
    for (const QString &element : handElements())
        QVERIFY2(drawing.has(element) && !drawing.bounds(element).isEmpty(), qPrintable(element));
}

void TestLook::everythingThatIsShownIsDrawn()
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

void TestLook::whatMakesNoSenseIsShownAsThat()
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
    QCOMPARE(empty.opacities.value("air-1"), 0.0);
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

void TestLook::handsRunCommands_data()
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
    row("dark", "light-track", 0, "", "", "light 1");
    row("light", "light-track", 0.5, "", "", "light 320");
    row("bright", "light-track", 1, "", "", "light 100000");
    row("cold", "temperature-SOM-track", 0, "", "", "temperature SOM -40");
    row("warm", "temperature-ANALOG_CHAIN-track", 1, "", "", "temperature ANALOG_CHAIN 120");
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
    row("kill", "daemon-kill", 0, "", "", "daemon kill");
    row("far", "air-2-track", 0, "", "", "echo -100 >/run/strandel-air/point1/signal");
    row("off the air", "air-2-switch", 0, "", "", "echo 0 >/run/strandel-air/point1/in_range");
    row("the menu", "faults", 0, "", "", "");
    row("nothing", "screen", 0, "", "", "");
}

void TestLook::handsRunCommands()
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

void TestLook::whatIsDraggedComesBackAsItWas_data()
{
    QTest::addColumn<Scale>("scale");
    QTest::newRow("temperature") << temperatureScale;
    QTest::newRow("light") << lightScale;
    QTest::newRow("signal") << signalScale;
}

void TestLook::whatIsDraggedComesBackAsItWas()
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
             QStringLiteral("./run -- sh -c 'rm /run/strandel-board/faults/*'"));
    qputenv("INSTRUMENT_COMMAND", "kyboard-instrument");
    QCOMPARE(asTyped("storage insert SD"),
             QStringLiteral("kyboard-instrument -- storage insert SD"));
    QCOMPARE(asTyped("echo 1 >file"), QStringLiteral("kyboard-instrument -- sh -c 'echo 1 >file'"));
    qunsetenv("INSTRUMENT_COMMAND");
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
    QTest::newRow("our own") << "{\"type\":\"method_call\",\"sender\":\":1.9\"," + ours +
                                    "Users\",\"member\":\"getUser\"}"
                             << "";
    QTest::newRow("the bus's") << QByteArray("{\"type\":\"method_call\",\"sender\":\":1.4\","
                                             "\"interface\":\"org.freedesktop.DBus\","
                                             "\"member\":\"Hello\"}")
                               << "";
    QTest::newRow("a reply to nothing")
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
}

Q_DECLARE_METATYPE(Scale)
QTEST_MAIN(TestLook)
#include "test_look.moc"
