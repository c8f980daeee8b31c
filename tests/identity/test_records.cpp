#include "boardrevision.h"
#include "instrumentrecord.h"
#include "measurerecord.h"

#include <QRandomGenerator>
#include <QTest>

/** The identification records as bytes and as maps, and other data of the board. */
class TestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instrumentRecordIsEncodedByteForByte();
    void instrumentRecordIsDecodedByteForByte();
    void decodingAnEncodedInstrumentRecordReturnsItsValues();
    void instrumentRecordOfZerosIsValid();
    void instrumentRecordOfOnesIsNotValid();
    void instrumentRecordOfAnotherSizeIsNotValid();
    void instrumentRecordWithAnyBitFlippedIsNotValid();
    void instrumentFieldsAreThoseOfTheRecord();
    void aMissingKeyGivesNoInstrumentFields();
    void numbersAreCutToTheirByte_data();
    void numbersAreCutToTheirByte();
    void modelIsHexadecimalText_data();
    void modelIsHexadecimalText();
    void bytesAreFilledOrCut_data();
    void bytesAreFilledOrCut();

    void measureRecordIsEncodedByteForByte();
    void measureRecordIsDecodedByteForByte();
    void decodingAnEncodedMeasureRecordReturnsItsValues();
    void measureRecordTakesAnyNumberOfCoefficients_data();
    void measureRecordTakesAnyNumberOfCoefficients();
    void measureRecordOfZerosIsValid();
    void measureRecordOfAnotherSizeIsNotValid();
    void aMissingKeyGivesNoMeasureFields();
    void siteIsCutToSixteenBits();
    void datesTakeAllThirtyTwoBits();

    void everyModelHasItsNumberInTheLibrary_data();
    void everyModelHasItsNumberInTheLibrary();
    void anFpgaRevisionIsTwoDecimalNumbers_data();
    void anFpgaRevisionIsTwoDecimalNumbers();
};

namespace
{
const QVariantMap instrument{
    {"Subsidiary", 1},
    {"Fabrication", 2},
    {"Brand", 3},
    {"Type", 4},
    {"Model", "8345"},
    {"SerialNumber", QByteArray("AB12")},
    {"WarrantyNumber", QByteArray("W1234")},
    {"TroubleshootingTag", 7},
    {"RelaunchTag", 8},
    {"FirstPassTag", 9},
    {"IrdInstrumentPassword", QByteArray("secret")},
    {"IrdSessionPassword", QByteArray("session")},
};

const QByteArray instrumentBytes =
    QByteArray::fromHex("dc7c"
                        "01020304"
                        "8345"
                        "414231322d2d2d2d"
                        "57313233342d2d2d2d"
                        "070809"
                        "736563726574000000000000000000000000000000000000000000000000"
                        "73657373696f6e000000000000000000");

const QVariantMap invalid{{"CRC", false}};

QVector<quint32> coefficients()
{
    QVector<quint32> list;
    for (quint32 index = 0; index < 296; ++index)
        list << index * 0x01010101U;
    return list;
}

const QVariantMap measure{
    {"AdjustementSite", 0x1234},
    {"AdjustementDate", 1700000000U},
    {"NextAdjustementDate", 1731536000U},
};

QByteArray measureBytes()
{
    QByteArray bytes = QByteArray::fromHex("cbe6"
                                           "1234"
                                           "6553f100"
                                           "67352480");
    for (const quint32 coefficient : coefficients()) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes += static_cast<char>((coefficient >> shift) & 0xFF);
    }
    return bytes;
}

/** The bytes of the instrument record with another value of one field. */
QByteArray instrumentWith(const QString &key, const QVariant &value, int offset, int width)
{
    QVariantMap map = instrument;
    map.insert(key, value);
    return encodeInstrumentRecord(map).mid(offset, width);
}

QByteArray randomBytes(QRandomGenerator &random, int size)
{
    QByteArray bytes;
    for (int index = 0; index < size; ++index)
        bytes += static_cast<char>(random.bounded(256));
    return bytes;
}
} // namespace

