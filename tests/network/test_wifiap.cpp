#include "busmonitor.h"
#include "networkinterface.h"
#include "networktest.h"
#include "processes.h"
#include "programs.h"

#include <unistd.h>

/** The Wi-Fi access point, on the running daemon. */
class TestWifiAp : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void theAccessPointComesOnLine();
    void theAccessPointGoesDown();
    void theAccessPointDoesNotCallConnMan();

    void connectFailsWhileTheScriptRuns();
    void connectFailsWithoutTheScript();
    void aFailedConnectSendsErrorThenSignalThenReturn();
    void theScriptMayEndInAnyWay();
    void theAccessPointIsNotCheckedInTheFirstTwoSeconds();
    void anyMissingPartFailsTheAttempt_data();
    void anyMissingPartFailsTheAttempt();
    void pidofIsAskedForTheProgramsInOrder_data();
    void pidofIsAskedForTheProgramsInOrder();
    void aMissingInterfaceFailsTheAttempt();
    void anInterfaceThatIsDownFailsTheAttempt();

    void theAccessPointIsOnlineThreeSecondsLater();
    void withoutCarrierTheAccessPointStaysReadyAndIsCheckedAgain();
    void anInterfaceThatVanishesFailsTheAttempt();
    void aPendingCheckSurvivesADisconnect();
    void aPendingCheckAfterADisconnectMayFail();
    void aDisconnectBeforeTheCheckEndsTheAttempt();

    void connectFailsAsBusyDuringAnAttempt_data();
    void connectFailsAsBusyDuringAnAttempt();
    void connectIsAcceptedAfterAFailure();
    void disconnectIsRefusedWhileIdle();
    void disconnectLeadsToIdle_data();
    void disconnectLeadsToIdle();
    void disconnectDoesNotWaitForTheScript();
    void disconnectTakesNoArguments();
    void wpsIsAcceptedAndDoesNothing();
    void theMethodsOfTheBaseClassReply();
    void readingTheInterfacesFlagsLeavesNoDescriptorOpen();

private:
    QString start(const QVariantMap &parameters = QVariantMap());
    void reach(const QString &name);
    static QString ap(const char *name) { return state("WIFIAP", "/net/wap", name); }
    static QStringList aps(const QList<const char *> &names);
    static QByteArray written() { return readFile("/tmp/User_part/hostapd.conf"); }
    static void setInterfaceUp(bool up);

    const QVariantMap lab = {{"Channel", 6},
                             {"SSID", "Lab"},
                             {"Password", "12345678"},
                             {"Security", "WPA2"},
                             {"IP", "192.168.7.1"}};
    const QString busy = failed("Cannot connect, wap busy");
    const QString cannotSwitch = failed("Cannot switch in mode '2' (WLAN ACCESS POINT)");
    const QString alreadyDisconnected = failed("Cannot disconnect WAP, already disconnected");
    const QStringList failing = aps({"configuration", "failure"});
};

QStringList TestWifiAp::aps(const QList<const char *> &names)
{
    QStringList announcements;
    for (const char *name : names)
        announcements << ap(name);
    return announcements;
}

QString TestWifiAp::start(const QVariantMap &parameters)
{
    return wifiAp.call("connect", {parameters});
}

/**
 * Starts the daemon and brings the access point into state @p name. Discards the signals so far.
 */
void TestWifiAp::reach(const QString &name)
{
    begin();
    if (name == "configuration")
        script.hold();
    if (name == "failure")
        script.leaveOut("hostapd");
    QCOMPARE(start(lab), QString("()"));
    QVERIFY(script.waitFor("start 2"));
    if (name != "configuration") {
        passModuleDelay();
        QCOMPARE(recorder->waitFor(2),
                 aps({"configuration", name == "failure" ? "failure" : "ready"}));
    }
    if (name == "online") {
        daemon.letTimePass(3);
        QCOMPARE(recorder->waitFor(1), aps({"online"}));
    }
    announced();
}

void TestWifiAp::setInterfaceUp(bool up)
{
    QCOMPARE(QProcess::execute("ip", {"link", "set", "wifi_ap", up ? "up" : "down"}), 0);
}

