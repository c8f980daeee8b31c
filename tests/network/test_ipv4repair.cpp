#include "ipv4repair.h"

#include <QTest>

/** The repair of IPv4 settings, and which settings are in force. */
class TestIPv4Repair : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAddressIsValidInItsCanonicalFormOnly_data();
    void anAddressIsValidInItsCanonicalFormOnly();
    void missingAddressesGetDefaults_data();
    void missingAddressesGetDefaults();
    void invalidAddressesAreReplaced_data();
    void invalidAddressesAreReplaced();
    void validAddressesAreKept();
    void otherSettingsAreKept();
    void settingsAreInForceIfTheServiceHasThem_data();
    void settingsAreInForceIfTheServiceHasThem();
};

namespace
{
QVariantMap ipv4(const QVariant &address, const QVariant &netmask, const QVariant &gateway)
{
    return {{"Address", address}, {"Netmask", netmask}, {"Gateway", gateway}};
}
} // namespace

void TestIPv4Repair::anAddressIsValidInItsCanonicalFormOnly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");

    for (const char *text : {"192.168.2.3", "10.0.0.1", "0.0.0.1", "255.255.255.255",
                             "255.255.255.0", "1.0.0.0", "127.0.0.1"})
        QTest::newRow(text) << text << true;

    QTest::newRow("any address") << "0.0.0.0" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("leading zeros") << "192.168.002.003" << false;
    QTest::newRow("one leading zero") << "10.0.0.01" << false;
    QTest::newRow("leading blank") << " 10.0.0.1" << false;
    QTest::newRow("trailing blank") << "10.0.0.1 " << false;
    QTest::newRow("blank inside") << "10.0. 0.1" << false;
    QTest::newRow("trailing line feed") << "10.0.0.1\n" << false;
    QTest::newRow("three parts") << "10.0.1" << false;
    QTest::newRow("one part") << "10" << false;
    QTest::newRow("five parts") << "10.0.0.1.1" << false;
    QTest::newRow("empty part") << "10..0.1" << false;
    QTest::newRow("trailing dot") << "10.0.0.1." << false;
    QTest::newRow("above 255") << "10.0.0.256" << false;
    QTest::newRow("negative") << "10.0.0.-1" << false;
    QTest::newRow("hexadecimal") << "0x0a.0.0.1" << false;
    QTest::newRow("prefix length") << "10.0.0.1/8" << false;
    QTest::newRow("port") << "10.0.0.1:80" << false;
    QTest::newRow("words") << "dhcp" << false;
    QTest::newRow("digit that is not ASCII") << QString::fromUtf8("1٠.0.0.1") << false;
    QTest::newRow("IPv6") << "fe80::1" << false;
    QTest::newRow("IPv6 any") << "::" << false;
    QTest::newRow("IPv4 in IPv6") << "::ffff:10.0.0.1" << false;
}

void TestIPv4Repair::anAddressIsValidInItsCanonicalFormOnly()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QCOMPARE(isValidIPv4(text), valid);
}

void TestIPv4Repair::missingAddressesGetDefaults_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("netmask");
    QTest::addColumn<QString>("gateway");

    const struct {
        const char *address;
        const char *netmask;
        const char *gateway;
    } rows[] = {
        {"0.1.2.3", "255.0.0.0", "0.0.0.1"},
        {"1.2.3.4", "255.0.0.0", "1.0.0.1"},
        {"10.1.2.3", "255.0.0.0", "10.0.0.1"},
        {"127.255.1.2", "255.0.0.0", "127.0.0.1"},
        {"128.7.1.2", "255.255.0.0", "128.7.0.1"},
        {"172.16.5.4", "255.255.0.0", "172.16.0.1"},
        {"191.254.1.2", "255.255.0.0", "191.254.0.1"},
        {"192.0.3.2", "255.255.255.0", "192.0.3.1"},
        {"192.168.2.3", "255.255.255.0", "192.168.2.1"},
        {"223.1.2.3", "255.255.255.0", "223.1.2.1"},
        {"224.1.2.3", "255.255.255.255", "224.1.2.3"},
        {"230.1.2.3", "255.255.255.255", "230.1.2.3"},
        {"255.255.255.255", "255.255.255.255", "255.255.255.255"},
    };
    for (const auto &row : rows)
        QTest::newRow(row.address) << row.address << row.netmask << row.gateway;
}

void TestIPv4Repair::missingAddressesGetDefaults()
{
    QFETCH(QString, address);
    QFETCH(QString, netmask);
    QFETCH(QString, gateway);
    QCOMPARE(repairedIPv4({{"Address", address}}), ipv4(address, netmask, gateway));
}

