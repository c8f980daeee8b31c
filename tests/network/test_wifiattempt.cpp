#include "wifitest.h"

#include <QElapsedTimer>

/** The timeouts of an attempt to join a network, and events during it; on the running daemon. */
class TestWifiAttempt : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void anAttemptFailsAfterAMinuteWithoutEvents();
    void anAttemptFailsAfterAMinuteInAssociation();
    void afterAMinuteAReadyServiceIsUsed();
    void afterAMinuteAnOnlineServiceIsUsed();
    void afterAMinuteOfConfiguringAReadyServiceNothingIsDecided();
    void afterAMinuteAServiceThatIsNoLongerReadyFails_data();
    void afterAMinuteAServiceThatIsNoLongerReadyFails();
    void afterAMinuteAReadyServiceMayGetItsAddress();
    void afterAMinuteOfConfiguringAnotherServiceFails_data();
    void afterAMinuteOfConfiguringAnotherServiceFails();
    void onlineByTheServiceEndsTheMinute_data();
    void onlineByTheServiceEndsTheMinute();
    void aServiceThatIsOnlineAtOnceEndsTheMinute();
    void anExistingAddressEndsTheMinute();
    void aDisconnectLeavesOnlyATraceOfTheMinute();
    void anAttemptFailsAfterAMinuteWhileItsScriptRuns();
    void beforeAMinuteHasPassedNothingHappens();

    void otherCallsAreAnsweredWhileConnectIsOutstanding();
    void theAgentAnswersWhileConnectIsOutstanding();
    void anErrorNameOfConnManEndsTheAttempt_data();
    void anErrorNameOfConnManEndsTheAttempt();
    void anyOtherErrorDoesNotEndTheAttempt_data();
    void anyOtherErrorDoesNotEndTheAttempt();
    void anErrorInALaterStateDoesNotEndTheAttempt();
    void aConnectWithoutAReplyDoesNotEndTheAttempt();
    void anEarlierConnectsReplyDoesNotDisturbALaterOne();

    void aConnectInProgressIsNotDisturbed_data();
    void aConnectInProgressIsNotDisturbed();
    void aScanDoesNotDisturbAConnectThatIsStillIdle_data();
    void aScanDoesNotDisturbAConnectThatIsStillIdle();
    void scanIsAcceptedAfterAFailedConnect();
    void aConnectWhileTheScriptRunsFails();
    void aConnectWithoutAScriptFails();
    void aConnectWithoutConnmandFailsAndCallsNothing();
    void aConnectDuringTheTwoSecondsIsEvaluatedThen();
    void changesWhileTheScriptRunsLeaveOnlyATrace_data();
    void changesWhileTheScriptRunsLeaveOnlyATrace();
    void connectIsAcceptedAfterAFailure();

private:
    void verifyThatNothingElseHappens();
};

/** Verifies that more time has no effect, not even a trace record. */
void TestWifiAttempt::verifyThatNothingElseHappens()
{
    orders();
    const QStringList records = trace();

    daemon.letTimePass(120);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace(), records);
}

void TestWifiAttempt::anAttemptFailsAfterAMinuteWithoutEvents()
{
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(powerOn));

    daemon.letTimePass(58);

    QCOMPARE(recorder->waitFor(1), QStringList{failure});
    QCOMPARE(trace().mid(3), (QStringList{"servicesChangedSlot OP:none failure Lab",
                                          "timeoutMonitoring OP:none failure Lab"}));
}