void TestWifiAp::theAccessPointComesOnLine()
{
    begin();

    QCOMPARE(start(lab), QString("()"));
    waitForScripts();
    QCOMPARE(announced(), aps({"configuration"}));
    daemon.letTimePass(2);
    QCOMPARE(recorder->waitFor(1), aps({"ready"}));
    daemon.letTimePass(3);
    QCOMPARE(recorder->waitFor(1), aps({"online"}));

    QCOMPARE(script.log(), (QStringList{"start 2", "end 2"}));
    daemon.letTimePass(10);
    QCOMPARE(announced(), QStringList());
}

void TestWifiAp::theAccessPointGoesDown()
{
    reach("online");

    QCOMPARE(wifiAp.call("disconnect"), QString("()"));

    QCOMPARE(announced(), aps({"disconnect", "idle"}));
    QVERIFY(script.waitFor("end 0"));
    QCOMPARE(script.log(), (QStringList{"start 2", "end 2", "start 0", "end 0"}));
    QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));
}

void TestWifiAp::theAccessPointDoesNotCallConnMan()
{
    reach("online");
    wifiAp.call("disconnect");
    QVERIFY(script.waitFor("end 0"));

    QCOMPARE(connman.journal(), QStringList());
    QVERIFY(!QFile::exists("/tmp/logkywifi"));
}

void TestWifiAp::connectFailsWhileTheScriptRuns()
{
    reach("online");
    script.hold();
    wifiAp.call("disconnect");
    QVERIFY(script.waitFor("start 0"));
    announced();

    QCOMPARE(start(lab), cannotSwitch);

    QCOMPARE(announced(), failing);
    script.release();
    QVERIFY(script.waitFor("end 0"));
    QCOMPARE(script.log(), (QStringList{"start 2", "end 2", "start 0", "end 0"}));
}

void TestWifiAp::connectFailsWithoutTheScript()
{
    script.remove();
    begin();

    QCOMPARE(start(lab), cannotSwitch);

    QCOMPARE(announced(), failing);
    QVERIFY(written().contains("\nssid=Lab\n"));
}

void TestWifiAp::aFailedConnectSendsErrorThenSignalThenReturn()
{
    script.remove();
    begin();
    BusMonitor monitor;

    QCOMPARE(start(lab), cannotSwitch);

    QStringList kinds;
    for (const QString &line : monitor.takeFromDaemon())
        kinds << line.section(' ', 0, 0);
    // The first signal announces the state "configuration".
    QCOMPARE(kinds, (QStringList{"signal", "error", "signal", "return"}));
}

void TestWifiAp::theScriptMayEndInAnyWay()
{
    const QString file = "/usr/share/redpine/switch_coex_mode.sh";
    QVERIFY(QFile::rename(file, "/usr/share/redpine/switch.sh"));
    writeFile(file, "#!/bin/sh\n/usr/share/redpine/switch.sh \"$@\"\nexit 3\n");
    QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ExeOwner));
    begin();

    QCOMPARE(start(lab), QString("()"));
    passModuleDelay();

    QCOMPARE(recorder->waitFor(2), aps({"configuration", "ready"}));
    QCOMPARE(script.log(), (QStringList{"start 2", "end 2"}));
}

void TestWifiAp::theAccessPointIsNotCheckedInTheFirstTwoSeconds()
{
    begin();
    script.hold();
    start(lab);
    daemon.letTimePass(5);
    settle();
    script.release();
    waitForScripts();

    daemon.letTimePass(1);
    QCOMPARE(announced(), aps({"configuration"}));

    daemon.letTimePass(1);
    QCOMPARE(recorder->waitFor(1), aps({"ready"}));
}

void TestWifiAp::anyMissingPartFailsTheAttempt_data()
{
    QTest::addColumn<QString>("part");
    for (const char *part : {"hostapd", "dhcpd"})
        QTest::newRow(part) << part;
}

void TestWifiAp::anyMissingPartFailsTheAttempt()
{
    QFETCH(QString, part);
    script.leaveOut(part);
    begin();

    QCOMPARE(start(lab), QString("()"));
    passModuleDelay();

    QCOMPARE(recorder->waitFor(2), failing);
}

