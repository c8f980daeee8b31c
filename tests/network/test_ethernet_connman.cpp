#include "connmansignals.h"
#include "daemontest.h"
#include "deadline.h"
#include "processes.h"
#include "realconnman.h"
#include "render.h"
#include "simulatedmodescript.h"

#include <QDBusConnection>
#include <QDBusPendingReply>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{
/** The daemon's timeout for calls to ConnMan, in seconds. */
constexpr int callTimeoutSeconds = 25;
} // namespace

/** Ethernet on the running daemon, against the real ConnMan and a real DHCP server. */
class TestEthernetConnman : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startPowersTheWiredTechnologyOff();
    void connectLeadsToOnlineWithAnAddressFromTheDhcpServer();
    void anEarlyLeaseLeadsToOnlineToo();
    void connectTwiceInARowChangesNothing();
    void manualSettingsReachTheInterfaceAndConnMan();
    void manualSettingsTakeEffectOnlyWithTheNextConnection();
    void dhcpAfterManualSettingsGetsALeaseAgain();
    void connectingWithoutACableFailsAfterAMinute();
    void disconnectPowersTheTechnologyOff();
    void connectAgainAfterDisconnect();
    void theAddressMatchesTheKernel();
    void hardwareInfosMatchTheKernel_data();
    void hardwareInfosMatchTheKernel();

    void connectWorksIfConnManStartsAfterTheDaemon();
    void connManMayVanishAtAnyTime_data();
    void connManMayVanishAtAnyTime();
    void connManMayRestartAtAnyTime_data();
    void connManMayRestartAtAnyTime();
    void connManMayHangAtAnyTime_data();
    void connManMayHangAtAnyTime();

private:
    void begin();
    bool reach(const QString &state);
    void forgetStates();
    bool waitForState(const QString &state);
    bool connectAnew();
    static void addStates();

    static QJsonObject askKernel(const QStringList &what);
    static QString kernelAddress();

    const Remote ethernet{"/KyComMgr", "Ethernet"};
    const QString done = "()";
    RealConnman connman;
    SimulatedModeScript script;
    QScopedPointer<SignalRecorder> recorder;
    /** The states announced since the start of the daemon. */
    QStringList states;
    /** How many of them waitForState() has consumed. */
    int seen = 0;
};

void TestEthernetConnman::init()
{
    DaemonTest::init();
    script.install();
    connman.start();
    forgetStates();
}

void TestEthernetConnman::cleanup()
{
    DaemonTest::cleanup();
    recorder.reset();
    connman.kill();
    script.clear();
}

void TestEthernetConnman::begin()
{
    recorder.reset(new SignalRecorder("/KyComMgr"));
    QVERIFY(daemon.start());
    QCOMPARE(recorder->take(), QStringList());
}

void TestEthernetConnman::forgetStates()
{
    states.clear();
    seen = 0;
}

/** Waits until @p state is announced; ignores the states that earlier waits consumed. */
bool TestEthernetConnman::waitForState(const QString &state)
{
    const QRegularExpression change("^Ethernet\\.propertyChanged\\(\".*\", \"State\", "
                                    "<\"(.*)\">\\)$");
    return QTest::qWaitFor(
        [&] {
            for (const QString &signal : recorder->take()) {
                const QRegularExpressionMatch match = change.match(signal);
                if (match.hasMatch())
                    states << match.captured(1);
            }
            const int found = states.indexOf(state, seen);
            seen = found < 0 ? seen : found + 1;
            return found >= 0;
        },
        deadlineMs);
}

/** Brings the daemon into @p state, as far as ConnMan allows. */
bool TestEthernetConnman::reach(const QString &state)
{
    if (state == "idle")
        return true;
    if (state == "failure") {
        script.remove();
        ethernet.call("connect");
        script.install();
        return waitForState(state);
    }
    if (state == "association")
        connman.unplugCable();
    if (state == "ready")
        connman.setDhcpServerMute(true);
    ethernet.call("connect");
    return waitForState(state);
}

/**
 * Restores the cable and the DHCP server, disconnects and connects again. Returns true if the
 * daemon gets online with a lease.
 */
bool TestEthernetConnman::connectAnew()
{
    connman.plugCable();
    connman.setDhcpServerMute(false);
    ethernet.call("disconnect");
    return waitForState("idle") && ethernet.call("connect") == done && waitForState("online") &&
           kernelAddress().startsWith("10.77.0.");
}

QJsonObject TestEthernetConnman::askKernel(const QStringList &what)
{
    QProcess ip;
    ip.start("ip", QStringList{"-json", "-4"} + what);
    ip.waitForFinished();
    return QJsonDocument::fromJson(ip.readAllStandardOutput()).array().at(0).toObject();
}

/** The address of eth0 with its prefix length; empty without one. */
QString TestEthernetConnman::kernelAddress()
{
    const QJsonObject address =
        askKernel({"address", "show", "eth0"}).value("addr_info").toArray().at(0).toObject();
    return address.isEmpty() ? QString()
                             : address.value("local").toString() + '/' +
                                   QString::number(address.value("prefixlen").toInt());
}

