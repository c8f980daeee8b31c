#include "busmonitor.h"
#include "connmansignals.h"
#include "daemontest.h"
#include "deadline.h"
#include "realconnman.h"
#include "simulatedmodescript.h"
#include "supplicantstandin.h"
#include "terminalprogram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <csignal>

/**
 * kyboardctl's network commands with the running daemon, the real ConnMan and a DHCP server, but
 * without a radio.
 */
class TestKyboardctlWifi : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void scanListsTheNetworks();
    void scanForMachinesIsOneObject();
    void aScanWithoutNetworksSucceeds();
    void anOpenNetworkIsJoined();
    void aPassphraseComesFromStandardInput();
    void aPassphraseComesFromAPromptThatDoesNotShowIt();
    void aSignalAtThePromptRestoresTheTerminal();
    void theRightPassphraseLeadsToOnlineAfterAWrongOne_data();
    void theRightPassphraseLeadsToOnlineAfterAWrongOne();
    void theNetworkJoinedLastIsConfiguredAgain();
    void anAbsentNetworkFails();
    void connectLeadsToOnlineIfTheCableIsAlreadyConnected();
    void withoutALeaseThereIsNoAddress();
    void aSilentAccessPointIsATimeout();
    void withoutConnmanNothingIsJoined();
    void aNetworkIsForgotten();
    void aNetworkThatTheFirstScanMissesIsForgotten();
    void aRemovalThatComesTooLateIsTriedAgain();
    void forgettingTheJoinedNetworkDisconnectsItFirst();
    void aNetworkOutOfReachIsNotForgotten();
    void disconnectLeadsToIdle();
    void disconnectingWhileIdleSucceeds_data();
    void disconnectingWhileIdleSucceeds();
    void whileConnectedOtherNetworksAndScansAreRefused();
    void aScanDoesNotEndAConnectThatHasJustBegun();
    void disconnectWhileTheModuleSwitchesLeavesTheRadioOff_data();
    void disconnectWhileTheModuleSwitchesLeavesTheRadioOff();
    void aFailedScanEndsTheWait();
    void withoutAnAddressTheWaitTimesOut();
    void withNoWaitTheCommandEndsAtOnce();
    void withoutTheModulesScriptTheDaemonsErrorIsReported();
    void aDaemonThatGoesAwayEndsTheWait();
    void theAccessPointStartsAndStops();

private:
    struct Result {
        int status;
        QString output;
        QString complaint;
    };
    static void start(QProcess &client, const QStringList &arguments, const QByteArray &input);
    static Result resultOf(QProcess &client);
    static Result run(const QStringList &arguments, const QByteArray &input = {});
    void joinWorkshopAndRestart();

    const QString workshopSettings = "/var/lib/connman/"
                                     "wifi_02aabbccdd03_576f726b73686f70_managed_psk/settings";
    RealConnman connman;
    SupplicantStandIn supplicant;
    SimulatedModeScript script;
};

void TestKyboardctlWifi::init()
{
    DaemonTest::init();
    qputenv("TERM", "dumb");
    script.install();
    supplicant.start();
    connman.start();
    daemon.controlClock();
    QVERIFY(daemon.start());
}

void TestKyboardctlWifi::cleanup()
{
    DaemonTest::cleanup();
    connman.kill();
    supplicant.kill();
    script.clear();
}

void TestKyboardctlWifi::start(QProcess &client, const QStringList &arguments,
                               const QByteArray &input)
{
    client.start("kyboardctl", arguments);
    client.write(input);
    client.closeWriteChannel();
}

TestKyboardctlWifi::Result TestKyboardctlWifi::resultOf(QProcess &client)
{
    if (client.state() != QProcess::NotRunning && !client.waitForFinished(deadlineMs))
        return {-1, QString(), QStringLiteral("no end")};
    return {client.exitCode(), client.readAllStandardOutput(), client.readAllStandardError()};
}

TestKyboardctlWifi::Result TestKyboardctlWifi::run(const QStringList &arguments,
                                                   const QByteArray &input)
{
    QProcess client;
    start(client, arguments, input);
    return resultOf(client);
}

void TestKyboardctlWifi::scanListsTheNetworks()
{
    const Result result = run({"wifi", "scan"});
    QCOMPARE(result.output, QStringLiteral("Cafe       65 %  none\n"
                                           "Grumpy     50 %  psk\n"
                                           "Hall       62 %  psk\n"
                                           "Workshop   72 %  psk\n"));
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
}

