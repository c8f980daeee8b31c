#include "busmonitor.h"
#include "deadline.h"
#include "notifysocket.h"
#include "wifitest.h"

#include <QRegularExpression>

/** Leaving a Wi-Fi network, and its properties; on the running daemon. */
class TestWifiDisconnect : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void theNetworkIsForgottenAndTheTechnologyPoweredOff();
    void disconnectIsAnnouncedBeforeAnyCallToConnMan();
    void idleFollowsWhenTheTechnologyIsOff();
    void theTraceRecordsEachStep();
    void disconnectEndsAnAttempt();
    void withoutAServiceNothingIsForgotten();
    void aNetworkCanBeJoinedAfterwards();
    void anAttemptForgetsNoOtherNetwork();
    void argumentsAreRefused();

    void aRefusalToForgetTheServiceIsReported();
    void aRefusedPowerOffIsReportedAndDisconnectEndsIdle();
    void theCallerSeesTheFirstOfTwoErrors();
    void disconnectEndsIdleIfTheTechnologyIsAlreadyOff();
    void disconnectEndsIdleWithoutASignalOfThePowerOff();
    void disconnectEndsIdleWithoutConnMan();
    void disconnectEndsIdleIfConnManDiesMeanwhile();
    void disconnectEndsDespiteASuspendedConnMan_data();
    void disconnectEndsDespiteASuspendedConnMan();
    void aSuspendedConnManDoesNotStopThePings();
    void disconnectEndsWhileTheScriptRuns();
    void theModuleOfAnEndedAttemptStaysOff_data();
    void theModuleOfAnEndedAttemptStaysOff();
    void signalsOfTheServiceThatIsLeftAreIgnored();
    void connectAndScanAreIgnoredDuringADisconnect();

    void withoutAServiceThereIsNoStrength();
    void theStrengthComesFromConnMan();
    void theAddressesComeFromTheService();
    void withoutAServiceTheHardwareInfosComeFromTheInterface();
    void settingsNeedTheTechnology();

private:
    QString disconnect() { return wifi.call("disconnect"); }
    void power(bool on) { connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", on); }
    void reachPowered(const QString &name);

    const QString disconnecting = state("WIFI", lab, "disconnect");
    const QString idle = state("WIFI", lab, "idle");
};

/** reach() with a technology that ConnMan reports as powered. */
void TestWifiDisconnect::reachPowered(const QString &name)
{
    reach(name);
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
}

void TestWifiDisconnect::theNetworkIsForgottenAndTheTechnologyPoweredOff()
{
    reachPowered("online");

    QCOMPARE(disconnect(), QString("()"));

    QCOMPARE(announced(), QStringList{disconnecting});
    QCOMPARE(connman.journal(), (QStringList{removeLab, powerOff, unregisterAgent}));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
}

void TestWifiDisconnect::disconnectIsAnnouncedBeforeAnyCallToConnMan()
{
    reachPowered("online");
    connman.holdMethod(removeLab);

    const QDBusPendingCall reply = wifi.start("disconnect");

    QVERIFY(connman.waitForCall(removeLab));
    QTRY_COMPARE_WITH_TIMEOUT(recorder->recorded(), QStringList{disconnecting}, deadlineMs);
    QVERIFY(!reply.isFinished());
    connman.releaseMethod(removeLab);
}

void TestWifiDisconnect::idleFollowsWhenTheTechnologyIsOff()
{
    reachPowered("online");
    disconnect();
    QCOMPARE(announced(), QStringList{disconnecting});

    power(false);
    power(false);

    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(trace().last(), QString("technologyPropertyChangedSlot OP:none idle Lab"));
}

void TestWifiDisconnect::theTraceRecordsEachStep()
{
    reachPowered("online");
    const int records = trace().size();

    disconnect();
    power(false);
    settle();

    QCOMPARE(trace().mid(records), (QStringList{"unregisterAgent OP:none disconnect Lab",
                                                "disconnect OP:none disconnect Lab",
                                                "technologyPropertyChangedSlot OP:none idle Lab"}));
}

void TestWifiDisconnect::disconnectEndsAnAttempt()
{
    reachPowered("association");
    QCOMPARE(disconnect(), QString("()"));
    announceService("ready");
    power(false);

    QCOMPARE(announced(),
             (QStringList{state("WIFI", "", "disconnect"), state("WIFI", "", "idle")}));
    QCOMPARE(orders(), (QStringList{powerOff, unregisterAgent}));
}

