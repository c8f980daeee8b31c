#include "board.h"
#include "busmonitor.h"
#include "commands.h"
#include "daemontest.h"
#include "deadline.h"
#include "documentedarguments.h"
#include "enumnames.h"
#include "introspection.h"
#include "leds.h"
#include "processes.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <csignal>

/** kyboardctl's monitor, running in parallel with the test. */
class RunningMonitor
{
public:
    explicit RunningMonitor(const QStringList &options)
    {
        m_process.start("kyboardctl", options + QStringList{"monitor"});
    }
    ~RunningMonitor()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    /** Waits until it has printed @p text. */
    bool prints(const char *text)
    {
        return QTest::qWaitFor(
            [this, text] {
                m_printed += m_process.readAllStandardOutput();
                return m_printed.contains(text);
            },
            deadlineMs);
    }
    QByteArray printed() const { return m_printed; }

private:
    QProcess m_process;
    QByteArray m_printed;
};

/** kyboardctl, the client, against the running daemon. */
class TestKyboardctl : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void valuesArePrinted();
    void valuesForMachinesAreJson();
    void aFailedWriteToStandardOutputIsAFailure();
    void settingAValueChangesTheInstrument();
    void errorsOfTheDaemonAreShownWithNameAndText();
    void aWrongCommandLineSendsNothing_data();
    void aWrongCommandLineSendsNothing();
    void aShortPassphraseSendsNothing();
    void optionsStandAnywhere();
    void aTimeoutHasItsOwnStatus();
    void aModelWithoutAScreenHasNoBacklight();
    void statusShowsTheWholeInstrument();
    void statusForMachinesIsOneObject();
    void monitorPrintsEverySignal();
    void monitorNoticesTheDaemonComingAndGoing();
    void everyMemberOfTheDaemonHasACommand();
    void everyArgumentMatchesTheDocuments();
    void secretsComeFromStandardInput();

private:
    struct Result {
        int status;
        QString output;
        QString complaint;
    };
    static Result run(const QStringList &arguments, const QByteArray &input = {},
                      const QStringList &environment = {});
};

TestKyboardctl::Result TestKyboardctl::run(const QStringList &arguments, const QByteArray &input,
                                           const QStringList &environment)
{
    QProcess client;
    client.start("env", environment + QStringList{"kyboardctl"} + arguments);
    client.write(input);
    client.closeWriteChannel();
    if (!client.waitForFinished(deadlineMs))
        return {-1, QString(), QStringLiteral("no end")};
    return {client.exitCode(), client.readAllStandardOutput(), client.readAllStandardError()};
}

void TestKyboardctl::valuesArePrinted()
{
    QVERIFY(daemon.start());
    QCOMPARE(run({"user", "get"}).output, QStringLiteral("user1\n"));
    QCOMPARE(run({"battery", "status"}).output, QStringLiteral("CHARGER_OFF_BAT_INF_80\n"));
    QCOMPARE(run({"storage", "mounted", "SD"}).output, QStringLiteral("no\n"));
    QCOMPARE(run({"temperature", "list"}).output,
             QString("ANALOG_CHAIN  38 \u00b0C\nSOM           42 \u00b0C\n"));
    QCOMPARE(run({"user", "get"}).status, 0);
}

void TestKyboardctl::valuesForMachinesAreJson()
{
    QVERIFY(daemon.start());
    QCOMPARE(run({"--json", "user", "get"}).output, QStringLiteral("\"user1\"\n"));
    QCOMPARE(run({"storage", "mounted", "USB", "--json"}).output, QStringLiteral("false\n"));
    QCOMPARE(run({"--json", "backlight", "get"}).output, QStringLiteral("55\n"));
    const QJsonObject leds =
        QJsonDocument::fromJson(run({"--json", "led", "list"}).output.toUtf8()).object();
    QCOMPARE(leds.size(), ledNames().size());
    QCOMPARE(leds.value("WIFI").toString(), QStringLiteral("OFF"));
    QCOMPARE(run({"--json", "user", "set", "user1"}).output, QStringLiteral("null\n"));
}

