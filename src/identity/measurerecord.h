#ifndef MEASURERECORD_H
#define MEASURERECORD_H

#include <QByteArray>
#include <QVariantMap>
#include <QVector>

#include <optional>

/** Size of a measure record in bytes, including its CRC. */
constexpr int measureRecordSize = 1196;

/** Returns the entries of @p map that form a measure record; nothing if one is missing. */
std::optional<QVariantMap> measureFields(const QVariantMap &map);

/**
 * Encodes @p fields as a measure record. The values must be basic (see basicMap()).
 *
 * The site is truncated to 16 bits, the two dates are opaque 32-bit numbers; a value that cannot be
 * converted counts as 0.
 *
 * @param coefficients any number of coefficients, which follow the other fields; only a record with
 *         296 coefficients can be read again
 */
QByteArray encodeMeasureRecord(const QVariantMap &fields, const QVector<quint32> &coefficients);

/**
 * Decodes a measure record.
 *
 * @return "CRC" = true and every field: the site as int, the dates as unsigned int, the
 *         coefficients as a list of unsigned int; only "CRC" = false if @p record has a wrong size
 *         or CRC
 */
QVariantMap decodeMeasureRecord(const QByteArray &record);

#endif
