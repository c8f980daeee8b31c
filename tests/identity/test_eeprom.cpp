#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "instrumentrecord.h"
#include "measurerecord.h"
#include "processes.h"
#include "samplerecords.h"
#include "wire.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QRegularExpression>

#include <csignal>
#include <cstring>
#include <memory>
#include <sys/syscall.h>
#include <unistd.h>

/** The identification records, on the running daemon. */
class TestEeprom : public DaemonTest
{
    Q_OBJECT

public:
    TestEeprom();

private Q_SLOTS:
    void initTestCase() { QVERIFY(letDescriptorsThrough()); }

    void getReturnsTheInstrumentRecord();
    void getReturnsTheMeasureRecord();
    void getReadsEachRecordOnce();
    void getSetsBrandAndModelOnce();
    void getSetsTheModelInTheLibrary_data();
    void getSetsTheModelInTheLibrary();
    void aLibraryThatRefusesBrandAndModelIsIgnored();
    void anEepromOfZerosIsValid();
    void anUnreadableEepromIsNotValid_data();
    void anUnreadableEepromIsNotValid();
    void aFailedReadStaysUntilASet();
    void aFailedReadStaysUntilAnInvalidation();
    void anInvalidRecordSetsNoBrandOrModel();

    void setWritesTheInstrumentRecord();
    void setWritesTheMeasureRecord();
    void setRecordsAreReadAgainAfterARestart();
    void getAfterASetReturnsTheSetValuesWithoutReading();
    void getAfterASetKeepsTheTypesOfTheCaller_data();
    void getAfterASetKeepsTheTypesOfTheCaller();
    void getAfterASetReplacesTheCallersCrc();
    void getAfterASetReturnsSurplusEntriesToo();
    void surplusEntriesAreKeptUpTo64KiB();
    void fieldsAreKeptUpTo64KiB();
    void aSetRefusesFieldsOfMoreThan64KiB_data();
    void aSetRefusesFieldsOfMoreThan64KiB();
    void aStoredRecordDoesNotKeepItsMessageInMemory();
    void fileDescriptorsAreNotKept();
    void emptySignaturesAreNotKept();
    void valuesOfTheGreatestDepthOnTheBusAreReturned_data();
    void valuesOfTheGreatestDepthOnTheBusAreReturned();
    void instrumentValuesAreConverted_data();
    void instrumentValuesAreConverted();
    void aModelThatWasSetReachesTheLibraryAtTheNextRead();
    void coefficientsAreReadFromEveryKindOfList_data();
    void coefficientsAreReadFromEveryKindOfList();
    void coefficientsThatAreNoListCountAsEmpty_data();
    void coefficientsThatAreNoListCountAsEmpty();
    void anotherNumberOfCoefficientsReadsBackInvalid_data();
    void anotherNumberOfCoefficientsReadsBackInvalid();
    void moreCoefficientsThanTheEepromHoldsAreAWriteError();

    void setRefusesAnInstrumentMapWithAMissingKey_data();
    void setRefusesAnInstrumentMapWithAMissingKey();
    void setRefusesAMeasureMapWithAMissingKey_data();
    void setRefusesAMeasureMapWithAMissingKey();
    void aRefusedSetMakesTheNextGetReadAgain();
    void protectionThatCannotBeLiftedStopsASet_data();
    void protectionThatCannotBeLiftedStopsASet();
    void aFailedWriteStillRestoresTheProtection_data();
    void aFailedWriteStillRestoresTheProtection();
    void protectionThatCannotBeRestoredIsAWriteError_data();
    void protectionThatCannotBeRestoredIsAWriteError();
    void aSetSendsAnErrorForEachFailedStep_data();
    void aSetSendsAnErrorForEachFailedStep();

    void noSignalEndsTheDaemonWhileTheProtectionIsLifted_data();
    void noSignalEndsTheDaemonWhileTheProtectionIsLifted();
    void sigkillEndsTheDaemonInAHungWrite();

    void invalidateClearsBothCrcsAndKeepsTheData();
    void invalidateMakesBothRecordsInvalid();
    void invalidateLeavesRecordsOfZerosValid();
    void invalidateStopsWhenTheProtectionCannotBeLifted();
    void invalidateWritesTheSecondRecordWhenTheFirstFails();
    void invalidateReportsASecondRecordThatFails();
    void invalidateSendsAnErrorForEachFailedStep();
    void invalidateRefusesArguments();
    void aChangedEepromShowsAfterAnInvalidation();

private:
    QStringList calls() const;
    QString set(const QString &method, const QString &values);
    QVariantMap recordOf(const QString &method);
    QString callWithoutRestore(const QString &method, const QList<QVariant> &arguments = {});