void TestWifiDisconnect::withoutAServiceNothingIsForgotten()
{
    begin();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QCOMPARE(disconnect(), QString("()"));

    QCOMPARE(announced(), QStringList{state("WIFI", "", "disconnect")});
    QCOMPARE(orders(), (QStringList{powerOff, unregisterAgent}));
}

void TestWifiDisconnect::aNetworkCanBeJoinedAfterwards()
{
    reachPowered("online");
    disconnect();
    power(false);
    announced();
    orders();
    connman.storeProperty(lab, "State", "idle");

    QCOMPARE(join(), QString("()"));
    letModuleSwitch();

    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{registerAgent, connectLab}));
}

void TestWifiDisconnect::anAttemptForgetsNoOtherNetwork()
{
    reachPowered("configuration");
    connman.setProperty(lab, "Error", "connect-failed");
    connman.setServices({network("Lab", "idle"), network("Office", "idle")});
    join("Office");
    letModuleSwitch();
    QVERIFY(connman.waitForCall("Service.Connect " + networkPath("Office")));
    announced();
    orders();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QCOMPARE(disconnect(), QString("()"));

    QCOMPARE(announced(), QStringList{state("WIFI", "", "disconnect")});
    QCOMPARE(orders(), (QStringList{powerOff, unregisterAgent}));
}

void TestWifiDisconnect::argumentsAreRefused()
{
    reachPowered("online");

    for (const char *method : {"disconnect", "scan", "getStrength"})
        QVERIFY(
            wifi.call(method, {"any"}).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));

    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiDisconnect::aRefusalToForgetTheServiceIsReported()
{
    reachPowered("online");
    connman.failMethod(removeLab, "net.connman.Error.NotSupported", "Not supported");

    QCOMPARE(disconnect(), failed("Cannot remove service"));

    QCOMPARE(orders(), (QStringList{removeLab, powerOff, unregisterAgent}));
    power(false);
    QCOMPARE(announced(), (QStringList{disconnecting, idle}));
}

void TestWifiDisconnect::aRefusedPowerOffIsReportedAndDisconnectEndsIdle()
{
    reachPowered("online");
    connman.failMethod(powerOff, "net.connman.Error.PermissionDenied", "Permission denied");

    QCOMPARE(disconnect(), failed("Cannot set property Powered: Permission denied"));

    QCOMPARE(announced(), (QStringList{disconnecting, idle}));
    QCOMPARE(orders(), (QStringList{removeLab, powerOff, unregisterAgent}));
}

void TestWifiDisconnect::theCallerSeesTheFirstOfTwoErrors()
{
    reachPowered("online");
    connman.failMethod(removeLab, "net.connman.Error.NotSupported", "Not supported");
    connman.failMethod(powerOff, "net.connman.Error.PermissionDenied", "Permission denied");
    BusMonitor monitor;

    QCOMPARE(disconnect(), failed("Cannot remove service"));

    int errors = 0;
    for (const QString &line : monitor.takeFromDaemon())
        errors += line.startsWith("error ") ? 1 : 0;
    QCOMPARE(errors, 1);
    QCOMPARE(announced(), (QStringList{disconnecting, idle}));
    QCOMPARE(orders(), (QStringList{removeLab, powerOff, unregisterAgent}));
}

void TestWifiDisconnect::disconnectEndsIdleIfTheTechnologyIsAlreadyOff()
{
    reach("online");

    QVERIFY(disconnect().startsWith(failed("Cannot set property Powered: ")));

    QCOMPARE(announced(), (QStringList{disconnecting, idle}));
}

void TestWifiDisconnect::disconnectEndsIdleWithoutASignalOfThePowerOff()
{
    reach("online");
    connman.replyToMethod("Technology.SetProperty", {});

    QCOMPARE(disconnect(), QString("()"));

    QCOMPARE(announced(), QStringList{disconnecting});
    daemon.letTimePass(15);
    QCOMPARE(recorder->waitFor(1), QStringList{idle});
}

