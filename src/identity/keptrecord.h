#ifndef KEPTRECORD_H
#define KEPTRECORD_H

#include <QVariantMap>

/** How many bytes the entries of a kept record that are none of its fields may have in all. */
extern const int mostSurplus;

/**
 * What is kept of @p map, a record that a caller has set, to be answered later in the types in
 * which it came: its @p fields, and of its other entries, in the order of their keys, each one that
 * still fits into mostSurplus bytes (key and value, see sizeOnBus()).
 *
 * Without entries that cannot be stored (see storableMap()), and without the caller's "CRC".
 * Nothing of it keeps the caller's message alive.
 */
QVariantMap keptRecord(const QVariantMap &map, const QVariantMap &fields);

#endif
