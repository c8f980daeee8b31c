#include "daemontest.h"

/** Who may do what with the daemon under the stock rules of the system bus and our policy. */
class TestPolicy : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void rootMayCall();
    void aMemberOfTheGroupMayCall();
    void onlyRootMayAskTheAgent();
    void aStrangerMayOnlyLookAndPing();
    void nobodyElseMayOwnTheName();
    void everybodyHearsSignals();

private:
    /** What busctl, run as @p user, prints; the first line of its complaint where it failed. */
    static QString busctl(const QString &user, const QStringList &arguments);

    static QStringList call(const QString &interface, const QString &method,
                            const QStringList &arguments = {})
    {
        return QStringList{"call", service, "/KyConfigMgr", interface, method} + arguments;
    }

    static const QString service;
    static const QString users;
};

const QString TestPolicy::service = QStringLiteral("com.orvendis.Strandel.BoardManager");
const QString TestPolicy::users = service + QStringLiteral(".Users");

QString TestPolicy::busctl(const QString &user, const QStringList &arguments)
{
    QProcess process;
    process.start("setpriv", QStringList{"--reuid=" + user, "--regid=61185", "--init-groups",
                                         "busctl", "--system", "--no-pager"} +
                                 arguments);
    if (!process.waitForFinished(20000))
        return QStringLiteral("no end");
    const QByteArray text =
        process.exitCode() == 0 ? process.readAllStandardOutput() : process.readAllStandardError();
    return QString::fromUtf8(text).section('\n', 0, 0);
}

void TestPolicy::rootMayCall()
{
    QVERIFY(daemon.start());
    QCOMPARE(busctl("root", call(users, "getUser")), QStringLiteral("s \"user1\""));
}

void TestPolicy::aMemberOfTheGroupMayCall()
{
    QVERIFY(daemon.start());
    QCOMPARE(busctl("member", call(users, "getUser")), QStringLiteral("s \"user1\""));
    QCOMPARE(busctl("member", call(users, "setUser", {"s", "user2"})), QString());
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user2"));
}

void TestPolicy::onlyRootMayAskTheAgent()
{
    QVERIFY(daemon.start());
    const QStringList request = {
        "call", service, "/KyComMgr/Agent", "net.connman.Agent", "RequestInput", "oa{sv}",
        "/s",   "0"};
    QVERIFY2(busctl("root", request).contains("net.connman.Agent.Error.Canceled") ||
                 busctl("root", request).startsWith("Call failed"),
             qPrintable(busctl("root", request)));
    for (const char *user : {"member", "stranger"}) {
        const QString answer = busctl(user, request);
        QVERIFY2(answer.contains("Access") || answer.contains("rejected"), qPrintable(answer));
    }
}

void TestPolicy::aStrangerMayOnlyLookAndPing()
{
    QVERIFY(daemon.start());
    QVERIFY(busctl("stranger", call("org.freedesktop.DBus.Introspectable", "Introspect"))
                .startsWith("s \""));
    QCOMPARE(busctl("stranger", call("org.freedesktop.DBus.Peer", "Ping")), QString());

    for (const QStringList &refused :
         {call(users, "getUser"), call(users, "setUser", {"s", "user2"}),
          call(users, "factoryReset", {"s", "user1"}),
          call("org.freedesktop.DBus.Properties", "GetAll", {"s", users})}) {
        const QString answer = busctl("stranger", refused);
        QVERIFY2(answer.contains("Access") || answer.contains("rejected"), qPrintable(answer));
    }
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user1"));
}

void TestPolicy::nobodyElseMayOwnTheName()
{
    for (const char *user : {"member", "stranger"}) {
        const QString answer =
            busctl(user, {"call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                          "org.freedesktop.DBus", "RequestName", "su", service, "0"});
        QVERIFY2(answer.contains("Access denied"), qPrintable(answer));
    }
}

void TestPolicy::everybodyHearsSignals()
{
    QVERIFY(daemon.start());
    QProcess listener;
    listener.start("setpriv", {"--reuid=stranger", "--regid=61186", "--clear-groups", "gdbus",
                               "monitor", "--system", "--dest", service});
    QByteArray heard;
    QVERIFY(QTest::qWaitFor(
        [&] {
            heard += listener.readAllStandardOutput();
            return heard.contains("is owned by");
        },
        20000));
    Remote("/KyConfigMgr", "Users").call("setUser", {"user2"});
    QVERIFY(QTest::qWaitFor(
        [&] {
            heard += listener.readAllStandardOutput();
            return heard.contains("userChanged ('user2',)");
        },
        20000));
    listener.kill();
    listener.waitForFinished();
}

WORLD_TEST_MAIN(TestPolicy)
#include "test_policy.moc"
