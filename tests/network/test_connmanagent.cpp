#include "wifitest.h"

#include <QDBusMetaType>

using Texts = QMap<QString, QString>;
using Numbers = QMap<QString, int>;
Q_DECLARE_METATYPE(Texts)
Q_DECLARE_METATYPE(Numbers)

/** The agent that gives ConnMan the credentials, on the running daemon. */
class TestConnmanAgent : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void beforeAnyConnectEveryRequestIsCancelled();
    void twoRequestsAreAnsweredAndEveryLaterOneIsCancelled();
    void theNextConnectAllowsTwoMoreRequests();
    void anIgnoredConnectAllowsNoRequest();
    void everyConnectHasItsOwnCredentials();

    void fieldsAreAnswered_data();
    void fieldsAreAnswered();
    void fieldsOfAnyShapeAreAbsent_data();
    void fieldsOfAnyShapeAreAbsent();
    void thousandsOfFieldsAreAbsent();
    void anErrorIsAlwaysRetried();
    void otherMethodsOfConnMansAgentsAreUnknown();

    void theAgentIsRegisteredForAConnectOnly();
    void aRestartedConnManHasNoAgent();
    void connManIsAnsweredInTheMiddleOfConnect();
    void connManGivesUpAfterTwoWrongPassphrases();

private:
    QString ask(const QVariantMap &fields) const;
    static QVariantMap passphrase(const QVariant &value);

    const Remote agent{"com.orvendis.Strandel.BoardManager", "/KyComMgr/Agent",
                       "net.connman.Agent"};
    const QVariantMap mandatory = ConnmanStandIn::field("mandatory", "psk");
    const QString cancelled = "net.connman.Agent.Error.Canceled: ";
    const QString secret = "({\"Passphrase\": <\"secret\">})";
    const QString nothing = "({})";
};

void TestConnmanAgent::initTestCase()
{
    qDBusRegisterMetaType<Texts>();
    qDBusRegisterMetaType<Numbers>();
    qDBusRegisterMetaType<QList<QVariantMap>>();
    registerListedObjects();
}

QString TestConnmanAgent::ask(const QVariantMap &fields) const
{
    return agent.call("RequestInput", {QVariant::fromValue(QDBusObjectPath(lab)), fields});
}

QVariantMap TestConnmanAgent::passphrase(const QVariant &value)
{
    return {{"Passphrase", value}};
}

void TestConnmanAgent::beforeAnyConnectEveryRequestIsCancelled()
{
    begin();
    for (int request = 0; request < 4; ++request)
        QCOMPARE(ask(passphrase(mandatory)), cancelled);
    QVERIFY(!QFile::exists("/tmp/logkywifi"));
}

void TestConnmanAgent::twoRequestsAreAnsweredAndEveryLaterOneIsCancelled()
{
    reach("association");
    QCOMPARE(ask(passphrase(mandatory)), secret);
    QCOMPARE(ask(passphrase(mandatory)), secret);
    for (int request = 0; request < 4; ++request)
        QCOMPARE(ask(passphrase(mandatory)), cancelled);
    QCOMPARE(announced(), QStringList());
}

void TestConnmanAgent::theNextConnectAllowsTwoMoreRequests()
{
    reach("association");
    for (int request = 0; request < 5; ++request)
        ask(passphrase(mandatory));
    announceService("failure");
    settle();
    join();

    QCOMPARE(ask(passphrase(mandatory)), secret);
    QCOMPARE(ask(passphrase(mandatory)), secret);
    QCOMPARE(ask(passphrase(mandatory)), cancelled);
}

void TestConnmanAgent::anIgnoredConnectAllowsNoRequest()
{
    reach("association");
    for (int request = 0; request < 2; ++request)
        ask(passphrase(mandatory));
    join();
    QCOMPARE(ask(passphrase(mandatory)), cancelled);
}

void TestConnmanAgent::everyConnectHasItsOwnCredentials()
{
    reach("association");
    announceService("failure");
    settle();
    wifi.call("connect", {QVariantMap{{"Service", "Lab"}, {"User", "you"}}});

    QCOMPARE(ask({{"Passphrase", mandatory}, {"Identity", mandatory}}),
             QString("({\"Identity\": <\"you\">, \"Passphrase\": <\"\">})"));
}

void TestConnmanAgent::fieldsAreAnswered_data()
{
    QTest::addColumn<QVariantMap>("fields");
    QTest::addColumn<QString>("answer");
    const QVariantMap optional = ConnmanStandIn::field("optional");
    QTest::newRow("none") << QVariantMap() << nothing;
    QTest::newRow("passphrase") << passphrase(mandatory) << secret;
    QTest::newRow("optional") << passphrase(optional) << nothing;
    QTest::newRow("identity and user name")
        << QVariantMap{{"Identity", mandatory}, {"Username", mandatory}}
        << "({\"Identity\": <\"me\">, \"Username\": <\"me\">})";
    QTest::newRow("after a wrong key")
        << QVariantMap{{"Passphrase", mandatory},
                       {"PreviousPassphrase",
                        QVariantMap{{"Requirement", "informational"}, {"Value", "wrong"}}}}
        << secret;
    QTest::newRow("another way offered")
        << QVariantMap{{"Passphrase", mandatory}, {"WPS", ConnmanStandIn::field("alternate")}}
        << secret;
    QTest::newRow("hidden network")
        << QVariantMap{{"Name", mandatory}, {"SSID", ConnmanStandIn::field("alternate")}}
        << nothing;
    QTest::newRow("unknown") << QVariantMap{{"Domain", mandatory}} << nothing;
}

