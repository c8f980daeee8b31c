#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "realconnman.h"
#include "simulatedmodescript.h"
#include "supplicantstandin.h"

#include <QDBusVariant>
#include <QRegularExpression>

/** The Wi-Fi station of the running daemon, against the real ConnMan, without a radio. */
class TestWifiConnman : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aScanListsTheNetworks();
    void everyScanListsTheCurrentNetworks();
    void joiningAnOpenNetworkLeadsToOnline();
    void joiningAProtectedNetworkLeadsToOnline();
    void theRightKeyLeadsToOnlineAfterAWrongOne_data();
    void theRightKeyLeadsToOnlineAfterAWrongOne();
    void aNetworkThatRefusesEveryKeyCannotBeJoined();
    void anAbsentNetworkCannotBeJoined();
    void anAbsentNetworkIsJoinedOnceItIsBack();
    void aConnectWithTheRadioOnScansAtOnce();
    void disconnectForgetsTheNetwork();
    void theStationChangesFromOneNetworkToAnother();
    void theNetworkJoinedLastIsConfiguredAgain();
    void manualSettingsReachTheInterface();
    void outOfRangeTheStationLosesItsAddress();
    void theModuleSwitchesToTheAccessPointAndBack();

private:
    static QString path(const char *ssid, const char *security);
    QString join(const QString &name, const QString &key = QString());
    bool waitForState(const QString &state, const char *interface = "WIFI",
                      const QString &service = ".*");
    QString scan();
    static bool runs(const char *program);
    static QString kernelAddress(const char *interface = "wifi_sta");

    const Remote wifi{"/KyComMgr", "WIFI"};
    const Remote accessPoint{"/KyComMgr", "WIFIAP"};
    const QString done = "()";
    const QString workshop = path("Workshop", "psk");
    const QVariantMap manual = {{"Method", "manual"},
                                {"Address", "10.78.0.7"},
                                {"Netmask", "255.255.255.0"},
                                {"Gateway", "10.78.0.1"}};
    RealConnman connman;
    SupplicantStandIn supplicant;
    SimulatedModeScript script;
    QScopedPointer<SignalRecorder> recorder;
    /** The announcements that waitForState() has received, but not consumed yet. */
    QStringList signalsSeen;
};

void TestWifiConnman::init()
{
    DaemonTest::init();
    script.install();
    supplicant.start();
    connman.start();
    daemon.controlClock();
    QVERIFY(daemon.start());
    recorder.reset(new SignalRecorder("/KyComMgr"));
    signalsSeen.clear();
}

void TestWifiConnman::cleanup()
{
    DaemonTest::cleanup();
    recorder.reset();
    connman.kill();
    supplicant.kill();
    script.clear();
}

QString TestWifiConnman::path(const char *ssid, const char *security)
{
    return QStringLiteral("/net/connman/service/wifi_02aabbccdd03_%1_managed_%2")
        .arg(QString::fromLatin1(QByteArray(ssid).toHex()), QLatin1String(security));
}

QString TestWifiConnman::join(const QString &name, const QString &key)
{
    return wifi.call("connect",
                     {QVariantMap{{"Service", name}, {"User", QString()}, {"Password", key}}});
}

/**
 * Waits until @p state is announced for @p service; consumes it and all earlier announcements.
 */
bool TestWifiConnman::waitForState(const QString &state, const char *interface,
                                   const QString &service)
{
    const QRegularExpression change('^' + QLatin1String(interface) + "\\.propertyChanged\\(\"" +
                                    service + "\", \"State\", <\"" + state + "\">\\)$");
    return QTest::qWaitFor(
        [&] {
            signalsSeen << recorder->take();
            const int found = signalsSeen.indexOf(change);
            signalsSeen = signalsSeen.mid(found + 1);
            return found >= 0;
        },
        deadlineMs);
}

/** Scans; returns the announced list. */
QString TestWifiConnman::scan()
{
    if (wifi.call("scan") != done)
        return QStringLiteral("refused");
    QString list;
    const auto isListed = [&] {
        for (const QString &signal : recorder->take()) {
            if (signal.startsWith("WIFI.servicesListChanged("))
                list = signal.section('(', 1).section(')', 0, -2);
        }
        return !list.isEmpty();
    };
    return QTest::qWaitFor(isListed, deadlineMs) ? list : QStringLiteral("none");
}

/** The address of @p interface with its prefix length; empty without one. */
QString TestWifiConnman::kernelAddress(const char *interface)
{
    QProcess ip;
    ip.start("ip", {"-4", "-oneline", "address", "show", "dev", QLatin1String(interface)});
    ip.waitForFinished();
    return QString::fromUtf8(ip.readAllStandardOutput()).section(' ', 6, 6);
}

bool TestWifiConnman::runs(const char *program)
{
    return QProcess::execute("pidof", {"-q", program}) == 0;
}

