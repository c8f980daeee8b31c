#include "daemontest.h"
#include "deadline.h"
#include "listedobject.h"
#include "realconnman.h"
#include "render.h"
#include "supplicantstandin.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

namespace
{
const QString technologyPath = QStringLiteral("/net/connman/technology/wifi");
const QString prefix = QStringLiteral("/net/connman/service/wifi_02aabbccdd03_");

QString pathOf(const char *ssid, const char *security)
{
    return prefix + QByteArray(ssid).toHex() + "_managed_" + security;
}
} // namespace

/** ConnMan's agent in the test itself. */
class WifiAgent : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.connman.Agent")

public:
    QVariantMap answer;
    QStringList asked;
    QStringList errors;

public Q_SLOTS:
    QVariantMap RequestInput(const QDBusObjectPath &, const QVariantMap &fields)
    {
        asked << fields.keys().join(' ');
        return answer;
    }
    void ReportError(const QDBusObjectPath &, const QString &error) { errors << error; }
    void Cancel() {}
    void Release() {}
};

/** The real ConnMan with the stand-in for its Wi-Fi supplicant; without the daemon or a radio. */
class TestRealWifi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void theTechnologyAppears();
    void poweringOnAndOffSwitchesTheInterface();
    void theScanListsNetworksWithStrengthAndSecurity();
    void ofTwoAccessPointsOfOneNameTheStrongerIsListed();
    void theNextScanShowsChangedAccessPoints();
    void anOpenNetworkIsJoinedWithoutAKey();
    void aProtectedNetworkIsJoinedWithItsKey();
    void aWrongKeyIsRefusedAndTheRightOneAccepted();
    void anAccessPointMayRefuseEvenTheRightKey();
    void aHiddenNetworkIsJoinedByItsName();
    void outOfRangeTheConnectionIsLost();
    void theStationRoamsToTheOtherAccessPointOfTheNetwork();
    void aVanishedAccessPointCannotBeJoined();

private:
    static QString state(const QString &path);
    static QString listing();
    void powerOn();
    QString connectTo(const QString &path);
    static QString address();

    RealConnman connman;
    SupplicantStandIn supplicant;
    WifiAgent agent;
    const Remote manager{"net.connman", "/", "net.connman.Manager"};
    const Remote wifi{"net.connman", technologyPath, "net.connman.Technology"};
    const QString done = "()";
    const QString cafe = pathOf("Cafe", "none");
    const QString workshop = pathOf("Workshop", "psk");
};

void TestRealWifi::initTestCase()
{
    registerListedObjects();
    QVERIFY(QDBusConnection::systemBus().registerObject("/agent", &agent,
                                                        QDBusConnection::ExportAllSlots));
}

void TestRealWifi::init()
{
    agent.answer.clear();
    agent.asked.clear();
    agent.errors.clear();
    supplicant.start();
    connman.start();
    QCOMPARE(manager.call("RegisterAgent", {QVariant::fromValue(QDBusObjectPath("/agent"))}), done);
    QTRY_VERIFY_WITH_TIMEOUT(!RealConnman::properties(technologyPath).isEmpty(), deadlineMs);
}

void TestRealWifi::cleanup()
{
    connman.kill();
    supplicant.kill();
}

QString TestRealWifi::state(const QString &path)
{
    return RealConnman::properties(path).value("State").toString();
}

/** The wireless networks, sorted: "Workshop 72 psk". */
QString TestRealWifi::listing()
{
    const QDBusMessage reply =
        Remote("net.connman", "/", "net.connman.Manager").reply("GetServices");
    QStringList result;
    for (const ListedObject &object :
         qdbus_cast<ListedObjects>(reply.arguments().at(0).value<QDBusArgument>())) {
        if (object.path.path().startsWith(prefix))
            result << object.properties.value("Name", "(hidden)").toString() + ' ' +
                          QString::number(object.properties.value("Strength").toUInt()) + ' ' +
                          object.properties.value("Security").toStringList().join(',');
    }
    result.sort();
    return result.join("; ");
}

