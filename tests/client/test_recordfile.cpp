#include "instrumentrecord.h"
#include "measurerecord.h"
#include "recordfile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <functional>

/** The file with a copy of both identification records. */
class TestRecordFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldComesBack_data();
    void everyFieldComesBack();
    void valuesThatAClientGaveAreCompleted();
    void incompleteRecordsAreNotCopied_data();
    void incompleteRecordsAreNotCopied();
    void anIncompleteFileIsRefused_data();
    void anIncompleteFileIsRefused();
    void everyTruncatedFileIsRefused();
    void everyChangedValueIsRefused();

private:
    static Records records(const QByteArray &bytes);
    static QByteArray copy();
};

/** Records as the daemon returns them, filled with repetitions of @p bytes. */
Records TestRecordFile::records(const QByteArray &bytes)
{
    QByteArray filling;
    while (filling.size() < 30)
        filling += bytes;
    Records made;
    made.instrument =
        decodeInstrumentRecord(encodeInstrumentRecord({{"Subsidiary", int(uchar(filling.at(0)))},
                                                       {"Fabrication", 255},
                                                       {"Brand", 0},
                                                       {"Type", 4},
                                                       {"Model", "8345"},
                                                       {"SerialNumber", filling.left(8)},
                                                       {"WarrantyNumber", filling.left(9)},
                                                       {"TroubleshootingTag", 1},
                                                       {"RelaunchTag", 2},
                                                       {"FirstPassTag", 3},
                                                       {"IrdInstrumentPassword", filling.left(30)},
                                                       {"IrdSessionPassword", filling.left(16)}}));
    QVector<quint32> coefficients;
    for (quint32 index = 0; index < 296; ++index)
        coefficients << 4294967295U - index * quint32(uchar(filling.at(1)));
    made.measure = decodeMeasureRecord(encodeMeasureRecord(
        {{"AdjustementSite", 65535}, {"AdjustementDate", 4294967295U}, {"NextAdjustementDate", 0}},
        coefficients));
    return made;
}

QByteArray TestRecordFile::copy()
{
    QString complaint;
    return writeRecords(records("STR-0042"), complaint);
}

void TestRecordFile::everyFieldComesBack_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("text") << QByteArray("STR-0042");
    QTest::newRow("zeros") << QByteArray(8, '\0');
    QTest::newRow("ones") << QByteArray(8, '\xFF');
    QTest::newRow("controls") << QByteArray("\r\n\t\x1b\"\\\x7f\x80");
    QTest::newRow("UTF-8") << QByteArray("caf\xc3\xa9 \xed\xa0");
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all += char(byte);
    for (int first = 0; first < 256; first += 30)
        QTest::newRow(qPrintable(QString("bytes from %1").arg(first))) << all.mid(first, 30);
}

void TestRecordFile::everyFieldComesBack()
{
    QFETCH(QByteArray, bytes);
    Records given = records(bytes);
    QString complaint;
    const QByteArray content = writeRecords(given, complaint);
    QCOMPARE(complaint, QString());

    Records read;
    QVERIFY2(readRecords(content, read, complaint), qPrintable(complaint));

    given.instrument.remove("CRC");
    given.measure.remove("CRC");
    QCOMPARE(read.instrument, given.instrument);
    QCOMPARE(read.measure, given.measure);
    for (const char *key : {"SerialNumber", "WarrantyNumber", "IrdSessionPassword"})
        QCOMPARE(read.instrument.value(key).userType(), int(QMetaType::QByteArray));
}

void TestRecordFile::valuesThatAClientGaveAreCompleted()
{
    Records given = records("STR-0042");
    given.instrument["SerialNumber"] = QByteArray("AB");
    given.instrument["Model"] = "0008";
    given.instrument["Brand"] = 257;
    given.measure["AdjustementCoefficients"] = QVariant::fromValue(
        QList<uint>(given.measure.value("AdjustementCoefficients").toList().size() == 296
                        ? QVector<uint>(296, 7).toList()
                        : QList<uint>()));
    given.instrument["More"] = "of a client's own";
    QString complaint;
    Records read;
    QVERIFY(readRecords(writeRecords(given, complaint), read, complaint));
    QCOMPARE(read.instrument.value("SerialNumber"), QVariant(QByteArray("AB------")));
    QCOMPARE(read.instrument.value("Model"), QVariant("8"));
    QCOMPARE(read.instrument.value("Brand"), QVariant(1));
    QVERIFY(!read.instrument.contains("More"));
    QCOMPARE(read.measure.value("AdjustementCoefficients").toList(),
             QVariantList(QVector<QVariant>(296, 7u).toList()));
}

void TestRecordFile::incompleteRecordsAreNotCopied_data()
{
    QTest::addColumn<bool>("isInstrument");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");
    QTest::newRow("instrument's CRC")
        << true << "CRC" << QVariant(false) << "the instrument record is not valid";
    QTest::newRow("no CRC") << true << "CRC" << QVariant() << "the instrument record is not valid";
    QTest::newRow("measure's CRC")
        << false << "CRC" << QVariant(false) << "the measure record is not valid";
    QTest::newRow("instrument's field")
        << true << "Brand" << QVariant() << "the instrument record has no Brand";
    QTest::newRow("measure's field")
        << false << "AdjustementSite" << QVariant() << "the measure record has no AdjustementSite";
    QTest::newRow("coefficients") << false << "AdjustementCoefficients"
                                  << QVariant(QVariantList{1u, 2u, 3u})
                                  << "the measure record has not 296 AdjustementCoefficients";
}

