#ifndef LIMITEDMAP_H
#define LIMITEDMAP_H

#include <QVariantMap>

class QDBusArgument;

/** How many values one entry of a caller's map may hold, at whatever depth; a text is one. */
extern const int mostValuesOfEntry;

/** How many values are read of a caller's map in all: its keys, and what its entries hold. */
extern const int mostValuesOfMap;

/**
 * Reads @p argument, an a{sv}, no further than its limits. Where it has several entries of one key,
 * the last one counts.
 *
 * An entry of more than mostValuesOfEntry values becomes an invalid one, and a map of more than
 * mostValuesOfMap values an empty one. Neither is built: 30 MB of small values take seconds.
 */
QVariantMap limitedMap(const QDBusArgument &argument);

/** Whether @p argument is an a{sv} that limitedMap() reads as a whole. */
bool isWithinLimits(const QDBusArgument &argument);

/**
 * From now on Qt D-Bus reads each a{sv} that it hands to a slot by limitedMap().
 *
 * Qt D-Bus reads a slot's parameters before it calls the slot, which would be too late to look at
 * the size.
 */
void limitMaps();

#endif
