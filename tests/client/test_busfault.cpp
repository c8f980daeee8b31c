#include "busaddress.h"
#include "busfault.h"

#include <QTest>

/** kyboardctl's messages for faults of the bus. */
class TestBusFault : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachFaultHasItsSentence_data();
    void eachFaultHasItsSentence();
    void aHostIsReachedThroughSsh();
    void aHostIsNoOption();
};

void TestBusFault::eachFaultHasItsSentence_data()
{
    QTest::addColumn<bool>("isJoined");
    QTest::addColumn<bool>("isMember");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const QString &flags, const QString &user,
                        const char *error, const char *expected) {
        QTest::newRow(name) << flags.contains('j') << flags.contains('m') << user << error
                            << expected;
    };
    row("no socket", "m", "root", "FileNotFound", "the bus at HERE cannot be reached");
    row("no address", "m", "root", "BadAddress", "the bus at HERE cannot be reached");
    row("nobody listens", "m", "root", "NoServer", "the bus at HERE cannot be reached");
    row("login ended", "", "eve", "NoReply", "the bus at HERE refuses user eve");
    row("login refused", "", "eve", "AuthFailed", "the bus at HERE refuses user eve");
    row("Hello refused", "m", "eve", "AccessDenied", "the bus at HERE refuses user eve");
    row("no host", "", "", "NoReply", "the bus cannot be reached through ssh");
    row("no daemon", "jm", "root", "NameHasNoOwner", "the board manager is not on the bus");
    row("daemon not started", "j", "eve", "ServiceUnknown", "the board manager is not on the bus");
    row("daemon ended", "jm", "root", "NoReply",
        "the board manager ended while it worked for this call");
    row("bus ended", "jm", "root", "Disconnected", "the bus ended");
    row("stranger", "j", "eve", "AccessDenied",
        "user eve is not in group strandel, which may call the board manager");
    row("member", "jm", "me", "AccessDenied", "the bus does not let user me make this call");
    row("stranger elsewhere", "jm", "", "AccessDenied",
        "the user there may not call the board manager: only root and the group strandel may");
    row("model", "jm", "root", "UnknownInterface", "this instrument has no such interface");
    row("object", "jm", "root", "UnknownObject", "this instrument has no such interface");
    row("method", "jm", "root", "UnknownMethod", "this instrument has no such interface");
    row("property", "jm", "root", "UnknownProperty", "this instrument has no such interface");
    row("other", "jm", "root", "Failed", "TEXT (org.freedesktop.DBus.Error.Failed)");
}

void TestBusFault::eachFaultHasItsSentence()
{
    QFETCH(bool, isJoined);
    QFETCH(bool, isMember);
    QFETCH(QString, user);
    QFETCH(QString, error);
    BusFault fault;
    fault.bus = "the bus";
    fault.address = user.isEmpty() ? QString() : QStringLiteral("HERE");
    fault.isJoined = isJoined;
    fault.user = user;
    fault.isMember = isMember;
    fault.errorName = "org.freedesktop.DBus.Error." + error;
    fault.errorText = "TEXT";
    QTEST(sentence(fault), "expected");
    // An error of another service may end in the same word.
    fault.errorName = "com.example.Error." + error;
    if (isJoined)
        QCOMPARE(sentence(fault), "TEXT (com.example.Error." + error + ')');
}

void TestBusFault::aHostIsReachedThroughSsh()
{
    QCOMPARE(addressOfHost("strandel-12.lab"),
             QStringLiteral("unixexec:path=ssh,argv1=-xT,argv2=--,argv3=strandel-12.lab,"
                            "argv4=systemd-stdio-bridge"));
    QCOMPARE(addressOfHost("me@h,argv4=x;%").section("argv3=", 1),
             QStringLiteral("me%40h%2cargv4%3dx%3b%25,argv4=systemd-stdio-bridge"));
}

void TestBusFault::aHostIsNoOption()
{
    for (const char *good : {"strandel-12", "me@10.0.0.2", "fe80::1", "h"})
        QVERIFY2(isHostName(good), good);
    for (const char *bad : {"", "-x", "-oProxyCommand=x", "a b", "a\nb", "caf\u00e9"})
        QVERIFY2(!isHostName(QString::fromUtf8(bad)), bad);
}

QTEST_GUILESS_MAIN(TestBusFault)
#include "test_busfault.moc"