void TestWifiAttempt::anAttemptFailsAfterAMinuteInAssociation()
{
    reach("association");

    daemon.letTimePass(58);

    QCOMPARE(recorder->waitFor(1), QStringList{failure});
    QCOMPARE(trace().mid(6), (QStringList{"servicesChangedSlot OP:connect association Lab",
                                          "timeoutMonitoring OP:none failure Lab"}));
    announceService("ready");
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiAttempt::afterAMinuteAReadyServiceIsUsed()
{
    reach("association");
    connman.storeProperty(lab, "State", "ready");

    daemon.letTimePass(58);

    QCOMPARE(recorder->waitFor(1), QStringList{configuration});
}

void TestWifiAttempt::afterAMinuteAnOnlineServiceIsUsed()
{
    reach("configuration");
    connman.storeProperty(lab, "State", "online");

    daemon.letTimePass(58);

    QCOMPARE(recorder->waitFor(1), QStringList{online});
}

void TestWifiAttempt::afterAMinuteOfConfiguringAnotherServiceFails_data()
{
    QTest::addColumn<QString>("serviceState");
    for (const char *name : {"idle", "failure", "association", "configuration", "disconnect", ""})
        QTest::newRow(*name ? name : "none") << name;
}

void TestWifiAttempt::afterAMinuteOfConfiguringAnotherServiceFails()
{
    QFETCH(QString, serviceState);
    reach("configuration");
    connman.storeProperty(lab, "State", serviceState);
    const int records = trace().size();
    connman.clearJournal();

    daemon.letTimePass(58);

    QCOMPARE(recorder->waitFor(1), QStringList{labFailure});
    QCOMPARE(trace().mid(records), (QStringList{"servicesChangedSlot OP:connect configuration Lab",
                                                "timeoutMonitoring OP:none failure Lab"}));
    // The radio stays on.
    QCOMPARE(connman.journal(), QStringList{getServices});
}

void TestWifiAttempt::afterAMinuteOfConfiguringAReadyServiceNothingIsDecided()
{
    reach("configuration");
    connman.storeProperty(lab, "State", "ready");

    daemon.letTimePass(58);

    QVERIFY(waitForTrace("timeoutMonitoring"));
    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace().last(), QString("timeoutMonitoring OP:connect configuration Lab"));

    // The timeout expires only once.
    const QStringList records = trace();
    daemon.letTimePass(120);
    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace(), records);
}

void TestWifiAttempt::afterAMinuteAServiceThatIsNoLongerReadyFails_data()
{
    QTest::addColumn<QString>("serviceState");
    for (const char *name : {"idle", "failure", "association", "configuration", "disconnect", ""})
        QTest::newRow(*name ? name : "none") << name;
}

void TestWifiAttempt::afterAMinuteAServiceThatIsNoLongerReadyFails()
{
    QFETCH(QString, serviceState);
    reach("configuration");
    connman.storeProperty(lab, "State", "ready");
    daemon.letTimePass(58);
    QVERIFY(waitForTrace("timeoutMonitoring"));
    QCOMPARE(announced(), QStringList());
    orders();
    const int records = trace().size();

    announceService(serviceState);

    QCOMPARE(announced(), QStringList{labFailure});
    QCOMPARE(trace().mid(records), QStringList{"servicesChangedSlot OP:none failure Lab"});
    // The radio stays on, and another attempt may begin.
    QCOMPARE(orders(), QStringList());
    QCOMPARE(join(), QString("()"));
    letModuleSwitch();
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1", "start 1", "end 1"}));
}

void TestWifiAttempt::afterAMinuteAReadyServiceMayGetItsAddress()
{
    reach("configuration");
    connman.storeProperty(lab, "State", "ready");
    daemon.letTimePass(58);
    QVERIFY(waitForTrace("timeoutMonitoring"));

    announceService("ready");
    QCOMPARE(announced(), QStringList());
    connman.setProperty(lab, "IPv4", address);

    QCOMPARE(announced(), QStringList{online});
}

void TestWifiAttempt::onlineByTheServiceEndsTheMinute_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("while associating") << "association";
    QTest::newRow("while configuring") << "configuration";
}

void TestWifiAttempt::onlineByTheServiceEndsTheMinute()
{
    QFETCH(QString, name);
    reach(name);
    announceService("online");
    QCOMPARE(announced().size(), 1);

    verifyThatNothingElseHappens();
}

void TestWifiAttempt::aServiceThatIsOnlineAtOnceEndsTheMinute()
{
    connman.setServices({network("Lab", "online")});
    begin();
    join();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList{state("WIFI", "", "online")});

    verifyThatNothingElseHappens();
}

