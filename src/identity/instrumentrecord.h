#ifndef INSTRUMENTRECORD_H
#define INSTRUMENTRECORD_H

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/** Size of an instrument record in bytes, including its CRC. */
constexpr int instrumentRecordSize = 74;

/** Returns the entries of @p map that form an instrument record; nothing if one is missing. */
std::optional<QVariantMap> instrumentFields(const QVariantMap &map);

/**
 * Encodes @p fields as an instrument record. The values must be basic (see basicMap()).
 *
 * Numbers are truncated to one byte. "Model" is hexadecimal text. The other fields are bytes,
 * truncated or padded to the width of the field: serial and warranty number with "-", the two
 * passwords with zero bytes. A value that cannot be converted counts as 0 or as an empty byte
 * array.
 */
QByteArray encodeInstrumentRecord(const QVariantMap &fields);

/**
 * Decodes an instrument record.
 *
 * @return "CRC" = true and every field: numbers as int, "Model" as lower-case hexadecimal text,
 *         other fields as byte arrays of their full width; only "CRC" = false if @p record has a
 *         wrong size or CRC
 */
QVariantMap decodeInstrumentRecord(const QByteArray &record);

#endif