    const Remote version{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Version")};
    Wire wire;
    const QString notValid = failure("Write", QStringLiteral("Data not valid"));
    const QString notEnabled =
        failure("Initialisation", QStringLiteral("Not able to enable write permission in eeprom"));
    const QString notWritten = failure("Write", QStringLiteral("Not able to write in eeprom"));
    const QString notDisabled =
        failure("Write", QStringLiteral("Not able to disable write permission in eeprom"));
    const QByteArray instrumentBytes;
    const QByteArray measureBytes;
};

namespace
{
const QString service = QStringLiteral("com.orvendis.Strandel.BoardManager");
const QString setInstrument = QStringLiteral("setEepromInstrument");
const QString setMeasure = QStringLiteral("setEepromMesure");
const QString getInstrument = QStringLiteral("getEepromInstrument");
const QString getMeasure = QStringLiteral("getEepromMesure");
const QString invalidate = QStringLiteral("invalidateEepromsContent");

const QString invalid = QStringLiteral("({\"CRC\": <false>})");
const QString done = QStringLiteral("()");
const QString protectionLifted = QStringLiteral("KyEeprom.setWriteEnable(true) = 0");
const QString protectionRestored = QStringLiteral("KyEeprom.setWriteEnable(false) = 0");

const QString renderedInstrument =
    QStringLiteral("({\"Brand\": <3>, \"CRC\": <true>, \"Fabrication\": <2>, \"FirstPassTag\": <7>,"
                   " \"IrdInstrumentPassword\": <ay:\"") +
    QStringLiteral("69").repeated(30) + QStringLiteral("\">, \"IrdSessionPassword\": <ay:\"") +
    QStringLiteral("73").repeated(16) +
    QStringLiteral("\">, \"Model\": <\"8345\">, \"RelaunchTag\": <6>,"
                   " \"SerialNumber\": <ay:\"3132333435363738\">, \"Subsidiary\": <1>,"
                   " \"TroubleshootingTag\": <5>, \"Type\": <4>,"
                   " \"WarrantyNumber\": <ay:\"313233343536373839\">})");

QVector<quint32> coefficients()
{
    QVector<quint32> list;
    for (quint32 index = 0; index < 296; ++index)
        list << 0xFFFFFFFFU - index;
    return list;
}

QString renderedMeasure()
{
    QStringList list;
    for (const quint32 coefficient : coefficients())
        list << QStringLiteral("<u:%1>").arg(coefficient);
    return QStringLiteral("({\"AdjustementCoefficients\": <[%1]>,"
                          " \"AdjustementDate\": <u:4000000000>, \"AdjustementSite\": <500>,"
                          " \"CRC\": <true>, \"NextAdjustementDate\": <u:4000000001>})")
        .arg(list.join(", "));
}

/** The journal line of a successful write. */
QString written(int eeprom, const QByteArray &bytes)
{
    return QStringLiteral("KyEeprom.writeEeprom(%1, %2, 0, %3) = 0")
        .arg(eeprom)
        .arg(QString::fromLatin1(bytes.toHex()))
        .arg(bytes.size());
}

/** The line of an error reply of the daemon, as the bus monitor formats it. */
QString errorLine(const QString &failure)
{
    return QStringLiteral("error ") + failure;
}

/** A complete instrument record in wire format, in which @p key has @p value. */
QString instrumentValues(const QString &key, const QString &value)
{
    QStringList entries;
    for (const QString &field : instrumentRecord().keys())
        entries << field + QLatin1Char(' ') + (field == key ? value : QStringLiteral("i 1"));
    return QStringLiteral("a{sv} 12 ") + entries.join(QLatin1Char(' '));
}

/** A complete measure record in wire format, with @p coefficientValue as its coefficients. */
QString measureValues(const QString &coefficientValue)
{
    return QStringLiteral("a{sv} 4 AdjustementSite i 500 AdjustementDate u 4000000000 "
                          "NextAdjustementDate u 4000000001 AdjustementCoefficients ") +
           coefficientValue;
}
} // namespace

TestEeprom::TestEeprom()
    : instrumentBytes(encodeInstrumentRecord(instrumentRecord())),
      measureBytes(encodeMeasureRecord(measureRecord(), coefficients()))
{
}

/** The daemon's calls to the EEPROMs and to the board library. */
QStringList TestEeprom::calls() const
{
    return Board::journal().filter(QRegularExpression(QStringLiteral("KyEeprom|KyBoardRev")));
}

QString TestEeprom::set(const QString &method, const QString &values)
{
    return wire.call(service, "/KyDeviceMgr", service + ".Version", method, values);
}

/** The record that @p method returns. */
QVariantMap TestEeprom::recordOf(const QString &method)
{
    return qdbus_cast<QVariantMap>(version.reply(method).arguments().value(0));
}

/** Calls @p method; the daemon lifts the write protection, but fails to restore it. */
QString TestEeprom::callWithoutRestore(const QString &method, const QList<QVariant> &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, QStringLiteral("/KyDeviceMgr"), service + QStringLiteral(".Version"), method);
    message.setArguments(arguments);
    auto board = std::make_unique<HeldBoard>();
    const QDBusPendingCall call = QDBusConnection::systemBus().asyncCall(message);
    if (!Board::waitForJournal(protectionLifted))
        return QStringLiteral("the protection was not lifted");
    Board::fault("KyEeprom.setWriteEnable", "always");
    board.reset();
    QDBusPendingCallWatcher watcher(call);
    watcher.waitForFinished();
    return renderReply(watcher.reply());
}

void TestEeprom::getReturnsTheInstrumentRecord()
{
    Board::setBytes("eeprom/instrument", instrumentBytes);
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getInstrument), renderedInstrument);
}

void TestEeprom::getReturnsTheMeasureRecord()
{
    Board::setBytes("eeprom/measure", measureBytes);
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getMeasure), renderedMeasure());
}

void TestEeprom::getReadsEachRecordOnce()
{
    Board::setBytes("eeprom/instrument", instrumentBytes);
    Board::setBytes("eeprom/measure", measureBytes);
    QVERIFY(daemon.start());
    for (int call = 0; call < 3; ++call) {
        QCOMPARE(version.call(getInstrument), renderedInstrument);
        QCOMPARE(version.call(getMeasure), renderedMeasure());
    }
    QCOMPARE(calls().filter("KyEeprom"),
             (QStringList{
                 QStringLiteral("KyEeprom.readEeprom(0, 0, 74) = 0 ") + instrumentBytes.toHex(),
                 QStringLiteral("KyEeprom.readEeprom(1, 0, 1196) = 0 ") + measureBytes.toHex()}));
}

void TestEeprom::getSetsBrandAndModelOnce()
{
    Board::setBytes("eeprom/instrument", instrumentBytes);
    QVERIFY(daemon.start());
    version.call(getInstrument);
    version.call(getInstrument);
    version.call(getMeasure);
    QCOMPARE(calls().mid(1, 2),
             (QStringList{"KyBoardRev.setBrand(3) = 0", "KyBoardRev.setModel(1) = 0"}));
    QCOMPARE(calls().size(), 4);
}

void TestEeprom::getSetsTheModelInTheLibrary_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<int>("number");
    QTest::newRow("8342") << "8342" << 3;
    QTest::newRow("8343") << "8343" << 0;
    QTest::newRow("8344") << "8344" << 3;
    QTest::newRow("8345") << "8345" << 1;
    QTest::newRow("8346") << "8346" << 3;
    QTest::newRow("8347") << "8347" << 2;
    QTest::newRow("8348") << "8348" << 3;
    QTest::newRow("0") << "0" << 3;
    QTest::newRow("ffff") << "ffff" << 3;
}

void TestEeprom::getSetsTheModelInTheLibrary()
{
    QFETCH(QString, model);
    QFETCH(int, number);
    QVariantMap map = instrumentRecord();
    map["Model"] = model;
    map["Brand"] = 255;
    Board::setBytes("eeprom/instrument", encodeInstrumentRecord(map));
    QVERIFY(daemon.start());

    QVERIFY(version.call(getInstrument).contains(QStringLiteral("\"Model\": <\"%1\">").arg(model)));

    QCOMPARE(calls().filter("KyBoardRev"),
             (QStringList{"KyBoardRev.setBrand(255) = 0",
                          QStringLiteral("KyBoardRev.setModel(%1) = 0").arg(number)}));
}

void TestEeprom::aLibraryThatRefusesBrandAndModelIsIgnored()
{
    Board::setBytes("eeprom/instrument", instrumentBytes);
    Board::fault("KyBoardRev.setBrand", "always");
    Board::fault("KyBoardRev.setModel", "always");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    QCOMPARE(calls().filter("KyBoardRev").size(), 2);
}

