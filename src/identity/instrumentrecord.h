#ifndef INSTRUMENTRECORD_H
#define INSTRUMENTRECORD_H

#include <QByteArray>
#include <QVariantMap>

/** Size of an instrument record in bytes, its CRC included. */
extern const int instrumentRecordSize;

/** The entries of @p map that make an instrument record; an empty map where one is missing. */
QVariantMap instrumentFields(const QVariantMap &map);

/**
 * The instrument record made of @p fields, whose values are basic ones (see busvalue.h).
 *
 * Numbers are cut to their byte. "Model" is hexadecimal text. The serial and warranty numbers and
 * the two passwords are bytes, cut to the width of their field, or filled up with "-" and with
 * zero bytes respectively. A value that does not convert counts as 0, or as no bytes at all.
 */
QByteArray encodeInstrumentRecord(const QVariantMap &fields);

/**
 * The fields of an instrument record.
 *
 * @return "CRC" = true and every field: numbers as int, "Model" as lower-case hexadecimal text,
 *         everything else as byte arrays of the whole width of the field; only "CRC" = false when
 *         @p record has another size or another CRC than it should
 */
QVariantMap decodeInstrumentRecord(const QByteArray &record);

#endif
