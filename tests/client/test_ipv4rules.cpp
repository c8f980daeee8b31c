#include "ipv4rules.h"

#include <QTest>

/** The IPv4 settings that kyboardctl accepts. */
class TestIpv4Rules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addressesAndNetmasksAreRecognised_data();
    void addressesAndNetmasksAreRecognised();
    void settingsHaveToAgree_data();
    void settingsHaveToAgree();
};

void TestIpv4Rules::addressesAndNetmasksAreRecognised_data()
{
    QTest::addColumn<bool>("isHost");
    QTest::addColumn<bool>("isMask");
    QTest::addColumn<bool>("isServer");

    // The name of each row is its text.
    const auto row = [](const char *text, const QString &kinds) {
        QTest::newRow(text) << kinds.contains('h') << kinds.contains('m') << kinds.contains('s');
    };
    row("", "");
    row("bogus", "");
    row("999.1.1.1", "");
    row("10.0.0.2", "hs");
    row("1.0.0.1", "hs");
    row("0.0.0.0", "");
    row("0.1.2.3", "");
    row("126.255.255.254", "hs");
    row("127.0.0.1", "");
    row("128.0.0.1", "hs");
    row("223.255.255.254", "hs");
    row("224.0.0.1", "");
    row("255.255.255.255", "m");
    row("255.255.255.0", "m");
    row("255.255.254.0", "m");
    row("255.0.0.0", "m");
    row("128.0.0.0", "hms");
    row("192.0.0.0", "hms");
    row("255.255.0.255", "");
    row("255.0.255.0", "");
    row("0.255.255.255", "");
    row("0.0.0.255", "");
    row("10.1", "");
    row("10.0.0.02", "");
    row(" 10.0.0.2", "");
    row("10.0.0.2 ", "");
    row("10.0.0.2/24", "");
    row("10.0.0.2\n", "");
    row("0x0a.0.0.2", "");
    row("1.1.1.1", "hs");
    row("2001:db8::1", "s");
    row("::1", "s");
    row("::", "");
    row("ff02::1", "");
    row("fe80::1%eth0", "");
    row("2001:db8::zz", "");
}

void TestIpv4Rules::addressesAndNetmasksAreRecognised()
{
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QTEST(isHostAddress(text), "isHost");
    QTEST(isNetmask(text), "isMask");
    QTEST(isServerAddress(text), "isServer");
}

void TestIpv4Rules::settingsHaveToAgree_data()
{
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QString>("disagreement");

    const auto row = [](const char *settings, const char *disagreement) {
        QTest::newRow(settings) << settings << disagreement;
    };
    row("", "");
    row("Method=dhcp", "");
    row("Method=off", "");
    row("Method=manual", "Address= is missing, which Method=manual needs");
    row("Method=manual Gateway=10.0.0.1", "Address= is missing, which Method=manual needs");
    row("Method=manual Address=10.0.0.2", "");
    row("Method=manual Address=172.16.5.4", "");
    row("Method=manual Address=192.168.2.3", "");
    row("Method=manual Address=10.0.0.2 Netmask=255.255.255.0", "");
    row("Method=manual Address=10.0.3.2 Netmask=255.255.255.0",
        "Gateway= is missing: the default, 10.0.0.1, is not in the network 10.0.3.0/24");
    row("Method=manual Address=10.0.3.2 Netmask=255.255.255.0 Gateway=10.0.3.1", "");
    row("Method=manual Address=192.168.1.130 Netmask=255.255.255.128",
        "Gateway= is missing: the default, 192.168.1.1, is not in the network 192.168.1.128/25");
    row("Method=manual Address=10.0.0.2 Gateway=10.200.0.1", "");
    row("Method=manual Address=10.0.0.2 Netmask=255.255.255.0 Gateway=10.0.0.0",
        "Gateway: '10.0.0.0' is the network's own address of the network 10.0.0.0/24, not of a "
        "host");
    row("Method=manual Address=10.0.0.2 Netmask=255.255.255.0 Gateway=10.0.0.255",
        "Gateway: '10.0.0.255' is the broadcast address of the network 10.0.0.0/24, not of a "
        "host");
    // The daemon always sets a gateway: the instrument's own address as the gateway means none.
    row("Method=manual Address=10.0.0.1 Netmask=255.255.255.0 Gateway=10.0.0.1", "");
    row("Method=manual Address=10.0.0.2 Gateway=11.0.0.1",
        "Gateway: '11.0.0.1' is not in the network 10.0.0.0/8 of the address");
    row("Method=manual Address=10.0.0.0 Netmask=255.255.255.0",
        "Address: '10.0.0.0' is the network's own address of the network 10.0.0.0/24, not of a "
        "host");
    row("Method=manual Address=10.0.0.255 Netmask=255.255.255.0",
        "Address: '10.0.0.255' is the broadcast address of the network 10.0.0.0/24, not of a "
        "host");
    row("Method=manual Address=192.168.2.255",
        "Address: '192.168.2.255' is the broadcast address of the network 192.168.2.0/24, not of "
        "a host");
    row("Method=manual Address=10.0.0.255 Netmask=255.255.254.0 Gateway=10.0.1.1", "");
    row("Method=manual Address=10.0.0.0 Netmask=255.255.255.254 Gateway=10.0.0.1", "");
    row("Method=manual Address=10.0.0.4 Netmask=255.255.255.252 Gateway=10.0.0.5",
        "Address: '10.0.0.4' is the network's own address of the network 10.0.0.4/30, not of a "
        "host");
    row("Method=manual Address=10.0.0.2 Netmask=255.255.255.255 Gateway=10.0.0.1",
        "Gateway: '10.0.0.1' is not in the network 10.0.0.2/32 of the address");
    // Without "Method=manual", the missing values may already be stored.
    row("Address=10.0.3.2 Gateway=11.0.0.1", "");
    row("Address=10.0.3.2 Netmask=255.255.255.0", "");
    row("Address=10.0.3.2 Netmask=255.255.255.0 Gateway=10.0.0.1",
        "Gateway: '10.0.0.1' is not in the network 10.0.3.0/24 of the address");
    row("Method=dhcp Address=10.0.3.0 Netmask=255.255.255.0",
        "Address: '10.0.3.0' is the network's own address of the network 10.0.3.0/24, not of a "
        "host");
    row("Netmask=255.255.255.0 Gateway=10.0.0.1", "");
}

void TestIpv4Rules::settingsHaveToAgree()
{
    QFETCH(QString, settings);
    QVariantMap map;
    for (const QString &setting : settings.split(' '))
        map.insert(setting.section('=', 0, 0), setting.section('=', 1));
    map.remove(QString());
    QTEST(ipv4Disagreement(map), "disagreement");
}

QTEST_GUILESS_MAIN(TestIpv4Rules)
#include "test_ipv4rules.moc"
