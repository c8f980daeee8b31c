#include "board.h"
#include "daemontest.h"
#include "wire.h"

#include <QRegularExpression>

/**
 * Calls with wrong signatures, and maps with missing, unusual or large values, to the interfaces of
 * the identity, the watchdog and the Wi-Fi module's power.
 */
class TestSweepIdentity : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(letDescriptorsThrough()); }

    void wrongSignaturesAreRefused_data();
    void wrongSignaturesAreRefused();
    void unknownMethodsAreRefused();
    void incompleteMapsAreRefused_data();
    void incompleteMapsAreRefused();
    void everyKeyAcceptsValuesOfAnyType_data();
    void everyKeyAcceptsValuesOfAnyType();
    void mapsUpTo64KiBAreAccepted_data();
    void mapsUpTo64KiBAreAccepted();

private:
    QString call(const QString &method, const QString &values);
    QStringList calls() const;
    QStringList eeproms() const;
    void startAndReadRecords();

    const QString service = QStringLiteral("com.orvendis.Strandel.BoardManager");
    const Remote version{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Version")};
    const QString notValid = failure("Write", QStringLiteral("Data not valid"));
    const QString notEnabled =
        failure("Initialisation", QStringLiteral("Not able to enable write permission in eeprom"));
    Wire wire;
};

namespace
{
/** Every method with its signature. */
const struct {
    const char *method;
    const char *signature;
} methods[] = {
    {"Version.getEepromInstrument", ""},
    {"Version.setEepromInstrument", "a{sv}"},
    {"Version.getEepromMesure", ""},
    {"Version.setEepromMesure", "a{sv}"},
    {"Version.invalidateEepromsContent", ""},
    {"Version.getRevision", ""},
    {"Version.getSoftwareVersions", ""},
    {"Watchdog.keepAlive", ""},
    {"Network.redpinePower", "b"},
    {"Network.redpineSoftReset", ""},
    {"Network.redpineHardReset", ""},
};

QStringList values()
{
    QStringList all;
    for (const char *one : {"y 1",
                            "b true",
                            "n 1",
                            "q 1",
                            "i 1",
                            "u 1",
                            "x 1",
                            "t 1",
                            "d 1",
                            "s text",
                            "o /a",
                            "g ii",
                            "h 1",
                            "v i 1",
                            "v v v v (ii) 1 2",
                            "v a{sv} 1 a i 1",
                            "ay 2 1 2",
                            "ab 1 true",
                            "an 1 1",
                            "aq 1 1",
                            "ai 1 1",
                            "au 1 1",
                            "ax 1 1",
                            "at 1 1",
                            "ad 1 1",
                            "as 1 a",
                            "ao 1 /a",
                            "ag 1 i",
                            "ah 2 1 1",
                            "av 2 i 1 (ii) 1 2",
                            "(ii) 1 2",
                            "(v) h 1",
                            "((((i)))) 1",
                            "a{sv} 1 a i 1",
                            "a{ss} 1 a b",
                            "a{si} 1 a 1",
                            "a{iv} 1 1 i 1",
                            "a{sa{sv}} 1 a 1 b i 1",
                            "a(ss) 1 a b",
                            "a(oa{sv}) 1 /a 1 b i 1",
                            "aa{sv} 1 1 a i 1",
                            "aas 1 1 a",
                            "aaaai 1 1 1 1 1",
                            "au 0",
                            "av 0",
                            "a{sv} 0",
                            "a{ss} 0",
                            "a(ss) 0",
                            "aa{sv} 0",
                            "s \"\""})
        all << QString::fromLatin1(one);
    all << QStringLiteral("v ") + QStringLiteral("v ").repeated(55) + QStringLiteral("i 1");
    all << QStringLiteral("av 1 ").repeated(28) + QStringLiteral("i 1");
    all << QStringLiteral("a{sv} 1 k ").repeated(20) + QStringLiteral("i 1");
    all << QStringLiteral("a").repeated(28) + QStringLiteral("i") +
               QStringLiteral(" 1").repeated(29);
    all << QStringLiteral("(").repeated(28) + QStringLiteral("i") +
               QStringLiteral(")").repeated(28) + QStringLiteral(" 1");
    return all;
}

QString signatureOf(const QString &value)
{
    return value.section(QLatin1Char(' '), 0, 0);
}

/** A map with all @p keys, each with an integer, except @p key with @p value. */
QString mapOf(const QStringList &keys, const QString &key, const QString &value)
{
    QStringList entries;
    for (const QString &each : keys)
        entries << each + QLatin1Char(' ') + (each == key ? value : QStringLiteral("i 1"));
    return QStringLiteral("a{sv} %1 ").arg(keys.size()) + entries.join(QLatin1Char(' '));
}

const QStringList instrumentKeys{"Subsidiary",
                                 "Fabrication",
                                 "Brand",
                                 "Type",
                                 "Model",
                                 "SerialNumber",
                                 "WarrantyNumber",
                                 "TroubleshootingTag",
                                 "RelaunchTag",
                                 "FirstPassTag",
                                 "IrdInstrumentPassword",
                                 "IrdSessionPassword"};
const QStringList measureKeys{"AdjustementSite", "AdjustementDate", "NextAdjustementDate",
                              "AdjustementCoefficients"};
} // namespace