void TestKyboardctlWifi::scanForMachinesIsOneObject()
{
    const QJsonObject networks =
        QJsonDocument::fromJson(run({"--json", "wifi", "scan"}).output.toUtf8()).object();
    QCOMPARE(networks.keys(), (QStringList{"Cafe", "Grumpy", "Hall", "Workshop"}));
    const QJsonObject hall = networks.value("Hall").toObject();
    QCOMPARE(hall.keys(), (QStringList{"path", "security", "strength"}));
    QCOMPARE(hall.value("strength"), QJsonValue(62));
    QCOMPARE(hall.value("security"), QJsonValue("psk"));
    QCOMPARE(hall.value("path"),
             QJsonValue("/net/connman/service/wifi_02aabbccdd03_48616c6c_managed_psk"));
}

void TestKyboardctlWifi::aScanWithoutNetworksSucceeds()
{
    for (const char *directory : {"cafe", "grumpy", "hall_near", "hall_far", "workshop", "vault"})
        supplicant.set(QLatin1String(directory) + "/in_range", "0");
    QProcess client;
    start(client, {"wifi", "scan"}, {});
    const auto isPowered = [&] {
        return RealConnman::properties("/net/connman/technology/wifi").value("Powered").toBool();
    };
    QVERIFY(QTest::qWaitFor(isPowered, deadlineMs));
    // Without networks the daemon ends the scan after 15 s.
    daemon.letTimePass(15);
    const Result result = resultOf(client);
    QCOMPARE(result.output, QStringLiteral("no network in reach\n"));
    QCOMPARE(result.status, 0);
}

void TestKyboardctlWifi::anOpenNetworkIsJoined()
{
    const Result result = run({"wifi", "connect", "Cafe", "--open", "--json"});
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).array(),
             (QJsonArray{"association", "configuration", "online"}));
    QVERIFY(run({"wifi", "ipv4"}).output.startsWith("Address  10.78.0."));
    QCOMPARE(run({"wifi", "strength"}).output, QStringLiteral("Strength  65 %\n"));
    const QString status = run({"status"}).output;
    QVERIFY2(QRegularExpression("\nWi-Fi +10\\.78\\.0\\.\\d+, netmask 255\\.255\\.255\\.0"
                                ".* \\(dhcp\\)\n")
                 .match(status)
                 .hasMatch(),
             qPrintable(status));
    QVERIFY2(status.contains(QRegularExpression("\nWi-Fi strength +65 %\n")), qPrintable(status));
}

void TestKyboardctlWifi::aPassphraseComesFromStandardInput()
{
    const Result result = run({"wifi", "connect", "Workshop"}, "seven seas\n");
    QCOMPARE(result.output, QStringLiteral("online\n"));
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
}

void TestKyboardctlWifi::aPassphraseComesFromAPromptThatDoesNotShowIt()
{
    TerminalProgram client("kyboardctl", {"wifi", "connect", "Workshop"});
    QVERIFY(client.shows("Passphrase: "));
    QTRY_VERIFY_WITH_TIMEOUT(!client.echoes(), deadlineMs);
    client.type("seven seas\n");
    QVERIFY2(client.shows("\r\033[Kwifi connect: association"), client.shown().constData());
    QCOMPARE(client.waitForEnd(), 0);
    QVERIFY2(client.shown().endsWith("\r\033[Konline\r\n"), client.shown().constData());
    QVERIFY(!client.shown().contains("seven"));
    QVERIFY(client.echoes());
}

void TestKyboardctlWifi::aSignalAtThePromptRestoresTheTerminal()
{
    TerminalProgram client("kyboardctl", {"wifi", "connect", "Workshop"});
    QVERIFY(client.shows("Passphrase: "));
    QTRY_VERIFY_WITH_TIMEOUT(!client.echoes(), deadlineMs);
    client.type("seven\x03");
    QCOMPARE(client.waitForEnd(), -SIGINT);
    QVERIFY(client.echoes());
    QCOMPARE(script.log(), QStringList());
}

void TestKyboardctlWifi::theRightPassphraseLeadsToOnlineAfterAWrongOne_data()
{
    QTest::addColumn<bool>("isJoinedBefore");
    QTest::newRow("a network never joined") << false;
    QTest::newRow("the network joined last") << true;
}