void TestWifiConnman::aScanListsTheNetworks()
{
    const auto entry = [](const char *name, const char *strength, const char *connmanSecurity,
                          const char *security) {
        return QStringLiteral("\"%1\": <[\"%2\", \"%3\", \"%4\"]>")
            .arg(QLatin1String(name), path(name, connmanSecurity), QLatin1String(strength),
                 QLatin1String(security));
    };
    const QStringList expected = {
        entry("Cafe", "65", "none", "none"), entry("Grumpy", "50", "psk", "psk"),
        entry("Hall", "62", "psk", "psk"), entry("Workshop", "72", "psk", "psk")};
    QCOMPARE(scan(), '{' + expected.join(", ") + '}');
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/sys/class/net/wifi_sta/operstate"), QByteArray("down\n"),
                              deadlineMs);
}

void TestWifiConnman::everyScanListsTheCurrentNetworks()
{
    QVERIFY(scan().contains("\"Cafe\""));
    supplicant.set("cafe/in_range", "0");
    supplicant.set("kitchen/ssid", "Kitchen");
    const QString second = scan();
    QVERIFY2(second.contains("\"Kitchen\"") && !second.contains("\"Cafe\""), qPrintable(second));
}

void TestWifiConnman::joiningAnOpenNetworkLeadsToOnline()
{
    QCOMPARE(join("Cafe"), done);
    QVERIFY(waitForState("association"));
    QVERIFY(waitForState("configuration"));
    QVERIFY(waitForState("online"));
    QVERIFY2(kernelAddress().startsWith("10.78.0."), qPrintable(kernelAddress()));
    QCOMPARE(wifi.call("getStrength"), QStringLiteral("({\"Strength\": <y:65>})"));
}

void TestWifiConnman::joiningAProtectedNetworkLeadsToOnline()
{
    QCOMPARE(join("Workshop", "seven seas"), done);
    QVERIFY(waitForState("online"));
    QVERIFY2(kernelAddress().startsWith("10.78.0."), qPrintable(kernelAddress()));
}

void TestWifiConnman::theRightKeyLeadsToOnlineAfterAWrongOne_data()
{
    QTest::addColumn<bool>("isJoinedBefore");
    QTest::newRow("a network never joined") << false;
    QTest::newRow("the network joined last") << true;
}

void TestWifiConnman::theRightKeyLeadsToOnlineAfterAWrongOne()
{
    QFETCH(bool, isJoinedBefore);
    if (isJoinedBefore) {
        join("Workshop", "seven seas");
        QVERIFY(waitForState("online"));
        wifi.call("disconnect");
        QVERIFY(waitForState("idle"));
    }
    QCOMPARE(join("Workshop", "eight seas"), done);
    QVERIFY(waitForState("failure", "WIFI", ""));
    QCOMPARE(kernelAddress(), QString());
    QCOMPARE(join("Workshop", "seven seas"), done);
    QVERIFY(waitForState("online"));
}

void TestWifiConnman::aNetworkThatRefusesEveryKeyCannotBeJoined()
{
    QCOMPARE(join("Grumpy", "never ever"), done);
    QVERIFY(waitForState("failure"));
    QCOMPARE(kernelAddress(), QString());
}

void TestWifiConnman::anAbsentNetworkCannotBeJoined()
{
    QCOMPARE(join("Nowhere"), done);
    QVERIFY(waitForState("failure"));
}

void TestWifiConnman::anAbsentNetworkIsJoinedOnceItIsBack()
{
    const QString cafe = path("Cafe", "none");
    const Remote radio("net.connman", "/net/connman/technology/wifi", "net.connman.Technology");
    QCOMPARE(radio.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))}), done);
    QTRY_VERIFY_WITH_TIMEOUT(!RealConnman::properties(cafe).isEmpty(), deadlineMs);
    // ConnMan lists the network until the next scan, although it is out of range.
    supplicant.set("cafe/in_range", "0");
    QCOMPARE(join("Cafe"), done);
    QVERIFY(waitForState("association", "WIFI", ""));
    // ConnMan's error reply ends the attempt before its 60 s are over, and the radio stays on.
    QVERIFY(waitForState("failure", "WIFI", ""));
    QVERIFY(!RealConnman::properties(cafe).isEmpty());

    supplicant.set("cafe/in_range", "1");
    QCOMPARE(join("Cafe"), done);

    QVERIFY(waitForState("online", "WIFI", cafe));
}

void TestWifiConnman::aConnectWithTheRadioOnScansAtOnce()
{
    const QString technology = "/net/connman/technology/wifi";
    const Remote radio("net.connman", technology, "net.connman.Technology");
    for (const char *directory : {"cafe", "grumpy", "hall_near", "hall_far", "workshop", "vault"})
        supplicant.set(QLatin1String(directory) + "/in_range", "0");
    QCOMPARE(radio.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))}), done);
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::properties(technology).value("Powered").toBool(), true,
                              deadlineMs);
    BusMonitor monitor;
    QStringList calls;

    QCOMPARE(join("Cafe"), done);

    // Debian's ConnMan does not have AsyncScan: wait for the call, not for its effect.
    QVERIFY(QTest::qWaitFor(
        [&] {
            calls += monitor.takeFromDaemon("net.connman");
            return calls.contains("call net.connman.Technology.AsyncScan()");
        },
        deadlineMs));
    QCOMPARE(recorder->take(), QStringList());
}