void TestKyboardctl::aFailedWriteToStandardOutputIsAFailure()
{
    QVERIFY(daemon.start());
    QProcess client;
    client.setStandardOutputFile("/dev/full");
    client.start("kyboardctl", {"user", "get"});
    QVERIFY(client.waitForFinished(deadlineMs));
    QCOMPARE(client.exitCode(), 7);
    QCOMPARE(client.readAllStandardError(),
             QByteArray("kyboardctl: standard output cannot be written\n"));
}

void TestKyboardctl::settingAValueChangesTheInstrument()
{
    QVERIFY(daemon.start());
    QCOMPARE(run({"user", "set", "user2"}).status, 0);
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user2"));
    QCOMPARE(run({"led", "set", "WIFI", "BLINK_3HZ"}).status, 0);
    QCOMPARE(Board::get("leds/WIFI"), QStringLiteral("BLINK_3HZ"));
    QCOMPARE(run({"backlight", "set-step", "off", "0"}).status, 0);
    QCOMPARE(Board::get("backlight/brightness"), QStringLiteral("15"));
    QCOMPARE(run({"module", "power", "off"}).status, 0);
    QCOMPARE(Board::get("powerman/wifi_supply"), QStringLiteral("0"));
}

void TestKyboardctl::errorsOfTheDaemonAreShownWithNameAndText()
{
    QVERIFY(daemon.start());
    Board::fault("KyLeds.setLedState", "always");
    const Result result = run({"led", "set", "WIFI", "ON"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: Enable to set led WIFI to status ON "
                            "(com.orvendis.Strandel.BoardManager.Error.Write)\n"));
    QCOMPARE(result.output, QString());
}

void TestKyboardctl::aWrongCommandLineSendsNothing_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("command") << QStringList{"led", "light"}
                             << "no command 'led light'; 'kyboardctl help led' lists them";
    QTest::newRow("no command") << QStringList{}
                                << "no command is given; 'kyboardctl help' lists "
                                   "them";
    QTest::newRow("help") << QStringList{"help", "lights"}
                          << "no command 'lights'; 'kyboardctl help' lists them";
    QTest::newRow("status") << QStringList{"status", "now"} << "status: 'now' is one word too many";
    QTest::newRow("argument")
        << QStringList{"led", "set", "wifi", "ON"}
        << "led set: LED: 'wifi' is not one of " +
               enumNames(registeredEnum(Leds::staticMetaObject, "Led")).join(", ");
    QTest::newRow("option") << QStringList{"--loud", "led", "list"} << "unknown option 'loud'";
    QTest::newRow("short option") << QStringList{"-j", "led", "list"} << "unknown option 'j'";
    QTest::newRow("option's value")
        << QStringList{"wifi", "scan", "--timeout"} << "missing value after '--timeout'";
    QTest::newRow("word as timeout") << QStringList{"wifi", "scan", "--timeout", "soon"}
                                     << "--timeout: 'soon' is not a number of seconds";
    QTest::newRow("timeout of zero") << QStringList{"wifi", "scan", "--timeout=0"}
                                     << "--timeout: '0' is not a number of seconds";
    QTest::newRow("option of an operation")
        << QStringList{"led", "list", "--no-wait"} << "led list: --no-wait does not belong here";
    QTest::newRow("option of another command")
        << QStringList{"wifi", "scan", "--open"} << "wifi scan: --open does not belong here";
    QTest::newRow("three coefficients")
        << QStringList{"eeprom",
                       "set-measure",
                       "AdjustementSite=17",
                       "AdjustementDate=1",
                       "NextAdjustementDate=2",
                       "AdjustementCoefficients=1,2,3"}
        << "eeprom set-measure: AdjustementCoefficients: 3 numbers are given, and the record has "
           "296";
    QTest::newRow("long serial number")
        << QStringList{"eeprom", "set-instrument", "SerialNumber=123456789"}
        << "eeprom set-instrument: SerialNumber: '123456789' is not up to 8 printable ASCII "
           "characters";
    QTest::newRow("netmask") << QStringList{"ethernet", "set-ipv4", "Netmask=bogus"}
                             << "ethernet set-ipv4: Netmask: 'bogus' is not a netmask, as in "
                                "255.255.255.0";
    QTest::newRow("address") << QStringList{"wifi", "set-ipv4", "Address=999.1.1.1"}
                             << "wifi set-ipv4: Address: '999.1.1.1' is not an IPv4 address of a "
                                "host, as in 192.168.1.20";
    QTest::newRow("gateway")
        << QStringList{"ethernet",
                       "set-ipv4",
                       "Method=manual",
                       "Address=10.0.3.2",
                       "Netmask=255.255.255.0",
                       "Gateway=10.0.4.1"}
        << "ethernet set-ipv4: Gateway: '10.0.4.1' is not in the network 10.0.3.0/24 of the "
           "address";
    QTest::newRow("channel") << QStringList{"ap",          "start", "Channel=99", "Security=open",
                                            "IP=nonsense", "SSID="}
                             << "ap start: Channel: '99' is not a whole number from 1 to 14";
    QTest::newRow("line feed in an SSID")
        << QStringList{"ap",
                       "start",
                       "Channel=9",
                       "Security=open",
                       "IP=192.168.7.1",
                       "SSID=Lab\nignore_broadcast_ssid=1"}
        << "ap start: SSID: 'Lab\\x0aignore_broadcast_ssid=1' is not 1 to 32 bytes without control "
           "characters";
    QTest::newRow("no SSID") << QStringList{"ap", "start", "SSID="}
                             << "ap start: SSID: '' is not 1 to 32 bytes without control "
                                "characters";
    QTest::newRow("no secret") << QStringList{"wifi", "connect", "home"}
                               << "wifi connect: no passphrase on standard input (--open for none)";
}