void TestConnmanAgent::fieldsAreAnswered()
{
    QFETCH(QVariantMap, fields);
    QFETCH(QString, answer);
    reach("association");
    QCOMPARE(ask(fields), answer);
}

void TestConnmanAgent::fieldsOfAnyShapeAreAbsent_data()
{
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *name, const QVariant &value) { QTest::newRow(name) << value; };
    row("text", "mandatory");
    row("number", 1);
    row("list of texts", QStringList("mandatory"));
    row("list", QVariantList{mandatory});
    row("list of maps", QVariant::fromValue(QList<QVariantMap>{mandatory}));
    row("map of texts", QVariant::fromValue(Texts{{"Requirement", "mandatory"}}));
    row("map of numbers", QVariant::fromValue(Numbers{{"Requirement", 1}}));
    row("structure", QVariant::fromValue(ListedObject{QDBusObjectPath("/"), mandatory}));
    row("empty map", QVariantMap());
    row("requirement a number", QVariantMap{{"Requirement", 1}});
    row("requirement a list", QVariantMap{{"Requirement", QStringList("mandatory")}});
    row("requirement bytes", QVariantMap{{"Requirement", QByteArray("mandatory")}});
    row("requirement a map", QVariantMap{{"Requirement", mandatory}});
    row("requirement a map of texts",
        QVariantMap{{"Requirement", QVariant::fromValue(Texts{{"a", "mandatory"}})}});
    row("requirement a structure",
        QVariantMap{{"Requirement", QVariant::fromValue(ListedObject{QDBusObjectPath("/"), {}})}});
}

void TestConnmanAgent::fieldsOfAnyShapeAreAbsent()
{
    QFETCH(QVariant, value);
    reach("association");

    QCOMPARE(ask({{"Passphrase", value}, {"Identity", mandatory}}),
             QString("({\"Identity\": <\"me\">})"));

    QVERIFY(daemon.isRunning());
}

void TestConnmanAgent::thousandsOfFieldsAreAbsent()
{
    QVariantMap fields = passphrase(mandatory);
    for (int field = 0; field < 10000; ++field)
        fields.insert(QString("Field%1").arg(field), mandatory);
    reach("association");

    QCOMPARE(ask(fields), secret);
}

void TestConnmanAgent::anErrorIsAlwaysRetried()
{
    begin();
    for (const char *error : {"invalid-key", "connect-failed", "", "any"})
        QCOMPARE(
            agent.call("ReportError", {QVariant::fromValue(QDBusObjectPath(lab)), QString(error)}),
            QString("net.connman.Agent.Error.Retry: "));
}

void TestConnmanAgent::otherMethodsOfConnMansAgentsAreUnknown()
{
    begin();
    for (const char *method : {"Release", "Cancel"})
        QVERIFY(agent.call(method).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QVERIFY(agent.call("RequestInput", {"/", QVariantMap()})
                .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
}

void TestConnmanAgent::theAgentIsRegisteredForAConnectOnly()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    scan();
    announced();
    QVERIFY(!orders().contains(registerAgent));

    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(orders(), (QStringList{registerAgent, connectLab}));
}

void TestConnmanAgent::aRestartedConnManHasNoAgent()
{
    reach("association");
    connman.kill();
    connman.start();
    connman.setServices({network("Lab", "association")});
    connman.emitServicesChanged();

    QCOMPARE(announced(), QStringList());
    QVERIFY(!orders().contains(registerAgent));

    announceService("failure");
    settle();
    connman.storeProperty(lab, "State", "idle");
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    QVERIFY(orders().contains(registerAgent));
}

void TestConnmanAgent::connManIsAnsweredInTheMiddleOfConnect()
{
    connman.setServices({network("Lab", "idle")});
    connman.askOnConnect(lab, passphrase(mandatory));
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));

    // ConnMan has used one of the agent's two replies, and Connect has not failed.
    QVERIFY(!daemon.log().contains("Connect:"));
    QCOMPARE(ask(passphrase(mandatory)), secret);
    QCOMPARE(ask(passphrase(mandatory)), cancelled);
}

void TestConnmanAgent::connManGivesUpAfterTwoWrongPassphrases()
{
    reach("association");
    for (int attempt = 0; attempt < 2; ++attempt) {
        QCOMPARE(connman.requestInput(lab, passphrase(mandatory)), secret);
        QCOMPARE(connman.reportError(lab, "invalid-key"),
                 QString("net.connman.Agent.Error.Retry: "));
    }
    QCOMPARE(connman.requestInput(lab, passphrase(mandatory)), cancelled);

    announceService("failure");
    QCOMPARE(announced(), QStringList{failure});
}

WORLD_TEST_MAIN(TestConnmanAgent)
#include "test_connmanagent.moc"
