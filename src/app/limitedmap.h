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
 * An entry with more than mostValuesOfEntry values gets an invalid QVariant. If the whole map has
 * more than mostValuesOfMap values, the function returns an empty map. It does not build the values
 * beyond these limits: building 30 MB of small values takes seconds.
 */
QVariantMap limitedMap(const QDBusArgument &argument);

/**
 * Returns true if @p argument, an a{sv}, is within mostValuesOfMap. Single entries may exceed
 * mostValuesOfEntry.
 */
bool isWithinLimits(const QDBusArgument &argument);

/**
 * Registers limitedMap() as Qt D-Bus's reader for every a{sv} parameter of a slot.
 *
 * The slot itself cannot check the size: Qt D-Bus has read the parameters before it calls the slot.
 */
void limitMaps();

#endif
