#include "failurereason.h"

#include <QTest>

/** The reason that kyboardctl gives for a failed connect. */
class TestFailureReason : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachFailureHasItsReason_data();
    void eachFailureHasItsReason();
    void aServiceIsKnownByItsPath();
};

void TestFailureReason::eachFailureHasItsReason_data()
{
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("states");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("isListed");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *group, const char *states, const char *error,
                        bool isListed, const char *expected) {
        QTest::newRow(name) << group << states << error << isListed << expected;
    };
    row("key", "wifi", "association failure", "invalid-key", true, "wrong passphrase");
    row("range", "wifi", "association failure", "out-of-range", true,
        "the network is out of reach");
    row("DHCP", "wifi", "association configuration failure", "dhcp-failed", true, "no address");
    row("refused", "wifi", "association failure", "connect-failed", true,
        "the network refuses the connection");
    row("authentication", "wifi", "association failure", "auth-failed", true,
        "the network refuses the login");
    row("login", "wifi", "association failure", "login-failed", true,
        "the network refuses the login");
    row("blocked", "wifi", "association failure", "blocked", true,
        "the network blocks this instrument");
    row("other", "wifi", "association failure", "pin-missing", true, "pin-missing");
    row("no answer", "wifi", "association failure", "", true,
        "time-out, the network does not answer");
    row("no address", "wifi", "association configuration failure", "", true, "no address");
    row("not found", "wifi", "failure", "", false, "network not found");
    row("nothing known", "wifi", "failure", "", true, "");
    row("cable", "ethernet", "association failure", "", false, "no cable, or no network on it");
    row("lease", "ethernet", "association ready failure", "", false, "no address");
    row("wired, nothing known", "ethernet", "failure", "", false, "");
    row("access point", "ap", "configuration failure", "", false,
        "hostapd, dhcpd or the interface wifi_ap did not come up");
}

void TestFailureReason::eachFailureHasItsReason()
{
    QFETCH(QString, group);
    QFETCH(QString, states);
    QFETCH(QString, error);
    QFETCH(bool, isListed);
    QFETCH(QString, expected);
    FailureFacts facts = {group, states.split(' '), error, isListed, true};
    QCOMPARE(failureReason(facts), expected);
    facts.isConnmanThere = false;
    QCOMPARE(failureReason(facts), group == "ap" ? expected : QString("ConnMan does not run"));
}

void TestFailureReason::aServiceIsKnownByItsPath()
{
    const QString path = "/net/connman/service/wifi_02aabbccdd03_43616665_managed_none";
    QVERIFY(isServiceOf(path, "Cafe"));
    QVERIFY(!isServiceOf(path, "cafe"));
    QVERIFY(!isServiceOf(path, "Caf"));
    QVERIFY(!isServiceOf(path, ""));
    QVERIFY(isServiceOf("/net/connman/service/wifi_02_636166c3a9_managed_psk", "caf\u00e9"));
    QVERIFY(!isServiceOf("/net/connman/service/wifi_02_hidden_managed_psk", ""));
    QVERIFY(!isServiceOf("/net/connman/service/ethernet_02_43616665", "Cafe"));
    QVERIFY(!isServiceOf("/net/connman/service/wifi", ""));
    QVERIFY(!isServiceOf("", "Cafe"));
}

QTEST_GUILESS_MAIN(TestFailureReason)
#include "test_failurereason.moc"