void TestEeprom::anEepromOfZerosIsValid()
{
    Board::setBytes("eeprom/instrument", QByteArray(128, '\0'));
    Board::setBytes("eeprom/measure", QByteArray(4096, '\0'));
    QVERIFY(daemon.start());
    const QString zeros = QStringLiteral("00");
    QCOMPARE(
        version.call(getInstrument),
        QStringLiteral("({\"Brand\": <0>, \"CRC\": <true>, \"Fabrication\": <0>,"
                       " \"FirstPassTag\": <0>, \"IrdInstrumentPassword\": <ay:\"%1\">,"
                       " \"IrdSessionPassword\": <ay:\"%2\">, \"Model\": <\"0\">,"
                       " \"RelaunchTag\": <0>, \"SerialNumber\": <ay:\"%3\">,"
                       " \"Subsidiary\": <0>, \"TroubleshootingTag\": <0>, \"Type\": <0>,"
                       " \"WarrantyNumber\": <ay:\"%4\">})")
            .arg(zeros.repeated(30), zeros.repeated(16), zeros.repeated(8), zeros.repeated(9)));
    const QString measured = version.call(getMeasure);
    QVERIFY(measured.contains("\"CRC\": <true>"));
    QCOMPARE(measured.count("<u:0>"), 298);
}

void TestEeprom::anUnreadableEepromIsNotValid_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("fault");
    QByteArray spoilt = instrumentBytes;
    spoilt[73] = 't';
    QTest::newRow("failing read") << instrumentBytes << "always";
    QTest::newRow("nonsense that counts as success") << instrumentBytes << "garbage";
    QTest::newRow("wrong CRC") << spoilt << QString();
    QTest::newRow("erased") << QByteArray(128, '\xFF') << QString();
    QTest::newRow("too short") << QByteArray(73, '\0') << QString();
    QTest::newRow("empty") << QByteArray("") << QString();
}

void TestEeprom::anUnreadableEepromIsNotValid()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, fault);
    Board::setBytes("eeprom/instrument", content);
    Board::setBytes("eeprom/measure", content);
    if (!fault.isEmpty())
        Board::fault("KyEeprom.readEeprom", fault);
    QVERIFY(daemon.start());
    for (int call = 0; call < 2; ++call) {
        QCOMPARE(version.call(getInstrument), invalid);
        QCOMPARE(version.call(getMeasure), invalid);
    }
    QCOMPARE(calls().filter("KyEeprom").size(), 2);
    QCOMPARE(calls().filter("KyBoardRev"), QStringList());
}

void TestEeprom::aFailedReadStaysUntilASet()
{
    Board::fault("KyEeprom.readEeprom", "always");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getInstrument), invalid);
    QCOMPARE(version.call(getMeasure), invalid);
    Board::clearFaults();
    QCOMPARE(version.call(getInstrument), invalid);
    QCOMPARE(version.call(getMeasure), invalid);

    QCOMPARE(version.call(setInstrument, {instrumentRecord()}), done);
    QCOMPARE(version.call(setMeasure, {measureRecord()}), done);
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    QCOMPARE(version.call(getMeasure), renderedMeasure());
}

void TestEeprom::aFailedReadStaysUntilAnInvalidation()
{
    Board::setBytes("eeprom/instrument", QByteArray(128, '\0'));
    Board::fault("KyEeprom.readEeprom", "always");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getInstrument), invalid);
    Board::clearFaults();
    QCOMPARE(version.call(getInstrument), invalid);

    QCOMPARE(version.call(invalidate), done);
    QVERIFY(version.call(getInstrument).contains("\"CRC\": <true>"));
}

void TestEeprom::anInvalidRecordSetsNoBrandOrModel()
{
    Board::fault("KyEeprom.readEeprom", "always");
    QVERIFY(daemon.start());
    version.call(getInstrument);
    Board::clearFaults();
    version.call(getInstrument);
    QCOMPARE(calls().filter("KyBoardRev"), QStringList());
}

void TestEeprom::setWritesTheInstrumentRecord()
{
    QVERIFY(daemon.start());
    const QByteArray behind = Board::bytes("eeprom/instrument").mid(74);
    const QByteArray other = Board::bytes("eeprom/measure");
    Board::clearJournal();

    QCOMPARE(version.call(setInstrument, {instrumentRecord()}), done);

    QCOMPARE(calls(),
             (QStringList{protectionLifted, written(0, instrumentBytes), protectionRestored}));
    QCOMPARE(Board::bytes("eeprom/instrument"), instrumentBytes + behind);
    QCOMPARE(Board::bytes("eeprom/measure"), other);
    QCOMPARE(Board::get("eeprom/write_enabled"), QStringLiteral("0"));
}

void TestEeprom::setWritesTheMeasureRecord()
{
    QVERIFY(daemon.start());
    const QByteArray behind = Board::bytes("eeprom/measure").mid(1196);
    const QByteArray other = Board::bytes("eeprom/instrument");
    Board::clearJournal();

    QCOMPARE(version.call(setMeasure, {measureRecord()}), done);

    QCOMPARE(calls(),
             (QStringList{protectionLifted, written(1, measureBytes), protectionRestored}));
    QCOMPARE(Board::bytes("eeprom/measure"), measureBytes + behind);
    QCOMPARE(Board::bytes("eeprom/instrument"), other);
    QCOMPARE(Board::get("eeprom/write_enabled"), QStringLiteral("0"));
}

void TestEeprom::setRecordsAreReadAgainAfterARestart()
{
    QVERIFY(daemon.start());
    QCOMPARE(version.call(setInstrument, {instrumentRecord()}), done);
    QCOMPARE(version.call(setMeasure, {measureRecord()}), done);
    daemon.stop();
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    QCOMPARE(version.call(getMeasure), renderedMeasure());
}

void TestEeprom::getAfterASetReturnsTheSetValuesWithoutReading()
{
    QVERIFY(daemon.start());
    QVariantMap map = instrumentRecord();
    map["SerialNumber"] = "four";
    map["Brand"] = 1000;
    QCOMPARE(version.call(setInstrument, {map}), done);
    Board::clearJournal();

    const QString values = version.call(getInstrument);

    QVERIFY(values.contains("\"SerialNumber\": <\"four\">"));
    QVERIFY(values.contains("\"Brand\": <1000>"));
    QVERIFY(values.contains("\"CRC\": <true>"));
    QCOMPARE(calls(), QStringList());
}

void TestEeprom::getAfterASetKeepsTheTypesOfTheCaller_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("returned");
    const auto row = [](const char *value, const char *returned) {
        QTest::newRow(value) << QString::fromLatin1(value) << QString::fromLatin1(returned);
    };
    row("y 255", "y:255");
    row("b true", "true");
    row("n -1", "n:-1");
    row("q 65535", "q:65535");
    row("i -1", "-1");
    row("u 4294967295", "u:4294967295");
    row("x -1", "x:-1");
    row("t 18446744073709551615", "t:18446744073709551615");
    row("d 2.5", "d:2.5");
    row("s text", "\"text\"");
    row("s \"\"", "\"\"");
    row("o /a", "o:\"/a\"");
    row("g a{sv}", "g:\"a{sv}\"");
    row("v v i 1", "<<1>>");
    row("ay 2 1 2", "ay:\"0102\"");
    row("ay 0", "ay:\"\"");
    row("as 2 a b", "[\"a\", \"b\"]");
    row("au 2 1 2", "[u:1, u:2]");
    row("ai 0", "[]");
    row("ad 1 0.5", "[d:0.5]");
    row("av 2 i 1 (ii) 1 2", "[<1>, <(1, 2)>]");
    row("(is) 1 a", "(1, \"a\")");
    row("a{ss} 1 a b", "{\"a\": \"b\"}");
    row("a(ss) 1 a b", "[(\"a\", \"b\")]");
    row("aa{sv} 1 1 a i 1", "[{\"a\": <1>}]");
    row("a{sv} 1 a a{sv} 1 b v au 1 5", "{\"a\": <{\"b\": <<[u:5]>>}>}");
    row("aaai 1 1 1 7", "[[[7]]]");
}

