#include "busvalue.h"

#include "daemontest.h"
#include "deadline.h"
#include "render.h"
#include "wire.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusVariant>
#include <QTimer>

/** Values of every type, received from a real bus. */
class TestBusValue : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void keep(const QDBusMessage &message);

private Q_SLOTS:
    void initTestCase();

    void plainValueOfEveryType_data();
    void plainValueOfEveryType();
    void plainValueUnwrapsVariantsAtEveryDepth();
    void plainValueOfADeepValue_data();
    void plainValueOfADeepValue();
    void plainValueOfALongList();
    void plainMapConvertsEveryEntry();
    void ofSeveralEntriesOfAKeyTheLastCounts();
    void basicValueOfEveryType_data();
    void basicValueOfEveryType();
    void basicMapConvertsEveryEntry();
    void toMapIsEmptyForOtherValues_data();
    void toMapIsEmptyForOtherValues();
    void toNumbersReadsListsOfNumbers_data();
    void toNumbersReadsListsOfNumbers();
    void toNumbersReadsALongList();
    void detachedValueIsTheSameOnTheBus_data();
    void detachedValueIsTheSameOnTheBus();
    void sizeOnBusCountsEverything_data();
    void sizeOnBusCountsEverything();
    void sizeOnBusStopsCountingEarly();
    void storableMapKeepsStorableEntries_data();
    void storableMapKeepsStorableEntries();
    void aValueCanBeReadAgainAndSentAgain_data();
    void aValueCanBeReadAgainAndSentAgain();

private:
    QVariant receive(const QString &values);
    QVariant sendAgain(const QVariant &value);
    QVariant waitForValue();
    void addRow(const char *values, const char *rendered);

    Wire sender;
    QList<QVariant> received;
    const QString path = QStringLiteral("/values");
    const QString interface = QStringLiteral("com.orvendis.Strandel.Values");
    const QString member = QStringLiteral("value");
};

namespace
{
/** Returns @p unit repeated @p count times. */
QString times(int count, const char *unit)
{
    return QString::fromLatin1(unit).repeated(count);
}
} // namespace

void TestBusValue::keep(const QDBusMessage &message)
{
    received << message.arguments().value(0);
}

void TestBusValue::initTestCase()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    for (const QString &name : {sender.name(), bus.baseService()})
        QVERIFY(bus.connect(name, path, interface, member, this, SLOT(keep(QDBusMessage))));
}

/** Returns the single value of a message, as Qt D-Bus passes it to a slot. */
QVariant TestBusValue::receive(const QString &values)
{
    received.clear();
    sender.signal(path, interface, member, values);
    return waitForValue();
}

QVariant TestBusValue::sendAgain(const QVariant &value)
{
    received.clear();
    QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
    message << value;
    QDBusConnection::systemBus().send(message);
    return waitForValue();
}