void TestKyboardctlWifi::theRightPassphraseLeadsToOnlineAfterAWrongOne()
{
    QFETCH(bool, isJoinedBefore);
    if (isJoinedBefore) {
        QCOMPARE(run({"wifi", "connect", "Workshop"}, "seven seas\n").complaint, QString());
        QCOMPARE(run({"wifi", "disconnect"}).status, 0);
    }
    // The attempt must fail within 30 s: it must not last until the daemon's timeout of 60 s.
    const Result result = run({"wifi", "connect", "Workshop", "--timeout", "30"}, "eight seas\n");
    QCOMPARE(result.status, 5);
    QCOMPARE(result.output, QStringLiteral("failure\n"));
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: wifi connect: failed: wrong passphrase\n"));

    QCOMPARE(run({"wifi", "connect", "Workshop"}, "seven seas\n").complaint, QString());
}

void TestKyboardctlWifi::theNetworkJoinedLastIsConfiguredAgain()
{
    QCOMPARE(run({"wifi", "connect", "Cafe", "--open"}).status, 0);
    QCOMPARE(run({"wifi", "disconnect"}).status, 0);
    QCOMPARE(run({"wifi", "set-ipv4", "Method=manual", "Address=10.78.0.7", "Netmask=255.255.255.0",
                  "Gateway=10.78.0.1"})
                 .status,
             0);

    const Result result = run({"wifi", "connect", "Cafe", "--open", "--json"});

    QCOMPARE(result.complaint, QString());
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).array(),
             (QJsonArray{"association", "configuration", "online"}));
    QVERIFY2(run({"wifi", "ipv4"}).output.startsWith("Address  10.78.0.7\n"),
             qPrintable(run({"wifi", "ipv4"}).output));
}

void TestKyboardctlWifi::anAbsentNetworkFails()
{
    const Result result = run({"wifi", "connect", "Nowhere", "--open"});
    QCOMPARE(result.status, 5);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: wifi connect: failed: network not found\n"));
}

void TestKyboardctlWifi::connectLeadsToOnlineIfTheCableIsAlreadyConnected()
{
    // If ConnMan starts after the daemon, the wired technology stays powered.
    connman.kill();
    daemon.stop();
    QVERIFY(daemon.start());
    connman.start();
    QVERIFY(ConnmanSignals().waitForQuiet());

    const Result result = run({"ethernet", "connect", "--json", "--timeout", "30"});

    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
    QCOMPARE(QJsonDocument::fromJson(result.output.toUtf8()).array(),
             (QJsonArray{"association", "ready", "online"}));
}

void TestKyboardctlWifi::withoutALeaseThereIsNoAddress()
{
    supplicant.setDhcpServerMute(true);
    QProcess client;
    start(client, {"wifi", "connect", "Cafe", "--open"}, {});
    const QString cafe = "/net/connman/service/wifi_02aabbccdd03_43616665_managed_none";
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::properties(cafe).value("State").toString(),
                              QStringLiteral("configuration"), deadlineMs);
    daemon.letTimePass(61);
    const Result result = resultOf(client);
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: wifi connect: failed: no address\n"));
    QCOMPARE(result.status, 5);
}

void TestKyboardctlWifi::aSilentAccessPointIsATimeout()
{
    supplicant.set("cafe/mute", "1");
    QProcess client;
    start(client, {"wifi", "connect", "Cafe", "--open"}, {});
    const QString cafe = "/net/connman/service/wifi_02aabbccdd03_43616665_managed_none";
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::properties(cafe).value("State").toString(),
                              QStringLiteral("association"), deadlineMs);
    daemon.letTimePass(61);
    const Result result = resultOf(client);
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: wifi connect: failed: time-out, the "
                                              "network does not answer\n"));
    QCOMPARE(result.status, 5);
}

void TestKyboardctlWifi::withoutConnmanNothingIsJoined()
{
    connman.kill();
    const Result result = run({"wifi", "connect", "Cafe", "--open"});
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: wifi connect: failed: ConnMan does not run\n"));
    QCOMPARE(result.status, 5);
    const Result scan = run({"wifi", "scan"});
    QCOMPARE(scan.complaint,
             QStringLiteral("kyboardctl: wifi scan: failed: ConnMan does not run\n"));
    QCOMPARE(scan.output, QString());
    QCOMPARE(scan.status, 5);
    const Result forgotten = run({"wifi", "forget", "Cafe"});
    QCOMPARE(forgotten.complaint,
             QStringLiteral("kyboardctl: wifi forget: ConnMan does not run\n"));
    QCOMPARE(forgotten.status, 5);
}