void TestEeprom::getAfterASetKeepsTheTypesOfTheCaller()
{
    QFETCH(QString, value);
    QFETCH(QString, returned);
    QVERIFY(daemon.start());
    for (const QString &key : {QStringLiteral("Brand"), QStringLiteral("IrdSessionPassword")}) {
        QCOMPARE(set(setInstrument, instrumentValues(key, value)), done);
        const QString expected = QStringLiteral("\"%1\": <%2>").arg(key, returned);
        for (int call = 0; call < 2; ++call) {
            const QString values = version.call(getInstrument);
            QVERIFY2(values.contains(expected), qPrintable(values));
        }
    }
    QCOMPARE(set(setMeasure, measureValues(value)), done);
    const QString values = version.call(getMeasure);
    QVERIFY2(values.contains(QStringLiteral("\"AdjustementCoefficients\": <%1>").arg(returned)),
             qPrintable(values));
}

void TestEeprom::getAfterASetReplacesTheCallersCrc()
{
    QVERIFY(daemon.start());
    QVariantMap map = instrumentRecord();
    map["CRC"] = "mine";
    QCOMPARE(version.call(setInstrument, {map}), done);
    QCOMPARE(version.call(getInstrument), renderedInstrument);
}

void TestEeprom::getAfterASetReturnsSurplusEntriesToo()
{
    QVERIFY(daemon.start());
    const QString values = instrumentValues("Brand", "i 3").replace("a{sv} 12", "a{sv} 14") +
                           " Colour s red \"\" (ii) 1 2";
    QCOMPARE(set(setInstrument, values), done);
    QVERIFY(version.call(getInstrument).startsWith("({\"\": <(1, 2)>, \"Brand\": <3>"));
    QVERIFY(version.call(getInstrument).contains("\"Colour\": <\"red\">"));
}

void TestEeprom::surplusEntriesAreKeptUpTo64KiB()
{
    QVERIFY(daemon.start());
    const struct {
        QString set;
        QString get;
        QVariantMap record;
    } rows[] = {{setInstrument, getInstrument, instrumentRecord()},
                {setMeasure, getMeasure, measureRecord()}};
    for (const auto &row : rows) {
        QVariantMap record = row.record;
        // One byte of key, 8 of length and 65527 of text: exactly the limit.
        record["!"] = QString(65527, 'x');
        QCOMPARE(version.call(row.set, {record}), done);
        QCOMPARE(recordOf(row.get).value("!"), record.value("!"));
        record["!"] = QString(65528, 'x');
        QCOMPARE(version.call(row.set, {record}), done);
        QVERIFY(!recordOf(row.get).contains("!"));
        QCOMPARE(recordOf(row.get).size(), row.record.size() + 1);

        // The daemon keeps entries in the order of their keys; it leaves out those that do not fit.
        record["!1"] = QByteArray(40000, 'x');
        record["!2"] = QVariant::fromValue(QList<int>::fromVector(QVector<int>(4000, 7)));
        record["!3"] = QStringList(QString(20000, 'x'));
        record["!4"] = QStringList(QString(20000, 'x'));
        record["!5"] = QVariant::fromValue(QList<int>::fromVector(QVector<int>(10000, 7)));
        QCOMPARE(version.call(row.set, {record}), done);
        QCOMPARE(recordOf(row.get).keys().filter("!"), (QStringList{"!1", "!3"}));
    }
}

void TestEeprom::fieldsAreKeptUpTo64KiB()
{
    QVERIFY(daemon.start());
    // Subtract 8 bytes for each of the other eleven fields, and 8 for the length of SerialNumber.
    QVariantMap record;
    for (const QString &field : instrumentRecord().keys())
        record[field] = 1;
    record["SerialNumber"] = QByteArray(65536 - 12 * 8, 'x');
    QCOMPARE(version.call(setInstrument, {record}), done);
    QCOMPARE(recordOf(getInstrument).value("SerialNumber"), record.value("SerialNumber"));
    QVariantMap measure{{"AdjustementSite", 1}, {"AdjustementDate", 1}, {"NextAdjustementDate", 1}};
    measure["AdjustementCoefficients"] = QByteArray(65536 - 4 * 8, 'x');
    QCOMPARE(version.call(setMeasure, {measure}), notWritten);
    QVERIFY(recordOf(getMeasure).value("CRC").toBool());
}

void TestEeprom::aSetRefusesFieldsOfMoreThan64KiB_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("text") << QVariant(QString(65536 - 12 * 8 + 1, 'x'));
    QTest::newRow("bytes") << QVariant(QByteArray(65536 - 12 * 8 + 1, 'x'));
    QTest::newRow("200,000 numbers")
        << QVariant::fromValue(QList<uint>::fromVector(QVector<uint>(200000, 1)));
    QVariantList list;
    for (int index = 0; index < 20000; ++index)
        list << index;
    QTest::newRow("20,000 variants") << QVariant(list);
}

void TestEeprom::aSetRefusesFieldsOfMoreThan64KiB()
{
    QFETCH(QVariant, value);
    QVERIFY(daemon.start());
    QVERIFY(version.call(getInstrument).startsWith('('));
    QVERIFY(version.call(getMeasure).startsWith('('));
    QVariantMap instrument;
    for (const QString &field : instrumentRecord().keys())
        instrument[field] = 1;
    instrument["IrdSessionPassword"] = value;
    // A measure record has 8 fields fewer: the text of the first field takes up their bytes.
    QVariantMap measure{{"AdjustementSite", QByteArray(8 * 8, 'x')},
                        {"AdjustementDate", 1},
                        {"NextAdjustementDate", 1},
                        {"AdjustementCoefficients", value}};
    const QStringList before = calls();

    QCOMPARE(version.call(setInstrument, {instrument}), notValid);
    QCOMPARE(version.call(setMeasure, {measure}), notValid);

    QCOMPARE(calls(), before);
    // After a rejected set, the daemon reads the records again.
    version.call(getInstrument);
    version.call(getMeasure);
    QCOMPARE(calls().filter("readEeprom").size(), before.filter("readEeprom").size() + 2);
}

