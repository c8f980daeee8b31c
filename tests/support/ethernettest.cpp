#include "ethernettest.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QRegularExpression>

const QString cable = QStringLiteral("/net/connman/service/ethernet_02aabbccdd02_cable");
const QString otherCable = QStringLiteral("/net/connman/service/ethernet_02aabbccdd09_cable");

const QString getServices = QStringLiteral("Manager.GetServices / ()");
const QString getTechnologies = QStringLiteral("Manager.GetTechnologies / ()");
const QString poweredOn =
    QStringLiteral("Technology.SetProperty /net/connman/technology/ethernet (\"Powered\", <true>)");
const QString poweredOff = QStringLiteral(
    "Technology.SetProperty /net/connman/technology/ethernet (\"Powered\", <false>)");

const QString cannotSwitch = QStringLiteral("Cannot switch in mode '1' (WLAN STATION)");

const QVariantMap lease = {{"Method", "dhcp"},
                           {"Address", "10.77.0.50"},
                           {"Netmask", "255.255.255.0"},
                           {"Gateway", "10.77.0.1"}};
const QString renderedLease =
    QStringLiteral("{\"Address\": <\"10.77.0.50\">, \"Gateway\": <\"10.77.0.1\">, "
                   "\"Method\": <\"dhcp\">, \"Netmask\": <\"255.255.255.0\">}");

ListedObject wired(const QString &path, const QVariantMap &ipv4)
{
    return {QDBusObjectPath(path),
            {{"Type", "ethernet"},
             {"State", "ready"},
             {"IPv4", ipv4},
             {"Ethernet", QVariantMap{{"Method", "auto"},
                                      {"Interface", "eth0"},
                                      {"Address", "02:AA:BB:CC:DD:02"},
                                      {"MTU", QVariant::fromValue(ushort(1500))}}}}};
}

ListedObject wireless()
{
    return {QDBusObjectPath("/net/connman/service/wifi_02_6162_managed_psk"),
            {{"Type", "wifi"}, {"State", "idle"}, {"IPv4", lease}}};
}

QVariant variant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

QString state(const char *name, const QString &service)
{
    return QStringLiteral("Ethernet.propertyChanged(\"%1\", \"State\", <\"%2\">)")
        .arg(service, QLatin1String(name));
}

void addMalformedValues()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("string") << QVariant("10.77.0.50");
    QTest::newRow("number") << QVariant(5);
    QTest::newRow("strings") << QVariant(QStringList{"Address", "Netmask"});
    QTest::newRow("numbers") << QVariant::fromValue(QList<int>{1, 2});
    QTest::newRow("values") << QVariant(QVariantList{"Address", 5});
    QTest::newRow("text dictionary") << QVariant::fromValue(Texts{{"Address", "10.77.0.50"}});
    QTest::newRow("structure") << QVariant::fromValue(wired());
    QTest::newRow("structures") << QVariant::fromValue(ListedObjects{wired()});
}

QString setNameservers(const QString &service, const QString &value)
{
    return QStringLiteral("Service.SetProperty %1 (\"Nameservers.Configuration\", <%2>)")
        .arg(service, value);
}

QString setConfiguration(const QString &service, const QString &value)
{
    return QStringLiteral("Service.SetProperty %1 (\"IPv4.Configuration\", <%2>)")
        .arg(service, value);
}

void EthernetTest::initTestCase()
{
    registerListedObjects();
    qDBusRegisterMetaType<Texts>();
}

void EthernetTest::init()
{
    DaemonTest::init();
    script.install();
    connman.start();
    connman.setServices({wired()});
}

void EthernetTest::cleanup()
{
    DaemonTest::cleanup();
    connman.kill();
    script.clear();
}

void EthernetTest::startDaemon()
{
    QVERIFY(daemon.start());
    recorder.take();
    connman.clearJournal();
}

void connectEthernet(const Remote &ethernet, ConnmanStandIn &connman, const QString &name)
{
    QCOMPARE(ethernet.call("connect"), QString("()"));
    QVERIFY(connman.waitForCall(poweredOn));
    if (name != "association") {
        connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
        QVERIFY(connman.waitForCall("Service.SetProperty"));
    }
    if (name == "online") {
        connman.storeProperty(cable, "IPv4", lease);
        connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);
    }
}

void EthernetTest::connectUntil(const QString &name)
{
    connectEthernet(ethernet, connman, name);
    QVERIFY(!QTest::currentTestFailed());
    QVERIFY(recorder.take().last().contains('"' + name + '"'));
    connman.clearJournal();
}

QStringList EthernetTest::calls()
{
    recorder.take();
    QStringList lines = connman.journal();
    connman.clearJournal();
    return lines.filter(QRegularExpression("^(?!.*technology/wifi)"));
}
