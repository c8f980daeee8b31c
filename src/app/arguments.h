#ifndef ARGUMENTS_H
#define ARGUMENTS_H

class QDBusMessage;

/**
 * Returns true if @p message, a call of a method that takes no arguments, carries no arguments.
 *
 * Otherwise replies with org.freedesktop.DBus.Error.UnknownMethod, as Qt D-Bus itself does when
 * another method is called with a wrong signature. Qt D-Bus does not check the signature if the
 * method takes no arguments.
 */
bool hasNoArguments(const QDBusMessage &message);

/**
 * Returns true if the map in @p message, a call of a method that takes a map, is within
 * mostValuesOfMap (see limitedMap()). Otherwise replies with
 * org.freedesktop.DBus.Error.LimitsExceeded; the slot has received an empty map.
 */
bool hasMapWithinLimits(const QDBusMessage &message);

#endif
