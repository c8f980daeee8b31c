#include "board.h"
#include "deadline.h"
#include "ethernettest.h"
#include "figures.h"
#include "processes.h"
#include "render.h"
#include "wifitest.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QRegularExpression>

/**
 * All faults of ConnMan, in every state of the three network adaptors: each called method sends the
 * expected reply, and once ConnMan works again the adaptor gets online.
 *
 * FAULTS=all in the environment tests every fault in every state; otherwise each state is tested
 * with some of the faults.
 */
class TestConnmanFaults : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase();

    void theAdaptorGetsOnlineAfterwards_data();
    void theAdaptorGetsOnlineAfterwards();
    void theDaemonStaysIdleWithoutItsBus();

private:
    void reachState(const QString &adaptor, const QString &name);
    void reachEthernet(const QString &name);
    void reachAccessPoint(const QString &name);
    void haveFault(const QString &fault);
    void endFault(const QString &fault);
    QString call(const QString &fault, const QString &method, const QVariantList &arguments);
    void callEverything(const QString &adaptor, const QString &fault);
    void verifyAnswer(const QString &adaptor, const QString &method, const QString &fault,
                      const QString &answer);
    void comeToRest(const QString &adaptor);
    void verifyOnline(const QString &adaptor);
    const Remote &remote(const QString &adaptor) const;

    const Remote *m_remote = nullptr;
    int m_combinations = 0;
    int m_survived = 0;
    int m_calls = 0;
};

namespace
{
const QStringList faults = {"absent", "killed",    "stopped",      "restarted",
                            "errors", "20 s late", "another type", "odd values"};

const QMap<QString, QStringList> states = {
    {"Ethernet", {"idle", "failure", "association", "ready", "online"}},
    {"WIFI", {"idle", "failure", "association", "configuration", "online", "disconnect"}},
    {"WIFIAP", {"idle", "failure", "configuration", "ready", "online"}},
};

const QVariantMap accessPoint = {{"Channel", 6}, {"SSID", "Lab"}, {"IP", "192.168.7.1"}};

/** Objects in ConnMan's lists whose properties all have wrong types. */
ListedObjects oddObjects()
{
    const QVariantMap odd = {{"Type", 5},
                             {"Name", QVariantMap{{"a", 1}}},
                             {"State", QStringList{"ready"}},
                             {"Connected", "yes"},
                             {"Powered", 7},
                             {"IPv4", "10.0.0.1"},
                             {"Ethernet", QStringList{"eth0"}},
                             {"Strength", QVariantMap()},
                             {"Security", 3}};
    return {{QDBusObjectPath("/"), odd}, {QDBusObjectPath("/a"), QVariantMap()}};
}
} // namespace

const Remote &TestConnmanFaults::remote(const QString &adaptor) const
{
    return adaptor == "Ethernet" ? ethernet : adaptor == "WIFI" ? wifi : wifiAp;
}

void TestConnmanFaults::reachEthernet(const QString &name)
{
    connman.setServices({wired()});
    connectEthernet(ethernet, connman, name);
}

void TestConnmanFaults::reachAccessPoint(const QString &name)
{
    if (name == "configuration")
        script.hold();
    QCOMPARE(wifiAp.call("connect", {accessPoint}), QString("()"));
    QVERIFY(script.waitFor("start 2"));
    if (name == "configuration")
        return;
    passModuleDelay();
    QTRY_VERIFY_WITH_TIMEOUT(recorder->recorded().join(' ').contains("\"ready\""), deadlineMs);
    if (name == "online")
        daemon.letTimePass(3);
}

/** Brings @p adaptor into the state @p name; verifies that the daemon has announced the state. */
void TestConnmanFaults::reachState(const QString &adaptor, const QString &name)
{
    if (adaptor == "WIFI" && name != "idle" && name != "failure") {
        reach(name == "disconnect" ? "online" : name);
        QVERIFY(!QTest::currentTestFailed());
        if (name == "disconnect") {
            connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
            QCOMPARE(wifi.call("disconnect"), QString("()"));
        }
        return;
    }
    begin();
    if (name == "failure") {
        script.remove();
        remote(adaptor).call("connect",
                             adaptor == "Ethernet" ? QVariantList() : QVariantList{QVariantMap()});
        script.install();
    } else if (name != "idle" && adaptor == "Ethernet") {
        reachEthernet(name);
    } else if (name != "idle") {
        reachAccessPoint(name);
    }
    QVERIFY(!QTest::currentTestFailed());
    if (name != "idle")
        QTRY_VERIFY_WITH_TIMEOUT(recorder->recorded().join(' ').contains('"' + name + '"'),
                                 deadlineMs);
    connman.clearJournal();
}