void TestKyboardctl::aWrongCommandLineSendsNothing()
{
    QFETCH(QStringList, words);
    QFETCH(QString, complaint);
    QVERIFY(daemon.start());
    BusMonitor monitor;
    monitor.take();

    const Result result = run(words);

    QCOMPARE(result.status, 2);
    QCOMPARE(result.complaint, "kyboardctl: " + complaint + '\n');
    QCOMPARE(result.output, QString());
    // kyboardctl does not even connect to the bus.
    QStringList messages;
    for (const BusMessage &message : monitor.take())
        messages << message.line();
    QCOMPARE(messages, QStringList());
}

void TestKyboardctl::aShortPassphraseSendsNothing()
{
    QVERIFY(daemon.start());
    BusMonitor monitor;
    monitor.take();
    const Result joined = run({"wifi", "connect", "Workshop"}, "seven s\n");
    QCOMPARE(joined.status, 2);
    QCOMPARE(joined.complaint,
             QStringLiteral("kyboardctl: wifi connect: Passphrase: what was given is not 8 to 63 "
                            "ASCII characters (WEP: 5 or 13) (--open for none)\n"));
    const Result started = run(
        {"ap", "start", "Channel=6", "SSID=Lab", "Security=WPA2", "IP=192.168.7.1"}, "seven s\n");
    QCOMPARE(started.status, 2);
    QCOMPARE(started.complaint,
             QStringLiteral("kyboardctl: ap start: Password: what was given is not 8 to 63 ASCII "
                            "characters\n"));
    QVERIFY(monitor.take().isEmpty());
}

void TestKyboardctl::optionsStandAnywhere()
{
    QVERIFY(daemon.start());
    QCOMPARE(run({"temperature", "threshold", "SOM", "-5", "--timeout=20"}).complaint, QString());
    QCOMPARE(run({"--timeout", "20", "user", "get", "--json"}).output,
             QStringLiteral("\"user1\"\n"));
    const Result shortHelp = run({"led", "set", "-h"});
    QCOMPARE(shortHelp.status, 0);
    QCOMPARE(shortHelp.output, run({"help", "led", "set"}).output);
    QVERIFY(shortHelp.output.startsWith("kyboardctl led set LED STATE\n"));
}

