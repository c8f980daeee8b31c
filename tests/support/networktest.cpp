#include "networktest.h"

#include "deadline.h"

namespace
{
const QString traceFile = QStringLiteral("/tmp/logkywifi");
} // namespace

void NetworkTest::init()
{
    DaemonTest::init();
    script.install();
    connman.start();
    // Stop the clock. Otherwise a delay could end between two calls of letTimePass(), and the
    // daemon would start pidof. The second letTimePass() would end the daemon's wait for pidof at
    // once, and the daemon would consider ConnMan absent.
    daemon.stopClock();
}

void NetworkTest::cleanup()
{
    DaemonTest::cleanup();
    recorder.reset();
    if (connman.isRunning())
        connman.kill();
    script.clear();
}

void NetworkTest::begin()
{
    QVERIFY(daemon.start());
    if (connman.isRunning())
        connman.clearJournal();
    recorder.reset(new SignalRecorder(QStringLiteral("/KyComMgr")));
}

void NetworkTest::settle()
{
    // The daemon runs getUser on the thread that handles ConnMan's signals, after these signals,
    // and without calling a peer.
    Remote(QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")).call(QStringLiteral("getUser"));
}

void NetworkTest::waitForScripts(int running)
{
    // Count again after settle(): the daemon may be about to start its first or next script.
    //
    // Settle twice: without pidfds, Qt reaps a child in the signal handler and handles its end in
    // the event loop, maybe after the first call of the same iteration.
    const auto isQuiet = [&] {
        if (daemon.children() != running)
            return false;
        settle();
        settle();
        return daemon.children() == running;
    };
    settle();
    QVERIFY(QTest::qWaitFor(isQuiet, deadlineMs));
}

void NetworkTest::passModuleDelay()
{
    waitForScripts();
    daemon.letTimePass(2);
}

QStringList NetworkTest::announced()
{
    // The daemon may answer settle() before it handles an expired timer. It handles the timer
    // before it answers the call that take() makes.
    settle();
    return recorder->take();
}

QStringList NetworkTest::orders()
{
    QStringList calls;
    for (const QString &call : connman.journal()) {
        if (!call.startsWith(QLatin1String("Manager.Get")))
            calls << call;
    }
    connman.clearJournal();
    return calls;
}

QString NetworkTest::state(const char *interface, const QString &path, const char *name)
{
    return QStringLiteral("%1.propertyChanged(\"%2\", \"State\", <\"%3\">)")
        .arg(QLatin1String(interface), path, QLatin1String(name));
}

ListedObject NetworkTest::network(const QString &name, const QString &serviceState)
{
    return {QDBusObjectPath(networkPath(name)),
            {{"Type", "wifi"},
             {"Name", name},
             {"State", serviceState},
             {"Strength", QVariant::fromValue(uchar(70))},
             {"Security", QStringList("psk")}}};
}

QString NetworkTest::networkPath(const QString &name)
{
    return QStringLiteral("/net/connman/service/wifi_02aabbccdd04_%1_managed_psk")
        .arg(QString::fromLatin1(name.toUtf8().toHex()));
}

QStringList NetworkTest::trace()
{
    QStringList records;
    const QString text = QString::fromUtf8(readFile(traceFile));
    for (const QString &record : text.split(QStringLiteral("----------------------------\n")))
        records << record.split(QLatin1Char('\n')).mid(0, 4).join(QLatin1Char(' '));
    records.removeFirst();
    return records;
}

bool NetworkTest::waitForTrace(const QString &method, int count)
{
    return QTest::qWaitFor(
        [&] {
            int found = 0;
            for (const QString &record : trace())
                found += record.startsWith(method + QLatin1Char(' ')) ? 1 : 0;
            return found >= count;
        },
        deadlineMs);
}
