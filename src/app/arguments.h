#ifndef ARGUMENTS_H
#define ARGUMENTS_H

class QDBusMessage;

/**
 * Returns true if @p message, a call of a method that takes no arguments, carries no arguments.
 *
 * Otherwise replies with org.freedesktop.DBus.Error.UnknownMethod, the error of all other methods
 * for a wrong signature. For a method without arguments Qt D-Bus does not check the signature.
 */
bool hasNoArguments(const QDBusMessage &message);

/**
 * Returns true if the map in @p message, a call of a method that takes one, is within the limits of
 * limitedMap(). Otherwise replies with org.freedesktop.DBus.Error.LimitsExceeded; the method has
 * received an empty map.
 */
bool hasMapWithinLimits(const QDBusMessage &message);

#endif