QVariant TestBusValue::waitForValue()
{
    QTimer deadline;
    deadline.setSingleShot(true);
    deadline.start(deadlineMs);
    while (received.isEmpty() && deadline.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return received.value(0);
}

void TestBusValue::addRow(const char *values, const char *rendered)
{
    QTest::newRow(values) << QStringLiteral("v ") + QLatin1String(values)
                          << QString::fromLatin1(rendered);
}

void TestBusValue::plainValueOfEveryType_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("rendered");

    addRow("y 255", "y:255");
    addRow("b true", "true");
    addRow("n -32768", "n:-32768");
    addRow("q 65535", "q:65535");
    addRow("i -2147483648", "-2147483648");
    addRow("u 4294967295", "u:4294967295");
    addRow("x -9223372036854775808", "x:-9223372036854775808");
    addRow("t 18446744073709551615", "t:18446744073709551615");
    addRow("d 2.5", "d:2.5");
    addRow("s text", "\"text\"");
    addRow("s \"\"", "\"\"");
    addRow("o /a/b", "o:\"/a/b\"");
    addRow("g a{sv}", "g:\"a{sv}\"");
    addRow("h 1", "?QDBusUnixFileDescriptor");

    addRow("ay 3 1 2 255", "ay:\"0102ff\"");
    addRow("ay 0", "ay:\"\"");
    addRow("as 2 a b", "[\"a\", \"b\"]");
    addRow("as 0", "[]");
    addRow("ab 2 true false", "[true, false]");
    addRow("an 2 -1 1", "[n:-1, n:1]");
    addRow("aq 2 0 65535", "[q:0, q:65535]");
    addRow("ai 2 -1 1", "[-1, 1]");
    addRow("au 2 0 4294967295", "[u:0, u:4294967295]");
    addRow("ax 1 -1", "[x:-1]");
    addRow("at 1 1", "[t:1]");
    addRow("ad 1 0.5", "[d:0.5]");
    addRow("au 0", "[]");

    addRow("av 0", "[]");
    addRow("av 3 i 1 s two av 1 u 3", "[<1>, <\"two\">, <[<u:3>]>]");
    addRow("a{sv} 0", "{}");
    addRow("a{sv} 2 a i 1 b a{sv} 1 c s d", "{\"a\": <1>, \"b\": <{\"c\": <\"d\">}>}");

    addRow("(ii) 1 2", "?");
    addRow("(v) i 1", "?");
    addRow("a{ss} 1 a b", "?");
    addRow("a{si} 0", "?");
    addRow("a{iv} 1 1 i 1", "?");
    addRow("a{sa{sv}} 1 a 1 b i 1", "?");
    addRow("a(ss) 1 a b", "?");
    addRow("a(oa{sv}) 1 /a 1 b i 1", "?");
    addRow("aa{sv} 1 1 a i 1", "?");
    addRow("aas 1 1 a", "?");
    addRow("aay 1 1 1", "?");
    addRow("ao 1 /a", "?");
    addRow("ag 1 i", "?");
    addRow("ah 1 1", "?");
    addRow("av 3 i 1 (ii) 1 2 i 3", "[<1>, <?>, <3>]");
    addRow("a{sv} 2 a a{ss} 1 b c d i 1", "{\"a\": <?>, \"d\": <1>}");
}

void TestBusValue::plainValueOfEveryType()
{
    QFETCH(QString, values);
    QFETCH(QString, rendered);
    QCOMPARE(render(plainValue(receive(values))), rendered);
}

void TestBusValue::plainValueUnwrapsVariantsAtEveryDepth()
{
    QCOMPARE(render(plainValue(receive("v v v v u 5"))), QStringLiteral("u:5"));
    QCOMPARE(render(plainValue(receive("v v av 2 v v i 1 v a{sv} 1 a v s b"))),
             QStringLiteral("[<1>, <{\"a\": <\"b\">}>]"));
}

void TestBusValue::plainValueOfADeepValue_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("rendered");
    // The greatest depth that the bus delivers.
    QTest::newRow("variants") << times(63, "v ") + "i 5"
                              << "5";
    QTest::newRow("lists") << "v " + times(31, "av 1 ") + "i 5"
                           << times(31, "[<") + "5" + times(31, ">]");
    QTest::newRow("maps") << "v " + times(20, "a{sv} 1 k ") + "i 5"
                          << times(20, "{\"k\": <") + "5" + times(20, ">}");
    QTest::newRow("structures") << "v " + times(32, "(") + "i" + times(32, ")") + " 5"
                                << "?";
    QTest::newRow("arrays") << "v " + times(32, "a") + "i" + times(32, " 1") + " 5"
                            << "?";
    QTest::newRow("lists around a structure")
        << "v " + times(15, "av 1 ") + "(v) " + times(15, "(v) ") + "i 5"
        << times(15, "[<") + "?" + times(15, ">]");
}

void TestBusValue::plainValueOfADeepValue()
{
    QFETCH(QString, values);
    QFETCH(QString, rendered);
    QCOMPARE(render(plainValue(receive(values))), rendered);
}

void TestBusValue::plainValueOfALongList()
{
    const int count = 100000;
    const QVariantList list = plainValue(receive(QStringLiteral("v av %1 ").arg(count) +
                                                 times(count - 1, "i 7 ") + "s end"))
                                  .toList();
    QCOMPARE(list.size(), count);
    QCOMPARE(list.first(), QVariant(7));
    QCOMPARE(list.last(), QVariant("end"));
}

void TestBusValue::plainMapConvertsEveryEntry()
{
    const QVariantMap map{{"a", receive("v v i 1")},
                          {"b", receive("v (ii) 1 2")},
                          {"c", receive("v av 1 s x")},
                          {"d", "as it is"}};
    QCOMPARE(render(QVariant(plainMap(map))),
             QStringLiteral("{\"a\": <1>, \"b\": <?>, \"c\": <[<\"x\">]>, \"d\": <\"as it is\">}"));
}