void TestConnmanFaults::haveFault(const QString &fault)
{
    if (fault == "absent") {
        connman.stop();
    } else if (fault == "killed") {
        connman.kill();
    } else if (fault == "stopped") {
        connman.freeze();
    } else if (fault == "restarted") {
        connman.kill();
        connman.start();
    } else if (fault == "errors") {
        connman.failMethod("", "net.connman.Error.Failed", "Input/output error");
    } else if (fault == "20 s late") {
        connman.holdMethod("");
    } else if (fault == "another type") {
        connman.replyToMethod("", {QStringList{"nonsense"}, 42});
    } else {
        connman.replyToMethod("", {QVariant::fromValue(oddObjects())});
    }
    // ConnMan also sends the malformed values in signals.
    if (fault == "another type" || fault == "odd values") {
        const QVariant odd = fault == "odd values" ? QVariant::fromValue(QDBusVariant(5))
                                                   : QVariant(QStringList{"a"});
        for (const char *name : {"Powered", "Connected", "IPv4", "Error", "Strength", "State"}) {
            for (const QString &path :
                 {ConnmanStandIn::ethernetTechnology, ConnmanStandIn::wifiTechnology})
                connman.emitSignal(path, "net.connman.Technology", "PropertyChanged", {name, odd});
            for (const QString &path : {cable, lab})
                connman.emitSignal(path, "net.connman.Service", "PropertyChanged", {name, odd});
        }
        connman.emitSignal("/", "net.connman.Manager", "ServicesChanged", {odd, 1, "a"});
    }
}

void TestConnmanFaults::endFault(const QString &fault)
{
    if (fault == "stopped")
        connman.thaw();
    if (!connman.isRunning())
        connman.start();
    if (fault == "20 s late")
        connman.releaseMethod("");
    connman.clearRules();
    connman.clearJournal();
}

/** Calls a method, and lets time pass if ConnMan delays the reply. Returns the reply. */
QString TestConnmanFaults::call(const QString &fault, const QString &method,
                                const QVariantList &arguments)
{
    ++m_calls;
    QDBusPendingCall pending = m_remote->start(method, arguments);
    const auto isAnswered = [&] { return pending.isFinished(); };
    if (fault == "stopped") {
        if (!daemon.letTimePassUntil(isAnswered))
            return QStringLiteral("the call does not end");
    } else if (fault == "20 s late") {
        for (int times = 0; times < 200 && !isAnswered(); ++times) {
            static_cast<void>(
                QTest::qWaitFor([&] { return isAnswered() || !connman.journal().isEmpty(); }, 50));
            if (isAnswered())
                break;
            daemon.letTimePass(20);
            connman.clearJournal();
            connman.releaseMethod("");
            connman.holdMethod("");
        }
    }
    pending.waitForFinished();
    return renderReply(pending.reply());
}