void TestEeprom::aStoredRecordDoesNotKeepItsMessageInMemory()
{
    // Make malloc() return freed memory to the kernel immediately.
    daemon.setEnvironment("MALLOC_MMAP_THRESHOLD_", "65536");
    QVERIFY(daemon.start());
    version.call(getInstrument);
    const int before = daemon.privateMemory();
    QVERIFY(before > 0);
    QVariantMap record = instrumentRecord();
    record["SerialNumber"] = QVariant::fromValue(QList<int>{1, 2, 3});
    record["IrdSessionPassword"] = QVariantList{1, QVariantMap{{"a", 2}}};
    record["!"] = QByteArray(1000000, 'x');

    QCOMPARE(version.call(setInstrument, {record}), done);

    QVERIFY(version.call(getInstrument).contains("\"SerialNumber\": <[1, 2, 3]>"));
    // AddressSanitizer keeps freed memory.
#ifndef __SANITIZE_ADDRESS__
    // In KB; the message itself would be 976 KB.
    const auto growth = [this, before] { return daemon.privateMemory() - before; };
    QTRY_VERIFY2_WITH_TIMEOUT(growth() < 700, qPrintable(QString::number(growth())), deadlineMs);
#endif
    daemon.resetEnvironment();
}

void TestEeprom::fileDescriptorsAreNotKept()
{
    QVERIFY(daemon.start());
    // Count the descriptors only when the start is over and the settings are stored.
    QVERIFY(version.call(getInstrument).startsWith('('));
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists("/opt/settings.ini.lock"), deadlineMs);
    const int before = daemon.descriptors();
    for (const char *value : {"h 1", "(h) 1", "av 2 h 1 i 1", "ah 3 1 1 1"}) {
        const QString values =
            instrumentValues("Brand", value).replace("a{sv} 12", "a{sv} 13") + " Extra " + value;
        QCOMPARE(set(setInstrument, values), done);
        QCOMPARE(set(setMeasure, measureValues(value)), done);
        for (int call = 0; call < 20; ++call) {
            QVERIFY(version.call(getInstrument).startsWith("({\"CRC\": <true>, \"Fabrication\""));
            QVERIFY(version.call(getMeasure).startsWith("({\"AdjustementDate\""));
        }
        QTRY_COMPARE_WITH_TIMEOUT(daemon.descriptors(), before, deadlineMs);
    }
}

void TestEeprom::emptySignaturesAreNotKept()
{
    QVERIFY(daemon.start());
    for (const char *value : {"g \"\"", "(gi) \"\" 1", "av 2 i 1 g \"\"", "ag 1 \"\""}) {
        const QString values =
            instrumentValues("Brand", value).replace("a{sv} 12", "a{sv} 13") + " Extra " + value;
        QCOMPARE(set(setInstrument, values), done);
        QCOMPARE(set(setMeasure, measureValues(value)), done);
        const QVariantMap instrument = recordOf(getInstrument);
        QCOMPARE(instrument.size(), instrumentRecord().size());
        QVERIFY(!instrument.contains("Brand") && !instrument.contains("Extra"));
        QCOMPARE(recordOf(getMeasure).keys(),
                 (QStringList{"AdjustementDate", "AdjustementSite", "CRC", "NextAdjustementDate"}));
    }
}

void TestEeprom::valuesOfTheGreatestDepthOnTheBusAreReturned_data()
{
    QTest::addColumn<QString>("outer");
    QTest::addColumn<int>("levels");
    const auto row = [](const char *name, const char *open, const char *close, const char *counts,
                        int times, int levels) {
        QTest::newRow(name) << QString(open).repeated(times) + 'v' +
                                   QString(close).repeated(times) +
                                   QString(counts).repeated(times) + ' '
                            << times * levels + 1;
    };
    row("variants", "", "", "", 0, 0);
    row("arrays", "a", "", " 1", 32, 1);
    row("structures", "(", ")", "", 32, 1);
    row("arrays of structures", "a(", ")", " 1", 30, 2);
    row("dictionaries", "a{y", "}", " 1 7", 30, 2);
}

/** D-Bus allows 64 levels of nesting; the map, its entry and its variant use three of them. */
void TestEeprom::valuesOfTheGreatestDepthOnTheBusAreReturned()
{
    QFETCH(QString, outer);
    QFETCH(int, levels);
    const int deepest = 61;
    QVERIFY(daemon.start());
    const auto owner = [] {
        return QDBusConnection::systemBus().interface()->serviceOwner(service).value();
    };
    const QString first = owner();
    QVERIFY(first.startsWith(':'));

    const QString values = outer + QString("v ").repeated(deepest - levels) + "i 1234";
    QCOMPARE(set(setInstrument,
                 instrumentValues("Brand", values).replace("} 12", "} 13") + " Extra " + values),
             done);
    QCOMPARE(set(setMeasure, measureValues(values)), done);
    for (int call = 0; call < 2; ++call) {
        QCOMPARE(version.call(getInstrument).count("<1234>"), 2);
        QCOMPARE(version.call(getMeasure).count("<1234>"), 1);
    }

    // One more level makes the bus close the sender's connection.
    const QString tooDeep = outer + QString("v ").repeated(deepest + 1 - levels) + "i 5678";
    QVERIFY(
        Wire()
            .call(service, "/KyDeviceMgr", service + ".Version", setMeasure, measureValues(tooDeep))
            .startsWith("org.freedesktop.DBus.Error.Disconnected"));
    QCOMPARE(version.call(getMeasure).count("<1234>"), 1);
    QCOMPARE(owner(), first);
}

void TestEeprom::instrumentValuesAreConverted_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("offset");
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *key, const char *value, int offset, const char *bytes) {
        QTest::addRow("%s %s", key, value)
            << QString(key) << QString(value) << offset << QByteArray(bytes);
    };
    row("Brand", "i 258", 4, "02");
    row("Brand", "i -1", 4, "ff");
    row("Brand", "u 4294967040", 4, "00");
    row("Brand", "y 200", 4, "c8");
    row("Brand", "s 200", 4, "c8");
    row("Brand", "s red", 4, "00");
    row("Brand", "d 3.6", 4, "04");
    row("Brand", "b true", 4, "01");
    row("Brand", "t 18446744073709551615", 4, "ff");
    row("Brand", "v v v i 7", 4, "07");
    row("Brand", "av 1 i 7", 4, "00");
    row("Brand", "au 1 7", 4, "00");
    row("Brand", "(i) 7", 4, "00");
    row("Brand", "a{sv} 1 a i 7", 4, "00");
    row("Model", "s 8345", 6, "8345");
    row("Model", "i 8345", 6, "8345");
    row("Model", "s model", 6, "0000");
    row("Model", "s 18345", 6, "0000");
    row("Model", "ay 4 56 51 52 53", 6, "8345");
    row("Model", "v s abcd", 6, "abcd");
    row("Model", "(s) 8345", 6, "0000");
    row("SerialNumber", "s ABCD", 8, "414243442d2d2d2d");
    row("SerialNumber", "s ABCDEFGHIJ", 8, "4142434445464748");
    row("SerialNumber", "ay 2 0 255", 8, "00ff2d2d2d2d2d2d");
    row("SerialNumber", "i 1234", 8, "313233342d2d2d2d");
    row("SerialNumber", "s \"\"", 8, "2d2d2d2d2d2d2d2d");
    row("SerialNumber", "av 1 y 65", 8, "2d2d2d2d2d2d2d2d");
    row("WarrantyNumber", "s ABCD", 16, "414243442d2d2d2d2d");
    row("WarrantyNumber", "s ABCDEFGHIJ", 16, "414243444546474849");
    row("IrdInstrumentPassword", "s secret", 28,
        "736563726574000000000000000000000000000000000000000000000000");
    row("IrdSessionPassword", "s 12345678901234567890", 58, "31323334353637383930313233343536");
    row("IrdSessionPassword", "a{ss} 1 a b", 58, "00000000000000000000000000000000");
}

