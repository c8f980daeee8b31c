#include "daemontest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

/** Calls of unknown methods do not increase the daemon's memory. */
class TestSlotCache : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void callsOfUnknownMethodsDoNotGrowTheDaemonsMemory_data();
    void callsOfUnknownMethodsDoNotGrowTheDaemonsMemory();
    void aMethodIsFoundAfterManyUnknownOnes();

private:
    void callUnknownMethods(const QString &path, int first, int count);
};

/** Calls @p count methods with different names, many at a time, and waits for all replies. */
void TestSlotCache::callUnknownMethods(const QString &path, int first, int count)
{
    for (int done = 0; done < count;) {
        QList<QDBusPendingCall> calls;
        for (; calls.size() < 50 && done < count; ++done) {
            const QString name = QStringLiteral("unknown%1").arg(first + done);
            calls << QDBusConnection::systemBus().asyncCall(QDBusMessage::createMethodCall(
                "com.orvendis.Strandel.BoardManager", path, "", name.leftJustified(250, 'x')));
        }
        for (QDBusPendingCall &call : calls) {
            call.waitForFinished();
            QCOMPARE(call.error().type(), QDBusError::UnknownMethod);
        }
    }
}

void TestSlotCache::callsOfUnknownMethodsDoNotGrowTheDaemonsMemory_data()
{
    QTest::addColumn<QString>("path");
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyComMgr/Agent", "/KyDeviceMgr"})
        QTest::newRow(path) << QString::fromLatin1(path);
}

void TestSlotCache::callsOfUnknownMethodsDoNotGrowTheDaemonsMemory()
{
    QFETCH(QString, path);
    QVERIFY(daemon.start());
    callUnknownMethods(path, 0, 500);
    const int before = daemon.privateMemory();
    callUnknownMethods(path, 500, 2500);
    QVERIFY(before > 0);
    // If methods were cached, each would take 700 bytes for each adaptor of the object.
    const int grown = daemon.privateMemory() - before;
    QVERIFY2(grown < 600, qPrintable(QString::number(grown)));
}

void TestSlotCache::aMethodIsFoundAfterManyUnknownOnes()
{
    const Remote users(QStringLiteral("/KyConfigMgr"), QStringLiteral("Users"));
    QVERIFY(daemon.start());
    for (int round = 0; round < 3; ++round) {
        QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
        callUnknownMethods(QStringLiteral("/KyConfigMgr"), 1000 * round, 101 + round);
        QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    }
}

WORLD_TEST_MAIN(TestSlotCache)
#include "test_slotcache.moc"
