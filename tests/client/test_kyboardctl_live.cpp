#include "board.h"
#include "client.h"
#include "commands.h"
#include "daemontest.h"
#include "deadline.h"
#include "terminalprogram.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <csignal>

/** kyboardctl's live views: for scripts and tests, and on a terminal. */
class TestKyboardctlLive : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void monitorEndsAfterTheSignals();
    void monitorShowsOnlyTheSignalsAskedFor();
    void numbersInSignalsHaveTheirUnits();
    void signalsThatDoNotComeHaveAStatus();
    void monitorListensForATime();
    void anUnknownSignalIsRefused();
    void everySignalOfTheDaemonIsKnown();
    void monitorEndsWhenTheBusEnds();
    void messagesDuringTheExitAreIgnored();

    void watchShowsTheInstrument();
    void watchFollowsTheSignals();
    void watchFitsATerminalThatChanges();
    void watchSurvivesTheDaemon();
    void hotSensorsDoNotKeepWatchBusy();
    void watchRestoresTheTerminal_data();
    void watchRestoresTheTerminal();
    void watchNeedsATerminal();

    void atATerminalThereAreColours();
    void noColourWithNoColorOrADumbTerminal_data();
    void noColourWithNoColorOrADumbTerminal();
    void linesFitTheTerminal();
    void textsFromTheInstrumentCannotMoveTheCursor();
};

void TestKyboardctlLive::init()
{
    DaemonTest::init();
    qputenv("TERM", "xterm");
    qunsetenv("NO_COLOR");
    QVERIFY(daemon.start());
}

/** Waits until a monitor is subscribed. */
static bool listens(QProcess &client)
{
    return QTest::qWaitFor([&client] { return client.peek(1000).contains("daemon.there\n"); },
                           deadlineMs);
}

void TestKyboardctlLive::monitorEndsAfterTheSignals()
{
    QProcess client;
    client.start("kyboardctl", {"monitor", "--count", "2", "--timeout=600"});
    QVERIFY(listens(client));
    QCOMPARE(runClient({"user", "set", "user2"}).status, 0);
    const ClientResult result = resultOf(client);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output.split('\n').size(), 4);
    QVERIFY(result.output.contains("  Users.changingUser\n"));
    QVERIFY(result.output.endsWith("  Users.userChanged  user2\n"));
}

void TestKyboardctlLive::monitorShowsOnlyTheSignalsAskedFor()
{
    QProcess client;
    client.start("kyboardctl", {"monitor", "Users.userChanged", "Storage.sdcardPresence",
                                "--count=2", "--timeout=600"});
    QVERIFY(listens(client));
    QCOMPARE(runClient({"user", "set", "user2"}).status, 0);
    QCOMPARE(runClient({"storage", "unmount", "SD"}).status, 0);
    const ClientResult result = resultOf(client);
    QCOMPARE(result.status, 0);
    QStringList seen;
    for (const QString &line : result.output.split('\n', Qt::SkipEmptyParts))
        seen << line.section("  ", 1);
    QCOMPARE(seen, (QStringList{"daemon.there", "Users.userChanged  user2",
                                "Storage.sdcardPresence  no"}));
}

void TestKyboardctlLive::numbersInSignalsHaveTheirUnits()
{
    QProcess client;
    client.start("kyboardctl",
                 {"monitor", "Temperature.temperatureReached", "Backlight.backlightChanged",
                  "Brightness.reachedBrightnessThreshold", "--timeout=600"});
    QVERIFY(listens(client));
    const auto shows = [&client](const char *pattern) {
        return QTest::qWaitFor(
            [&client, pattern] {
                return QString::fromUtf8(client.peek(10000))
                    .contains(QRegularExpression(QString::fromUtf8(pattern)));
            },
            deadlineMs);
    };
    QCOMPARE(runClient({"temperature", "threshold", "SOM", "1"}).status, 0);
    QCOMPARE(runClient({"temperature", "check"}).status, 0);
    QVERIFY(shows("  Temperature\\.temperatureReached  SOM  42 \u00b0C\n"));
    QCOMPARE(runClient({"backlight", "set-step", "on", "0"}).status, 0);
    // The step has no unit.
    QVERIFY(shows("  Backlight\\.backlightChanged  45 %  6\n"));
    Board::set("als/lux", "400");
    QVERIFY(shows("  Brightness\\.reachedBrightnessThreshold  400 lux  \\d+\n"));
    client.terminate();
    QVERIFY(client.waitForFinished());
}

