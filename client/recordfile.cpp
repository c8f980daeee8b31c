#include "recordfile.h"

#include "commands.h"
#include "instrumentrecord.h"
#include "measurerecord.h"
#include "present.h"
#include "textrules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace
{
const QString format = QStringLiteral("EEPROM records of kyboardctl, version 1");
const QString crc = QStringLiteral("CRC");
const QString coefficients = QStringLiteral("AdjustementCoefficients");

/** Returns the fields of a record: the arguments of the command that sets the record. */
const QVector<Argument> &fieldsOf(const char *words)
{
    int used = 0;
    return findCommand(QString::fromLatin1(words).split(QLatin1Char(' ')), &used)
        ->arguments.first()
        .keys;
}

const QVector<Argument> &instrumentLayout()
{
    return fieldsOf("eeprom set-instrument");
}

const QVector<Argument> &measureLayout()
{
    return fieldsOf("eeprom set-measure");
}

QVector<quint32> numbersOf(const QVariant &list)
{
    QVector<quint32> numbers;
    const QVariantList elements = list.value<QVariantList>();
    for (const QVariant &element : elements)
        numbers << element.toUInt();
    return numbers;
}

/** Encodes @p fields as the bytes that the EEPROM would hold. */
QByteArray encodedInstrument(const QVariantMap &fields)
{
    return encodeInstrumentRecord(fields);
}

QByteArray encodedMeasure(const QVariantMap &fields)
{
    return encodeMeasureRecord(fields, numbersOf(fields.value(coefficients)));
}

QString crcText(const QByteArray &record)
{
    return QString::fromLatin1(record.left(2).toHex());
}

/** Returns the error in a record from the daemon; empty if there is none. */
QString flawOf(const QVariantMap &fields, const QVector<Argument> &layout)
{
    if (!fields.value(crc).toBool())
        return QStringLiteral("is not valid");
    for (const Argument &field : layout) {
        if (!fields.contains(field.name))
            return QStringLiteral("has no ") + field.name;
        if (field.kind == Kind::Numbers &&
            numbersOf(fields.value(field.name)).size() != field.maximum)
            return QStringLiteral("has not %1 %2").arg(field.maximum).arg(field.name);
    }
    return QString();
}

/** Returns @p fields as JSON, with the CRC of @p record as text. */
QJsonObject object(QVariantMap fields, const QByteArray &record)
{
    fields.insert(crc, crcText(record));
    return toJson(fields).toObject();
}

bool isNumber(const QJsonValue &value, double minimum, double maximum)
{
    const double number = value.toDouble(-1);
    return value.isDouble() && number >= minimum && number <= maximum &&
           std::floor(number) == number;
}

bool readInteger(const Argument &field, const QJsonValue &value, QVariant &made)
{
    if (!isNumber(value, double(field.minimum), double(field.maximum)))
        return false;
    made = static_cast<uint>(value.toDouble());
    return true;
}

bool readNumbers(const Argument &field, const QJsonValue &value, QVariant &made)
{
    const QJsonArray array = value.toArray();
    QVariantList numbers;
    for (const QJsonValue &element : array) {
        if (!isNumber(element, 0, 4294967295.0))
            return false;
        numbers << static_cast<uint>(element.toDouble());
    }
    made = numbers;
    return array.size() == field.maximum;
}

bool readBytes(const Argument &field, const QJsonValue &value, QVariant &made)
{
    const QString text = value.toString();
    made = text.toLatin1();
    return text.size() == field.maximum &&
           std::all_of(text.begin(), text.end(),
                       [](QChar character) { return character.unicode() <= 0xFF; });
}

bool readField(const Argument &field, const QJsonValue &value, QVariant &made)
{
    switch (field.kind) {
    case Kind::Integer:
        return readInteger(field, value, made);
    case Kind::Numbers:
        return readNumbers(field, value, made);
    case Kind::Bytes:
    case Kind::SecretBytes:
        return readBytes(field, value, made);
    default:
        made = value.toString();
        return isHexadecimal16(value.toString());
    }
}

/**
 * Reads the record @p name of @p file into @p fields. Returns the error; empty if there is none.
 */
QString readRecord(const QJsonObject &file, const QString &name, const QVector<Argument> &layout,
                   QByteArray (*encode)(const QVariantMap &), QVariantMap &fields)
{
    const QJsonObject record = file.value(name).toObject();
    for (const Argument &field : layout) {
        QVariant value;
        if (!record.contains(field.name))
            return QStringLiteral("%1 is missing in the %2 record").arg(field.name, name);
        if (!readField(field, record.value(field.name), value))
            return QStringLiteral("%1 of the %2 record is no value of its kind")
                .arg(field.name, name);
        fields.insert(field.name, value);
    }
    if (record.size() != layout.size() + 1)
        return QStringLiteral("the %1 record has a field that is none of its own").arg(name);
    if (record.value(crc).toString() != crcText(encode(fields)))
        return QStringLiteral("the %1 record is not what was copied: its CRC is another").arg(name);
    return QString();
}
} // namespace

QByteArray writeRecords(const Records &records, QString &complaint)
{
    QString flaw = flawOf(records.instrument, instrumentLayout());
    if (!flaw.isEmpty()) {
        complaint = QStringLiteral("the instrument record ") + flaw;
        return QByteArray();
    }
    flaw = flawOf(records.measure, measureLayout());
    if (!flaw.isEmpty()) {
        complaint = QStringLiteral("the measure record ") + flaw;
        return QByteArray();
    }
    // The daemon may return bytes as a client set them, shorter than their fields. Encode and
    // decode the values: then the bytes fill their fields.
    const QByteArray instrument = encodedInstrument(records.instrument);
    const QByteArray measure = encodedMeasure(records.measure);
    QJsonObject file;
    file.insert(QStringLiteral("format"), format);
    file.insert(QStringLiteral("instrument"),
                object(decodeInstrumentRecord(instrument), instrument));
    file.insert(QStringLiteral("measure"), object(decodeMeasureRecord(measure), measure));
    return QJsonDocument(file).toJson();
}

bool readRecords(const QByteArray &content, Records &records, QString &complaint)
{
    QJsonParseError error;
    const QJsonObject file = QJsonDocument::fromJson(content, &error).object();
    if (error.error != QJsonParseError::NoError)
        complaint = QStringLiteral("it is not whole: ") + error.errorString();
    else if (file.value(QStringLiteral("format")).toString() != format)
        complaint =
            QStringLiteral("it is not a copy of the records in a format that this program knows");
    else
        complaint = readRecord(file, QStringLiteral("instrument"), instrumentLayout(),
                               encodedInstrument, records.instrument);
    if (complaint.isEmpty())
        complaint = readRecord(file, QStringLiteral("measure"), measureLayout(), encodedMeasure,
                               records.measure);
    return complaint.isEmpty();
}
