#ifndef LIMITEDMAP_H
#define LIMITEDMAP_H

#include <QVariantMap>

class QDBusArgument;

/**
 * The maximum number of values in one entry of a caller's map, counted at all depths. A text is one
 * value.
 */
constexpr int mostValuesOfEntry = 8192;

/** The maximum number of values in a caller's map: its keys, and the values of all its entries. */
constexpr int mostValuesOfMap = 16 * mostValuesOfEntry;

/**
 * Reads @p argument, an a{sv}, up to the limits above. If a key occurs more than once, its last
 * entry counts.
 *
 * Returns an invalid QVariant for an entry with more than mostValuesOfEntry values, and an empty
 * map for a map with more than mostValuesOfMap values. The function counts such values but does not
 * build them: building 30 MB of small values takes seconds.
 */
QVariantMap limitedMap(const QDBusArgument &argument);

/** Returns true if @p argument is an a{sv} that limitedMap() reads completely. */
bool isWithinLimits(const QDBusArgument &argument);

/**
 * Registers limitedMap() as Qt D-Bus's reader for every a{sv} parameter of a slot.
 *
 * Qt D-Bus reads the parameters before it calls the slot, too early for the slot to check the size.
 */
void limitMaps();

#endif