void TestKyboardctlLive::signalsThatDoNotComeHaveAStatus()
{
    const ClientResult result =
        runClient({"monitor", "Users.userChanged", "--count", "1", "--timeout", "1"});
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: monitor: 0 of 1 signals came within 1 s\n"));
    QCOMPARE(result.status, 11);
}

void TestKyboardctlLive::monitorListensForATime()
{
    const ClientResult result = runClient({"monitor", "--timeout", "1"});
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
}

void TestKyboardctlLive::anUnknownSignalIsRefused()
{
    const ClientResult result = runClient({"monitor", "Users.changed"});
    QVERIFY(result.complaint.startsWith("kyboardctl: monitor: 'Users.changed' is none of " +
                                        signalNames().mid(0, 2).join(", ") + ", "));
    QCOMPARE(result.status, 2);
    QCOMPARE(runClient({"monitor", "--count=0"}).complaint,
             QStringLiteral("kyboardctl: --count: '0' is not a number of signals\n"));
    QCOMPARE(runClient({"status", "--count=1"}).status, 2);
}

void TestKyboardctlLive::everySignalOfTheDaemonIsKnown()
{
    QStringList announced;
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr"}) {
        const QDBusMessage reply = Remote("com.orvendis.Strandel.BoardManager", path,
                                          "org.freedesktop.DBus.Introspectable")
                                       .reply("Introspect");
        QXmlStreamReader reader(reply.arguments().value(0).toString());
        QString interface;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement)
                continue;
            const QString name = reader.attributes().value("name").toString();
            if (reader.name() == "interface")
                interface = name;
            if (reader.name() == "signal" && interface.startsWith("com.orvendis.Strandel."))
                announced << interface.section('.', 4) + '.' + name;
        }
    }
    QStringList known = signalNames();
    known.sort();
    announced.sort();
    QCOMPARE(known, announced);
}

void TestKyboardctlLive::monitorEndsWhenTheBusEnds()
{
    writeFile("/tmp/bus.conf", "<busconfig><type>system</type><listen>unix:path=/tmp/bus</listen>"
                               "<policy context=\"default\"><allow send_destination=\"*\"/>"
                               "<allow receive_sender=\"*\"/><allow user=\"*\"/></policy>"
                               "</busconfig>");
    QProcess other;
    other.start("dbus-daemon", {"--config-file=/tmp/bus.conf", "--nofork"});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/tmp/bus"), deadlineMs);
    QProcess client;
    client.start("kyboardctl", {"--address=unix:path=/tmp/bus", "monitor"});
    QVERIFY(QTest::qWaitFor([&client] { return client.peek(1000).contains("daemon.away\n"); },
                            deadlineMs));
    other.kill();
    other.waitForFinished();
    const ClientResult result = resultOf(client);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: monitor: the connection to the bus ended\n"));
    QCOMPARE(result.status, 3);
}

