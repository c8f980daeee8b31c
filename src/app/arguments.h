#ifndef ARGUMENTS_H
#define ARGUMENTS_H

class QDBusMessage;

/**
 * Returns true if @p message, a call of a method without arguments, carries none.
 *
 * Qt D-Bus dispatches such a call to the slot whatever arguments it carries. If it carries any,
 * this function replies with the error that our other methods send for a wrong signature:
 * org.freedesktop.DBus.Error.UnknownMethod.
 */
bool hasNoArguments(const QDBusMessage &message);

/**
 * Returns true if the map in @p message, a call of a method that takes one, is within the limits of
 * limitedMap(). Otherwise the method got an empty map, and this function replies with
 * org.freedesktop.DBus.Error.LimitsExceeded.
 */
bool hasMapWithinLimits(const QDBusMessage &message);

#endif