/**
 * Joins the network Workshop and restarts the daemon. Afterwards ConnMan knows the network, but
 * does not list it.
 */
void TestKyboardctlWifi::joinWorkshopAndRestart()
{
    QCOMPARE(run({"wifi", "connect", "Workshop"}, "seven seas\n").complaint, QString());
    // A daemon that starts powers the radio off.
    daemon.stop();
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(readFile(workshopSettings).contains("Passphrase=seven seas"),
                             deadlineMs);
    QVERIFY(readFile(workshopSettings).contains("Favorite=true"));
}

void TestKyboardctlWifi::aNetworkIsForgotten()
{
    joinWorkshopAndRestart();
    if (QTest::currentTestFailed())
        return;

    const Result result = run({"wifi", "forget", "Workshop"});
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);

    QTRY_VERIFY_WITH_TIMEOUT(!readFile(workshopSettings).contains("Passphrase="), deadlineMs);
    QVERIFY(!readFile(workshopSettings).contains("Favorite=true"));
    QCOMPARE(run({"wifi", "connect", "Workshop"}, "seven seas\n").complaint, QString());
}

void TestKyboardctlWifi::aNetworkThatTheFirstScanMissesIsForgotten()
{
    joinWorkshopAndRestart();
    if (QTest::currentTestFailed())
        return;
    supplicant.set("workshop/in_range", "0");

    SignalRecorder recorder("/KyComMgr");
    QProcess client;
    start(client, {"wifi", "forget", "Workshop"}, {});
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.recorded().filter("servicesListChanged").isEmpty(),
                             deadlineMs);
    QVERIFY(!recorder.recorded().filter("servicesListChanged").first().contains("Workshop"));
    supplicant.set("workshop/in_range", "1");
    const Result result = resultOf(client);
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
    QTRY_VERIFY_WITH_TIMEOUT(!readFile(workshopSettings).contains("Passphrase="), deadlineMs);
}

void TestKyboardctlWifi::aRemovalThatComesTooLateIsTriedAgain()
{
    joinWorkshopAndRestart();
    if (QTest::currentTestFailed())
        return;
    const int scriptsBefore = script.log().filter("start 1").size();
    SignalRecorder recorder("/KyComMgr");
    script.hold();
    QProcess client;
    start(client, {"wifi", "forget", "Workshop"}, {});

    for (int scan = 1; scan <= 3; ++scan) {
        QVERIFY(script.waitFor("start 1", scriptsBefore + scan));
        QCOMPARE(kill(pid_t(client.processId()), SIGSTOP), 0);
        script.release();
        const auto isOver = [&] {
            return recorder.recorded().filter("servicesListChanged").size() == scan &&
                   !RealConnman::properties("/net/connman/technology/wifi")
                        .value("Powered")
                        .toBool();
        };
        const bool isOverInTime = QTest::qWaitFor(isOver, deadlineMs);
        if (scan < 3)
            script.hold();
        QCOMPARE(kill(pid_t(client.processId()), SIGCONT), 0);
        QVERIFY(isOverInTime);
    }

    const Result result = resultOf(client);
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.status, 0);
    QTRY_VERIFY_WITH_TIMEOUT(!readFile(workshopSettings).contains("Passphrase="), deadlineMs);
}

void TestKyboardctlWifi::forgettingTheJoinedNetworkDisconnectsItFirst()
{
    QCOMPARE(run({"wifi", "connect", "Workshop"}, "seven seas\n").complaint, QString());
    // Forgetting an unknown network fails, and does not disconnect the joined one.
    QCOMPARE(run({"wifi", "forget", "Nowhere"}).status, 5);
    QCOMPARE(run({"wifi", "strength"}).status, 0);
    const Result result = run({"wifi", "forget", "Workshop"});
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.output, QStringLiteral("idle\n"));
    QCOMPARE(run({"wifi", "strength"}).status, 8);
    QTRY_VERIFY_WITH_TIMEOUT(!readFile(workshopSettings).contains("Passphrase="), deadlineMs);
}