void TestWifiAttempt::anExistingAddressEndsTheMinute()
{
    reach("association");
    connman.storeProperty(lab, "IPv4", address);
    announceService("ready");
    QCOMPARE(announced(), (QStringList{configuration, online}));

    verifyThatNothingElseHappens();
}

void TestWifiAttempt::aDisconnectLeavesOnlyATraceOfTheMinute()
{
    reach("association");
    QVERIFY(wifi.call("disconnect").startsWith(failed("Cannot set property Powered: ")));
    announced();
    orders();
    const int records = trace().size();

    daemon.letTimePass(60);

    QVERIFY(waitForTrace("timeoutMonitoring"));
    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace().mid(records), (QStringList{"servicesChangedSlot OP:none idle Lab",
                                                "timeoutMonitoring OP:none idle Lab"}));
}

void TestWifiAttempt::anAttemptFailsAfterAMinuteWhileItsScriptRuns()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    script.hold();
    join();

    daemon.letTimePass(60);
    QCOMPARE(recorder->waitFor(1), QStringList{failure});

    script.release();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiAttempt::beforeAMinuteHasPassedNothingHappens()
{
    reach("association");
    const int records = trace().size();

    daemon.letTimePass(55);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace().size(), records);
}

void TestWifiAttempt::otherCallsAreAnsweredWhileConnectIsOutstanding()
{
    connman.holdMethod(connectLab);
    reach("association");

    QElapsedTimer timer;
    qint64 fastest = 10000;
    for (int call = 0; call < 20; ++call) {
        timer.start();
        QCOMPARE(wifi.call("getStrength"), QString("({})"));
        fastest = qMin(fastest, timer.elapsed());
    }
    // A busy machine delays some of the replies, but not all.
    QVERIFY2(fastest < 50, qPrintable(QString::number(fastest)));
    QCOMPARE(wifi.call("scan"), QString("()"));
    QCOMPARE(announced(), QStringList());
}

void TestWifiAttempt::theAgentAnswersWhileConnectIsOutstanding()
{
    connman.setServices({network("Lab", "idle")});
    connman.askOnConnect(lab, {{"Passphrase", ConnmanStandIn::field("mandatory", "psk")}});
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));

    QCOMPARE(connman.requestInput(lab, {{"Identity", ConnmanStandIn::field("mandatory")}}),
             QString("({\"Identity\": <\"me\">})"));

    // The agent answers two requests for each connect: it has answered the request that Connect
    // caused, and the request above.
    QCOMPARE(connman.requestInput(lab, {{"Identity", ConnmanStandIn::field("mandatory")}}),
             QString("net.connman.Agent.Error.Canceled: "));
    QCOMPARE(announced(), QStringList{association});
}

void TestWifiAttempt::anErrorNameOfConnManEndsTheAttempt_data()
{
    QTest::addColumn<QString>("errorName");
    for (const char *name : {"Failed", "OperationAborted", "InvalidArguments"})
        QTest::newRow(name) << name;
}