void TestWifiAp::pidofIsAskedForTheProgramsInOrder_data()
{
    QTest::addColumn<QByteArray>("pidof");
    QTest::addColumn<QByteArray>("asked");
    QTest::addColumn<bool>("found");
    const QByteArray both = "hostapd\ndhcpd\n";
    const auto row = [](const char *name, const QByteArray &pidof, const QByteArray &asked,
                        bool found) { QTest::newRow(name) << pidof << asked << found; };
    row("both run", "exit 0", both, true);
    row("hostapd does not run", "[ $1 != hostapd ]", "hostapd\n", false);
    row("dhcpd does not run", "[ $1 != dhcpd ]", both, false);
    row("pidof crashes", "kill -SEGV $$", "hostapd\n", false);
    row("pidof crashes on the second", "[ $1 = hostapd ] || kill -SEGV $$", both, false);
    row("pidof hangs on the second", "[ $1 = hostapd ] || exec sleep 60", both, false);
}

void TestWifiAp::pidofIsAskedForTheProgramsInOrder()
{
    QFETCH(QByteArray, pidof);
    QFETCH(QByteArray, asked);
    QFETCH(bool, found);
    removePath("/tmp/programs");
    writeFile("/tmp/programs/pidof",
              "#!/bin/sh\necho \"$*\" >>/tmp/programs/asked\n" + pidof + '\n');
    QFile::setPermissions("/tmp/programs/pidof", QFile::ReadOwner | QFile::ExeOwner);
    daemon.setEnvironment("PATH", "/tmp/programs:" + qEnvironmentVariable("PATH"));
    begin();
    start(lab);

    passModuleDelay();

    QCOMPARE(recorder->waitFor(2), aps({"configuration", found ? "ready" : "failure"}));
    QCOMPARE(readFile("/tmp/programs/asked"), asked);
}

void TestWifiAp::aMissingInterfaceFailsTheAttempt()
{
    begin();
    start(lab);
    waitForScripts();
    script.removeInterface();
    // Wait for the programs: only the interface may be missing.
    for (const char *program : {"hostapd", "dhcpd"})
        QTRY_VERIFY_WITH_TIMEOUT(isProgramRunning(program), deadlineMs);

    daemon.letTimePass(2);

    QCOMPARE(recorder->waitFor(2), failing);
}

void TestWifiAp::anInterfaceThatIsDownFailsTheAttempt()
{
    begin();
    start(lab);
    waitForScripts();
    setInterfaceUp(false);

    daemon.letTimePass(2);

    QCOMPARE(recorder->waitFor(2), failing);
}

void TestWifiAp::theAccessPointIsOnlineThreeSecondsLater()
{
    reach("ready");

    daemon.letTimePass(2);
    QCOMPARE(announced(), QStringList());

    daemon.letTimePass(1);
    QCOMPARE(recorder->waitFor(1), aps({"online"}));
}

void TestWifiAp::withoutCarrierTheAccessPointStaysReadyAndIsCheckedAgain()
{
    script.leaveOut("carrier");
    reach("ready");

    for (int check = 0; check < 20; ++check) {
        daemon.letTimePass(3);
        QCOMPARE(announced(), QStringList());
    }

    script.setCarrier(true);
    daemon.letTimePass(3);
    QCOMPARE(recorder->waitFor(1), aps({"online"}));
}

void TestWifiAp::anInterfaceThatVanishesFailsTheAttempt()
{
    script.leaveOut("carrier");
    reach("ready");
    daemon.letTimePass(3);
    QCOMPARE(announced(), QStringList());

    script.removeInterface();
    daemon.letTimePass(3);

    QCOMPARE(recorder->waitFor(1), aps({"failure"}));
    daemon.letTimePass(10);
    QCOMPARE(announced(), QStringList());
}

void TestWifiAp::aPendingCheckSurvivesADisconnect()
{
    reach("ready");
    script.hold();
    QCOMPARE(wifiAp.call("disconnect"), QString("()"));
    QCOMPARE(announced(), aps({"disconnect", "idle"}));

    // The script has not removed the interface yet.
    daemon.letTimePass(3);

    QCOMPARE(recorder->waitFor(1), aps({"online"}));
}

void TestWifiAp::aPendingCheckAfterADisconnectMayFail()
{
    reach("ready");
    QCOMPARE(wifiAp.call("disconnect"), QString("()"));
    waitForScripts();
    QCOMPARE(announced(), aps({"disconnect", "idle"}));

    daemon.letTimePass(3);

    QCOMPARE(recorder->waitFor(1), aps({"failure"}));
}