void TestKyboardctlWifi::aNetworkOutOfReachIsNotForgotten()
{
    const Result result = run({"wifi", "forget", "Nowhere"});
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: wifi forget: not in reach: ConnMan "
                                              "forgets only what it sees\n"));
    QCOMPARE(result.status, 5);
}

void TestKyboardctlWifi::disconnectLeadsToIdle()
{
    QCOMPARE(run({"wifi", "connect", "Cafe", "--open"}).status, 0);
    const Result result = run({"wifi", "disconnect"});
    QCOMPARE(result.output, QStringLiteral("idle\n"));
    QCOMPARE(result.status, 0);
    QVERIFY(run({"status"}).output.contains(QRegularExpression("\nWi-Fi +not connected\n")));
}

void TestKyboardctlWifi::disconnectingWhileIdleSucceeds_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("cable") << "ethernet disconnect";
    QTest::newRow("network") << "wifi disconnect";
    QTest::newRow("access point") << "ap stop";
}

void TestKyboardctlWifi::disconnectingWhileIdleSucceeds()
{
    QFETCH(QString, line);
    const QStringList words = line.split(' ');
    for (const auto &[options, output] : {std::pair{QStringList{}, "idle\n"},
                                          {QStringList{"--json"}, "[\"idle\"]\n"},
                                          {QStringList{"--no-wait"}, ""}}) {
        const Result result = run(words + options);
        QCOMPARE(result.complaint, QString());
        QCOMPARE(result.output, QString(output));
        QCOMPARE(result.status, 0);
    }
    QCOMPARE(script.log(), QStringList());
    // Without ConnMan, a disconnect fails, except that of the access point.
    connman.kill();
    const Result result = run(words);
    QCOMPARE(result.status, line.startsWith("ap") ? 0 : 1);
}

void TestKyboardctlWifi::whileConnectedOtherNetworksAndScansAreRefused()
{
    QCOMPARE(run({"wifi", "connect", "Cafe", "--open"}).status, 0);
    const Result again = run({"wifi", "connect", "Workshop"}, "seven seas\n");
    QCOMPARE(again.status, 5);
    QVERIFY2(QRegularExpression("^kyboardctl: wifi connect: connected already, as 10\\.78\\.0\\."
                                "\\d+; 'kyboardctl wifi disconnect' first\n$")
                 .match(again.complaint)
                 .hasMatch(),
             qPrintable(again.complaint));
    const Result scan = run({"wifi", "scan"});
    QCOMPARE(scan.status, 5);
    QCOMPARE(scan.complaint, QStringLiteral("kyboardctl: wifi scan: not while it is connected or "
                                            "busy with something else\n"));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));

    // Already connected to that network: success.
    const Result same = run({"wifi", "connect", "Cafe", "--open"});
    QCOMPARE(same.complaint, QString());
    QCOMPARE(same.output, QStringLiteral("online\n"));
    QCOMPARE(same.status, 0);
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
}

void TestKyboardctlWifi::aScanDoesNotEndAConnectThatHasJustBegun()
{
    script.hold();
    QProcess client;
    start(client, {"wifi", "connect", "Cafe", "--open"}, {});
    QVERIFY(script.waitFor("start 1"));

    const Result scan = run({"wifi", "scan"});
    QCOMPARE(scan.status, 5);
    QCOMPARE(scan.complaint, QStringLiteral("kyboardctl: wifi scan: not while it is connected or "
                                            "busy with something else\n"));

    script.release();
    const Result result = resultOf(client);
    QCOMPARE(result.output, QStringLiteral("online\n"));
    QCOMPARE(result.status, 0);
}

void TestKyboardctlWifi::disconnectWhileTheModuleSwitchesLeavesTheRadioOff_data()
{
    QTest::addColumn<bool>("isScriptRunning");
    QTest::newRow("while the script runs") << true;
    QTest::newRow("in the two seconds after it") << false;
}