void TestBusValue::ofSeveralEntriesOfAKeyTheLastCounts()
{
    const auto map = qdbus_cast<QVariantMap>(receive("a{sv} 4 a i 1 b h 0 b s new a i 2"));
    QCOMPARE(map.value("a"), QVariant(2));
    QCOMPARE(render(QVariant(plainMap(map))), QStringLiteral("{\"a\": <2>, \"b\": <\"new\">}"));
    QCOMPARE(render(QVariant(basicMap(map))), QStringLiteral("{\"a\": <2>, \"b\": <\"new\">}"));
    QCOMPARE(render(QVariant(sendableMap(map))), QStringLiteral("{\"a\": <2>, \"b\": <\"new\">}"));
    QCOMPARE(render(QVariant(storableMap(map))), QStringLiteral("{\"a\": <2>, \"b\": <\"new\">}"));

    const auto other = qdbus_cast<QVariantMap>(receive("a{sv} 2 b s old b h 0"));
    QCOMPARE(storableMap(other), QVariantMap());
}

void TestBusValue::basicValueOfEveryType_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("rendered");
    addRow("y 255", "y:255");
    addRow("b false", "false");
    addRow("u 4294967295", "u:4294967295");
    addRow("d 2.5", "d:2.5");
    addRow("s text", "\"text\"");
    addRow("o /a", "o:\"/a\"");
    addRow("ay 2 1 2", "ay:\"0102\"");
    addRow("as 1 a", "[\"a\"]");
    addRow("v v s text", "\"text\"");
    addRow("av 1 i 1", "?");
    addRow("au 1 1", "?");
    addRow("a{sv} 1 a i 1", "?");
    addRow("(i) 1", "?");
    addRow("v v a{ss} 0", "?");
}

void TestBusValue::basicValueOfEveryType()
{
    QFETCH(QString, values);
    QFETCH(QString, rendered);
    QCOMPARE(render(basicValue(receive(values))), rendered);
}

void TestBusValue::basicMapConvertsEveryEntry()
{
    const QVariantMap map{
        {"a", receive("v v i 1")}, {"b", receive("v av 1 i 1")}, {"c", "as it is"}};
    QCOMPARE(render(QVariant(basicMap(map))),
             QStringLiteral("{\"a\": <1>, \"b\": <?>, \"c\": <\"as it is\">}"));
}

void TestBusValue::toMapIsEmptyForOtherValues_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QString>("rendered");
    addRow("a{sv} 1 a v i 1", "{\"a\": <1>}");
    addRow("v v a{sv} 1 a i 1", "{\"a\": <1>}");
    addRow("a{ss} 1 a b", "{}");
    addRow("a{iv} 1 1 i 1", "{}");
    addRow("av 1 a{sv} 1 a i 1", "{}");
    addRow("s text", "{}");
    addRow("ai 1 1", "{}");
    addRow("(a{sv}) 1 a i 1", "{}");
}

void TestBusValue::toMapIsEmptyForOtherValues()
{
    QFETCH(QString, values);
    QFETCH(QString, rendered);
    QCOMPARE(render(QVariant(toMap(receive(values)))), rendered);
    QCOMPARE(toMap(QVariant()), QVariantMap());
}

void TestBusValue::toNumbersReadsListsOfNumbers_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QVector<quint32>>("numbers");
    const auto row = [](const char *values, const QVector<quint32> &numbers) {
        QTest::newRow(values) << QStringLiteral("v ") + QLatin1String(values) << numbers;
    };
    row("au 3 0 1 4294967295", {0, 1, 0xFFFFFFFF});
    row("ai 3 0 1 -1", {0, 1, 0xFFFFFFFF});
    row("at 2 1 4294967298", {1, 2});
    row("aq 2 0 65535", {0, 65535});
    row("ay 3 0 1 255", {0, 1, 255});
    row("av 6 u 1 i -1 s 17 d 2.5 y 9 v v q 4", {1, 0xFFFFFFFF, 17, 3, 9, 4});
    row("av 5 s text (ii) 1 2 av 1 i 1 a{sv} 0 as 0", {0, 0, 0, 0, 0});
    row("v v au 2 5 6", {5, 6});
    row("av 0", {});
    row("au 0", {});
    row("ay 0", {});
    row("ax 4 0 1 -1 4294967298", {0, 1, 0xFFFFFFFF, 2});
    row("an 3 0 1 -1", {0, 1, 0xFFFFFFFF});
    row("ad 4 0 1 2.5 -1", {0, 1, 3, 0xFFFFFFFF});
    row("ab 2 true false", {1, 0});
    row("as 4 17 text 4294967295 -1", {17, 0, 0xFFFFFFFF, 0});
    row("v as 1 17", {17});
    row("ad 0", {});
    row("as 0", {});
    row("ao 1 /17", {});
    row("ag 1 i", {});
    row("aau 1 1 1", {});
    row("(u) 1", {});
    row("a{uu} 1 1 1", {});
    row("a{sv} 1 a u 1", {});
    row("u 5", {});
    row("s 5", {});
}