void TestRecords::instrumentRecordIsEncodedByteForByte()
{
    QCOMPARE(encodeInstrumentRecord(instrument).toHex(), instrumentBytes.toHex());
    QCOMPARE(instrumentBytes.size(), 74);
    static_assert(instrumentRecordSize == 74, "as the EEPROM holds it");
}

void TestRecords::instrumentRecordIsDecodedByteForByte()
{
    QVariantMap expected = instrument;
    expected["CRC"] = true;
    expected["SerialNumber"] = QByteArray("AB12----");
    expected["WarrantyNumber"] = QByteArray("W1234----");
    expected["IrdInstrumentPassword"] = QByteArray("secret") + QByteArray(24, '\0');
    expected["IrdSessionPassword"] = QByteArray("session") + QByteArray(9, '\0');

    const QVariantMap decoded = decodeInstrumentRecord(instrumentBytes);

    QCOMPARE(decoded, expected);
    for (const char *number : {"Subsidiary", "Fabrication", "Brand", "Type", "TroubleshootingTag",
                               "RelaunchTag", "FirstPassTag"})
        QCOMPARE(decoded[number].userType(), int(QMetaType::Int));
    QCOMPARE(decoded["Model"].userType(), int(QMetaType::QString));
}

void TestRecords::decodingAnEncodedInstrumentRecordReturnsItsValues()
{
    QRandomGenerator random(74);
    for (int round = 0; round < 500; ++round) {
        QVariantMap map{
            {"Subsidiary", int(random.bounded(256))},
            {"Fabrication", int(random.bounded(256))},
            {"Brand", int(random.bounded(256))},
            {"Type", int(random.bounded(256))},
            {"Model", QString::number(random.bounded(0x10000), 16)},
            {"SerialNumber", randomBytes(random, 8)},
            {"WarrantyNumber", randomBytes(random, 9)},
            {"TroubleshootingTag", int(random.bounded(256))},
            {"RelaunchTag", int(random.bounded(256))},
            {"FirstPassTag", int(random.bounded(256))},
            {"IrdInstrumentPassword", randomBytes(random, 30)},
            {"IrdSessionPassword", randomBytes(random, 16)},
        };
        const QByteArray record = encodeInstrumentRecord(map);
        QCOMPARE(record.size(), 74);
        map.insert("CRC", true);
        QCOMPARE(decodeInstrumentRecord(record), map);
    }
}

void TestRecords::instrumentRecordOfZerosIsValid()
{
    const QVariantMap expected{
        {"CRC", true},
        {"Subsidiary", 0},
        {"Fabrication", 0},
        {"Brand", 0},
        {"Type", 0},
        {"Model", "0"},
        {"SerialNumber", QByteArray(8, '\0')},
        {"WarrantyNumber", QByteArray(9, '\0')},
        {"TroubleshootingTag", 0},
        {"RelaunchTag", 0},
        {"FirstPassTag", 0},
        {"IrdInstrumentPassword", QByteArray(30, '\0')},
        {"IrdSessionPassword", QByteArray(16, '\0')},
    };
    QCOMPARE(decodeInstrumentRecord(QByteArray(74, '\0')), expected);
}

void TestRecords::instrumentRecordOfOnesIsNotValid()
{
    QCOMPARE(decodeInstrumentRecord(QByteArray(74, '\xFF')), invalid);
    QCOMPARE(decodeMeasureRecord(QByteArray(1196, '\xFF')), invalid);
}

void TestRecords::instrumentRecordOfAnotherSizeIsNotValid()
{
    for (int size = 0; size < 74; ++size) {
        QCOMPARE(decodeInstrumentRecord(instrumentBytes.left(size)), invalid);
        QCOMPARE(decodeInstrumentRecord(QByteArray(size, '\0')), invalid);
    }
    QCOMPARE(decodeInstrumentRecord(QByteArray(75, '\0')), invalid);
    QCOMPARE(decodeInstrumentRecord(QByteArray()), invalid);
}

void TestRecords::instrumentRecordWithAnyBitFlippedIsNotValid()
{
    for (int bit = 0; bit < 74 * 8; ++bit) {
        QByteArray record = instrumentBytes;
        record[bit / 8] = static_cast<char>(record.at(bit / 8) ^ (1 << (bit % 8)));
        QCOMPARE(decodeInstrumentRecord(record), invalid);
    }
}

