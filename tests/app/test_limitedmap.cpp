#include "limitedmap.h"

#include "busvalue.h"
#include "daemontest.h"
#include "deadline.h"
#include "render.h"
#include "samplerecords.h"
#include "wire.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTimer>

/** The limits of the maps that callers send. */
class TestLimitedMap : public DaemonTest
{
    Q_OBJECT

public Q_SLOTS:
    void keep(const QDBusMessage &message);

private Q_SLOTS:
    void initTestCase();

    void aValueIsReadUpToTheLimit_data();
    void aValueIsReadUpToTheLimit();
    void aTextOfAnyLengthIsRead();
    void otherEntriesAreStillRead();
    void ofSeveralEntriesOfAKeyTheLastCounts();
    void aMapIsReadUpToTheLimit();
    void manyLongValuesAreTooMany();
    void theArgumentCanBeReadAgain();

    void methodsRefuseAMapOfTooManyValues_data();
    void methodsRefuseAMapOfTooManyValues();

private:
    QDBusArgument receive(const QString &values);

    Wire sender;
    QVariantList received;
    const QString path = QStringLiteral("/values");
    const QString interface = QStringLiteral("com.orvendis.Strandel.Values");
    const QString member = QStringLiteral("value");
};

namespace
{
QString times(int count, const char *unit)
{
    return QString::fromLatin1(unit).repeated(count);
}

/** An a{sv} with one number for each of @p keys, and @p count lists, each counted as 16 values. */
QString manyEntries(int count, const QStringList &keys = {})
{
    QString entries;
    for (const QString &key : keys)
        entries += ' ' + key + " i 1";
    return QStringLiteral("a{sv} %1").arg(count + keys.size()) + entries +
           times(count, " k ai 13 1 2 3 4 5 6 7 8 9 10 11 12 13");
}

} // namespace

void TestLimitedMap::keep(const QDBusMessage &message)
{
    received = message.arguments();
}

void TestLimitedMap::initTestCase()
{
    QVERIFY(QDBusConnection::systemBus().connect(sender.name(), path, interface, member, this,
                                                 SLOT(keep(QDBusMessage))));
}

/** The single value of a message, which Qt D-Bus has not decoded yet. */
QDBusArgument TestLimitedMap::receive(const QString &values)
{
    received.clear();
    sender.signal(path, interface, member, values);
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(deadlineMs);
    while (received.isEmpty() && deadline.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return received.value(0).value<QDBusArgument>();
}

void TestLimitedMap::aValueIsReadUpToTheLimit_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("element");
    QTest::addColumn<int>("most");
    const auto row = [](const char *type, const char *element, int most) {
        QTest::newRow(type) << QString(type) << QString(element) << most;
    };
    // The array and the variant that contains it count, too.
    row("av", " i 7", 8190);
    row("ai", " 7", 8190);
    row("as", " text", 8190);
    row("aay", " 2 1 2", 8190);
    row("ay", " 7", 100000);
    row("a{su}", " k 7", 4095);
    row("a(ii)", " 1 2", 2730);
    row("aai", " 1 7", 4095);
    row("a{sv}", " k ai 1 7", 2047);
    row("aas", " 1 text", 4095);
    row("a(a{su}i)", " 1 k 7 7", 1638);
}

void TestLimitedMap::aValueIsReadUpToTheLimit()
{
    QFETCH(QString, type);
    QFETCH(QString, element);
    QFETCH(int, most);
    const auto list = [&](int count) {
        return QStringLiteral("a{sv} 1 key %1 %2").arg(type).arg(count) + element.repeated(count);
    };

    QVERIFY(limitedMap(receive(list(most))).value("key").isValid());
    if (type == "ay")
        return;
    const QVariantMap longer = limitedMap(receive(list(most + 1)));
    QCOMPARE(longer.keys(), QStringList("key"));
    QVERIFY(!longer.value("key").isValid());
}

void TestLimitedMap::aTextOfAnyLengthIsRead()
{
    const QVariantMap map = limitedMap(receive("a{sv} 1 key s " + QString(1000000, 'x')));
    QCOMPARE(map.value("key"), QVariant(QString(1000000, 'x')));
}