void TestBusValue::toNumbersReadsListsOfNumbers()
{
    QFETCH(QString, values);
    QFETCH(QVector<quint32>, numbers);
    QCOMPARE(toNumbers(receive(values)), numbers);
}

void TestBusValue::toNumbersReadsALongList()
{
    const int count = 100000;
    const QString variants = QStringLiteral("v av %1 ").arg(count) + times(count - 1, "u 7 ");
    const QString numbers = QStringLiteral("v au %1 ").arg(count) + times(count - 1, "7 ");
    QVector<quint32> expected(count, 7);
    expected.last() = 8;
    QCOMPARE(toNumbers(receive(variants + "u 8")), expected);
    QCOMPARE(toNumbers(receive(numbers + "8")), expected);
}

void TestBusValue::detachedValueIsTheSameOnTheBus_data()
{
    QTest::addColumn<QString>("values");
    for (const char *values :
         {"i 1", "s text", "o /a", "v v i 1", "ay 2 1 2", "ay 0", "as 2 a b", "au 2 1 2", "ai 0",
          "ab 1 true", "ad 1 0.5", "av 2 i 1 (ii) 1 2", "(is) 1 a", "a{ss} 1 a b", "a(ss) 1 a b",
          "aa{sv} 1 1 a i 1", "a{sv} 1 a a{sv} 1 b v au 1 5", "a{i(so)} 1 7 a /b", "v (v) s a"})
        QTest::newRow(values) << QStringLiteral("v ") + QLatin1String(values);
}

void TestBusValue::detachedValueIsTheSameOnTheBus()
{
    QFETCH(QString, values);
    const QVariant value = receive(values);
    const QString rendered = render(value);

    const QVariant detached = detachedValue(value);

    // The original is unchanged.
    QCOMPARE(render(value), rendered);
    for (int time = 0; time < 2; ++time)
        QCOMPARE(render(sendAgain(QVariant::fromValue(QDBusVariant(detached)))),
                 render(sendAgain(QVariant::fromValue(QDBusVariant(value)))));
    QCOMPARE(render(sendAgain(QVariant::fromValue(QDBusVariant(detachedValue(detached))))),
             render(sendAgain(QVariant::fromValue(QDBusVariant(value)))));
}

void TestBusValue::sizeOnBusCountsEverything_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<int>("size");
    const auto row = [](const char *values, int size) {
        QTest::newRow(values) << QStringLiteral("v ") + QString::fromUtf8(values) << size;
    };
    row("i 1", 8);
    row("b true", 8);
    row("d 1", 8);
    row("s text", 12);
    row("s \303\274", 10);
    row("s \"\"", 8);
    row("o /a", 10);
    row("g ii", 10);
    row("ay 3 1 2 3", 11);
    row("as 2 a bcd", 28);
    row("as 0", 8);
    row("au 3 1 2 3", 32);
    row("au 0", 8);
    row("av 2 i 1 s abc", 27);
    row("(is) 1 abc", 27);
    row("a{ss} 2 a b c def", 46);
    row("a{sv} 1 a au 1 7", 33);
    row("a(ss) 1 a b", 34);
    row("aau 2 1 7 2 8 9", 48);
    row("v v v s abc", 11);
}

void TestBusValue::sizeOnBusCountsEverything()
{
    QFETCH(QString, values);
    QFETCH(int, size);
    const QVariant value = receive(values);
    QCOMPARE(sizeOnBus(value, 1000000), size);
    QCOMPARE(sizeOnBus(value, size), size);
}

void TestBusValue::sizeOnBusStopsCountingEarly()
{
    for (const char *unit : {"7 ", "1 7 "}) {
        const QString type = QLatin1String(unit).size() == 2 ? "au" : "aau";
        const QVariant value = receive(("v " + type + " 100000 " + times(100000, unit)).trimmed());
        QVERIFY(sizeOnBus(value, 1001) > 1000);
        QVERIFY(sizeOnBus(value, 1001) < 1100);
        QVERIFY(sizeOnBus(value, 1000000000) >= 800008);
    }
}

