#include "deadline.h"
#include "networktest.h"

/** Ethernet, Wi-Fi station and access point used at once, on the running daemon. */
class TestConnections : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void twoInterfacesConnectWhileTheFirstOnesScriptRuns_data();
    void twoInterfacesConnectWhileTheFirstOnesScriptRuns();
    void allThreeInterfacesConnectAndDisconnect();
    void connectingEthernetDoesNotDisturbTheStation();
    void connectingTheStationDoesNotDisturbEthernet();
    void theStationDoesNotJoinAWiredService();

private:
    QString connectOne(const QString &interface);
    QStringList finish(const QString &interface, int otherScripts = 0);
    bool waitForState(const char *interface, const QString &path, const char *name);
    /** The states that an adaptor announced, and the names of the other announced properties. */
    QStringList announcedBy(const QString &interface, const QStringList &announcements) const;

    const QString cable = "/net/connman/service/ethernet_02aabbccdd02_cable";
    const QString lab = networkPath("Lab");
    const QVariantMap address = {
        {"Method", "dhcp"}, {"Address", "10.77.0.50"}, {"Netmask", "255.255.255.0"}};
};

namespace
{
const struct {
    const char *interface;
    const char *mode;
} interfaces[] = {{"Ethernet", "0"}, {"WIFI", "1"}, {"WIFIAP", "2"}};

/** The states that an adaptor announces without ConnMan; only the access point gets online. */
QStringList statesOf(const QString &interface)
{
    return interface == "WIFIAP" ? QStringList{"configuration", "ready", "online"}
                                 : QStringList{"association"};
}

QString modeOf(const QString &interface)
{
    for (const auto &row : interfaces) {
        if (interface == QLatin1String(row.interface))
            return row.mode;
    }
    return QString();
}
} // namespace

void TestConnections::init()
{
    NetworkTest::init();
    connman.setServices(
        {{QDBusObjectPath(cable), {{"Type", "ethernet"}, {"Name", "Wired"}, {"State", "ready"}}},
         network("Lab", "idle")});
}

QString TestConnections::connectOne(const QString &interface)
{
    if (interface == "Ethernet")
        return ethernet.call("connect");
    if (interface == "WIFI")
        return wifi.call("connect", {QVariantMap{{"Service", "Lab"}, {"Password", "secret"}}});
    return wifiAp.call("connect",
                       {QVariantMap{{"SSID", "Strandel"}, {"Channel", 6}, {"IP", "192.168.7.1"}}});
}

bool TestConnections::waitForState(const char *interface, const QString &path, const char *name)
{
    return QTest::qWaitFor(
        [&] { return recorder->recorded().contains(state(interface, path, name)); }, deadlineMs);
}

/** Lets the delays after the end of an adaptor's script pass; returns the announcements. */
QStringList TestConnections::finish(const QString &interface, int otherScripts)
{
    waitForScripts(otherScripts);
    if (interface == "Ethernet")
        return announced();
    daemon.letTimePass(2);
    if (interface == "WIFI") {
        waitForState("WIFI", "", "association");
        return announced();
    }
    waitForState("WIFIAP", "/net/wap", "ready");
    daemon.letTimePass(3);
    waitForState("WIFIAP", "/net/wap", "online");
    return announced();
}

QStringList TestConnections::announcedBy(const QString &interface,
                                         const QStringList &announcements) const
{
    QStringList changes;
    for (const QString &announcement : announcements) {
        const QStringList pieces = announcement.split('"');
        if (announcement.startsWith(interface + "."))
            changes << (pieces.at(3) == "State" ? pieces.at(5) : pieces.at(3));
    }
    return changes;
}

void TestConnections::twoInterfacesConnectWhileTheFirstOnesScriptRuns_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    for (const auto &first : interfaces) {
        for (const auto &second : interfaces) {
            if (first.interface != second.interface)
                QTest::newRow(qPrintable(QString("%1, %2").arg(first.interface, second.interface)))
                    << first.interface << second.interface;
        }
    }
}