/** Calls a method by its interface's suffix and its name, for example "Version.getRevision". */
QString TestSweepIdentity::call(const QString &method, const QString &arguments)
{
    const QString interface = service + QLatin1Char('.') + method.section('.', 0, 0);
    return wire.call(service, "/KyDeviceMgr", interface, method.section('.', 1), arguments);
}

/** Returns the hardware calls that clients caused; leaves out the daemon's periodic checks. */
QStringList TestSweepIdentity::calls() const
{
    return Board::journal().filter(QRegularExpression(
        QStringLiteral("KyEeprom|KyBoardRev|KyPowerman|getSoCRegister\\((104|107)\\)")));
}

QStringList TestSweepIdentity::eeproms() const
{
    return {Board::bytes("eeprom/instrument").toHex(), Board::bytes("eeprom/measure").toHex()};
}

void TestSweepIdentity::startAndReadRecords()
{
    QVERIFY(daemon.start());
    QVERIFY(version.call("getEepromInstrument").contains("\"CRC\": <true>"));
    QVERIFY(version.call("getEepromMesure").contains("\"CRC\": <true>"));
    Board::clearJournal();
}

void TestSweepIdentity::wrongSignaturesAreRefused_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("signature");
    for (const auto &row : methods)
        QTest::newRow(row.method) << row.method << row.signature;
}

void TestSweepIdentity::wrongSignaturesAreRefused()
{
    QFETCH(QString, method);
    QFETCH(QString, signature);
    startAndReadRecords();
    const QStringList before = eeproms();

    QStringList wrong;
    for (const QString &value : values()) {
        if (signatureOf(value) != signature)
            wrong << value;
    }
    if (!signature.isEmpty())
        wrong << QString();
    wrong << "bb true true"
          << "sa{sv} a 0"
          << "a{sv}s 0 a"
          << "a{sv}a{sv} 0 0"
          << "bs true a";
    for (const QString &value : wrong) {
        const QString answer = call(method, value);
        QVERIFY2(answer.startsWith("org.freedesktop.DBus.Error.UnknownMethod: No such method"),
                 qPrintable(value + " is answered with " + answer));
    }

    QVERIFY(version.call("getEepromInstrument").contains("\"CRC\": <true>"));
    QCOMPARE(calls(), QStringList());
    QCOMPARE(eeproms(), before);
}