void TestEeprom::instrumentValuesAreConverted()
{
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(int, offset);
    QFETCH(QByteArray, bytes);
    QVERIFY(daemon.start());

    QCOMPARE(set(setInstrument, instrumentValues(key, value)), done);

    const QByteArray image = Board::bytes("eeprom/instrument");
    QCOMPARE(image.mid(offset, bytes.size() / 2).toHex(), bytes);
    QCOMPARE(decodeInstrumentRecord(image.left(74)).value("CRC"), QVariant(true));
}

void TestEeprom::aModelThatWasSetReachesTheLibraryAtTheNextRead()
{
    QVERIFY(daemon.start());
    QVariantMap map = instrumentRecord();
    map["Model"] = "8347";
    QCOMPARE(version.call(setInstrument, {map}), done);
    Board::clearJournal();
    version.call(getInstrument);
    QCOMPARE(calls(), QStringList());

    QCOMPARE(version.call(setInstrument, {QVariantMap()}), notValid);
    version.call(getInstrument);
    QCOMPARE(calls().mid(1),
             (QStringList{"KyBoardRev.setBrand(3) = 0", "KyBoardRev.setModel(2) = 0"}));
}

void TestEeprom::coefficientsAreReadFromEveryKindOfList_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QVector<quint32>>("numbers");
    const QVector<quint32> numbers = {1, 2, 255};
    for (const char *type : {"an", "aq", "ai", "au", "ax", "at", "ad", "as", "ay"})
        QTest::newRow(type) << QString(type) + " 3 1 2 255" << numbers;
    QTest::newRow("ab") << "ab 3 true false true" << QVector<quint32>{1, 0, 1};
    QTest::newRow("av") << "av 3 u 1 s 2 v y 255" << numbers;
    QTest::newRow("list in variants") << "v v au 3 1 2 255" << numbers;
}

void TestEeprom::coefficientsAreReadFromEveryKindOfList()
{
    QFETCH(QString, list);
    QFETCH(QVector<quint32>, numbers);
    QVERIFY(daemon.start());
    QCOMPARE(set(setMeasure, measureValues(list)), done);
    const std::optional<QVariantMap> fields = measureFields(measureRecord());
    QVERIFY(fields);
    QVERIFY(calls().contains(written(1, encodeMeasureRecord(*fields, numbers))));
}

void TestEeprom::coefficientsThatAreNoListCountAsEmpty_data()
{
    QTest::addColumn<QString>("value");
    for (const char *value :
         {"u 5", "s 5", "d 5", "ao 1 /5", "ag 1 i", "(u) 5", "a{sv} 0", "aau 1 1 5"})
        QTest::newRow(value) << QString(value);
}

void TestEeprom::coefficientsThatAreNoListCountAsEmpty()
{
    QFETCH(QString, value);
    QVERIFY(daemon.start());
    Board::clearJournal();
    QCOMPARE(set(setMeasure, measureValues(value)), done);
    QCOMPARE(calls(),
             (QStringList{protectionLifted, written(1, encodeMeasureRecord(measureRecord(), {})),
                          protectionRestored}));
}

void TestEeprom::anotherNumberOfCoefficientsReadsBackInvalid_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 295, 297, 1021})
        QTest::addRow("%d", count) << count;
}

void TestEeprom::anotherNumberOfCoefficientsReadsBackInvalid()
{
    QFETCH(int, count);
    QVERIFY(daemon.start());
    QVariantMap map = measureRecord();
    map["AdjustementCoefficients"] =
        QVariant::fromValue(QList<uint>::fromVector(QVector<uint>(count, 0x01020304)));
    QCOMPARE(version.call(setMeasure, {map}), done);
    QVERIFY(version.call(getMeasure).contains("\"CRC\": <true>"));

    QCOMPARE(version.call(setMeasure, {QVariantMap()}), notValid);
    QCOMPARE(version.call(getMeasure), invalid);
}

void TestEeprom::moreCoefficientsThanTheEepromHoldsAreAWriteError()
{
    QVERIFY(daemon.start());
    const QByteArray before = Board::bytes("eeprom/measure");
    QVariantMap map = measureRecord();
    map["AdjustementCoefficients"] =
        QVariant::fromValue(QList<uint>::fromVector(QVector<uint>(8000, 1)));

    QCOMPARE(version.call(setMeasure, {map}), notWritten);

    QVERIFY(version.call(getMeasure).contains("\"CRC\": <true>"));
    QCOMPARE(Board::bytes("eeprom/measure"), before);
    QCOMPARE(Board::get("eeprom/write_enabled"), QStringLiteral("0"));
}

void TestEeprom::setRefusesAnInstrumentMapWithAMissingKey_data()
{
    QTest::addColumn<QString>("key");
    for (const QString &key : instrumentRecord().keys())
        QTest::newRow(qPrintable(key)) << key;
}

void TestEeprom::setRefusesAnInstrumentMapWithAMissingKey()
{
    QFETCH(QString, key);
    QVERIFY(daemon.start());
    version.call(getInstrument);
    const QByteArray before = Board::bytes("eeprom/instrument");
    Board::clearJournal();
    QVariantMap map = instrumentRecord();
    map.remove(key);
    map.insert(key.toLower(), 1);

    QCOMPARE(version.call(setInstrument, {map}), notValid);

    QCOMPARE(calls(), QStringList());
    QCOMPARE(Board::bytes("eeprom/instrument"), before);
}

void TestEeprom::setRefusesAMeasureMapWithAMissingKey_data()
{
    QTest::addColumn<QString>("key");
    for (const QString &key : measureRecord().keys())
        QTest::newRow(qPrintable(key)) << key;
}

void TestEeprom::setRefusesAMeasureMapWithAMissingKey()
{
    QFETCH(QString, key);
    QVERIFY(daemon.start());
    const QByteArray before = Board::bytes("eeprom/measure");
    Board::clearJournal();
    QVariantMap map = measureRecord();
    map.remove(key);
    // The correct spelling does not replace the key "AdjustementSite".
    map.insert("AdjustmentSite", 1);

    QCOMPARE(version.call(setMeasure, {map}), notValid);

    QCOMPARE(calls(), QStringList());
    QCOMPARE(Board::bytes("eeprom/measure"), before);
}