void TestRecords::instrumentFieldsAreThoseOfTheRecord()
{
    QVariantMap map = instrument;
    map.insert("CRC", false);
    map.insert("Colour", "red");
    QVERIFY(instrumentFields(map) == instrument);
}

void TestRecords::aMissingKeyGivesNoInstrumentFields()
{
    for (const QString &key : instrument.keys()) {
        QVariantMap map = instrument;
        map.remove(key);
        map.insert(key.toLower(), 1);
        QVERIFY(!instrumentFields(map));
    }
}

void TestRecords::numbersAreCutToTheirByte_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("byte");
    QTest::newRow("255") << QVariant(255) << 255;
    QTest::newRow("256") << QVariant(256) << 0;
    QTest::newRow("-1") << QVariant(-1) << 255;
    QTest::newRow("0x12345678") << QVariant(0x12345678U) << 0x78;
    QTest::newRow("64 bits") << QVariant(qulonglong(0x1234567890ABCDEF)) << 0xEF;
    QTest::newRow("byte") << QVariant::fromValue(uchar(200)) << 200;
    QTest::newRow("true") << QVariant(true) << 1;
    QTest::newRow("2.6 is rounded") << QVariant(2.6) << 3;
    QTest::newRow("text of a number") << QVariant("12") << 12;
    QTest::newRow("text of a hexadecimal number") << QVariant("0x12") << 0;
    QTest::newRow("text") << QVariant("twelve") << 0;
    QTest::newRow("empty text") << QVariant("") << 0;
    QTest::newRow("nothing") << QVariant() << 0;
    QTest::newRow("list of numbers") << QVariant::fromValue(QList<uint>{5}) << 0;
}

void TestRecords::numbersAreCutToTheirByte()
{
    QFETCH(QVariant, value);
    QFETCH(int, byte);
    const QPair<const char *, int> offsets[] = {
        {"Subsidiary", 2},          {"Fabrication", 3},  {"Brand", 4},        {"Type", 5},
        {"TroubleshootingTag", 25}, {"RelaunchTag", 26}, {"FirstPassTag", 27}};
    for (const auto &field : offsets)
        QCOMPARE(instrumentWith(field.first, value, field.second, 1),
                 QByteArray(1, static_cast<char>(byte)));
}

void TestRecords::modelIsHexadecimalText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("text") << QVariant("8345") << QByteArray("8345");
    QTest::newRow("number with the digits of the model") << QVariant(8345) << QByteArray("8345");
    QTest::newRow("bytes") << QVariant(QByteArray("8345")) << QByteArray("8345");
    QTest::newRow("one digit") << QVariant("f") << QByteArray("000f");
    QTest::newRow("capital letters") << QVariant("ABCD") << QByteArray("abcd");
    QTest::newRow("with prefix") << QVariant("0x8345") << QByteArray("8345");
    QTest::newRow("largest") << QVariant("ffff") << QByteArray("ffff");
    QTest::newRow("too large") << QVariant("10000") << QByteArray("0000");
    QTest::newRow("negative") << QVariant("-1") << QByteArray("0000");
    QTest::newRow("no number") << QVariant("model") << QByteArray("0000");
    QTest::newRow("empty") << QVariant("") << QByteArray("0000");
    QTest::newRow("nothing") << QVariant() << QByteArray("0000");
}

void TestRecords::modelIsHexadecimalText()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, bytes);
    QCOMPARE(instrumentWith("Model", value, 6, 2).toHex(), bytes);
}

void TestRecords::bytesAreFilledOrCut_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("width");
    QTest::addColumn<char>("filling");
    QTest::newRow("serial") << "SerialNumber" << 8 << 8 << '-';
    QTest::newRow("warranty") << "WarrantyNumber" << 16 << 9 << '-';
    QTest::newRow("instrument password") << "IrdInstrumentPassword" << 28 << 30 << '\0';
    QTest::newRow("session password") << "IrdSessionPassword" << 58 << 16 << '\0';
}