void TestLimitedMap::otherEntriesAreStillRead()
{
    const QDBusArgument argument =
        receive("a{sv} 4 a i 1 long av 10000" + times(10000, " y 7") + " b v v i 2 c as 2 x y");
    const QVariantMap map = limitedMap(argument);
    QVariantMap whole = qdbus_cast<QVariantMap>(argument);
    QCOMPARE(map.keys(), whole.keys());
    QVERIFY(!map.value("long").isValid());
    for (const char *key : {"a", "b", "c"})
        QCOMPARE(render(plainValue(map.value(key))), render(plainValue(whole.value(key))));
    QCOMPARE(plainValue(map.value("b")), QVariant(2));
}

void TestLimitedMap::ofSeveralEntriesOfAKeyTheLastCounts()
{
    const QVariantMap map = limitedMap(receive("a{sv} 3 a i 1 b i 2 a i 3"));
    QCOMPARE(map, (QVariantMap{{"a", 3}, {"b", 2}}));
}

void TestLimitedMap::aMapIsReadUpToTheLimit()
{
    const QDBusArgument whole = receive(manyEntries(8192));
    QVERIFY(isWithinLimits(whole));
    const QVariantMap map = limitedMap(whole);
    QCOMPARE(map.keys(), QStringList("k"));
    QCOMPARE(qdbus_cast<QList<int>>(map.value("k")).size(), 13);
    const QDBusArgument longer = receive(manyEntries(8193));
    QVERIFY(!isWithinLimits(longer));
    QCOMPARE(limitedMap(longer), QVariantMap());
}

void TestLimitedMap::manyLongValuesAreTooMany()
{
    const QString list = " k ai 10000" + times(10000, " 7");
    QVERIFY(isWithinLimits(receive("a{sv} 15" + list.repeated(15))));
    QVERIFY(!isWithinLimits(receive("a{sv} 16" + list.repeated(16))));
}

void TestLimitedMap::theArgumentCanBeReadAgain()
{
    const QDBusArgument argument = receive("a{sv} 2 a as 2 x y b av 1 i 1");
    QVERIFY(isWithinLimits(argument));
    const QVariantMap first = limitedMap(argument);
    QCOMPARE(first.value("a").toStringList(), (QStringList{"x", "y"}));
    QCOMPARE(limitedMap(argument).value("a"), first.value("a"));
    QCOMPARE(qdbus_cast<QVariantMap>(argument).keys(), (QStringList{"a", "b"}));
}

void TestLimitedMap::methodsRefuseAMapOfTooManyValues_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("answer");
    const QString tooMany =
        "org.freedesktop.DBus.Error.LimitsExceeded: The map holds too many values";
    const QString notValid = "com.orvendis.Strandel.BoardManager.Error.Write: Data not valid";
    const auto row = [](const char *objectPath, const char *method, const QString &answer) {
        QTest::newRow(method) << QString(objectPath) << QString(method) << answer;
    };
    row("/KyComMgr", "Ethernet.setIPv4", tooMany);
    row("/KyComMgr", "WIFI.setIPv4", tooMany);
    row("/KyComMgr", "WIFI.connect", tooMany);
    row("/KyComMgr", "WIFIAP.setIPv4", tooMany);
    row("/KyComMgr", "WIFIAP.connect", tooMany);
    row("/KyDeviceMgr", "Version.setEepromInstrument", notValid);
    row("/KyDeviceMgr", "Version.setEepromMesure", notValid);
}

void TestLimitedMap::methodsRefuseAMapOfTooManyValues()
{
    QFETCH(QString, object);
    QFETCH(QString, method);
    QFETCH(QString, answer);
    QVERIFY(daemon.start());
    SignalRecorder announced(object);
    static const QString tooMuch =
        manyEntries(8193, instrumentRecord().keys() + measureRecord().keys());
    const QString service = QStringLiteral("com.orvendis.Strandel.BoardManager");
    const QString name = service + '.' + method.section('.', 0, 0);

    QCOMPARE(sender.call(service, object, name, method.section('.', 1), tooMuch), answer);

    QCOMPARE(announced.recorded(), QStringList());
}

WORLD_TEST_MAIN(TestLimitedMap)
#include "test_limitedmap.moc"