/** Qt D-Bus's thread still reads messages after main() has returned. */
void TestKyboardctlLive::messagesDuringTheExitAreIgnored()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    const QStringList others = bus.interface()->registeredServiceNames();
    QProcess client;
    startClient(client, {"monitor", "--count=1", "--timeout=600"}, {}, {"LD_PRELOAD=" SLOW_EXIT});
    QVERIFY(listens(client));
    QStringList names = bus.interface()->registeredServiceNames();
    for (const QString &other : others)
        names.removeAll(other);
    QCOMPARE(names.size(), 1);
    QDBusMessage message =
        QDBusMessage::createTargetedSignal(names.first(), "/", "com.orvendis.Test", "compound");
    message.setArguments({QVariantMap{{"key", QVariantList{1, 2}}}});

    const Remote users("/KyConfigMgr", "Users");
    const QDBusPendingCall call = users.start("setUser", {"user2"});
    const auto hasEnded = [&] {
        for (int times = 0; times < 100; ++times)
            bus.send(message);
        return client.state() == QProcess::NotRunning;
    };
    QVERIFY(QTest::qWaitFor(hasEnded, deadlineMs));

    const ClientResult result = resultOf(client);
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
}

void TestKyboardctlLive::watchShowsTheInstrument()
{
    TerminalProgram client("kyboardctl", {"watch"});
    QVERIFY(client.shows("Revisions"));
    const QString screen = QString::fromUtf8(client.shown());
    QVERIFY2(screen.startsWith("\033[?1049h\033[?25l\033[HStrandel  "), qPrintable(screen));
    for (const char *part : {"Profile            user1", "Battery voltage    7600 mV", "BAT_GS1=ON",
                             "ANALOG_CHAIN=38", "SD card mounted    no", "Ethernet  "})
        QVERIFY2(screen.contains(part), part);
    QVERIFY2(screen.contains("\033[32mBAT_GS1=ON\033[0m"), qPrintable(screen));
}

void TestKyboardctlLive::watchFollowsTheSignals()
{
    TerminalProgram client("kyboardctl", {"watch"});
    QVERIFY(client.shows("Revisions"));
    QCOMPARE(runClient({"user", "set", "user2"}).status, 0);
    QVERIFY(client.shows("Profile            user2"));
    Board::set("leds/RECORDING", "ON");
    QVERIFY(Board::storage("insert", "SD"));
    QVERIFY(client.shows("RECORDING=ON"));
    QVERIFY(client.shows("SD_STATUS=ON"));
}

void TestKyboardctlLive::watchFitsATerminalThatChanges()
{
    qputenv("TERM", "dumb");
    TerminalProgram client("kyboardctl", {"watch"}, 120);
    QVERIFY(client.shows("Revisions"));
    const QByteArray wide = "Ethernet hardware  no interface";
    QVERIFY2(client.shows(wide), client.shown().constData());
    const int drawn = client.shown().size();
    client.resize(30);
    QTRY_VERIFY_WITH_TIMEOUT(client.shown().mid(drawn).contains("\033[J"), deadlineMs);
    const QByteArray screen = client.shown().mid(drawn);
    for (const QByteArray &line : screen.split('\n'))
        QVERIFY2(QByteArray(line).replace("\033[H", "").replace("\033[K", "").trimmed().size() <=
                     30,
                 line.constData());
    client.resize(120);
    QTRY_VERIFY_WITH_TIMEOUT(client.shown().mid(drawn + screen.size()).contains(wide), deadlineMs);
}

void TestKyboardctlLive::watchSurvivesTheDaemon()
{
    TerminalProgram client("kyboardctl", {"watch"});
    QVERIFY(client.shows("Revisions"));
    daemon.stop();
    QVERIFY(client.shows("the board manager is not on the system bus"));
    const int drawn = client.shown().count("Revisions");
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(client.shown().count("Revisions") > drawn, deadlineMs);
}

/**
 * When watch reads the temperatures, the daemon announces those that are too high. The
 * announcement must not make watch read the temperatures again.
 */
void TestKyboardctlLive::hotSensorsDoNotKeepWatchBusy()
{
    QCOMPARE(runClient({"temperature", "threshold", "SOM", "1"}).status, 0);
    SignalRecorder recorder("/KyDeviceMgr");
    TerminalProgram client("kyboardctl", {"watch"});
    QVERIFY(client.shows("Revisions"));
    QCOMPARE(runClient({"temperature", "check"}).status, 0);
    QCOMPARE(runClient({"user", "set", "user2"}).status, 0);
    QVERIFY(client.shows("Profile            user2"));
    QCOMPARE(recorder.take().filter("temperatureReached").size(), 2);
}