void TestWifiConnman::disconnectForgetsTheNetwork()
{
    const QString memory = "/var/lib/connman/" + workshop.section('/', -1) + "/settings";
    join("Workshop", "seven seas");
    QVERIFY(waitForState("online"));
    QVERIFY(readFile(memory).contains("Passphrase=seven seas\n"));
    QCOMPARE(wifi.call("disconnect"), done);
    QVERIFY(waitForState("idle"));
    QTRY_COMPARE_WITH_TIMEOUT(kernelAddress(), QString(), deadlineMs);
    QVERIFY(!readFile(memory).contains("Passphrase"));
    join("Workshop", "eight seas");
    QVERIFY(waitForState("failure"));
}

void TestWifiConnman::theStationChangesFromOneNetworkToAnother()
{
    join("Cafe");
    QVERIFY(waitForState("online"));
    wifi.call("disconnect");
    QVERIFY(waitForState("idle"));
    join("Hall", "echo chamber");
    QVERIFY(waitForState("online"));
    QVERIFY2(kernelAddress().startsWith("10.78.0."), qPrintable(kernelAddress()));
}

void TestWifiConnman::theNetworkJoinedLastIsConfiguredAgain()
{
    join("Workshop", "seven seas");
    QVERIFY(waitForState("online"));
    wifi.call("disconnect");
    QVERIFY(waitForState("idle"));
    QCOMPARE(wifi.call("setIPv4", {manual}), done);

    join("Workshop", "seven seas");

    QVERIFY(waitForState("association", "WIFI", ""));
    QVERIFY(waitForState("configuration", "WIFI", workshop));
    QVERIFY(waitForState("online", "WIFI", workshop));
    QTRY_COMPARE_WITH_TIMEOUT(kernelAddress(), QStringLiteral("10.78.0.7/24"), deadlineMs);
}

void TestWifiConnman::manualSettingsReachTheInterface()
{
    QCOMPARE(wifi.call("setIPv4", {manual}), done);
    join("Cafe");
    QVERIFY(waitForState("online"));
    QTRY_COMPARE_WITH_TIMEOUT(kernelAddress(), QStringLiteral("10.78.0.7/24"), deadlineMs);
}

void TestWifiConnman::outOfRangeTheStationLosesItsAddress()
{
    join("Cafe");
    QVERIFY(waitForState("online"));
    supplicant.set("cafe/in_range", "0");
    QTRY_COMPARE_WITH_TIMEOUT(kernelAddress(), QString(), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(wifi.call("getIPv4").contains("\"Address\""), false, deadlineMs);
}

void TestWifiConnman::theModuleSwitchesToTheAccessPointAndBack()
{
    join("Workshop", "seven seas");
    QVERIFY(waitForState("online"));
    QCOMPARE(wifi.call("disconnect"), done);
    QVERIFY(waitForState("idle"));

    QCOMPARE(accessPoint.call("connect", {QVariantMap{{"SSID", "Strandel 12"},
                                                      {"Channel", 6},
                                                      {"Security", "WPA2"},
                                                      {"Password", "under the dome"},
                                                      {"IP", "192.168.7.1"}}}),
             done);
    QVERIFY(waitForState("configuration", "WIFIAP"));
    QVERIFY(waitForState("ready", "WIFIAP"));
    QVERIFY(waitForState("online", "WIFIAP"));
    QVERIFY(runs("hostapd") && runs("dhcpd"));
    QCOMPARE(kernelAddress("wifi_ap"), QStringLiteral("192.168.7.1/24"));
    QCOMPARE(kernelAddress(), QString());
    const QByteArray configuration = readFile("/tmp/User_part/hostapd.conf");
    for (const char *line :
         {"ssid=Strandel 12\n", "channel=6\n", "wpa=2\n", "wpa_passphrase=under the dome\n"})
        QVERIFY2(configuration.contains(line), configuration.constData());

    QCOMPARE(accessPoint.call("disconnect"), done);
    QVERIFY(waitForState("idle", "WIFIAP"));
    QVERIFY(script.waitFor("end 0"));
    QVERIFY(!runs("hostapd") && !runs("dhcpd"));
    QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));

    QVERIFY2(scan().contains("\"Workshop\""), "the access point is in the station's way");
    QCOMPARE(join("Workshop", "seven seas"), done);
    QVERIFY(waitForState("online"));
    QVERIFY2(kernelAddress().startsWith("10.78.0."), qPrintable(kernelAddress()));
}

WORLD_TEST_MAIN(TestWifiConnman)

#include "test_wifi_connman.moc"
