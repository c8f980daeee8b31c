#ifndef KEPTRECORD_H
#define KEPTRECORD_H

#include <QVariantMap>

/**
 * The daemon keeps a record that a caller has set, and repeats it in later replies. These are the
 * limits of a kept record in bytes (see sizeOnBus()): for the fields of the record, and for all
 * other entries of the caller's map.
 */
constexpr int mostFieldBytes = 65536;
constexpr int mostSurplusBytes = 65536;

/**
 * Returns true if @p fields can be kept: they take mostFieldBytes at most, and every value is
 * valid. limitedMap() makes an entry with too many values invalid.
 */
bool canBeKept(const QVariantMap &fields);

/**
 * Returns the part that the daemon keeps of @p map, a record that a caller has set: all @p fields,
 * and as many of the other entries as fit into mostSurplusBytes (key and value, see sizeOnBus()).
 * Takes the other entries in the order of their keys; skips an entry that is invalid or does not
 * fit. The values have their original types.
 *
 * Leaves out the caller's "CRC", and fields and entries that cannot be stored (see storableMap()).
 * The result holds no reference to the caller's message.
 */
QVariantMap keptRecord(const QVariantMap &map, const QVariantMap &fields);

#endif