void TestConnmanFaults::verifyAnswer(const QString &adaptor, const QString &method,
                                     const QString &fault, const QString &answer)
{
    const bool isHeard = fault == "restarted" || fault == "20 s late";
    QString expected = "^\\(\\)$";
    if (method == "getIPv4" || method == "getHardwareInfos" || method == "getStrength") {
        expected = "^\\(\\{.*\\}\\)$";
    } else if (method == "setIPv4") {
        // setIPv4 succeeds only if ConnMan reports a property of the technology, even if late.
        expected = isHeard ? expected : failed("Cannot get property Connected");
    } else if (method == "disconnect" && adaptor == "WIFIAP") {
        expected = expected + '|' + failed("Cannot disconnect WAP, already disconnected");
    } else if (method == "disconnect") {
        const QString service = adaptor == "WIFI" ? failed("Cannot remove service") + '|' : "";
        const QString refused = failed("Cannot set property Powered: ");
        if (fault == "absent" || fault == "killed")
            expected = service + refused + "The name net.connman was not provided";
        else if (fault == "stopped")
            expected = service + refused + "Did not receive a reply";
        else if (fault == "errors")
            expected = service + refused + "Input/output error";
        else
            expected += '|' + service + refused + "Already disabled";
    } else if (method == "connect" && adaptor == "WIFIAP") {
        expected += '|' + failed("Cannot connect, wap busy") + '|' +
                    failed("Cannot switch in mode '2' \\(WLAN ACCESS POINT\\)");
    } else if (method == "connect" || method == "scan") {
        expected += '|' + failed("Cannot switch in mode '1' \\(WLAN STATION\\)");
    }
    QVERIFY2(answer.contains(QRegularExpression(expected)),
             qPrintable(adaptor + '.' + method + ": " + answer));
}

void TestConnmanFaults::callEverything(const QString &adaptor, const QString &fault)
{
    const QVariantList connectArguments = adaptor == "Ethernet" ? QVariantList()
                                          : adaptor == "WIFI"
                                              ? QVariantList{QVariantMap{{"Service", "Lab"}}}
                                              : QVariantList{accessPoint};
    const QVariantList dhcp = {QVariantMap{{"Method", "dhcp"}}};
    QList<QPair<QString, QVariantList>> calls = {{"getIPv4", {}},
                                                 {"getHardwareInfos", {}},
                                                 {"setIPv4", dhcp},
                                                 {"connect", connectArguments},
                                                 {"disconnect", {}}};
    if (adaptor == "WIFI")
        calls << QPair<QString, QVariantList>{"getStrength", {}}
              << QPair<QString, QVariantList>{"scan", {}};
    calls << QPair<QString, QVariantList>{"connect", connectArguments};
    for (const auto &each : calls) {
        const QString answer = call(fault, each.first, each.second);
        verifyAnswer(adaptor, each.first, fault, answer);
        QVERIFY(!QTest::currentTestFailed());
        QVERIFY(daemon.isRunning());
    }
    // Let enough time pass for all timers to expire.
    for (int times = 0; times < 3; ++times) {
        daemon.letTimePass(61);
        QCOMPARE(call(fault, "getIPv4", {}).left(2), QString("({"));
    }
}

/** Waits until nothing is in progress, and the adaptor would accept a connect. */
void TestConnmanFaults::comeToRest(const QString &adaptor)
{
    if (QFile::exists("/run/strandel-redpine/hold"))
        script.release();
    for (const QString &technology :
         {ConnmanStandIn::ethernetTechnology, ConnmanStandIn::wifiTechnology}) {
        connman.storeProperty(technology, "Powered", false);
        connman.storeProperty(technology, "Connected", false);
    }
    connman.setServices({});
    for (int times = 0; times < 3; ++times) {
        waitForScripts();
        daemon.letTimePass(16);
        settle();
        remote(adaptor).call("disconnect");
    }
    waitForScripts();
    daemon.letTimePass(16);
    settle();
    connman.clearJournal();
    recorder->take();
}

void TestConnmanFaults::verifyOnline(const QString &adaptor)
{
    if (adaptor == "Ethernet") {
        reachEthernet("online");
    } else if (adaptor == "WIFIAP") {
        reachAccessPoint("online");
    } else {
        connman.setServices({network("Lab", "idle")});
        QCOMPARE(join(), QString("()"));
        passModuleDelay();
        QVERIFY(connman.waitForCall(connectLab));
        announceService("ready");
        settle();
        connman.setProperty(lab, "IPv4", address);
    }
    QVERIFY(!QTest::currentTestFailed());
    QTRY_VERIFY_WITH_TIMEOUT(recorder->recorded().join(' ').contains("\"online\""), deadlineMs);
}

