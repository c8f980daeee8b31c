#include "measurerecord.h"

#include "recordframe.h"

#include <QDataStream>

#include <utility>

namespace
{
// Clients use this spelling of the keys.
const QString site = QStringLiteral("AdjustementSite");
const QString date = QStringLiteral("AdjustementDate");
const QString nextDate = QStringLiteral("NextAdjustementDate");
const QString coefficientList = QStringLiteral("AdjustementCoefficients");
} // namespace

std::optional<QVariantMap> measureFields(const QVariantMap &map)
{
    QVariantMap fields;
    for (const QString &key : {site, date, nextDate, coefficientList}) {
        if (!map.contains(key))
            return std::nullopt;
        fields.insert(key, map.value(key));
    }
    return fields;
}

QByteArray encodeMeasureRecord(const QVariantMap &fields, const QVector<quint32> &coefficients)
{
    QByteArray data;
    // Reserve once: many coefficients must not be copied while the array grows.
    data.reserve(measureRecordSize + coefficients.size() * int(sizeof(quint32)));
    QDataStream stream(&data, QIODevice::WriteOnly);
    stream << static_cast<quint16>(fields.value(site).toUInt())
           << static_cast<quint32>(fields.value(date).toUInt())
           << static_cast<quint32>(fields.value(nextDate).toUInt());
    for (const quint32 coefficient : coefficients)
        stream << coefficient;
    return framed(std::move(data));
}

QVariantMap decodeMeasureRecord(const QByteArray &record)
{
    const std::optional<QByteArray> data = unframed(record, measureRecordSize);
    QVariantMap map;
    map.insert(QStringLiteral("CRC"), data.has_value());
    if (!data)
        return map;
    QDataStream stream(*data);
    quint16 siteNumber = 0;
    quint32 day = 0;
    quint32 nextDay = 0;
    stream >> siteNumber >> day >> nextDay;
    QVariantList list;
    while (!stream.atEnd()) {
        quint32 coefficient = 0;
        stream >> coefficient;
        list << coefficient;
    }
    map.insert(site, static_cast<int>(siteNumber));
    map.insert(date, day);
    map.insert(nextDate, nextDay);
    map.insert(coefficientList, list);
    return map;
}
