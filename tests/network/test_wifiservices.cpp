#include "wifiservices.h"

#include <QTest>

/** Selecting Wi-Fi networks from ConnMan's list of services. */
class TestWifiServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyServicesOfTheTypeWifiAreNetworks();
    void aNetworkIsFoundByItsName_data();
    void aNetworkIsFoundByItsName();

    void theScanListHoldsPathStrengthAndSecurity();
    void strengthIsDecimal_data();
    void strengthIsDecimal();
    void securityIsJoinedByCommas_data();
    void securityIsJoinedByCommas();
    void hiddenNetworksAreNotListed();
    void onlyPathsOfWifiNetworksAreListed();
    void ofEqualNamesTheFirstIsListed();
    void noNetworksMakeAnEmptyList();
};

namespace
{
const QString root = QStringLiteral("/net/connman/service/");

ConnmanObject service(const QString &name, const QVariantMap &properties)
{
    return {QDBusObjectPath(root + name), properties};
}

QStringList paths(const QList<ConnmanObject> &services)
{
    QStringList list;
    for (const ConnmanObject &object : services)
        list << object.path.path();
    return list;
}

/** The entry in the scan list for a network that has @p property with @p value. */
QStringList scanned(const QString &property, const QVariant &value)
{
    return wifiScanList({service("wifi_a", {{"Name", "Lab"}, {property, value}})})
        .value("Lab")
        .toStringList();
}
} // namespace

void TestWifiServices::onlyServicesOfTheTypeWifiAreNetworks()
{
    const QList<ConnmanObject> all = {service("wifi_b", {{"Type", "wifi"}}),
                                      service("ethernet_a", {{"Type", "ethernet"}}),
                                      service("wifi_a", {{"Type", "wifi"}}),
                                      service("wifi_c", {{"Type", "Wifi"}}), service("wifi_d", {})};

    QCOMPARE(paths(wifiServices(all)), (QStringList{root + "wifi_b", root + "wifi_a"}));
}

void TestWifiServices::aNetworkIsFoundByItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    QTest::newRow("only one") << "Lab" << root + "wifi_lab";
    QTest::newRow("first of two") << "Twice" << root + "wifi_first";
    QTest::newRow("another case") << "lab" << QString();
    QTest::newRow("not there") << "Office" << QString();
    QTest::newRow("no name") << "" << QString();
}

void TestWifiServices::aNetworkIsFoundByItsName()
{
    QFETCH(QString, name);
    QFETCH(QString, path);
    const QList<ConnmanObject> services = {
        service("wifi_hidden", {{"State", "idle"}}), service("wifi_first", {{"Name", "Twice"}}),
        service("wifi_second", {{"Name", "Twice"}}), service("wifi_lab", {{"Name", "Lab"}})};

    const std::optional<ConnmanObject> found = wifiServiceNamed(services, name);

    QCOMPARE(found ? found->path.path() : QString(), path);
}

void TestWifiServices::theScanListHoldsPathStrengthAndSecurity()
{
    const QVariantMap list =
        wifiScanList({service("wifi_a", {{"Name", "Lab"},
                                         {"Strength", QVariant::fromValue(uchar(70))},
                                         {"Security", QStringList{"psk", "wps"}}}),
                      service("wifi_b", {{"Name", "Office"},
                                         {"Strength", QVariant::fromValue(uchar(5))},
                                         {"Security", QStringList("none")}})});

    QCOMPARE(list, (QVariantMap{{"Lab", QStringList({root + "wifi_a", "70", "psk,wps"})},
                                {"Office", QStringList({root + "wifi_b", "5", "none"})}}));
}

void TestWifiServices::strengthIsDecimal_data()
{
    QTest::addColumn<QVariant>("strength");
    QTest::addColumn<QString>("text");
    QTest::newRow("weakest") << QVariant::fromValue(uchar(0)) << "0";
    QTest::newRow("the code of a letter") << QVariant::fromValue(uchar(65)) << "65";
    QTest::newRow("strongest") << QVariant::fromValue(uchar(100)) << "100";
    QTest::newRow("missing") << QVariant() << "0";
    QTest::newRow("no number") << QVariant(QVariantMap()) << "0";
}

void TestWifiServices::strengthIsDecimal()
{
    QFETCH(QVariant, strength);
    QFETCH(QString, text);
    QCOMPARE(scanned("Strength", strength).value(1), text);
}

void TestWifiServices::securityIsJoinedByCommas_data()
{
    QTest::addColumn<QVariant>("security");
    QTest::addColumn<QString>("text");
    QTest::newRow("one") << QVariant(QStringList("ieee8021x")) << "ieee8021x";
    QTest::newRow("two") << QVariant(QStringList({"psk", "wps"})) << "psk,wps";
    QTest::newRow("none") << QVariant(QStringList()) << "";
    QTest::newRow("missing") << QVariant() << "";
    QTest::newRow("no list") << QVariant(QVariantMap()) << "";
}

void TestWifiServices::securityIsJoinedByCommas()
{
    QFETCH(QVariant, security);
    QFETCH(QString, text);
    QCOMPARE(scanned("Security", security).value(2), text);
}

void TestWifiServices::hiddenNetworksAreNotListed()
{
    QCOMPARE(wifiScanList({service("wifi_02_hidden_managed_psk", {{"Name", "Lab"}}),
                           service("wifi_03_managed_psk", {})}),
             QVariantMap());
}

void TestWifiServices::onlyPathsOfWifiNetworksAreListed()
{
    QCOMPARE(wifiScanList({service("ethernet_a", {{"Name", "Wired"}})}), QVariantMap());
}

void TestWifiServices::ofEqualNamesTheFirstIsListed()
{
    QCOMPARE(wifiScanList(
                 {service("wifi_near", {{"Name", "Lab"}}), service("wifi_far", {{"Name", "Lab"}})}),
             (QVariantMap{{"Lab", QStringList({root + "wifi_near", "0", ""})}}));
}

void TestWifiServices::noNetworksMakeAnEmptyList()
{
    QCOMPARE(wifiScanList({}), QVariantMap());
}

QTEST_GUILESS_MAIN(TestWifiServices)
#include "test_wifiservices.moc"