void TestIPv4Repair::invalidAddressesAreReplaced_data()
{
    QTest::addColumn<QVariant>("invalid");

    QTest::newRow("missing") << QVariant();
    QTest::newRow("empty") << QVariant("");
    QTest::newRow("any address") << QVariant("0.0.0.0");
    QTest::newRow("leading zeros") << QVariant("192.168.002.003");
    QTest::newRow("IPv6") << QVariant("fe80::1");
    QTest::newRow("number") << QVariant(167772161);
    QTest::newRow("bool") << QVariant(true);
    QTest::newRow("map") << QVariant(QVariantMap{{"Address", "10.0.0.1"}});
    QTest::newRow("list") << QVariant(QVariantList{"10.0.0.1", "10.0.0.2"});
}

void TestIPv4Repair::invalidAddressesAreReplaced()
{
    QFETCH(QVariant, invalid);

    QCOMPARE(repairedIPv4(ipv4(invalid, "255.0.0.0", "10.0.0.9")),
             ipv4("192.168.2.3", "255.0.0.0", "10.0.0.9"));
    QCOMPARE(repairedIPv4(ipv4("172.16.5.4", invalid, "10.0.0.9")),
             ipv4("172.16.5.4", "255.255.0.0", "10.0.0.9"));
    QCOMPARE(repairedIPv4(ipv4("172.16.5.4", "255.0.0.0", invalid)),
             ipv4("172.16.5.4", "255.0.0.0", "172.16.0.1"));
    QCOMPARE(repairedIPv4(ipv4(invalid, invalid, invalid)),
             ipv4("192.168.2.3", "255.255.255.0", "192.168.2.1"));
}

void TestIPv4Repair::validAddressesAreKept()
{
    const QVariantMap settings = ipv4("10.1.2.3", "255.255.255.128", "10.1.2.126");
    QCOMPARE(repairedIPv4(settings), settings);
}

void TestIPv4Repair::otherSettingsAreKept()
{
    QVariantMap settings = ipv4("10.1.2.3", "255.0.0.0", "10.0.0.1");
    settings["Method"] = "manual";
    settings["Other"] = 5;
    QCOMPARE(repairedIPv4(settings), settings);
}

void TestIPv4Repair::settingsAreInForceIfTheServiceHasThem_data()
{
    QTest::addColumn<QVariantMap>("settings");
    QTest::addColumn<QVariantMap>("present");
    QTest::addColumn<bool>("inForce");

    QVariantMap manual = ipv4("10.1.2.3", "255.0.0.0", "10.0.0.1");
    manual["Method"] = "manual";
    QVariantMap dhcp = ipv4("10.77.0.50", "255.255.255.0", "10.77.0.1");
    dhcp["Method"] = "dhcp";
    QVariantMap dhcpWithOldAddresses = manual;
    dhcpWithOldAddresses["Method"] = "dhcp";
    const auto with = [](QVariantMap map, const char *key, const char *value) {
        map[key] = value;
        return map;
    };
    QVariantMap withoutGateway = manual;
    withoutGateway.remove("Gateway");

    QTest::newRow("no settings") << QVariantMap() << dhcp << true;
    QTest::newRow("dhcp") << QVariantMap{{"Method", "dhcp"}} << dhcp << true;
    QTest::newRow("dhcp ignores old addresses") << dhcpWithOldAddresses << dhcp << true;
    QTest::newRow("the same") << manual << manual << true;
    QTest::newRow("part of it") << withoutGateway << manual << true;
    QTest::newRow("other method") << manual << dhcp << false;
    QTest::newRow("other method back") << QVariantMap{{"Method", "dhcp"}} << manual << false;
    QTest::newRow("other address") << with(manual, "Address", "10.9.9.9") << manual << false;
    QTest::newRow("other netmask") << with(manual, "Netmask", "255.255.0.0") << manual << false;
    QTest::newRow("other gateway") << with(manual, "Gateway", "10.9.9.1") << manual << false;
    QTest::newRow("address alone") << QVariantMap{{"Address", "10.9.9.9"}} << dhcp << false;
    QTest::newRow("nothing present") << manual << QVariantMap() << false;
    QTest::newRow("not all present") << manual << withoutGateway << false;
}

void TestIPv4Repair::settingsAreInForceIfTheServiceHasThem()
{
    QFETCH(QVariantMap, settings);
    QFETCH(QVariantMap, present);
    QFETCH(bool, inForce);
    QCOMPARE(isInForce(settings, present), inForce);
}

QTEST_GUILESS_MAIN(TestIPv4Repair)
#include "test_ipv4repair.moc"