void TestWifiDisconnect::disconnectEndsIdleWithoutConnMan()
{
    reachPowered("online");
    connman.kill();

    QCOMPARE(disconnect(), failed("Cannot remove service"));
    QCOMPARE(announced(), (QStringList{disconnecting, idle}));

    // The restarted daemon has no service to remove, but fails to power the technology off.
    daemon.stop();
    begin();
    QVERIFY(disconnect().startsWith(failed("Cannot set property Powered: ")));
    QCOMPARE(announced(),
             (QStringList{state("WIFI", "", "disconnect"), state("WIFI", "", "idle")}));
}

void TestWifiDisconnect::disconnectEndsIdleIfConnManDiesMeanwhile()
{
    reachPowered("online");
    QCOMPARE(disconnect(), QString("()"));
    QCOMPARE(announced(), QStringList{disconnecting});
    connman.kill();
    daemon.letTimePass(10);
    QCOMPARE(announced(), QStringList());

    daemon.letTimePass(5);

    QCOMPARE(recorder->waitFor(1), QStringList{idle});
}

void TestWifiDisconnect::disconnectEndsDespiteASuspendedConnMan_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("service");
    QTest::addColumn<QString>("text");
    const QString power = "Cannot set property Powered: Did not receive a reply.";
    QTest::newRow("idle") << "idle" << QString() << power;
    QTest::newRow("association") << "association" << QString() << power;
    QTest::newRow("configuration") << "configuration" << lab << "Cannot remove service";
    QTest::newRow("online") << "online" << lab << "Cannot remove service";
}

void TestWifiDisconnect::disconnectEndsDespiteASuspendedConnMan()
{
    QFETCH(QString, name);
    QFETCH(QString, service);
    QFETCH(QString, text);
    if (name == "idle")
        begin();
    else
        reachPowered(name);
    BusMonitor monitor;
    connman.freeze();

    const QDBusPendingCall reply = wifi.start("disconnect");
    QVERIFY(daemon.letTimePassUntil([&] { return reply.isFinished(); }));

    QVERIFY(renderReply(reply.reply()).startsWith(failed(text)));
    // Without a systemd watchdog, no call to the bus checks that the daemon responds.
    const QStringList calls = monitor.takeFromDaemon();
    QVERIFY(calls.contains("call net.connman.Technology.SetProperty(sv)"));
    QCOMPARE(calls.filter("GetId"), QStringList());
    QCOMPARE(recorder->waitFor(2),
             (QStringList{state("WIFI", service, "disconnect"), state("WIFI", service, "idle")}));

    connman.thaw();
    connman.setServices({network("Lab", "idle")});
    QCOMPARE(join(), QString("()"));
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
}

void TestWifiDisconnect::aSuspendedConnManDoesNotStopThePings()
{
    NotifySocket systemd;
    QVERIFY(systemd.listen("/run/notify"));
    daemon.setEnvironment("NOTIFY_SOCKET", "/run/notify");
    // The systemd watchdog's ping timer does not expire during the test.
    daemon.setEnvironment("WATCHDOG_USEC", "3000000000000");
    reachPowered("online");
    QVERIFY(systemd.takePing());
    BusMonitor monitor;
    connman.freeze();

    const QDBusPendingCall reply = wifi.start("disconnect");
    QVERIFY(daemon.letTimePassUntil([&] { return reply.isFinished(); }));

    const QString question = "call org.freedesktop.DBus.GetId()";
    QCOMPARE(monitor.takeFromDaemon().filter(QRegularExpression("^call net.connman|GetId")),
             (QStringList{"call net.connman.Service.Remove()", question,
                          "call net.connman.Technology.SetProperty(sv)", question,
                          "call net.connman.Manager.UnregisterAgent(o)", question}));
    for (int ping = 0; ping < 3; ++ping)
        QVERIFY(systemd.takePing());
    QVERIFY(!systemd.takePing(0));
    daemon.resetEnvironment();
}

void TestWifiDisconnect::disconnectEndsWhileTheScriptRuns()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    script.hold();
    join();
    QVERIFY(script.waitFor("start 1"));
    QCOMPARE(disconnect(), QString("()"));

    power(false);

    QCOMPARE(announced(),
             (QStringList{state("WIFI", "", "disconnect"), state("WIFI", "", "idle")}));
    // The module becomes ready, which has no effect.
    orders();
    script.release();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiDisconnect::theModuleOfAnEndedAttemptStaysOff_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isScriptRunning");
    for (const char *method : {"connect", "scan"}) {
        QTest::addRow("%s, while the script runs", method) << method << true;
        QTest::addRow("%s, in the two seconds after it", method) << method << false;
    }
}