void TestRecords::bytesAreFilledOrCut()
{
    QFETCH(QString, key);
    QFETCH(int, offset);
    QFETCH(int, width);
    QFETCH(char, filling);
    for (int size = 0; size <= width + 2; ++size) {
        const QByteArray bytes(size, 'x');
        const QByteArray expected = bytes.left(width) + QByteArray(qMax(0, width - size), filling);
        QCOMPARE(instrumentWith(key, bytes, offset, width), expected);
    }
    const QByteArray empty(width, filling);
    QCOMPARE(instrumentWith(key, QVariant("text"), offset, 4), QByteArray("text"));
    QCOMPARE(instrumentWith(key, QVariant(1234), offset, 4), QByteArray("1234"));
    QCOMPARE(instrumentWith(key, QByteArray("\0\xFF\0-", 4), offset, 4),
             QByteArray("\0\xFF\0-", 4));
    QCOMPARE(instrumentWith(key, QVariant(), offset, width), empty);
    QCOMPARE(instrumentWith(key, QVariant::fromValue(QList<int>{1, 2}), offset, width), empty);
}

void TestRecords::measureRecordIsEncodedByteForByte()
{
    QCOMPARE(encodeMeasureRecord(measure, coefficients()).toHex(), measureBytes().toHex());
    QCOMPARE(measureBytes().size(), 1196);
    static_assert(measureRecordSize == 1196, "as the EEPROM holds it");
}

void TestRecords::measureRecordIsDecodedByteForByte()
{
    const QVariantMap decoded = decodeMeasureRecord(measureBytes());

    QCOMPARE(decoded.keys(), (QStringList{"AdjustementCoefficients", "AdjustementDate",
                                          "AdjustementSite", "CRC", "NextAdjustementDate"}));
    QCOMPARE(decoded["CRC"], QVariant(true));
    QCOMPARE(decoded["AdjustementSite"].userType(), int(QMetaType::Int));
    QCOMPARE(decoded["AdjustementSite"].toInt(), 0x1234);
    QCOMPARE(decoded["AdjustementDate"].userType(), int(QMetaType::UInt));
    QCOMPARE(decoded["AdjustementDate"].toUInt(), 1700000000U);
    QCOMPARE(decoded["NextAdjustementDate"].userType(), int(QMetaType::UInt));
    QCOMPARE(decoded["NextAdjustementDate"].toUInt(), 1731536000U);
    const QVariantList list = decoded["AdjustementCoefficients"].toList();
    QCOMPARE(list.size(), 296);
    for (int index = 0; index < list.size(); ++index) {
        QCOMPARE(list[index].userType(), int(QMetaType::UInt));
        QCOMPARE(list[index].toUInt(), coefficients()[index]);
    }
}

void TestRecords::decodingAnEncodedMeasureRecordReturnsItsValues()
{
    QRandomGenerator random(1196);
    for (int round = 0; round < 100; ++round) {
        QVariantMap map{{"AdjustementSite", int(random.bounded(0x10000))},
                        {"AdjustementDate", random.generate()},
                        {"NextAdjustementDate", random.generate()}};
        QVector<quint32> numbers;
        QVariantList list;
        for (int index = 0; index < 296; ++index) {
            numbers << random.generate();
            list << numbers.last();
        }
        const QByteArray record = encodeMeasureRecord(map, numbers);
        map.insert("CRC", true);
        map.insert("AdjustementCoefficients", list);
        QCOMPARE(decodeMeasureRecord(record), map);
    }
}

void TestRecords::measureRecordTakesAnyNumberOfCoefficients_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 295, 297, 10000})
        QTest::addRow("%d", count) << count;
}

void TestRecords::measureRecordTakesAnyNumberOfCoefficients()
{
    QFETCH(int, count);
    const QByteArray record = encodeMeasureRecord(measure, QVector<quint32>(count, 0xFFFFFFFF));
    QCOMPARE(record.size(), 12 + 4 * count);
    QCOMPARE(record.mid(12), QByteArray(4 * count, '\xFF'));
    QCOMPARE(decodeMeasureRecord(record), invalid);
    QCOMPARE(decodeMeasureRecord(record.leftJustified(1196, '\0', true)), invalid);
}

