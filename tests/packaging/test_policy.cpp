#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "introspection.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QXmlStreamReader>

#include <grp.h>
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

/** Permissions under the stock rules of the system bus and our policy. */
class TestPolicy : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void rootMayCall();
    void aMemberOfTheGroupMayCall();
    void onlyRootMayAskTheAgent();
    void aStrangersCallsAreRefused();
    void unicastSignalsToTheDaemonAreRefused_data();
    void unicastSignalsToTheDaemonAreRefused();
    void messagesWithFileDescriptorsAreRefused_data();
    void messagesWithFileDescriptorsAreRefused();
    void aLargeMessageEndsItsSender_data();
    void aLargeMessageEndsItsSender();
    void aFloodIsRefusedInsteadOfQueued();
    void onlyRootAndTheDaemonsUserMayOwnTheName();
    void theDaemonsOwnUserMayOwnTheName();
    void everyUserReceivesSignals();
    void everyRuleNamesItsDestination();
    void everyRuleThatLetsThroughExcludesDescriptors();
    void thePolicyForAnOlderBusDiffersInDescriptorsOnly();
    void everyMethodAdmitsOnlyItsCallers_data();
    void everyMethodAdmitsOnlyItsCallers();

private:
    /** The output of busctl as @p user; the first line of its error on failure. */
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
    if (!process.waitForFinished(deadlineMs))
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

void TestPolicy::aStrangersCallsAreRefused()
{
    QVERIFY(daemon.start());
    for (const QStringList &refused :
         {call("org.freedesktop.DBus.Introspectable", "Introspect"),
          call("org.freedesktop.DBus.Peer", "Ping"), call(users, "getUser"),
          call(users, "setUser", {"s", "user2"}), call(users, "factoryReset", {"s", "user1"}),
          call("org.freedesktop.DBus.Properties", "GetAll", {"s", users})}) {
        const QString answer = busctl("stranger", refused);
        QVERIFY2(answer.contains("Access") || answer.contains("rejected"), qPrintable(answer));
    }
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user1"));
}

void TestPolicy::onlyRootAndTheDaemonsUserMayOwnTheName()
{
    for (const char *user : {"member", "stranger"}) {
        const QString answer =
            busctl(user, {"call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                          "org.freedesktop.DBus", "RequestName", "su", service, "0"});
        QVERIFY2(answer.contains("Access denied"), qPrintable(answer));
    }
}

void TestPolicy::theDaemonsOwnUserMayOwnTheName()
{
    QCOMPARE(busctl("strandel-board", {"call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                       "org.freedesktop.DBus", "RequestName", "su", service, "0"}),
             QStringLiteral("u 1"));
}

void TestPolicy::everyUserReceivesSignals()
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
        deadlineMs));
    Remote("/KyConfigMgr", "Users").call("setUser", {"user2"});
    QVERIFY(QTest::qWaitFor(
        [&] {
            heard += listener.readAllStandardOutput();
            return heard.contains("userChanged ('user2',)");
        },
        deadlineMs));
    listener.kill();
    listener.waitForFinished();
}

namespace
{
/** A connection to the system bus as @p user with all groups of that user. */
QDBusConnection connectAs(const char *user)
{
    const passwd *entry = getpwnam(user);
    const bool isTheUser = entry && initgroups(user, entry->pw_gid) == 0 &&
                           setegid(entry->pw_gid) == 0 && seteuid(entry->pw_uid) == 0;
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, user);
    if (!isTheUser || seteuid(0) != 0 || setegid(0) != 0 || initgroups("root", 0) != 0)
        qFatal("cannot become %s and root again", user);
    return bus;
}

/**
 * Returns "refused" if the bus refuses @p call of @p user, "no reply" if nobody replies, and
 * "through" after any other reply.
 */
QString fate(const char *user, const QDBusMessage &call)
{
    QDBusConnection bus(user);
    const QDBusMessage reply =
        (bus.isConnected() ? bus : connectAs(user)).call(call, QDBus::Block, deadlineMs);
    if (reply.type() != QDBusMessage::ErrorMessage)
        return QStringLiteral("through");
    if (reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.AccessDenied"))
        return QStringLiteral("refused");
    return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.NoReply")
               ? QStringLiteral("no reply")
               : QStringLiteral("through");
}

/** The name in "method isMounted(in s device, out b)"; empty if it is no method. */
QString methodName(const QString &member)
{
    return member.startsWith(QLatin1String("method ")) ? member.section(' ', 1).section('(', 0, 0)
                                                       : QString();
}

void addRow(const QString &path, const QString &interface, const QString &method,
            const QString &member, const QString &stranger)
{
    QTest::newRow(qPrintable(path + ' ' + interface + '.' + method))
        << path << interface << method << member << stranger;
}
} // namespace

void TestPolicy::unicastSignalsToTheDaemonAreRefused_data()
{
    QTest::addColumn<QString>("user");
    QTest::newRow("member") << "member";
    QTest::newRow("stranger") << "stranger";
}

/** The stock rules let unicast signals through, and the daemon would have to read them. */
void TestPolicy::unicastSignalsToTheDaemonAreRefused()
{
    QFETCH(QString, user);
    QVERIFY(daemon.start());
    const QDBusConnection bus = connectAs(qPrintable(user));
    BusMonitor monitor;
    bus.send(QDBusMessage::createTargetedSignal(service, "/KyConfigMgr", users, "userChanged")
             << "user2");

    QStringList refusals;
    QVERIFY(QTest::qWaitFor(
        [&] {
            const QList<BusMessage> messages = monitor.take();
            for (const BusMessage &message : messages) {
                if (message.type == BusMessage::Error && message.destination == bus.baseService())
                    refusals << message.errorName;
            }
            return !refusals.isEmpty();
        },
        deadlineMs));
    QCOMPARE(refusals, QStringList{"org.freedesktop.DBus.Error.AccessDenied"});
}

void TestPolicy::messagesWithFileDescriptorsAreRefused_data()
{
    QTest::addColumn<QString>("user");
    for (const char *user : {"root", "member", "stranger"})
        QTest::newRow(user) << user;
}

void TestPolicy::messagesWithFileDescriptorsAreRefused()
{
    QFETCH(QString, user);
    QVERIFY(daemon.start());
    for (const QString &path :
         {QStringLiteral("/KyConfigMgr"), QStringLiteral("/KyComMgr/Agent")}) {
        for (const char *method : {"Introspect", "Ping", "getUser"}) {
            QDBusMessage call = QDBusMessage::createMethodCall(service, path, QString(), method);
            call << QVariant::fromValue(QDBusUnixFileDescriptor(0));
            QCOMPARE(fate(qPrintable(user), call), QStringLiteral("refused"));
        }
    }
}

void TestPolicy::aLargeMessageEndsItsSender_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("just below 1 MiB") << (1 << 20) - 1024 << true;
    QTest::newRow("1 MiB") << (1 << 20) << false;
}

