#include "deadline.h"
#include "wifitest.h"

/** The timers of the network adaptors, exact to the millisecond, on the running daemon. */
class TestNetworkTimers : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aWiredAttemptTimesOutEverySixtySeconds();
    void theStationWaitsTwoSecondsForTheModule();
    void aScanTimesOutAfterFifteenSeconds();
    void anAttemptToJoinTimesOutAfterSixtySeconds();
    void aDisconnectTimesOutAfterFifteenSeconds();
    void theAccessPointIsCheckedAfterTwoSecondsAndThreeMore();
    void theAccessPointIsCheckedAgainAfterThreeSeconds();

private:
    void passTo(int milliseconds, const QStringList &expected);
    static QString accessPoint(const char *name) { return state("WIFIAP", "/net/wap", name); }

    const QString operationalState = "/sys/class/net/wifi_ap/operstate";
    const QVariantMap accessPointSettings = {
        {"SSID", "Lab"}, {"Channel", 6}, {"IP", "192.168.7.1"}};
};

void TestNetworkTimers::init()
{
    WifiTest::init();
    daemon.stopClock();
}

/**
 * Lets @p milliseconds pass. Verifies that @p expected is announced in the last millisecond, and
 * nothing before.
 */
void TestNetworkTimers::passTo(int milliseconds, const QStringList &expected)
{
    daemon.letMillisecondsPass(milliseconds - 1);
    QCOMPARE(announced(), QStringList());
    daemon.letMillisecondsPass(1);
    QCOMPARE(recorder->waitFor(expected.size()), expected);
}

void TestNetworkTimers::aWiredAttemptTimesOutEverySixtySeconds()
{
    begin();
    ethernet.call("connect");
    QCOMPARE(recorder->waitFor(1), QStringList{state("Ethernet", "", "association")});

    for (int times = 0; times < 3; ++times)
        passTo(60000, {state("Ethernet", "", "failure")});
}

void TestNetworkTimers::theStationWaitsTwoSecondsForTheModule()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    join();
    waitForScripts();

    passTo(2000, {association});
}

void TestNetworkTimers::aScanTimesOutAfterFifteenSeconds()
{
    begin();
    wifi.call("scan");
    letModuleSwitch();
    announced();

    passTo(13000, {"WIFI.servicesListChanged({})"});
}

void TestNetworkTimers::anAttemptToJoinTimesOutAfterSixtySeconds()
{
    reach("association");

    passTo(58000, {failure});
}

void TestNetworkTimers::aDisconnectTimesOutAfterFifteenSeconds()
{
    begin();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QCOMPARE(wifi.call("disconnect"), QString("()"));
    announced();

    passTo(15000, {state("WIFI", "", "idle")});
}

void TestNetworkTimers::theAccessPointIsCheckedAfterTwoSecondsAndThreeMore()
{
    begin();
    QCOMPARE(wifiAp.call("connect", {accessPointSettings}), QString("()"));
    waitForScripts();
    announced();

    passTo(2000, {accessPoint("ready")});
    passTo(3000, {accessPoint("online")});
}

void TestNetworkTimers::theAccessPointIsCheckedAgainAfterThreeSeconds()
{
    begin();
    QCOMPARE(wifiAp.call("connect", {accessPointSettings}), QString("()"));
    waitForScripts();
    announced();
    passTo(2000, {accessPoint("ready")});
    script.setCarrier(false);
    QTRY_VERIFY_WITH_TIMEOUT(readFile(operationalState) != "up\n", deadlineMs);

    passTo(3000, {});
    // The daemon may answer the call that ends passTo() before it handles an expired timer: check
    // again.
    QCOMPARE(announced(), QStringList());
    script.setCarrier(true);
    QTRY_COMPARE_WITH_TIMEOUT(readFile(operationalState), QByteArray("up\n"), deadlineMs);

    passTo(3000, {accessPoint("online")});
}

WORLD_TEST_MAIN(TestNetworkTimers)
#include "test_networktimers.moc"