void TestWifiAp::aDisconnectBeforeTheCheckEndsTheAttempt()
{
    begin();
    start(lab);
    waitForScripts();

    QCOMPARE(wifiAp.call("disconnect"), QString("()"));
    passModuleDelay();
    daemon.letTimePass(10);

    QCOMPARE(announced(), aps({"configuration", "disconnect", "idle"}));
    QCOMPARE(script.log(), (QStringList{"start 2", "end 2", "start 0", "end 0"}));
}

void TestWifiAp::connectFailsAsBusyDuringAnAttempt_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"configuration", "ready", "online"})
        QTest::newRow(name) << name;
}

void TestWifiAp::connectFailsAsBusyDuringAnAttempt()
{
    QFETCH(QString, name);
    reach(name);
    const QByteArray before = written();

    QCOMPARE(start({{"SSID", "Office"}}), busy);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(written(), before);
    QCOMPARE(script.log().count("start 2"), 1);
}

void TestWifiAp::connectIsAcceptedAfterAFailure()
{
    reach("failure");
    script.install();

    QCOMPARE(start(lab), QString("()"));
    passModuleDelay();

    QCOMPARE(recorder->waitFor(2), aps({"configuration", "ready"}));
}

void TestWifiAp::disconnectIsRefusedWhileIdle()
{
    begin();
    QCOMPARE(wifiAp.call("disconnect"), alreadyDisconnected);
    QCOMPARE(announced(), QStringList());
    QCOMPARE(script.log(), QStringList());

    // Hold the script: programs that it starts at the end of this test could outlive the test.
    script.hold();
    start(lab);
    QVERIFY(script.waitFor("start 2"));
    wifiAp.call("disconnect");
    announced();
    QCOMPARE(wifiAp.call("disconnect"), alreadyDisconnected);
    QCOMPARE(announced(), QStringList());
}

void TestWifiAp::disconnectLeadsToIdle_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"failure", "ready", "online"})
        QTest::newRow(name) << name;
}

void TestWifiAp::disconnectLeadsToIdle()
{
    QFETCH(QString, name);
    reach(name);

    QCOMPARE(wifiAp.call("disconnect"), QString("()"));

    QCOMPARE(announced(), aps({"disconnect", "idle"}));
    QVERIFY(script.waitFor("end 0"));
}

void TestWifiAp::disconnectDoesNotWaitForTheScript()
{
    reach("configuration");

    QCOMPARE(wifiAp.call("disconnect"), QString("()"));

    QCOMPARE(announced(), aps({"disconnect", "idle"}));
    QCOMPARE(script.log(), QStringList{"start 2"});
}

void TestWifiAp::disconnectTakesNoArguments()
{
    reach("online");
    QVERIFY(wifiAp.call("disconnect", {"any"})
                .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(announced(), QStringList());
}

void TestWifiAp::wpsIsAcceptedAndDoesNothing()
{
    begin();
    script.hold();
    QCOMPARE(wifiAp.call("wpsEnable"), QString("()"));
    QCOMPARE(announced(), QStringList());
    QCOMPARE(start(lab), QString("()"));
    QVERIFY(script.waitFor("start 2"));
    QCOMPARE(announced(), aps({"configuration"}));
    QCOMPARE(wifiAp.call("wpsEnable"), QString("()"));
    QCOMPARE(announced(), QStringList());
}

void TestWifiAp::theMethodsOfTheBaseClassReply()
{
    reach("online");
    QCOMPARE(wifiAp.call("getIPv4"), QString("({})"));
    QCOMPARE(wifiAp.call("getHardwareInfos"),
             QString("({\"Address\": <\"02:AA:BB:CC:DD:03\">, \"Interface\": <\"wifi_ap\">, "
                     "\"MTU\": <q:1500>, \"Method\": <\"\">})"));
    QCOMPARE(wifiAp.call("setIPv4", {QVariantMap{{"Method", "dhcp"}}}), QString("()"));
}

void TestWifiAp::readingTheInterfacesFlagsLeavesNoDescriptorOpen()
{
    const QNetworkInterface loopback = findNetworkInterface("lo");
    const auto descriptors = [] { return descriptorsOf(getpid()).size(); };
    const int before = descriptors();

    QVERIFY(isUp(loopback));
    QVERIFY(isRunning(loopback));

    QCOMPARE(descriptors(), before);
}

WORLD_TEST_MAIN(TestWifiAp)
#include "test_wifiap.moc"