void TestEthernetConnman::startPowersTheWiredTechnologyOff()
{
    QCOMPARE(RealConnman::technology("Powered"), QVariant(true));
    begin();
    QCOMPARE(RealConnman::technology("Powered"), QVariant(false));
    QCOMPARE(kernelAddress(), QString());
}

void TestEthernetConnman::connectLeadsToOnlineWithAnAddressFromTheDhcpServer()
{
    begin();

    QCOMPARE(ethernet.call("connect"), done);

    QVERIFY(waitForState("online"));
    QCOMPARE(states, (QStringList{"association", "ready", "online"}));
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0"}));
    QCOMPARE(RealConnman::technology("Connected"), QVariant(true));
    QVERIFY(kernelAddress().startsWith("10.77.0."));
}

void TestEthernetConnman::anEarlyLeaseLeadsToOnlineToo()
{
    begin();
    QVERIFY(reach("association"));
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::technology("Powered"), QVariant(true), deadlineMs);

    QVERIFY(stopProcess(daemon.processId()));
    connman.plugCable();
    QTRY_VERIFY_WITH_TIMEOUT(kernelAddress().startsWith("10.77.0."), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::service("State"), QVariant("ready"), deadlineMs);
    QVERIFY(resumeProcess(daemon.processId()));

    QVERIFY(waitForState("online"));
    QCOMPARE(states, (QStringList{"association", "ready", "online"}));
}

void TestEthernetConnman::connectTwiceInARowChangesNothing()
{
    begin();
    QVERIFY(reach("online"));
    QCOMPARE(ethernet.call("connect"), done);
    QCOMPARE(recorder->take(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0"}));
}

void TestEthernetConnman::manualSettingsReachTheInterfaceAndConnMan()
{
    begin();
    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"},
                                                   {"Address", "10.77.0.7"},
                                                   {"Netmask", "255.255.255.0"},
                                                   {"Gateway", "10.77.0.1"},
                                                   {"DNS1", "10.77.0.2"},
                                                   {"DNS2", "10.77.0.3"}}}),
             done);

    QVERIFY(reach("online"));

    QCOMPARE(states, (QStringList{"association", "ready", "online"}));
    QCOMPARE(kernelAddress(), QString("10.77.0.7/24"));
    QCOMPARE(askKernel({"route", "show", "default"}).value("gateway").toString(),
             QString("10.77.0.1"));
    QCOMPARE(render(RealConnman::service("IPv4.Configuration")),
             QString("{\"Address\": <\"10.77.0.7\">, \"Gateway\": <\"10.77.0.1\">, "
                     "\"Method\": <\"manual\">, \"Netmask\": <\"255.255.255.0\">}"));
    QCOMPARE(render(RealConnman::service("Nameservers.Configuration")),
             QString("[\"10.77.0.2\", \"10.77.0.3\"]"));
}

void TestEthernetConnman::manualSettingsTakeEffectOnlyWithTheNextConnection()
{
    begin();
    QVERIFY(reach("online"));
    const QString leased = kernelAddress();

    ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"Address", "10.77.0.7"}}});
    QCOMPARE(kernelAddress(), leased);

    QVERIFY(connectAnew());
    QCOMPARE(kernelAddress(), QString("10.77.0.7/8"));
}

void TestEthernetConnman::dhcpAfterManualSettingsGetsALeaseAgain()
{
    begin();
    ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"Address", "192.168.9.9"}}});
    QVERIFY(reach("online"));
    QCOMPARE(kernelAddress(), QString("192.168.9.9/24"));

    ethernet.call("setIPv4", {QVariantMap{{"Method", "dhcp"}}});
    QVERIFY(connectAnew());
    QVERIFY(render(RealConnman::service("IPv4.Configuration")).contains("<\"dhcp\">"));
    QVERIFY(kernelAddress().startsWith("10.77.0."));
}

void TestEthernetConnman::connectingWithoutACableFailsAfterAMinute()
{
    daemon.controlClock();
    begin();
    connman.unplugCable();

    QCOMPARE(ethernet.call("connect"), done);
    QVERIFY(waitForState("association"));
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::technology("Powered"), QVariant(true), deadlineMs);

    daemon.letTimePass(60);
    QVERIFY(waitForState("failure"));
    QCOMPARE(states, (QStringList{"association", "failure"}));
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::technology("Powered"), QVariant(false), deadlineMs);

    connman.plugCable();
    QCOMPARE(ethernet.call("connect"), done);
    QVERIFY(waitForState("online"));
}

void TestEthernetConnman::disconnectPowersTheTechnologyOff()
{
    begin();
    QVERIFY(reach("online"));
    forgetStates();

    QCOMPARE(ethernet.call("disconnect"), done);

    QVERIFY(waitForState("idle"));
    QCOMPARE(states, (QStringList{"disconnect", "idle"}));
    QCOMPARE(RealConnman::technology("Powered"), QVariant(false));
    QCOMPARE(kernelAddress(), QString());
}