void TestBusValue::storableMapKeepsStorableEntries_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<bool>("isKept");
    const auto row = [](const QString &values, bool isKept) {
        QTest::newRow(qPrintable(values)) << QStringLiteral("v ") + values << isKept;
    };
    row("h 1", false);
    row("v v h 1", false);
    row("ah 1 1", false);
    row("ah 0", false);
    row("(hi) 1 2", false);
    row("(iv) 1 h 1", false);
    row("av 3 i 1 h 1 i 2", false);
    row("av 2 h 1 i 1", false);
    row("a{sv} 2 a h 1 b i 1", false);
    row("a{uv} 1 1 (h) 1", false);
    row("a(sv) 1 a av 1 h 1", false);
    row("aa{sv} 2 0 1 a a{sv} 1 b h 1", false);
    row(times(15, "av 1 ") + times(10, "(v) ") + "h 1", false);
    row("g \"\"", false);
    row("v g \"\"", false);
    row("(g) \"\"", false);
    row("(gi) \"\" 1", false);
    row("ag 3 i \"\" i", false);
    row("av 3 i 1 g \"\" i 2", false);
    row("a{gi} 2 i 1 \"\" 2", false);
    row("a{sg} 1 a \"\"", false);
    row("aa{sv} 1 1 a (g) \"\"", false);
    row(times(15, "av 1 ") + times(10, "(v) ") + "g \"\"", false);

    row("s h", true);
    row("g h", true);
    row("v v i 1", true);
    row("au 1 1", true);
    row("(ii) 1 2", true);
    row("a{ss} 1 h h", true);
    row("(sv) h s h", true);
    row("av 3 g h s h (v) i 1", true);
    row("s \"\"", true);
    row("ag 0", true);
    row("ag 2 i a{sv}", true);
    row("a{sg} 1 \"\" s", true);
    row("a{sv} 1 h s h", true);
    row("a{yv} 1 1 s h", true);
    row("aav 2 0 1 i 1", true);
    row("a{ov} 1 /a i 1", true);
    row(times(15, "av 1 ") + times(10, "(v) ") + "i 1", true);
}

void TestBusValue::storableMapKeepsStorableEntries()
{
    QFETCH(QString, values);
    QFETCH(bool, isKept);
    const QVariantMap map{{"first", 1}, {"value", receive(values)}, {"z", receive("v (ii) 1 2")}};
    QStringList keys{"first", "value", "z"};
    if (!isKept)
        keys.removeAt(1);
    QCOMPARE(storableMap(map).keys(), keys);
}

void TestBusValue::aValueCanBeReadAgainAndSentAgain_data()
{
    QTest::addColumn<QString>("values");
    for (const char *values : {"y 1",
                               "b true",
                               "n -1",
                               "q 1",
                               "i -1",
                               "u 1",
                               "x -1",
                               "t 1",
                               "d 2.5",
                               "s text",
                               "o /a",
                               "g ii",
                               "v v i 1",
                               "ay 1 1",
                               "as 1 a",
                               "au 2 1 2",
                               "au 0",
                               "ax 1 1",
                               "ab 1 true",
                               "av 2 i 1 (ii) 1 2",
                               "av 0",
                               "(ii) 1 2",
                               "a{ss} 1 a b",
                               "a(ss) 1 a b",
                               "aa{sv} 1 1 a i 1",
                               "a{sv} 1 a a{sv} 1 b v v a(ii) 1 1 2",
                               "a{sa{sv}} 1 a 1 b i 1",
                               "ao 1 /a",
                               "aas 0"})
        QTest::newRow(values) << QStringLiteral("v ") + QLatin1String(values);
}

void TestBusValue::aValueCanBeReadAgainAndSentAgain()
{
    QFETCH(QString, values);
    const QVariant value = receive(values);
    const QVariantMap map{{"value", value}};
    const QString rendered = render(value);
    for (int round = 0; round < 3; ++round) {
        QCOMPARE(render(plainValue(value)), render(plainValue(value)));
        QCOMPARE(toNumbers(value), toNumbers(value));
        QCOMPARE(storableMap(map).keys(), map.keys());
        QCOMPARE(render(sendAgain(value)), rendered);
        QCOMPARE(render(sendAgain(storableMap(map).first())), rendered);
    }
}

WORLD_TEST_MAIN(TestBusValue)
#include "test_busvalue.moc"