void TestPolicy::aLargeMessageEndsItsSender()
{
    QFETCH(int, size);
    QFETCH(bool, isTaken);
    QVERIFY(daemon.start());
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "large");
    QDBusMessage call = QDBusMessage::createMethodCall(service, "/KyConfigMgr", users, "getUser");
    call << QByteArray(size, 'x');

    const QDBusMessage reply = bus.call(call, QDBus::Block, deadlineMs);

    // Without a reply, the error depends on who notices the end of the connection first.
    QCOMPARE(reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.UnknownMethod"),
             isTaken);
    QTRY_COMPARE_WITH_TIMEOUT(bus.isConnected(), isTaken, deadlineMs);
    QDBusConnection::disconnectFromBus("large");
    QCOMPARE(busctl("member", TestPolicy::call(users, "getUser")), QStringLiteral("s \"user1\""));
    QVERIFY(daemon.isRunning());
}

/** While the daemon reads nothing, the bus queues a few calls and refuses the others. */
void TestPolicy::aFloodIsRefusedInsteadOfQueued()
{
    QVERIFY(daemon.start());
    QCOMPARE(kill(pid_t(daemon.processId()), SIGSTOP), 0);
    QDBusMessage call = QDBusMessage::createMethodCall(service, "/KyConfigMgr", users, "getUser");
    call << QByteArray(1000000, 'x');
    QList<QDBusConnection> senders;
    QList<QDBusPendingCall> replies;
    for (int number = 0; number < 8; ++number) {
        senders << QDBusConnection::connectToBus(QDBusConnection::SystemBus,
                                                 QString::number(number));
        replies << senders.last().asyncCall(call, 60000);
        replies << senders.last().asyncCall(call, 60000);
    }

    const auto refused = [&replies] {
        int count = 0;
        for (const QDBusPendingCall &reply : qAsConst(replies))
            count +=
                reply.isFinished() &&
                reply.error().name() == QLatin1String("org.freedesktop.DBus.Error.LimitsExceeded");
        return count;
    };
    // The bus queues 1 MiB and the message that exceeds it; the sockets hold a part of another one.
    QTRY_VERIFY2_WITH_TIMEOUT(refused() >= 13, qPrintable(QString::number(refused())), deadlineMs);
    QCOMPARE(kill(pid_t(daemon.processId()), SIGCONT), 0);

    QTRY_COMPARE_WITH_TIMEOUT(busctl("member", TestPolicy::call(users, "getUser")),
                              QStringLiteral("s \"user1\""), deadlineMs);
    for (int number = 0; number < 8; ++number)
        QDBusConnection::disconnectFromBus(QString::number(number));
}

/**
 * A rule without a destination would apply to every service of the bus. The rule for the daemon's
 * own user names ConnMan; all others name the daemon.
 */
