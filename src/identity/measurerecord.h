#ifndef MEASURERECORD_H
#define MEASURERECORD_H

#include <QByteArray>
#include <QVariantMap>
#include <QVector>

/** Size of a measure record in bytes, its CRC included. */
extern const int measureRecordSize;

/** The entries of @p map that make a measure record; an empty map where one is missing. */
QVariantMap measureFields(const QVariantMap &map);

/**
 * The measure record made of @p fields, whose values are basic ones (see busvalue.h).
 *
 * The site is cut to 16 bits, the two dates are opaque 32-bit numbers; a value that does not
 * convert counts as 0.
 *
 * @param coefficients follow the other fields, however many there are; only a record with 296
 *        of them can be read again
 */
QByteArray encodeMeasureRecord(const QVariantMap &fields, const QVector<quint32> &coefficients);

/**
 * The fields of a measure record.
 *
 * @return "CRC" = true and every field: the site as int, the dates as unsigned int, the
 *         coefficients as a list of unsigned int; only "CRC" = false when @p record has another
 *         size or another CRC than it should
 */
QVariantMap decodeMeasureRecord(const QByteArray &record);

#endif