void TestEeprom::aRefusedSetMakesTheNextGetReadAgain()
{
    QVERIFY(daemon.start());
    version.call(getInstrument);
    version.call(getMeasure);
    Board::setBytes("eeprom/instrument", instrumentBytes);
    Board::setBytes("eeprom/measure", measureBytes);
    QVERIFY(version.call(getInstrument) != renderedInstrument);
    QVERIFY(version.call(getMeasure) != renderedMeasure());

    QCOMPARE(version.call(setInstrument, {QVariantMap()}), notValid);
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    QVERIFY(version.call(getMeasure) != renderedMeasure());

    QCOMPARE(version.call(setMeasure, {QVariantMap()}), notValid);
    QCOMPARE(version.call(getMeasure), renderedMeasure());
}

void TestEeprom::protectionThatCannotBeLiftedStopsASet_data()
{
    QTest::addColumn<QString>("setter");
    QTest::addColumn<QString>("getter");
    QTest::addColumn<QVariantMap>("map");
    QTest::addColumn<QString>("values");
    QTest::newRow("instrument") << setInstrument << getInstrument << instrumentRecord()
                                << renderedInstrument;
    QTest::newRow("measure") << setMeasure << getMeasure << measureRecord() << renderedMeasure();
}

void TestEeprom::protectionThatCannotBeLiftedStopsASet()
{
    QFETCH(QString, setter);
    QFETCH(QString, getter);
    QFETCH(QVariantMap, map);
    QFETCH(QString, values);
    QVERIFY(daemon.start());
    Board::clearJournal();
    Board::fault("KyEeprom.setWriteEnable", "1");
    // A caller cannot declare a record valid.
    map.insert("CRC", true);

    QCOMPARE(version.call(setter, {map}), notEnabled);
    // The values are kept, but not marked as valid.
    QCOMPARE(version.call(getter), values.remove("\"CRC\": <true>, "));

    QCOMPARE(calls(), QStringList{"KyEeprom.setWriteEnable(true) = 1"});
}

void TestEeprom::aFailedWriteStillRestoresTheProtection_data()
{
    protectionThatCannotBeLiftedStopsASet_data();
}

void TestEeprom::aFailedWriteStillRestoresTheProtection()
{
    QFETCH(QString, setter);
    QFETCH(QString, getter);
    QFETCH(QVariantMap, map);
    QFETCH(QString, values);
    QVERIFY(daemon.start());
    const QStringList before{Board::bytes("eeprom/instrument").toHex(),
                             Board::bytes("eeprom/measure").toHex()};
    Board::clearJournal();
    Board::fault("KyEeprom.writeEeprom", "always");

    QCOMPARE(version.call(setter, {map}), notWritten);
    QCOMPARE(version.call(getter), values);

    QCOMPARE(calls().size(), 3);
    QCOMPARE(calls().first(), protectionLifted);
    QCOMPARE(calls().last(), protectionRestored);
    QCOMPARE((QStringList{Board::bytes("eeprom/instrument").toHex(),
                          Board::bytes("eeprom/measure").toHex()}),
             before);
}

void TestEeprom::protectionThatCannotBeRestoredIsAWriteError_data()
{
    protectionThatCannotBeLiftedStopsASet_data();
}

void TestEeprom::protectionThatCannotBeRestoredIsAWriteError()
{
    QFETCH(QString, setter);
    QFETCH(QString, getter);
    QFETCH(QVariantMap, map);
    QFETCH(QString, values);
    QVERIFY(daemon.start());
    Board::clearJournal();
    BusMonitor monitor;

    QCOMPARE(callWithoutRestore(setter, {map}), notDisabled);
    QCOMPARE(version.call(getter), values);

    QCOMPARE(monitor.takeFromDaemon().mid(0, 2),
             (QStringList{errorLine(notDisabled), "return ()"}));
    QCOMPARE(calls().size(), 3);
    QCOMPARE(calls().last(), QStringLiteral("KyEeprom.setWriteEnable(false) = 1"));
}

void TestEeprom::aSetSendsAnErrorForEachFailedStep_data()
{
    protectionThatCannotBeLiftedStopsASet_data();
}

void TestEeprom::aSetSendsAnErrorForEachFailedStep()
{
    QFETCH(QString, setter);
    QFETCH(QString, getter);
    QFETCH(QVariantMap, map);
    QFETCH(QString, values);
    QVERIFY(daemon.start());
    Board::fault("KyEeprom.writeEeprom", "always");
    BusMonitor monitor;

    QCOMPARE(callWithoutRestore(setter, {map}), notWritten);

    QCOMPARE(monitor.takeFromDaemon(),
             (QStringList{errorLine(notWritten), errorLine(notDisabled), "return ()"}));
    QCOMPARE(version.call(getter), values);
}

void TestEeprom::noSignalEndsTheDaemonWhileTheProtectionIsLifted_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("isToAnotherThread");
    const auto row = [](const QString &method, const QVariantList &arguments, int signal,
                        bool isToAnotherThread = false) {
        QTest::addRow("%s, %s%s", qPrintable(method), strsignal(signal),
                      isToAnotherThread ? ", to another thread" : "")
            << method << arguments << signal << isToAnotherThread;
    };
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGQUIT, SIGABRT, SIGUSR1, SIGUSR2, SIGALRM})
        row(setInstrument, {instrumentRecord()}, signal);
    row(setInstrument, {instrumentRecord()}, SIGTERM, true);
    row(setMeasure, {measureRecord()}, SIGTERM);
    row(invalidate, {}, SIGTERM);
}

void TestEeprom::noSignalEndsTheDaemonWhileTheProtectionIsLifted()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(int, signal);
    QFETCH(bool, isToAnotherThread);
    QVERIFY(daemon.start());
    Board::clearJournal();
    Board::fault("KyEeprom.writeEeprom", "hold");
    version.start(method, arguments);
    QVERIFY(Board::waitFor("held", "KyEeprom.writeEeprom"));
    QCOMPARE(Board::get("eeprom/write_enabled"), QStringLiteral("1"));

    const int process = int(daemon.processId());
    const int thread = isToAnotherThread ? daemon.otherThread() : process;
    QVERIFY(thread != 0);
    QCOMPARE(syscall(SYS_tgkill, process, thread, signal), 0);

    // The signal stays pending: the main thread is inside the hardware library.
    const auto isPending = [=] {
        const quint64 pending = statusOf(process, "SigPnd").toULongLong(nullptr, 16);
        return ((pending >> (signal - 1)) & 1) == 1;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isPending(), deadlineMs);
    QVERIFY(daemon.isRunning());
    Board::clearFaults();

    QCOMPARE(daemon.waitForExit(), -1);
    QCOMPARE(calls().last(), protectionRestored);
    QCOMPARE(calls().count(protectionRestored), 1);
    QCOMPARE(calls().filter("KyEeprom.writeEeprom").size(), method == invalidate ? 2 : 1);
    QCOMPARE(Board::get("eeprom/write_enabled"), QStringLiteral("0"));
}