void TestWifiAttempt::anErrorNameOfConnManEndsTheAttempt()
{
    QFETCH(QString, errorName);
    connman.holdMethod(connectLab);
    reach("association");
    const int records = trace().size();

    connman.failMethod(connectLab, "net.connman.Error." + errorName, "Input/output error");
    connman.releaseMethod(connectLab);

    QCOMPARE(recorder->waitFor(1), QStringList{failure});
    QCOMPARE(trace().mid(records), QStringList{"sendRequestConnect OP:none failure Lab"});
    // The attempt is over, and the radio stays on.
    announceService("ready");
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiAttempt::anyOtherErrorDoesNotEndTheAttempt_data()
{
    QTest::addColumn<QString>("errorName");
    for (const char *name :
         {"net.connman.Error.InProgress", "net.connman.Error.AlreadyConnected",
          "org.freedesktop.DBus.Error.Failed", "org.freedesktop.DBus.Error.NoReply"})
        QTest::newRow(name) << name;
}

void TestWifiAttempt::anyOtherErrorDoesNotEndTheAttempt()
{
    QFETCH(QString, errorName);
    connman.holdMethod(connectLab);
    reach("association");
    connman.failMethod(connectLab, errorName, "Input/output error");
    connman.releaseMethod(connectLab);
    QVERIFY(daemon.waitForLog("Input/output error"));

    QCOMPARE(announced(), QStringList());
    announceService("ready");
    QCOMPARE(announced(), QStringList{configuration});
}

void TestWifiAttempt::anErrorInALaterStateDoesNotEndTheAttempt()
{
    connman.holdMethod(connectLab);
    reach("configuration");
    connman.failMethod(connectLab, "net.connman.Error.Failed", "Input/output error");
    connman.releaseMethod(connectLab);
    QVERIFY(daemon.waitForLog("Input/output error"));

    QCOMPARE(announced(), QStringList());
    connman.setProperty(lab, "IPv4", address);
    QCOMPARE(announced(), QStringList{online});
}

void TestWifiAttempt::aConnectWithoutAReplyDoesNotEndTheAttempt()
{
    connman.holdMethod(connectLab);
    reach("association");

    daemon.letTimePass(25);
    QVERIFY(daemon.waitForLog("Connect: \""));

    QCOMPARE(announced(), QStringList());
    connman.releaseMethod(connectLab);
    announceService("ready");
    QCOMPARE(announced(), QStringList{configuration});
}

void TestWifiAttempt::anEarlierConnectsReplyDoesNotDisturbALaterOne()
{
    connman.holdMethod(connectLab);
    reach("association");
    announceService("failure");
    connman.setServices({network("Lab", "failure"), network("Office", "idle")});
    join("Office");
    letModuleSwitch();
    QVERIFY(connman.waitForCall("Service.Connect " + networkPath("Office")));
    QCOMPARE(announced(), (QStringList{failure, association}));

    connman.failMethod(connectLab, "net.connman.Error.OperationAborted", "Operation aborted");
    connman.releaseMethod(connectLab);

    QCOMPARE(announced(), QStringList());
    connman.storeProperty(networkPath("Office"), "State", "ready");
    connman.emitServicesChanged();
    QCOMPARE(announced(), QStringList{state("WIFI", networkPath("Office"), "configuration")});
}

void TestWifiAttempt::aConnectInProgressIsNotDisturbed_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"association", "configuration", "online"})
        QTest::newRow(name) << name;
}

void TestWifiAttempt::aConnectInProgressIsNotDisturbed()
{
    QFETCH(QString, name);
    reach(name);
    const int records = trace().size();

    QCOMPARE(join("Office"), QString("()"));
    QCOMPARE(wifi.call("scan"), QString("()"));

    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
    QCOMPARE(trace().mid(records), (QStringList{"connect OP:connect " + name + " Lab",
                                                "scan OP:connect " + name + " Lab"}));
}

void TestWifiAttempt::aScanDoesNotDisturbAConnectThatIsStillIdle_data()
{
    QTest::addColumn<QString>("phase");
    for (const char *phase : {"script", "delay", "search"})
        QTest::newRow(phase) << phase;
}

void TestWifiAttempt::aScanDoesNotDisturbAConnectThatIsStillIdle()
{
    QFETCH(QString, phase);
    begin();
    script.hold();
    join();
    QVERIFY(script.waitFor("start 1"));
    if (phase != "script") {
        script.release();
        waitForScripts();
    }
    if (phase == "search")
        letModuleSwitch();
    const int records = trace().size();

    QCOMPARE(wifi.call("scan"), QString("()"));

    QCOMPARE(trace().mid(records), QStringList{"scan OP:connect idle Lab"});
    QCOMPARE(announced(), QStringList());
    // The 15 s timeout of a scan does not end the connect either.
    daemon.letTimePass(20);
    QCOMPARE(announced(), QStringList());
    if (phase == "script") {
        script.release();
        letModuleSwitch();
    }
    QVERIFY(connman.waitForCall(powerOn));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
    connman.setServices({network("Lab", "idle")});
    connman.emitServicesChanged();
    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{powerOn, registerAgent, connectLab}));
}

