#ifndef ARGUMENTS_H
#define ARGUMENTS_H

class QDBusMessage;

/**
 * Returns true if @p message, a call of a method that takes no arguments, carries no arguments.
 *
 * Otherwise replies with org.freedesktop.DBus.Error.UnknownMethod. Qt D-Bus itself sends this error
 * for a call with a wrong signature, but does not check the signature if the method takes no
 * arguments.
 */
bool hasNoArguments(const QDBusMessage &message);

/**
 * Returns true if the map in @p message, a call of a method that takes a map, is within
 * mostValuesOfMap. Otherwise replies with org.freedesktop.DBus.Error.LimitsExceeded. Qt D-Bus calls
 * the slot even for a map beyond this limit, but with an empty map (see limitedMap()).
 */
bool hasMapWithinLimits(const QDBusMessage &message);

#endif