void TestEeprom::sigkillEndsTheDaemonInAHungWrite()
{
    QVERIFY(daemon.start());
    Board::fault("KyEeprom.writeEeprom", "hold");
    version.start(setInstrument, {instrumentRecord()});
    QVERIFY(Board::waitFor("held", "KyEeprom.writeEeprom"));
    QCOMPARE(kill(pid_t(daemon.processId()), SIGTERM), 0);
    QCOMPARE(kill(pid_t(daemon.processId()), SIGKILL), 0);
    QCOMPARE(daemon.waitForExit(), -1);
}

void TestEeprom::invalidateClearsBothCrcsAndKeepsTheData()
{
    QVERIFY(daemon.start());
    const QByteArray instrumentData = Board::bytes("eeprom/instrument").mid(2);
    const QByteArray measureData = Board::bytes("eeprom/measure").mid(2);
    Board::clearJournal();

    QCOMPARE(version.call(invalidate), done);

    QCOMPARE(calls(), (QStringList{protectionLifted, "KyEeprom.writeEeprom(0, 0000, 0, 2) = 0",
                                   "KyEeprom.writeEeprom(1, 0000, 0, 2) = 0", protectionRestored}));
    QCOMPARE(Board::bytes("eeprom/instrument"), QByteArray(2, '\0') + instrumentData);
    QCOMPARE(Board::bytes("eeprom/measure"), QByteArray(2, '\0') + measureData);
}

void TestEeprom::invalidateMakesBothRecordsInvalid()
{
    QVERIFY(daemon.start());
    QVERIFY(version.call(getInstrument) != invalid);
    QVERIFY(version.call(getMeasure) != invalid);
    QCOMPARE(version.call(invalidate), done);
    QCOMPARE(version.call(getInstrument), invalid);
    QCOMPARE(version.call(getMeasure), invalid);
}

void TestEeprom::invalidateLeavesRecordsOfZerosValid()
{
    Board::setBytes("eeprom/instrument", QByteArray(128, '\0'));
    Board::setBytes("eeprom/measure", QByteArray(4096, '\0'));
    QVERIFY(daemon.start());
    QCOMPARE(version.call(invalidate), done);
    QVERIFY(version.call(getInstrument).contains("\"CRC\": <true>"));
    QVERIFY(version.call(getMeasure).contains("\"CRC\": <true>"));
}

void TestEeprom::invalidateStopsWhenTheProtectionCannotBeLifted()
{
    QVERIFY(daemon.start());
    version.call(getInstrument);
    version.call(getMeasure);
    Board::clearJournal();
    Board::fault("KyEeprom.setWriteEnable", "1");
    BusMonitor monitor;

    QCOMPARE(version.call(invalidate), notEnabled);

    QCOMPARE(monitor.takeFromDaemon(), (QStringList{errorLine(notEnabled), "return ()"}));
    QCOMPARE(calls(), QStringList{"KyEeprom.setWriteEnable(true) = 1"});
    // The cache is discarded nevertheless: both records are read again.
    Board::setBytes("eeprom/instrument", instrumentBytes);
    Board::setBytes("eeprom/measure", measureBytes);
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    QCOMPARE(version.call(getMeasure), renderedMeasure());
}

void TestEeprom::invalidateWritesTheSecondRecordWhenTheFirstFails()
{
    QVERIFY(daemon.start());
    Board::clearJournal();
    Board::fault("KyEeprom.writeEeprom", "1");
    BusMonitor monitor;

    QCOMPARE(version.call(invalidate), notWritten);

    QCOMPARE(monitor.takeFromDaemon(), (QStringList{errorLine(notWritten), "return ()"}));
    QCOMPARE(calls(), (QStringList{protectionLifted, "KyEeprom.writeEeprom(0, 0000, 0, 2) = 1",
                                   "KyEeprom.writeEeprom(1, 0000, 0, 2) = 0", protectionRestored}));
    QVERIFY(version.call(getInstrument) != invalid);
    QCOMPARE(version.call(getMeasure), invalid);
}

void TestEeprom::invalidateReportsASecondRecordThatFails()
{
    // rename() cannot replace a directory with a file.
    Board::remove("eeprom/measure");
    QVERIFY(QDir().mkpath(Board::pathOf("eeprom/measure/in/the/way")));
    QVERIFY(daemon.start());
    Board::clearJournal();

    QCOMPARE(version.call(invalidate), notWritten);
    QCOMPARE(version.call(getInstrument), invalid);

    QCOMPARE(calls().mid(0, 4),
             (QStringList{protectionLifted, "KyEeprom.writeEeprom(0, 0000, 0, 2) = 0",
                          "KyEeprom.writeEeprom(1, 0000, 0, 2) = 1", protectionRestored}));
}

void TestEeprom::invalidateSendsAnErrorForEachFailedStep()
{
    QVERIFY(daemon.start());
    Board::clearJournal();
    Board::fault("KyEeprom.writeEeprom", "always");
    BusMonitor monitor;

    QCOMPARE(callWithoutRestore(invalidate), notWritten);

    QCOMPARE(monitor.takeFromDaemon(), (QStringList{errorLine(notWritten), errorLine(notWritten),
                                                    errorLine(notDisabled), "return ()"}));
    QCOMPARE(calls(), (QStringList{protectionLifted, "KyEeprom.writeEeprom(0, 0000, 0, 2) = 1",
                                   "KyEeprom.writeEeprom(1, 0000, 0, 2) = 1",
                                   "KyEeprom.setWriteEnable(false) = 1"}));
}

void TestEeprom::invalidateRefusesArguments()
{
    QVERIFY(daemon.start());
    version.call(getInstrument);
    Board::clearJournal();
    QCOMPARE(version.call(invalidate, {"really"}),
             QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod: No such method "
                            "'invalidateEepromsContent' in interface "
                            "'com.orvendis.Strandel.BoardManager.Version' at object path "
                            "'/KyDeviceMgr' (signature 's')"));
    QVERIFY(version.call(getInstrument) != invalid);
    QCOMPARE(calls(), QStringList());
}

void TestEeprom::aChangedEepromShowsAfterAnInvalidation()
{
    QVERIFY(daemon.start());
    version.call(getInstrument);
    QCOMPARE(version.call(invalidate), done);
    Board::setBytes("eeprom/instrument", instrumentBytes);
    QCOMPARE(version.call(getInstrument), renderedInstrument);
    Board::setBytes("eeprom/instrument", QByteArray(128, '\0'));
    QCOMPARE(version.call(getInstrument), renderedInstrument);
}

WORLD_TEST_MAIN(TestEeprom)
#include "test_eeprom.moc"