void TestRecords::measureRecordOfZerosIsValid()
{
    const QVariantMap decoded = decodeMeasureRecord(QByteArray(1196, '\0'));
    QCOMPARE(decoded["CRC"], QVariant(true));
    QCOMPARE(decoded["AdjustementSite"], QVariant(0));
    QCOMPARE(decoded["AdjustementCoefficients"].toList().size(), 296);
}

void TestRecords::measureRecordOfAnotherSizeIsNotValid()
{
    for (int size = 0; size < 1196; ++size) {
        QCOMPARE(decodeMeasureRecord(measureBytes().left(size)), invalid);
        QCOMPARE(decodeMeasureRecord(QByteArray(size, '\0')), invalid);
    }
    QCOMPARE(decodeMeasureRecord(QByteArray(1197, '\0')), invalid);
}

void TestRecords::aMissingKeyGivesNoMeasureFields()
{
    QVariantMap all = measure;
    all.insert("AdjustementCoefficients", QVariantList());
    QVERIFY(measureFields(all) == all);
    for (const QString &key : all.keys()) {
        QVariantMap map = all;
        map.remove(key);
        map.insert("CRC", true);
        QVERIFY(!measureFields(map));
    }
}

void TestRecords::siteIsCutToSixteenBits()
{
    QVariantMap map = measure;
    map["AdjustementSite"] = 0x12345678;
    QCOMPARE(encodeMeasureRecord(map, {}).mid(2, 2).toHex(), QByteArray("5678"));
    map["AdjustementSite"] = -2;
    QCOMPARE(encodeMeasureRecord(map, {}).mid(2, 2).toHex(), QByteArray("fffe"));
    map["AdjustementSite"] = "no number";
    QCOMPARE(encodeMeasureRecord(map, {}).mid(2, 2).toHex(), QByteArray("0000"));
}

void TestRecords::datesTakeAllThirtyTwoBits()
{
    QVariantMap map = measure;
    map["AdjustementDate"] = 0xFFFFFFFFU;
    map["NextAdjustementDate"] = -2;
    QCOMPARE(encodeMeasureRecord(map, {}).mid(4).toHex(), QByteArray("fffffffffffffffe"));
    map["AdjustementDate"] = qulonglong(0x100000001);
    map["NextAdjustementDate"] = "1700000000";
    QCOMPARE(encodeMeasureRecord(map, {}).mid(4).toHex(), QByteArray("000000016553f100"));
}

void TestRecords::everyModelHasItsNumberInTheLibrary_data()
{
    QTest::addColumn<int>("model");
    QTest::addColumn<int>("number");
    QTest::newRow("0") << 0 << 3;
    QTest::newRow("0x8342") << 0x8342 << 3;
    QTest::newRow("0x8343") << 0x8343 << 0;
    QTest::newRow("0x8344") << 0x8344 << 3;
    QTest::newRow("0x8345") << 0x8345 << 1;
    QTest::newRow("0x8346") << 0x8346 << 3;
    QTest::newRow("0x8347") << 0x8347 << 2;
    QTest::newRow("0x8348") << 0x8348 << 3;
    QTest::newRow("0xffff") << 0xFFFF << 3;
}

void TestRecords::everyModelHasItsNumberInTheLibrary()
{
    QFETCH(int, model);
    QFETCH(int, number);
    QCOMPARE(int(libraryModel(quint16(model))), number);
}

void TestRecords::anFpgaRevisionIsTwoDecimalNumbers_data()
{
    QTest::addColumn<uint>("revision");
    QTest::addColumn<QString>("text");
    QTest::newRow("2.3") << 0x00020003U << "2.3";
    QTest::newRow("0.0") << 0U << "0.0";
    QTest::newRow("low half alone") << 0x0000FFFFU << "0.65535";
    QTest::newRow("high half alone") << 0xFFFF0000U << "65535.0";
    QTest::newRow("largest") << 0xFFFFFFFFU << "65535.65535";
}

void TestRecords::anFpgaRevisionIsTwoDecimalNumbers()
{
    QFETCH(uint, revision);
    QFETCH(QString, text);
    QCOMPARE(fpgaRevisionText(revision), text);
}

QTEST_GUILESS_MAIN(TestRecords)
#include "test_records.moc"