void TestKyboardctlWifi::disconnectWhileTheModuleSwitchesLeavesTheRadioOff()
{
    QFETCH(bool, isScriptRunning);
    const auto isTraced = [](const char *step) {
        return readFile("/tmp/logkywifi").contains(QByteArray("\n") + step + '\n');
    };
    script.hold();
    QCOMPARE(run({"wifi", "connect", "Cafe", "--open", "--no-wait"}).status, 0);
    QVERIFY(script.waitFor("start 1"));
    if (!isScriptRunning) {
        script.release();
        QTRY_VERIFY_WITH_TIMEOUT(isTraced("slotLoadFirmwareFinished"), deadlineMs);
    }
    QProcess client;
    start(client, {"wifi", "disconnect"}, {});
    QCOMPARE(resultOf(client).output, QStringLiteral("idle\n"));
    BusMonitor monitor;

    if (isScriptRunning)
        script.release();
    QTRY_VERIFY_WITH_TIMEOUT(isTraced("slotLoadFirmwareFinishedDelayed"), deadlineMs);

    QCOMPARE(monitor.takeFromDaemon("net.connman"), QStringList());
    QCOMPARE(RealConnman::properties("/net/connman/technology/wifi").value("Powered").toBool(),
             false);
    QVERIFY(run({"wifi", "scan"}).output.contains("Workshop"));
}

void TestKyboardctlWifi::aFailedScanEndsTheWait()
{
    // The daemon does not find ConnMan, but kyboardctl does.
    daemon.stop();
    writeFile("/tmp/programs/pidof", "#!/bin/sh\nexit 1\n");
    QVERIFY(QFile::setPermissions("/tmp/programs/pidof", QFile::ReadOwner | QFile::ExeOwner));
    daemon.setEnvironment("PATH", "/tmp/programs:" + qEnvironmentVariable("PATH"));
    QVERIFY(daemon.start());

    const Result result = run({"wifi", "scan"});
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: wifi scan: failed\n"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 5);
}

void TestKyboardctlWifi::withoutAnAddressTheWaitTimesOut()
{
    supplicant.setDhcpServerMute(true);
    const Result result = run({"wifi", "connect", "Cafe", "--open", "--timeout", "5"});
    QCOMPARE(result.status, 6);
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: wifi connect: no outcome within 5 s\n"));
}

void TestKyboardctlWifi::withNoWaitTheCommandEndsAtOnce()
{
    script.hold();
    const Result result = run({"wifi", "connect", "Cafe", "--open", "--no-wait"});
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output + result.complaint, QString());
    script.release();
}

void TestKyboardctlWifi::withoutTheModulesScriptTheDaemonsErrorIsReported()
{
    script.remove();
    const Result result = run({"wifi", "scan"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: Cannot switch in mode '1' (WLAN STATION) "
                            "(org.freedesktop.DBus.Error.Failed)\n"));
}

void TestKyboardctlWifi::aDaemonThatGoesAwayEndsTheWait()
{
    script.hold();
    QProcess client;
    start(client, {"wifi", "connect", "Cafe", "--open"}, {});
    QVERIFY(script.waitFor("start 1"));
    // The daemon answers this call after the client's.
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
    daemon.stop();
    const Result result = resultOf(client);
    QCOMPARE(result.status, 3);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: wifi connect: the board manager went away\n"));
}

void TestKyboardctlWifi::theAccessPointStartsAndStops()
{
    const QStringList start = {"ap",        "start",         "SSID=Strandel 12",
                               "Channel=6", "Security=WPA2", "IP=192.168.7.1"};
    const Result result = run(start, "under the dome\n");
    QCOMPARE(result.output, QStringLiteral("online\n"));
    QCOMPARE(result.status, 0);
    QVERIFY(readFile("/tmp/User_part/hostapd.conf").contains("wpa_passphrase=under the dome\n"));
    QVERIFY(run({"status"})
                .output.contains(
                    QRegularExpression("\nAccess point +wifi_ap, 02:AA:BB:CC:DD:03, MTU 1500\n")));

    const Result again = run(start, "under the dome\n");
    QCOMPARE(again.status, 1);
    QVERIFY(again.complaint.contains("Cannot connect, wap busy"));

    QCOMPARE(run({"ap", "stop"}).output, QStringLiteral("idle\n"));
    QVERIFY(script.waitFor("end 0"));
    QVERIFY(run({"status"}).output.contains(QRegularExpression("\nAccess point +off\n")));
    const Result stopped = run({"ap", "stop"});
    QCOMPARE(stopped.complaint, QString());
    QCOMPARE(stopped.output, QStringLiteral("idle\n"));
    QCOMPARE(stopped.status, 0);
}

WORLD_TEST_MAIN(TestKyboardctlWifi)
#include "test_kyboardctl_wifi.moc"