void TestEthernetConnman::connectAgainAfterDisconnect()
{
    begin();
    QVERIFY(reach("online"));
    QCOMPARE(ethernet.call("disconnect"), done);
    QCOMPARE(ethernet.call("disconnect"), failed("Cannot set property Powered: Already disabled"));
    QVERIFY(waitForState("idle"));
    forgetStates();

    QVERIFY(reach("online"));
    QCOMPARE(states, (QStringList{"association", "ready", "online"}));
}

void TestEthernetConnman::theAddressMatchesTheKernel()
{
    begin();
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    QVERIFY(reach("online"));

    const QString address = kernelAddress().section('/', 0, 0);
    const QString gateway = askKernel({"route", "show", "default"}).value("gateway").toString();
    QVERIFY(kernelAddress().endsWith("/24"));
    QTRY_COMPARE_WITH_TIMEOUT(ethernet.call("getIPv4"),
                              QString("({\"Address\": <\"%1\">, \"Gateway\": <\"%2\">, \"Method\": "
                                      "<\"dhcp\">, \"Netmask\": <\"255.255.255.0\">})")
                                  .arg(address, gateway),
                              deadlineMs);
}

void TestEthernetConnman::hardwareInfosMatchTheKernel_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("method");
    QTest::newRow("without a service") << "idle"
                                       << "";
    QTest::newRow("with a service") << "online"
                                    << "auto";
}

void TestEthernetConnman::hardwareInfosMatchTheKernel()
{
    QFETCH(QString, state);
    QFETCH(QString, method);
    begin();
    QVERIFY(reach(state));

    const QJsonObject link = askKernel({"link", "show", "eth0"});
    const QString infos = ethernet.call("getHardwareInfos");

    QVERIFY(infos.startsWith(QString("({\"Address\": <\"%1\">, \"Interface\": <\"eth0\">, ")
                                 .arg(link.value("address").toString().toUpper())));
    QVERIFY(infos.contains(QString(":%1>").arg(link.value("mtu").toInt())));
    QVERIFY(infos.endsWith(QString("\"Method\": <\"%1\">})").arg(method)));
}

void TestEthernetConnman::connectWorksIfConnManStartsAfterTheDaemon()
{
    connman.kill();
    begin();
    connman.start();
    QCOMPARE(RealConnman::technology("Powered"), QVariant(true));
    QVERIFY(ConnmanSignals().waitForQuiet());

    QCOMPARE(ethernet.call("connect"), done);

    QVERIFY(waitForState("online"));
    QCOMPARE(states, (QStringList{"association", "ready", "online"}));
    QVERIFY(kernelAddress().startsWith("10.77.0."));
}

void TestEthernetConnman::addStates()
{
    QTest::addColumn<QString>("state");
    for (const char *state : {"idle", "failure", "association", "ready", "online"})
        QTest::newRow(state) << state;
}

void TestEthernetConnman::connManMayVanishAtAnyTime_data()
{
    addStates();
}

void TestEthernetConnman::connManMayVanishAtAnyTime()
{
    QFETCH(QString, state);
    begin();
    QVERIFY(reach(state));

    connman.kill();
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "dhcp"}}}),
             failed("Cannot get property Connected"));

    connman.restart();
    QVERIFY(connectAnew());
}

void TestEthernetConnman::connManMayRestartAtAnyTime_data()
{
    addStates();
}

void TestEthernetConnman::connManMayRestartAtAnyTime()
{
    QFETCH(QString, state);
    begin();
    QVERIFY(reach(state));

    connman.stop();
    connman.restart();

    QCOMPARE(ethernet.reply("getIPv4").type(), QDBusMessage::ReplyMessage);
    QVERIFY(connectAnew());
}

void TestEthernetConnman::connManMayHangAtAnyTime_data()
{
    addStates();
}

void TestEthernetConnman::connManMayHangAtAnyTime()
{
    QFETCH(QString, state);
    daemon.controlClock();
    begin();
    QVERIFY(reach(state));

    connman.freeze();
    const QDBusPendingReply<> answer = QDBusConnection::systemBus().asyncCall(
        QDBusMessage::createMethodCall("com.orvendis.Strandel.BoardManager", "/KyComMgr",
                                       "com.orvendis.Strandel.BoardManager.Ethernet", "setIPv4")
        << QVariantMap{{"Method", "dhcp"}});
    // The test cannot see when the daemon begins to wait, and time that passes earlier has no
    // effect: advance the clock repeatedly.
    QVERIFY(QTest::qWaitFor(
        [&] {
            daemon.letTimePass(callTimeoutSeconds);
            return QTest::qWaitFor([&] { return answer.isFinished(); }, 100);
        },
        deadlineMs));
    QCOMPARE(renderReply(answer.reply()), failed("Cannot get property Connected"));

    connman.thaw();
    QVERIFY(connectAnew());
}

WORLD_TEST_MAIN(TestEthernetConnman)
#include "test_ethernet_connman.moc"