void TestRealWifi::powerOn()
{
    QCOMPARE(wifi.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))}), done);
    QTRY_VERIFY_WITH_TIMEOUT(listing().contains("Workshop"), deadlineMs);
}

/** Connects while the agent can answer; returns the result of the call. */
QString TestRealWifi::connectTo(const QString &path)
{
    QDBusPendingCall call = QDBusConnection::systemBus().asyncCall(
        QDBusMessage::createMethodCall("net.connman", path, "net.connman.Service", "Connect"),
        60000);
    if (!QTest::qWaitFor([&call] { return call.isFinished(); }, deadlineMs))
        return QStringLiteral("no answer");
    return renderReply(QDBusPendingReply<>(call).reply());
}

QString TestRealWifi::address()
{
    QProcess ip;
    ip.start("ip", {"-4", "-oneline", "address", "show", "dev", "wifi_sta"});
    ip.waitForFinished();
    return QString::fromUtf8(ip.readAllStandardOutput()).section(' ', 6, 6);
}

void TestRealWifi::theTechnologyAppears()
{
    QCOMPARE(render(RealConnman::properties(technologyPath)),
             QStringLiteral("{\"Connected\": <false>, \"Name\": <\"WiFi\">, \"Powered\": <false>, "
                            "\"Tethering\": <false>, \"TetheringFreq\": <0>, "
                            "\"Type\": <\"wifi\">}"));
}

void TestRealWifi::poweringOnAndOffSwitchesTheInterface()
{
    const auto isUp = [] {
        const QByteArray flags = readFile("/sys/class/net/wifi_sta/flags").trimmed();
        return (flags.toInt(nullptr, 16) & 1) == 1;
    };
    QVERIFY(!isUp());
    powerOn();
    QVERIFY(isUp());
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::properties(technologyPath).value("Powered").toBool(),
                              true, deadlineMs);
    QCOMPARE(wifi.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(false))}), done);
    QTRY_COMPARE_WITH_TIMEOUT(RealConnman::properties(technologyPath).value("Powered").toBool(),
                              false, deadlineMs);
    QVERIFY(!isUp());
    QCOMPARE(listing(), QString());
}

void TestRealWifi::theScanListsNetworksWithStrengthAndSecurity()
{
    powerOn();
    QTRY_COMPARE_WITH_TIMEOUT(listing(),
                              QStringLiteral("(hidden) 58 psk; Cafe 65 none; Grumpy 50 psk; "
                                             "Hall 62 psk; Workshop 72 psk"),
                              deadlineMs);
}

void TestRealWifi::ofTwoAccessPointsOfOneNameTheStrongerIsListed()
{
    supplicant.set("hall_near/signal", "-90");
    powerOn();
    QTRY_VERIFY2_WITH_TIMEOUT(listing().contains("Hall 41 psk"), qPrintable(listing()), deadlineMs);
}

void TestRealWifi::theNextScanShowsChangedAccessPoints()
{
    powerOn();
    supplicant.set("cafe/in_range", "0");
    supplicant.set("workshop/signal", "-80");
    supplicant.set("kitchen/ssid", "Kitchen");
    supplicant.set("kitchen/signal", "-30");
    supplicant.set("grumpy/security", "open");
    // ConnMan may still be scanning after powerOn(). It then answers Scan at the end of that scan,
    // which began before the changes: scan again.
    const auto scan = [this] {
        const QString answer = wifi.call("Scan");
        return answer == done ? listing() : answer;
    };
    QTRY_COMPARE_WITH_TIMEOUT(scan(),
                              QStringLiteral("(hidden) 58 psk; Grumpy 50 none; Hall 62 psk; "
                                             "Kitchen 90 none; Workshop 40 psk"),
                              deadlineMs);
}