void TestRecordFile::incompleteRecordsAreNotCopied()
{
    QFETCH(bool, isInstrument);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    Records given = records("STR-0042");
    QVariantMap &record = isInstrument ? given.instrument : given.measure;
    if (value.isValid())
        record.insert(key, value);
    else
        record.remove(key);
    QString complaint;
    QVERIFY(writeRecords(given, complaint).isEmpty());
    QTEST(complaint, "expected");
}

void TestRecordFile::anIncompleteFileIsRefused_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *before, const char *after,
                        const char *expected) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after) << expected;
    };
    row("other version", "version 1", "version 2",
        "it is not a copy of the records in a format that this program knows");
    row("missing field", "\"Brand\"", "\"brand\"", "Brand is missing in the instrument record");
    row("missing record", "\"measure\"", "\"Measure\"",
        "AdjustementSite is missing in the measure record");
    row("additional field", "\"Brand\": 0,", "\"Brand\": 0, \"Colour\": 1,",
        "the instrument record has a field that is none of its own");
    row("negative byte", "\"Brand\": 0,", "\"Brand\": -1,",
        "Brand of the instrument record is no value of its kind");
    row("large byte", "\"Fabrication\": 255,", "\"Fabrication\": 256,",
        "Fabrication of the instrument record is no value of its kind");
    row("enormous number", "\"Brand\": 0,", "\"Brand\": 1e300,",
        "Brand of the instrument record is no value of its kind");
    row("fraction", "\"Brand\": 0,", "\"Brand\": 0.5,",
        "Brand of the instrument record is no value of its kind");
    row("text for a number", "\"Brand\": 0,", "\"Brand\": \"0\",",
        "Brand of the instrument record is no value of its kind");
    row("number for a text", "\"Model\": \"8345\"", "\"Model\": 8345",
        "Model of the instrument record is no value of its kind");
    row("model", "\"Model\": \"8345\"", "\"Model\": \"834g\"",
        "Model of the instrument record is no value of its kind");
    row("short text", "\"SerialNumber\": \"STR-0042\"", "\"SerialNumber\": \"STR-004\"",
        "SerialNumber of the instrument record is no value of its kind");
    row("long text", "\"SerialNumber\": \"STR-0042\"", "\"SerialNumber\": \"STR-00042\"",
        "SerialNumber of the instrument record is no value of its kind");
    row("character of two bytes", "\"SerialNumber\": \"STR-0042\"",
        "\"SerialNumber\": \"STR-004\u20ac\"",
        "SerialNumber of the instrument record is no value of its kind");
    row("coefficient too many", "\"AdjustementCoefficients\": [",
        "\"AdjustementCoefficients\": [ 1,",
        "AdjustementCoefficients of the measure record is no value of its kind");
    row("large coefficient", "\"AdjustementCoefficients\": [\n            4294967295",
        "\"AdjustementCoefficients\": [\n            4294967296",
        "AdjustementCoefficients of the measure record is no value of its kind");
    row("changed byte", "\"Brand\": 0,", "\"Brand\": 1,",
        "the instrument record is not what was copied: its CRC is another");
    row("changed coefficient", "\"AdjustementCoefficients\": [\n            4294967295",
        "\"AdjustementCoefficients\": [\n            4294967294",
        "the measure record is not what was copied: its CRC is another");
    row("behind the end", "}\n}\n", "}\n}\n{}",
        "it is not whole: garbage at the end of the document");
}

void TestRecordFile::anIncompleteFileIsRefused()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QByteArray content = copy();
    const int place = content.indexOf(before);
    QVERIFY2(place >= 0, content.constData());
    content.replace(place, before.size(), after);
    Records read;
    QString complaint;
    QVERIFY(!readRecords(content, read, complaint));
    QTEST(complaint, "expected");
}

void TestRecordFile::everyTruncatedFileIsRefused()
{
    const QByteArray content = copy();
    for (int size = 0; size < content.size() - 1; ++size) {
        Records read;
        QString complaint;
        QVERIFY2(!readRecords(content.left(size), read, complaint),
                 qPrintable(QString::number(size)));
        QVERIFY(!complaint.isEmpty());
    }
}

/** Changes each number in turn. */
void TestRecordFile::everyChangedValueIsRefused()
{
    const QJsonObject file = QJsonDocument::fromJson(copy()).object();
    int changed = 0;
    const auto tryWith = [&](const QString &name, const QString &key, const QJsonValue &value) {
        QJsonObject record = file.value(name).toObject();
        record.insert(key, value);
        QJsonObject other = file;
        other.insert(name, record);
        Records read;
        QString complaint;
        ++changed;
        return !readRecords(QJsonDocument(other).toJson(), read, complaint);
    };
    for (const QString &name : {QStringLiteral("instrument"), QStringLiteral("measure")}) {
        const QJsonObject record = file.value(name).toObject();
        for (const QString &key : record.keys()) {
            if (record.value(key).isDouble())
                QVERIFY2(tryWith(name, key,
                                 record.value(key).toDouble() > 0 ? record.value(key).toDouble() - 1
                                                                  : 1),
                         qPrintable(key));
            QJsonArray array = record.value(key).toArray();
            for (int index = 0; index < array.size(); ++index) {
                QJsonArray other = array;
                other.replace(index, array.at(index).toDouble() - 1);
                QVERIFY2(tryWith(name, key, other), qPrintable(QString::number(index)));
            }
        }
    }
    QCOMPARE(changed, 7 + 3 + 296);
}

QTEST_GUILESS_MAIN(TestRecordFile)
#include "test_recordfile.moc"