void TestKyboardctl::aTimeoutHasItsOwnStatus()
{
    QVERIFY(daemon.start());
    QVERIFY(stopProcess(daemon.processId()));
    const Result result = run({"user", "get", "--timeout", "1"});
    QVERIFY(resumeProcess(daemon.processId()));
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: user get: no answer within 1 s\n"));
    QCOMPARE(result.status, 6);

    QVERIFY(stopProcess(daemon.processId()));
    QProcess client;
    BusMonitor monitor;
    client.start("kyboardctl", {"user", "get"});
    QTRY_VERIFY_WITH_TIMEOUT(monitor.hasSeen("getUser"), deadlineMs);
    QCOMPARE(::kill(pid_t(daemon.processId()), SIGKILL), 0);
    QCOMPARE(daemon.waitForExit(), -1);
    QTRY_COMPARE_WITH_TIMEOUT(client.state(), QProcess::NotRunning, deadlineMs);
    QCOMPARE(client.readAllStandardError(),
             QByteArray("kyboardctl: the board manager ended while it worked for this call\n"));
    QCOMPARE(client.exitCode(), 3);
}

void TestKyboardctl::aModelWithoutAScreenHasNoBacklight()
{
    Board::fault("KyEeprom.readEeprom", "always");
    QVERIFY(daemon.start());
    const Result result = run({"backlight", "get"});
    QCOMPARE(result.status, 4);
    QVERIFY(result.complaint.startsWith("kyboardctl: this instrument has no such interface"));
    const Result status = run({"status"});
    QCOMPARE(status.status, 0);
    QVERIFY(!status.output.contains("Backlight"));
    QVERIFY(status.output.contains("Profile"));
}

void TestKyboardctl::statusShowsTheWholeInstrument()
{
    QVERIFY(daemon.start());
    const Result result = run({"status"});
    QCOMPARE(result.status, 0);
    const QStringList expected = {"Profile\\s+user1",
                                  "Battery\\s+CHARGER_OFF_BAT_INF_80",
                                  "Battery voltage\\s+\\d+ mV",
                                  "LEDs\\s+BAT_GS1=ON.*POWER_Y=ON",
                                  "Temperatures\\s+ANALOG_CHAIN=38 .C, SOM=42 .C",
                                  "SD card mounted\\s+no",
                                  "Backlight\\s+55 %",
                                  "Ambient light\\s+120 lux",
                                  "Ethernet\\s+not connected",
                                  "Wi-Fi strength\\s+none",
                                  "Access point\\s+off",
                                  "Software\\s+KyBoardManager=" + Daemon::version(),
                                  "Revisions\\s+.*SOM="};
    for (const QString &pattern : expected)
        QVERIFY2(QRegularExpression('^' + pattern, QRegularExpression::MultilineOption)
                     .match(result.output)
                     .hasMatch(),
                 qPrintable(pattern + "\n" + result.output));
    QVERIFY(result.output.count('\n') <= 24);
}

void TestKyboardctl::statusForMachinesIsOneObject()
{
    QVERIFY(daemon.start());
    const QJsonObject status =
        QJsonDocument::fromJson(run({"status", "--json"}).output.toUtf8()).object();
    QCOMPARE(status.value("profile").toString(), QStringLiteral("user1"));
    QCOMPARE(status.value("backlight").toInt(), 55);
    QCOMPARE(status.value("temperatures").toObject().value("SOM").toInt(), 42);
    // Nothing is connected, and no network interface exists.
    for (const char *key : {"ethernet", "ethernetHardware", "wifi", "wifiHardware", "wifiStrength",
                            "accessPointHardware"})
        QVERIFY2(status.contains(key) && status.value(key).isNull(), key);
}

