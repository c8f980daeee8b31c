#ifndef KEPTRECORD_H
#define KEPTRECORD_H

#include <QVariantMap>

/** How many bytes the fields of a kept record may have in all, and its other entries (sizeOnBus()).
 */
extern const int mostOfFields;
extern const int mostSurplus;

/** Whether @p fields are of a size that is kept: mostOfFields bytes, and no value too long to be
 * read. */
bool canBeKept(const QVariantMap &fields);

/**
 * What is kept of @p map, a record that a caller has set, to be answered later in the types in
 * which it came: its @p fields, and of its other entries, in the order of their keys, each one that
 * still fits into mostSurplus bytes (key and value, see sizeOnBus()) and was short enough to be
 * read.
 *
 * Without entries that cannot be stored (see storableMap()), and without the caller's "CRC".
 * Nothing of it keeps the caller's message alive.
 */
QVariantMap keptRecord(const QVariantMap &map, const QVariantMap &fields);

#endif