void TestRealWifi::anOpenNetworkIsJoinedWithoutAKey()
{
    powerOn();
    QCOMPARE(connectTo(cafe), done);
    QCOMPARE(agent.asked, QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(state(cafe), QStringLiteral("ready"), deadlineMs);
    QVERIFY2(address().startsWith("10.78.0."), qPrintable(address()));
}

void TestRealWifi::aProtectedNetworkIsJoinedWithItsKey()
{
    powerOn();
    agent.answer = {{"Passphrase", "seven seas"}};
    QCOMPARE(connectTo(workshop), done);
    QCOMPARE(agent.asked, QStringList{"Passphrase"});
    QTRY_COMPARE_WITH_TIMEOUT(state(workshop), QStringLiteral("ready"), deadlineMs);
    QVERIFY2(address().startsWith("10.78.0."), qPrintable(address()));
}

void TestRealWifi::aWrongKeyIsRefusedAndTheRightOneAccepted()
{
    powerOn();
    agent.answer = {{"Passphrase", "eight seas"}};
    QCOMPARE(connectTo(workshop), QStringLiteral("net.connman.Error.Failed: Input/output error"));
    QTRY_COMPARE_WITH_TIMEOUT(agent.errors, QStringList{"invalid-key"}, deadlineMs);
    QCOMPARE(state(workshop), QStringLiteral("idle"));
    QCOMPARE(RealConnman::properties(workshop).value("Error").toString(),
             QStringLiteral("invalid-key"));
    QCOMPARE(address(), QString());
    agent.answer = {{"Passphrase", "seven seas"}};
    QCOMPARE(connectTo(workshop), done);
    QTRY_COMPARE_WITH_TIMEOUT(state(workshop), QStringLiteral("ready"), deadlineMs);
}

void TestRealWifi::anAccessPointMayRefuseEvenTheRightKey()
{
    powerOn();
    agent.answer = {{"Passphrase", "never ever"}};
    QVERIFY(connectTo(pathOf("Grumpy", "psk")).startsWith("net.connman.Error.Failed"));
    QTRY_COMPARE_WITH_TIMEOUT(agent.errors, QStringList{"invalid-key"}, deadlineMs);
}

void TestRealWifi::aHiddenNetworkIsJoinedByItsName()
{
    powerOn();
    agent.answer = {{"Name", "Vault"}, {"Passphrase", "open sesame"}};
    connectTo(prefix + "hidden_managed_psk");
    QTRY_COMPARE_WITH_TIMEOUT(state(pathOf("Vault", "psk")), QStringLiteral("ready"), deadlineMs);
    QVERIFY2(address().startsWith("10.78.0."), qPrintable(address()));
}

void TestRealWifi::outOfRangeTheConnectionIsLost()
{
    powerOn();
    QCOMPARE(connectTo(cafe), done);
    QTRY_COMPARE_WITH_TIMEOUT(state(cafe), QStringLiteral("ready"), deadlineMs);
    supplicant.set("cafe/in_range", "0");
    QTRY_VERIFY_WITH_TIMEOUT(state(cafe) != QLatin1String("ready"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(address(), QString(), deadlineMs);
    supplicant.set("cafe/in_range", "1");
    QTRY_COMPARE_WITH_TIMEOUT(state(cafe), QStringLiteral("ready"), deadlineMs);
}

void TestRealWifi::theStationRoamsToTheOtherAccessPointOfTheNetwork()
{
    const QString hall = pathOf("Hall", "psk");
    powerOn();
    agent.answer = {{"Passphrase", "echo chamber"}};
    QCOMPARE(connectTo(hall), done);
    QTRY_COMPARE_WITH_TIMEOUT(state(hall), QStringLiteral("ready"), deadlineMs);
    supplicant.set("hall_near/in_range", "0");
    QTRY_VERIFY_WITH_TIMEOUT(state(hall) != QLatin1String("ready"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(state(hall), QStringLiteral("ready"), deadlineMs);
}

void TestRealWifi::aVanishedAccessPointCannotBeJoined()
{
    powerOn();
    supplicant.set("cafe/in_range", "0");
    QVERIFY(connectTo(cafe).startsWith("net.connman.Error."));
    QCOMPARE(address(), QString());
}

WORLD_TEST_MAIN(TestRealWifi)

#include "test_realwifi.moc"