void TestKyboardctlLive::watchRestoresTheTerminal_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("keyboard") << 0;
    QTest::newRow("asked to") << SIGTERM;
    QTest::newRow("hung up") << SIGHUP;
}

void TestKyboardctlLive::watchRestoresTheTerminal()
{
    QFETCH(int, signal);
    TerminalProgram client("kyboardctl", {"watch"});
    QVERIFY(client.shows("Revisions"));
    if (signal == 0)
        client.type("\x03");
    else
        QCOMPARE(::kill(pid_t(client.processId()), signal), 0);
    QCOMPARE(client.waitForEnd(), 0);
    QVERIFY2(client.shown().endsWith("\033[?25h\033[?1049l"), client.shown().constData());
}

void TestKyboardctlLive::watchNeedsATerminal()
{
    const ClientResult result = runClient({"watch"});
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: watch: needs a terminal; 'kyboardctl "
                                              "monitor' prints lines\n"));
    QCOMPARE(result.status, 2);
    QCOMPARE(result.output, QString());
}

void TestKyboardctlLive::atATerminalThereAreColours()
{
    TerminalProgram status("kyboardctl", {"status"});
    QCOMPARE(status.waitForEnd(), 0);
    QVERIFY2(status.shown().contains("\033[32mBAT_GS1=ON\033[0m"), status.shown().constData());
    TerminalProgram wrong("kyboardctl", {"user", "set", "x"});
    QCOMPARE(wrong.waitForEnd(), 2);
    QVERIFY2(wrong.shown().contains("\033[31mkyboardctl:\033[0m user set: "),
             wrong.shown().constData());
    QVERIFY(!runClient({"status"}).output.contains('\033'));
}

void TestKyboardctlLive::noColourWithNoColorOrADumbTerminal_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("NO_COLOR") << QByteArray("NO_COLOR") << QByteArray("1");
    QTest::newRow("dumb terminal") << QByteArray("TERM") << QByteArray("dumb");
}

void TestKyboardctlLive::noColourWithNoColorOrADumbTerminal()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, value);
    qputenv(variable, value);
    for (const QStringList &words : {QStringList{"led", "list"}, QStringList{"status"}}) {
        TerminalProgram client("kyboardctl", words);
        QCOMPARE(client.waitForEnd(), 0);
        QVERIFY(client.shown().contains("BAT_GS1"));
        QVERIFY2(!client.shown().contains("\033["), client.shown().constData());
    }
}

void TestKyboardctlLive::linesFitTheTerminal()
{
    qputenv("TERM", "dumb");
    for (const char *words : {"eeprom measure", "status", "help", "help led set"}) {
        TerminalProgram client("kyboardctl", QString(words).split(' '), 60);
        QCOMPARE(client.waitForEnd(), 0);
        const QString shown = QString::fromUtf8(client.shown());
        for (const QString &line : shown.split("\r\n"))
            QVERIFY2(line.size() <= 60, qPrintable(line));
        QVERIFY(shown.count('\n') > 1);
        // No wrapping for a program that reads the output.
        QVERIFY(!runClient(QString(words).split(' ')).output.contains("\n     "));
    }
}

void TestKyboardctlLive::textsFromTheInstrumentCannotMoveTheCursor()
{
    writeFile("/etc/sw_version", "BSP \033[2J\x07 1\n");
    const QString output = runClient({"version", "software"}).output;
    QVERIFY2(!output.contains('\033') && !output.contains('\x07'), qPrintable(output));
    QVERIFY2(output.contains("BSP"), qPrintable(output));
}

WORLD_TEST_MAIN(TestKyboardctlLive)
#include "test_kyboardctl_live.moc"