void TestConnections::twoInterfacesConnectWhileTheFirstOnesScriptRuns()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    begin();

    script.hold();
    QCOMPARE(connectOne(first), QString("()"));
    QVERIFY(script.waitFor("start " + modeOf(first)));
    script.letOthersPass();
    QCOMPARE(connectOne(second), QString("()"));
    QStringList announcements = finish(second, 1);
    QCOMPARE(announcedBy(second, announcements), statesOf(second));
    QCOMPARE(announcedBy(first, announcements), statesOf(first).mid(0, first == "WIFIAP" ? 1 : 0));

    script.release();
    announcements += finish(first);
    QCOMPARE(announcedBy(first, announcements), statesOf(first));
    QCOMPARE(announcedBy(second, announcements), statesOf(second));
    QCOMPARE(script.log(), (QStringList{"start " + modeOf(first), "start " + modeOf(second),
                                        "end " + modeOf(second), "end " + modeOf(first)}));
}

void TestConnections::allThreeInterfacesConnectAndDisconnect()
{
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    begin();
    QStringList announcements;
    for (const auto &row : {interfaces[1], interfaces[0], interfaces[2]}) {
        QCOMPARE(connectOne(row.interface), QString("()"));
        announcements += finish(row.interface);
    }
    connman.storeProperty(lab, "State", "ready");
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    connman.emitServicesChanged();
    announcements += announced();
    connman.setProperty(lab, "IPv4", address);
    connman.setProperty(cable, "IPv4", address);
    announcements += announced();
    QCOMPARE(announcedBy("Ethernet", announcements),
             (QStringList{"association", "ready", "online", "IPv4"}));
    QCOMPARE(announcedBy("WIFI", announcements),
             (QStringList{"association", "configuration", "online"}));
    QCOMPARE(announcedBy("WIFIAP", announcements),
             (QStringList{"configuration", "ready", "online"}));

    QCOMPARE(wifiAp.call("disconnect"), QString("()"));
    announcements = announced();
    QCOMPARE(announcedBy("WIFIAP", announcements), (QStringList{"disconnect", "idle"}));
    QCOMPARE(announcements.size(), 2);

    QCOMPARE(ethernet.call("disconnect"), QString("()"));
    announcements = announced();
    QCOMPARE(announcedBy("Ethernet", announcements), (QStringList{"disconnect", "idle"}));
    QCOMPARE(announcements.size(), 2);

    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QCOMPARE(wifi.call("disconnect"), QString("()"));
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    announcements = announced();
    QCOMPARE(announcedBy("WIFI", announcements), (QStringList{"disconnect", "idle"}));
    QCOMPARE(announcements.size(), 2);
}

void TestConnections::connectingEthernetDoesNotDisturbTheStation()
{
    begin();
    connectOne("WIFI");
    finish("WIFI");
    QVERIFY(connman.waitForCall("Service.Connect " + lab));
    connman.storeProperty(lab, "State", "association");
    announced();

    connectOne("Ethernet");
    QCOMPARE(announcedBy("Ethernet", finish("Ethernet")), QStringList("association"));
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    connman.emitServicesChanged();
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);

    QCOMPARE(announcedBy("WIFI", announced()), QStringList());
    connman.storeProperty(lab, "State", "ready");
    connman.emitServicesChanged();
    QCOMPARE(announcedBy("WIFI", announced()), QStringList("configuration"));
}

void TestConnections::connectingTheStationDoesNotDisturbEthernet()
{
    begin();
    connectOne("Ethernet");
    finish("Ethernet");
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    announced();
    orders();

    connectOne("WIFI");
    finish("WIFI");
    QVERIFY(connman.waitForCall("Service.Connect " + lab));
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);
    connman.storeProperty(lab, "State", "failure");
    connman.emitServicesChanged();

    QCOMPARE(announcedBy("Ethernet", announced()), QStringList());
    for (const QString &order : orders())
        QVERIFY2(!order.contains("ethernet"), qPrintable(order));
}

void TestConnections::theStationDoesNotJoinAWiredService()
{
    begin();
    wifi.call("connect", {QVariantMap{{"Service", "Wired"}}});
    passModuleDelay();

    QCOMPARE(announcedBy("WIFI", recorder->waitFor(1)), QStringList("failure"));
    QCOMPARE(orders(), QStringList());
}

WORLD_TEST_MAIN(TestConnections)
#include "test_connections.moc"