void TestConnmanFaults::theAdaptorGetsOnlineAfterwards_data()
{
    registerListedObjects();
    QTest::addColumn<QString>("adaptor");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("fault");
    const bool isLong = qEnvironmentVariable("FAULTS") == QLatin1String("all");
    int turn = 0;
    for (auto adaptor = states.begin(); adaptor != states.end(); ++adaptor) {
        for (const QString &name : adaptor.value()) {
            for (int index = 0; index < faults.size(); ++index) {
                // Fewer faults for the access point: it calls ConnMan only for its IPv4 settings.
                if (isLong || (index + turn) % (adaptor.key() == "WIFIAP" ? 8 : 3) == 0)
                    QTest::newRow(qPrintable(adaptor.key() + ' ' + name + ", " + faults.at(index)))
                        << adaptor.key() << name << faults.at(index);
            }
            ++turn;
        }
    }
}

void TestConnmanFaults::theAdaptorGetsOnlineAfterwards()
{
    QFETCH(QString, adaptor);
    QFETCH(QString, name);
    QFETCH(QString, fault);
    m_remote = &remote(adaptor);
    ++m_combinations;

    reachState(adaptor, name);
    QVERIFY(!QTest::currentTestFailed());
    const int before = daemon.settledDescriptors();
    haveFault(fault);
    callEverything(adaptor, fault);
    QVERIFY(!QTest::currentTestFailed());
    endFault(fault);

    QVERIFY(daemon.isRunning());
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QString("(\"user1\")"));
    comeToRest(adaptor);
    QVERIFY(QTest::qWaitFor([&] { return daemon.descriptors() <= before; }, deadlineMs));
    verifyOnline(adaptor);
    QVERIFY(!QTest::currentTestFailed());
    ++m_survived;
}

/** The daemon does not reconnect after the bus has ended: it stays idle until it is restarted. */
void TestConnmanFaults::theDaemonStaysIdleWithoutItsBus()
{
    const QString place = "unix:path=/run/second-bus";
    const auto startBus = [&](QProcess &bus) {
        bus.start("dbus-daemon", {"--config-file=/run/dbus/system.conf", "--address=" + place,
                                  "--nofork", "--nopidfile"});
        QTRY_VERIFY_WITH_TIMEOUT(QDBusConnection::connectToBus(place, "second").isConnected() ||
                                     (QDBusConnection::disconnectFromBus("second"), false),
                                 deadlineMs);
    };
    const auto isOwned = [] {
        return QDBusConnection("second").interface()->isServiceRegistered(
            "com.orvendis.Strandel.BoardManager");
    };
    const auto sleeps = [this] {
        const QList<int> threads = threadsOf(daemon.processId());
        return std::all_of(threads.begin(), threads.end(),
                           [](int thread) { return stateOf(thread) == "S"; });
    };
    QProcess bus;
    startBus(bus);
    daemon.setEnvironment("DBUS_SYSTEM_BUS_ADDRESS", place);
    daemon.launch();
    QTRY_VERIFY_WITH_TIMEOUT(isOwned(), deadlineMs);

    bus.kill();
    bus.waitForFinished();
    QDBusConnection::disconnectFromBus("second");
    // The battery's timer expires without a bus.
    Board::clearJournal();
    daemon.letTimePass(10);
    QVERIFY(QTest::qWaitFor([&] { return daemon.isRunning() && sleeps(); }, deadlineMs));

    QProcess again;
    startBus(again);
    QTRY_VERIFY_WITH_TIMEOUT(sleeps(), deadlineMs);
    QVERIFY(!isOwned());
    QVERIFY(daemon.isRunning());
    // Clients find a daemon that is started afterwards.
    daemon.stop();
    daemon.launch();
    QTRY_VERIFY_WITH_TIMEOUT(isOwned(), deadlineMs);
    daemon.stop();
    QDBusConnection::disconnectFromBus("second");
    again.kill();
    again.waitForFinished();
}

void TestConnmanFaults::cleanupTestCase()
{
    reportFigures(QStringLiteral("faults of ConnMan: %1 states and faults, %2 calls, %3 survived")
                      .arg(m_combinations)
                      .arg(m_calls)
                      .arg(m_survived));
}

WORLD_TEST_MAIN(TestConnmanFaults)
#include "campaign_connmanfaults.moc"