void TestSweepIdentity::unknownMethodsAreRefused()
{
    startAndReadRecords();
    for (const char *method :
         {"Version.get", "Version.setEepromMeasure", "Watchdog.keepalive", "Network.redpineReset",
          "Version.deleteLater", "Version.destroyed", "Version.setAutoRelaySignals"})
        QVERIFY(call(method, QString()).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(calls(), QStringList());
}

void TestSweepIdentity::incompleteMapsAreRefused_data()
{
    QTest::addColumn<QString>("map");
    QTest::newRow("empty") << "a{sv} 0";
    QTest::newRow("one key") << "a{sv} 1 Brand i 1";
    QTest::newRow("empty key") << "a{sv} 1 \"\" (ii) 1 2";
    QTest::newRow("the CRC alone") << "a{sv} 1 CRC b true";
    QTest::newRow("maps in maps") << QStringLiteral("a{sv} 1 Brand ").repeated(20) + "i 1";
    QTest::newRow("fifty variants") << "a{sv} 1 Brand " + QStringLiteral("v ").repeated(50) + "i 1";
    QString entries = "a{sv} 10000";
    for (int index = 0; index < 10000; ++index)
        entries += QStringLiteral(" key%1 %2").arg(index).arg(index % 2 ? "i 1" : "(ii) 1 2");
    QTest::newRow("ten thousand entries") << entries;
    for (const QString &value : values())
        QTest::newRow(qPrintable("holding " + value))
            << "a{sv} 2 Brand " + value + " AdjustementCoefficients " + value;
}

void TestSweepIdentity::incompleteMapsAreRefused()
{
    QFETCH(QString, map);
    startAndReadRecords();
    const QStringList before = eeproms();

    QCOMPARE(call("Version.setEepromInstrument", map), notValid);
    QCOMPARE(call("Version.setEepromMesure", map), notValid);

    QVERIFY(version.call("getEepromInstrument").contains("\"CRC\": <true>"));
    QVERIFY(version.call("getEepromMesure").contains("\"CRC\": <true>"));
    QCOMPARE(calls().filter("rite"), QStringList());
    QCOMPARE(eeproms(), before);
}

void TestSweepIdentity::everyKeyAcceptsValuesOfAnyType_data()
{
    QTest::addColumn<QString>("setter");
    QTest::addColumn<QString>("getter");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("keys");
    for (const QString &key : instrumentKeys)
        QTest::newRow(qPrintable(key)) << "Version.setEepromInstrument"
                                       << "getEepromInstrument" << key << instrumentKeys;
    for (const QString &key : measureKeys)
        QTest::newRow(qPrintable(key)) << "Version.setEepromMesure"
                                       << "getEepromMesure" << key << measureKeys;
}

void TestSweepIdentity::everyKeyAcceptsValuesOfAnyType()
{
    QFETCH(QString, setter);
    QFETCH(QString, getter);
    QFETCH(QString, key);
    QFETCH(QStringList, keys);
    startAndReadRecords();
    const QStringList before = eeproms();
    // The daemon accepts the map, but fails before it writes the record: it returns notEnabled.
    Board::fault("KyEeprom.setWriteEnable", "always");

    for (const QString &value : values()) {
        QCOMPARE(call(setter, mapOf(keys, key, value)), notEnabled);
        const QString answer = version.call(getter);
        QVERIFY2(answer.startsWith("({\""), qPrintable(value + " is returned as " + answer));
    }

    QCOMPARE(eeproms(), before);
    QCOMPARE(calls().filter("KyEeprom.writeEeprom"), QStringList());
}

void TestSweepIdentity::mapsUpTo64KiBAreAccepted_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("text of 60,000 characters") << QVariant(QString(60000, 'x'));
    QTest::newRow("number of 60,000 digits") << QVariant(QString(60000, '9'));
    QTest::newRow("60,000 bytes") << QVariant(QByteArray(60000, '\x80'));
    QVariantList list;
    for (int index = 0; index < 8000; ++index)
        list << index;
    QTest::newRow("list of 8,000 variants") << QVariant(list);
    QTest::newRow("8,000 numbers")
        << QVariant::fromValue(QList<uint>::fromVector(QVector<uint>(8000, 1)));
    QVariantMap map;
    for (int index = 0; index < 3000; ++index)
        map.insert(QString::number(index), index);
    QTest::newRow("map of 3,000 entries") << QVariant(map);
}

void TestSweepIdentity::mapsUpTo64KiBAreAccepted()
{
    QFETCH(QVariant, value);
    startAndReadRecords();
    const QStringList before = eeproms();
    // As above: notEnabled shows that the daemon has accepted the map.
    Board::fault("KyEeprom.setWriteEnable", "always");

    QVariantMap instrument;
    for (const QString &key : instrumentKeys)
        instrument.insert(key, 1);
    QVariantMap measure;
    for (const QString &key : measureKeys)
        measure.insert(key, 1);
    instrument["SerialNumber"] = value;
    measure["AdjustementCoefficients"] = value;

    QCOMPARE(version.call("setEepromInstrument", {instrument}), notEnabled);
    QCOMPARE(version.call("setEepromMesure", {measure}), notEnabled);
    QCOMPARE(version.reply("getEepromInstrument").type(), QDBusMessage::ReplyMessage);
    QCOMPARE(version.reply("getEepromMesure").type(), QDBusMessage::ReplyMessage);

    QCOMPARE(eeproms(), before);
}

WORLD_TEST_MAIN(TestSweepIdentity)
#include "test_sweep_identity.moc"