void TestWifiAttempt::scanIsAcceptedAfterAFailedConnect()
{
    connman.setServices({network("Lab", "idle")});
    script.remove();
    begin();
    QCOMPARE(join(), cannotSwitch);
    script.install();

    QCOMPARE(wifi.call("scan"), QString("()"));

    QCOMPARE(announced(), (QStringList{failure, state("WIFI", "", "idle")}));
}

void TestWifiAttempt::aConnectWhileTheScriptRunsFails()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    script.hold();
    join();
    QVERIFY(script.waitFor("start 1"));

    QCOMPARE(join("Office"), cannotSwitch);

    QCOMPARE(announced(), QStringList{failure});
    script.release();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
}

void TestWifiAttempt::aConnectWithoutAScriptFails()
{
    script.remove();
    begin();

    QCOMPARE(join(), cannotSwitch);

    QCOMPARE(announced(), QStringList{failure});
    QCOMPARE(trace(), QStringList{"connect OP:connect failure Lab"});
}

void TestWifiAttempt::aConnectWithoutConnmandFailsAndCallsNothing()
{
    // The stand-in is still on the bus, but its program has a name that pidof does not look for.
    connman.kill();
    connman.start("networkd");
    connman.setServices({network("Lab", "idle")});
    begin();

    QCOMPARE(join(), QString("()"));
    letModuleSwitch();

    QCOMPARE(announced(), QStringList{failure});
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace().last(), QString("slotLoadFirmwareFinishedDelayed OP:connect failure Lab"));
}

void TestWifiAttempt::aConnectDuringTheTwoSecondsIsEvaluatedThen()
{
    connman.setServices({network("Lab", "idle"), network("Office", "idle")});
    begin();
    join();
    waitForScripts();

    QCOMPARE(join("Office"), QString("()"));
    letModuleSwitch();

    QVERIFY(connman.waitForCall("Service.Connect"));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(),
             (QStringList{registerAgent, "Service.Connect " + networkPath("Office") + " ()"}));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1", "start 1", "end 1"}));
}

void TestWifiAttempt::changesWhileTheScriptRunsLeaveOnlyATrace_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("serviceRecords");
    QTest::newRow("connect") << "connect" << 0;
    // A scan keeps the service and traces its changes.
    QTest::newRow("scan") << "scan" << 3;
}

void TestWifiAttempt::changesWhileTheScriptRunsLeaveOnlyATrace()
{
    QFETCH(QString, method);
    QFETCH(int, serviceRecords);
    reach("configuration");
    connman.setProperty(lab, "Error", "connect-failed");
    QCOMPARE(announced(), QStringList{labFailure});
    orders();
    const int records = trace().size();
    script.hold();
    QCOMPARE(method == "scan" ? wifi.call("scan") : join(), QString("()"));
    QCOMPARE(announced(),
             method == "scan" ? QStringList{state("WIFI", lab, "idle")} : QStringList());

    connman.emitServicesChanged();
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);
    connman.setProperty(lab, "IPv4", address);
    connman.setProperty(lab, "Error", "connect-failed");
    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(41)));

    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), QStringList());
    QStringList expected = {method, "servicesChangedSlot", "technologyPropertyChangedSlot",
                            "technologyPropertyChangedSlot"};
    for (int record = 0; record < serviceRecords; ++record)
        expected << "servicePropertyChangedSlot";
    for (QString &record : expected)
        record += " OP:" + method + " idle Lab";
    QCOMPARE(trace().mid(records), expected);
}

void TestWifiAttempt::connectIsAcceptedAfterAFailure()
{
    reach("association");
    announceService("failure");
    QCOMPARE(announced(), QStringList{failure});
    connman.storeProperty(lab, "State", "idle");

    QCOMPARE(join(), QString("()"));
    letModuleSwitch();

    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{registerAgent, connectLab}));
}

WORLD_TEST_MAIN(TestWifiAttempt)
#include "test_wifiattempt.moc"
