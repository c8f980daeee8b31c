#include "instrumentrecord.h"

#include "recordframe.h"

#include <QtEndian>

#include <utility>

namespace
{
enum class Encoding { Number, Model, DashFilled, ZeroFilled };

/** The fields after the CRC, in the order of the record. */
const struct Field {
    const char *key;
    int width;
    Encoding encoding;
} layout[] = {
    {"Subsidiary", 1, Encoding::Number},
    {"Fabrication", 1, Encoding::Number},
    {"Brand", 1, Encoding::Number},
    {"Type", 1, Encoding::Number},
    {"Model", 2, Encoding::Model},
    {"SerialNumber", 8, Encoding::DashFilled},
    {"WarrantyNumber", 9, Encoding::DashFilled},
    {"TroubleshootingTag", 1, Encoding::Number},
    {"RelaunchTag", 1, Encoding::Number},
    {"FirstPassTag", 1, Encoding::Number},
    {"IrdInstrumentPassword", 30, Encoding::ZeroFilled},
    {"IrdSessionPassword", 16, Encoding::ZeroFilled},
};

QByteArray filled(const QByteArray &bytes, int width, char filling)
{
    return bytes.left(width).leftJustified(width, filling);
}

QByteArray encodeModel(const QVariant &value)
{
    QByteArray bytes(sizeof(quint16), Qt::Uninitialized);
    qToBigEndian(value.toString().toUShort(nullptr, 16), reinterpret_cast<uchar *>(bytes.data()));
    return bytes;
}

QByteArray encode(const Field &field, const QVariant &value)
{
    switch (field.encoding) {
    case Encoding::Number:
        return QByteArray(1, static_cast<char>(value.toUInt() & 0xFF));
    case Encoding::Model:
        return encodeModel(value);
    case Encoding::DashFilled:
        return filled(value.toByteArray(), field.width, '-');
    case Encoding::ZeroFilled:
        return filled(value.toByteArray(), field.width, '\0');
    }
    return QByteArray();
}

QVariant decode(const Field &field, const QByteArray &bytes)
{
    switch (field.encoding) {
    case Encoding::Number:
        return static_cast<int>(static_cast<uchar>(bytes.at(0)));
    case Encoding::Model:
        return QString::number(
            qFromBigEndian<quint16>(reinterpret_cast<const uchar *>(bytes.constData())), 16);
    case Encoding::DashFilled:
    case Encoding::ZeroFilled:
        return bytes;
    }
    return QVariant();
}
} // namespace

std::optional<QVariantMap> instrumentFields(const QVariantMap &map)
{
    QVariantMap fields;
    for (const Field &field : layout) {
        const auto entry = map.constFind(QLatin1String(field.key));
        if (entry == map.constEnd())
            return std::nullopt;
        fields.insert(entry.key(), entry.value());
    }
    return fields;
}

QByteArray encodeInstrumentRecord(const QVariantMap &fields)
{
    QByteArray data;
    for (const Field &field : layout)
        data += encode(field, fields.value(QLatin1String(field.key)));
    return framed(std::move(data));
}

QVariantMap decodeInstrumentRecord(const QByteArray &record)
{
    const std::optional<QByteArray> data = unframed(record, instrumentRecordSize);
    QVariantMap map;
    map.insert(QStringLiteral("CRC"), data.has_value());
    if (!data)
        return map;
    int offset = 0;
    for (const Field &field : layout) {
        map.insert(QLatin1String(field.key), decode(field, data->mid(offset, field.width)));
        offset += field.width;
    }
    return map;
}
