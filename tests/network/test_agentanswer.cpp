#include "agentanswer.h"
#include "kyconnmanagent.h"

#include <QDBusMessage>
#include <QTest>

/** Choosing the answer to a request for credentials. */
class TestAgentAnswer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fieldsAreAnswered_data();
    void fieldsAreAnswered();
    void identityAndUsernameBothGetTheIdentity();
    void emptyCredentialsAreAnsweredEmpty();
    void thousandsOfOtherFieldsChangeNothing();
    void onlyTwoOfThousandsOfRequestsAreAnswered();
};

namespace
{
const Credentials credentials = {QStringLiteral("me"), QStringLiteral("secret")};

QVariantMap requirement(const QVariant &value)
{
    return {{QStringLiteral("Requirement"), value}};
}
} // namespace

void TestAgentAnswer::fieldsAreAnswered_data()
{
    QTest::addColumn<QVariantMap>("fields");
    QTest::addColumn<QVariantMap>("answer");

    const QVariantMap none;
    const auto row = [](const char *name, const char *field, const QVariant &value,
                        const QVariantMap &answer) {
        QTest::newRow(name) << QVariantMap{{QLatin1String(field), value}} << answer;
    };
    const QVariantMap mandatory = requirement("mandatory");
    QTest::newRow("no field requested") << none << none;
    row("passphrase", "Passphrase", mandatory, {{"Passphrase", "secret"}});
    row("identity", "Identity", mandatory, {{"Identity", "me"}});
    row("user name", "Username", mandatory, {{"Username", "me"}});
    row("optional", "Passphrase", requirement("optional"), none);
    row("informational", "Passphrase", requirement("informational"), none);
    row("other case", "Passphrase", requirement("Mandatory"), none);
    row("longer word", "Passphrase", requirement("mandatory "), none);
    row("no requirement", "Passphrase", QVariantMap{{"Type", "psk"}}, none);
    row("empty field", "Passphrase", QVariantMap(), none);
    row("requirement a number", "Passphrase", requirement(1), none);
    row("requirement bytes", "Passphrase", requirement(QByteArray("mandatory")), none);
    row("requirement a list", "Passphrase", requirement(QStringList("mandatory")), none);
    row("requirement a map", "Passphrase", requirement(mandatory), none);
    row("field a text", "Passphrase", "mandatory", none);
    row("field a number", "Passphrase", 1, none);
    row("field a list", "Passphrase", QVariantList{mandatory}, none);
    row("field without a value", "Passphrase", QVariant(), none);
    row("unknown field", "WPS", mandatory, none);
    row("name of a hidden network", "Name", mandatory, none);
    row("field in another case", "passphrase", mandatory, none);
}

void TestAgentAnswer::fieldsAreAnswered()
{
    QFETCH(QVariantMap, fields);
    QFETCH(QVariantMap, answer);
    QCOMPARE(agentAnswer(fields, credentials), answer);
}

void TestAgentAnswer::identityAndUsernameBothGetTheIdentity()
{
    const QVariantMap mandatory = requirement("mandatory");
    const QVariantMap fields = {
        {"Identity", mandatory}, {"Username", mandatory}, {"Passphrase", requirement("optional")}};

    QCOMPARE(agentAnswer(fields, credentials),
             (QVariantMap{{"Identity", "me"}, {"Username", "me"}}));
}

void TestAgentAnswer::emptyCredentialsAreAnsweredEmpty()
{
    const QVariantMap answer =
        agentAnswer({{"Passphrase", requirement("mandatory")}}, {QString(), QString()});

    QCOMPARE(answer.keys(), QStringList("Passphrase"));
    QCOMPARE(answer.value("Passphrase").toString(), QString());
}

void TestAgentAnswer::thousandsOfOtherFieldsChangeNothing()
{
    QVariantMap fields = {{"Passphrase", requirement("mandatory")}};
    for (int field = 0; field < 10000; ++field)
        fields.insert(QStringLiteral("Field%1").arg(field), requirement("mandatory"));

    QCOMPARE(agentAnswer(fields, credentials), (QVariantMap{{"Passphrase", "secret"}}));
}

void TestAgentAnswer::onlyTwoOfThousandsOfRequestsAreAnswered()
{
    // The agent sends refusals over the system bus. These requests do not come from a bus: give the
    // agent an address to which it cannot connect.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    QObject host;
    KyConnmanAgent agent(&host);
    agent.setCredentials(credentials.identity, credentials.passphrase);
    const QVariantMap fields = {{"Passphrase", requirement("mandatory")}};

    int answers = 0;
    // More requests than a 16-bit counter can count.
    for (int request = 0; request < 70000; ++request)
        answers += agent.RequestInput({}, fields, QDBusMessage()).isEmpty() ? 0 : 1;

    QCOMPARE(answers, 2);
}

QTEST_GUILESS_MAIN(TestAgentAnswer)
#include "test_agentanswer.moc"