void TestWifiDisconnect::theModuleOfAnEndedAttemptStaysOff()
{
    QFETCH(QString, method);
    QFETCH(bool, isScriptRunning);
    connman.setAsyncScan(true);
    begin();
    script.hold();
    QCOMPARE(method == "scan" ? wifi.call("scan") : join(), QString("()"));
    QVERIFY(script.waitFor("start 1"));
    if (!isScriptRunning) {
        script.release();
        waitForScripts();
    }
    QCOMPARE(disconnect(), failed("Cannot set property Powered: Already disabled"));
    orders();
    announced();

    if (isScriptRunning)
        script.release();
    letModuleSwitch();

    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace().last().section(' ', 0, 2),
             QString("slotLoadFirmwareFinishedDelayed OP:none idle"));
    // The daemon now considers the module switched: it handles ConnMan's signals again.
    power(true);
    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), (QStringList{getServices, asyncScan}));
}

void TestWifiDisconnect::signalsOfTheServiceThatIsLeftAreIgnored()
{
    reachPowered("online");
    disconnect();

    connman.setProperty(lab, "IPv4", address);
    connman.setProperty(lab, "Error", "connect-failed");
    power(true);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", false);
    QCOMPARE(announced(), QStringList{disconnecting});

    power(false);
    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(orders(), (QStringList{removeLab, powerOff, unregisterAgent}));
}

void TestWifiDisconnect::connectAndScanAreIgnoredDuringADisconnect()
{
    reachPowered("online");
    disconnect();
    announced();
    const int records = trace().size();

    QCOMPARE(join("Office"), QString("()"));
    QCOMPARE(wifi.call("scan"), QString("()"));

    QCOMPARE(announced(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
    QCOMPARE(trace().mid(records),
             (QStringList{"connect OP:none disconnect Lab", "scan OP:none disconnect Lab"}));
}

void TestWifiDisconnect::withoutAServiceThereIsNoStrength()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    QCOMPARE(wifi.call("getStrength"), QString("({})"));
    QVERIFY(!QFile::exists("/tmp/logkywifi"));
}

void TestWifiDisconnect::theStrengthComesFromConnMan()
{
    reach("configuration");
    QCOMPARE(wifi.call("getStrength"), QString("({\"Strength\": <y:70>})"));
    connman.setServices({});
    QCOMPARE(wifi.call("getStrength"), QString("({})"));
}

void TestWifiDisconnect::theAddressesComeFromTheService()
{
    reach("online");
    connman.storeProperty(lab, "Ethernet",
                          QVariantMap{{"Method", "auto"}, {"Interface", "wifi_sta"}});

    QCOMPARE(wifi.call("getIPv4"),
             QString("({\"Address\": <\"10.0.0.7\">, \"Method\": <\"dhcp\">})"));
    QCOMPARE(wifi.call("getHardwareInfos"),
             QString("({\"Interface\": <\"wifi_sta\">, \"Method\": <\"auto\">})"));
}

void TestWifiDisconnect::withoutAServiceTheHardwareInfosComeFromTheInterface()
{
    begin();
    QCOMPARE(wifi.call("getHardwareInfos"), QString("({})"));
    QCOMPARE(QProcess::execute("ip", {"link", "add", "wifi_sta", "address", "02:aa:bb:cc:dd:04",
                                      "mtu", "1400", "type", "veth"}),
             0);

    const QString infos = wifi.call("getHardwareInfos");

    QProcess::execute("ip", {"link", "delete", "wifi_sta"});
    QCOMPARE(infos, QString("({\"Address\": <\"02:AA:BB:CC:DD:04\">, \"Interface\": "
                            "<\"wifi_sta\">, \"MTU\": <q:1400>, \"Method\": <\"\">})"));
}

void TestWifiDisconnect::settingsNeedTheTechnology()
{
    begin();
    connman.setTechnologies({});
    QCOMPARE(wifi.call("setIPv4", {QVariantMap{{"Method", "dhcp"}}}),
             failed("Cannot get property Connected"));
}

WORLD_TEST_MAIN(TestWifiDisconnect)
#include "test_wifidisconnect.moc"
