#include "client.h"
#include "wifitest.h"

#include <QRegularExpression>

/** kyboardctl shows the strength of the connected network. */
class TestKyboardctlStrength : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void theJoinedNetworkHasAStrength();
    void withoutAJoinedNetworkThereIsNoStrength();
};

void TestKyboardctlStrength::theJoinedNetworkHasAStrength()
{
    reach("online");
    connman.storeProperty(lab, "IPv4", address);
    connman.storeProperty(lab, "Strength", QVariant::fromValue(uchar(61)));
    const ClientResult strength = runClient({"wifi", "strength"});
    QCOMPARE(strength.output, QStringLiteral("Strength  61 %\n"));
    QCOMPARE(strength.status, 0);
    QVERIFY(runClient({"status"}).output.contains("\nWi-Fi strength     61 %\n"));
}

void TestKyboardctlStrength::withoutAJoinedNetworkThereIsNoStrength()
{
    reach("online");
    connman.storeProperty(lab, "IPv4", QVariantMap());
    connman.storeProperty(lab, "Strength", QVariant::fromValue(uchar(61)));
    QVERIFY(wifi.call("getStrength").contains("61"));
    const ClientResult strength = runClient({"wifi", "strength"});
    QCOMPARE(strength.complaint,
             QStringLiteral("kyboardctl: wifi strength: no network is joined\n"));
    QCOMPARE(strength.output, QString());
    QCOMPARE(strength.status, 8);
    QVERIFY(runClient({"status"}).output.contains("\nWi-Fi strength     none\n"));
    QVERIFY(runClient({"status", "--json"}).output.contains("\"wifiStrength\": null"));
}

WORLD_TEST_MAIN(TestKyboardctlStrength)
#include "test_kyboardctl_strength.moc"