void TestKyboardctl::monitorPrintsEverySignal()
{
    QVERIFY(daemon.start());
    RunningMonitor monitor({});
    QVERIFY(monitor.prints("daemon.there"));

    run({"user", "set", "user2"});
    QVERIFY2(monitor.prints("Users.userChanged  user2\n"), monitor.printed().constData());
    QVERIFY(monitor.printed().contains("Users.changingUser\n"));
    run({"storage", "unmount", "SD"});
    QVERIFY2(monitor.prints("Storage.sdcardPresence  no\n"), monitor.printed().constData());
    QVERIFY(QRegularExpression("^\\d\\d:\\d\\d:\\d\\d\\.\\d{3}  daemon\\.there\n")
                .match(monitor.printed())
                .hasMatch());
}

void TestKyboardctl::monitorNoticesTheDaemonComingAndGoing()
{
    RunningMonitor monitor({"--json"});
    QVERIFY(monitor.prints("\"signal\":\"away\""));
    QVERIFY(daemon.start());
    QVERIFY(monitor.prints("\"signal\":\"came\""));
    daemon.stop();
    QVERIFY(monitor.prints("\"signal\":\"left\""));
}

void TestKyboardctl::everyMemberOfTheDaemonHasACommand()
{
    QVERIFY(daemon.start());
    QStringList reachable;
    for (const Command &command : commands())
        reachable << command.path + ' ' + command.interface + '.' + command.method +
                         command.property;
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr"}) {
        const Introspection object = introspect(path);
        int members = 0;
        for (const QString &interface : documentedInterfaces(path)) {
            const QString name = "com.orvendis.Strandel.BoardManager." + interface;
            for (const QString &member : object.interfaces.value(name)) {
                if (member.startsWith("signal "))
                    continue;
                ++members;
                const QString called = member.section(QRegularExpression("[ (]"), 1, 1);
                QVERIFY2(reachable.contains(path + (' ' + interface + '.' + called)),
                         qPrintable("client/commands.cpp has no command for " + interface + '.' +
                                    called));
            }
        }
        QVERIFY(members > 0);
    }
}

void TestKyboardctl::everyArgumentMatchesTheDocuments()
{
    static const QRegularExpression bounds("\\A(\\d+) to (\\d+)\\z");
    int compared = 0;
    for (const Command &command : commands()) {
        int index = 0;
        for (const DocumentedArgument &documented : documentedArguments()) {
            if (documented.interface != command.interface || documented.member != command.method ||
                documented.direction != "in")
                continue;
            const Argument argument = command.arguments.value(index++);
            const QString place = "client/commands.cpp, " + command.words + ' ' + argument.name;
            const QRegularExpressionMatch range = bounds.match(documented.range);
            if (!documented.choices().isEmpty()) {
                ++compared;
                QVERIFY2(argument.choices == documented.choices(),
                         qPrintable(place + ": the document has " + documented.range));
            } else if (range.hasMatch()) {
                ++compared;
                QVERIFY2(argument.minimum == range.captured(1).toLongLong() &&
                             argument.maximum == range.captured(2).toLongLong(),
                         qPrintable(place + ": the document has " + documented.range));
            }
        }
    }
    QVERIFY(compared > 0);
}

void TestKyboardctl::secretsComeFromStandardInput()
{
    QVERIFY(daemon.start());
    const Result result =
        run({"eeprom", "set-instrument", "Subsidiary=1", "Fabrication=2", "Brand=3", "Type=4",
             "Model=8347", "SerialNumber=ABCDEFGH", "WarrantyNumber=123456789",
             "TroubleshootingTag=5", "RelaunchTag=6", "FirstPassTag=7", "--yes"},
            "first secret\nsecond\n");
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
    const QByteArray image = Board::bytes("eeprom/instrument");
    QCOMPARE(image.mid(28, 30).left(13), QByteArray("first secret\0", 13));
    QCOMPARE(image.mid(58, 16).left(7), QByteArray("second\0", 7));
    QVERIFY(run({"eeprom", "instrument"}).output.contains("SerialNumber           ABCDEFGH\n"));
}

WORLD_TEST_MAIN(TestKyboardctl)
#include "test_kyboardctl.moc"