void TestPolicy::everyRuleNamesItsDestination()
{
    QXmlStreamReader rules(readFile(QStringLiteral(POLICY)));
    QString user;
    int count = 0;
    while (!rules.atEnd()) {
        rules.readNext();
        if (!rules.isStartElement())
            continue;
        const auto value = [&rules](const char *name) {
            return rules.attributes().value(QLatin1String(name)).toString();
        };
        if (rules.name() == QLatin1String("policy"))
            user = value("user");
        const bool isRule =
            rules.name() == QLatin1String("allow") || rules.name() == QLatin1String("deny");
        if (!isRule || !value("own").isEmpty())
            continue;
        ++count;
        QCOMPARE(value("send_destination"),
                 user == QLatin1String("strandel-board") ? QStringLiteral("net.connman") : service);
    }
    QVERIFY2(!rules.hasError(), qPrintable(rules.errorString()));
    QCOMPARE(count, 7);
}

void TestPolicy::everyRuleThatLetsThroughExcludesDescriptors()
{
    QXmlStreamReader rules(readFile(QStringLiteral(POLICY)));
    int count = 0;
    while (!rules.atEnd()) {
        rules.readNext();
        if (!rules.isStartElement() || rules.name() != QLatin1String("allow") ||
            rules.attributes().hasAttribute(QStringLiteral("own")))
            continue;
        ++count;
        QCOMPARE(rules.attributes().value(QLatin1String("max_fds")).toString(), QString("0"));
    }
    QVERIFY2(!rules.hasError(), qPrintable(rules.errorString()));
    QVERIFY(count > 0);
}

namespace
{
/** The elements of @p policy with their attributes except max_fds, in order. */
QStringList elements(const QString &policy)
{
    QXmlStreamReader reader(readFile(policy));
    QStringList found;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        QString element = reader.name().toString();
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (attribute.name() != QLatin1String("max_fds"))
                element += ' ' + attribute.name() + '=' + attribute.value();
        }
        found << element;
    }
    return found << reader.errorString();
}
} // namespace

void TestPolicy::thePolicyForAnOlderBusDiffersInDescriptorsOnly()
{
    const QString older = QStringLiteral(OLDER_POLICY);
    QCOMPARE(elements(older), elements(QStringLiteral(POLICY)));
    QVERIFY(elements(older).size() > 10);
    QVERIFY(!readFile(older).contains("max_fds"));
}

void TestPolicy::everyMethodAdmitsOnlyItsCallers_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QString>("stranger");

    const QString through = QStringLiteral("through");
    const QString refused = QStringLiteral("refused");
    const QString agent = QStringLiteral("/KyComMgr/Agent");
    QSet<QString> paths;
    const QStringList documents =
        QDir(QStringLiteral(DOCUMENTS)).entryList({QStringLiteral("*.xml")}, QDir::Files);
    for (const QString &file : documents) {
        const Introspection document =
            readIntrospection(readFile(QStringLiteral(DOCUMENTS "/") + file));
        paths << document.path;
        const QString interface = document.interfaces.firstKey();
        const QString member = document.path == agent ? refused : through;
        for (const QString &text : document.interfaces.first()) {
            const QString method = methodName(text);
            if (method.isEmpty())
                continue;
            addRow(document.path, interface, method, member, refused);
            addRow(document.path, QString(), method, member, refused);
        }
    }
    QCOMPARE(paths, (QSet<QString>{"/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr", agent}));

    const QStringList objects = paths.values();
    for (const QString &path : objects) {
        const QString member = path == agent ? refused : through;
        for (const char *method : {"Get", "GetAll", "Set"})
            addRow(path, "org.freedesktop.DBus.Properties", method, member, refused);
        addRow(path, "org.freedesktop.DBus.Introspectable", "Introspect", through, refused);
        addRow(path, "org.freedesktop.DBus.Peer", "Ping", through, refused);
        addRow(path, "org.freedesktop.DBus.Peer", "GetMachineId", member, refused);
        addRow(path, "net.connman.Agent", "Release", member, refused);
        addRow(path, "com.orvendis.Strandel.BoardManager.Future", "act", member, refused);
    }
}

/**
 * The policy's rules do not look at arguments. All calls have invalid arguments: a call that the
 * bus lets through then has no effect.
 */
void TestPolicy::everyMethodAdmitsOnlyItsCallers()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, method);
    QFETCH(QString, member);
    QFETCH(QString, stranger);
    QVERIFY(daemon.start());
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call << 1.5 << 1.5 << 1.5 << 1.5;
    QCOMPARE(fate("root", call), QStringLiteral("through"));
    QCOMPARE(fate("member", call), member);
    QCOMPARE(fate("stranger", call), stranger);
}

WORLD_TEST_MAIN(TestPolicy)
#include "test_policy.moc"
