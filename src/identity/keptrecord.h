#ifndef KEPTRECORD_H
#define KEPTRECORD_H

#include <QVariantMap>

/** The limit in bytes (sizeOnBus()) for the fields of a kept record, and for its other entries. */
constexpr int mostFieldBytes = 65536;
constexpr int mostSurplusBytes = 65536;

/**
 * Returns true if @p fields are small enough to keep: at most mostFieldBytes, and no value too
 * long to be read.
 */
bool canBeKept(const QVariantMap &fields);

/**
 * Returns the part of @p map, a record that a caller has set, that is kept for later replies in its
 * original types: its @p fields, and of its other entries, in the order of their keys, each one
 * that still fits into mostSurplusBytes (key and value, see sizeOnBus()) and was short enough to
 * be read.
 *
 * Leaves out entries that cannot be stored (see storableMap()) and the caller's "CRC". The result
 * holds no reference to the caller's message.
 */
QVariantMap keptRecord(const QVariantMap &map, const QVariantMap &fields);

#endif
