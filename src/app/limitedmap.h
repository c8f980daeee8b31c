#ifndef LIMITEDMAP_H
#define LIMITEDMAP_H

#include <QVariantMap>

class QDBusArgument;

/**
 * The limit of values in one entry of a caller's map, at all depths together; a text is one value.
 */
constexpr int mostValuesOfEntry = 8192;

/** The limit of values in a caller's map: its keys and everything in its entries. */
constexpr int mostValuesOfMap = 16 * mostValuesOfEntry;

/**
 * Reads @p argument, an a{sv}, up to its limits. Of several entries with the same key the last one
 * counts.
 *
 * An entry with more than mostValuesOfEntry values becomes invalid, and a map with more than
 * mostValuesOfMap values empty. Neither is built: building 30 MB of small values takes seconds.
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
