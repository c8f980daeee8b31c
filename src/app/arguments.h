#ifndef ARGUMENTS_H
#define ARGUMENTS_H

class QDBusMessage;

/**
 * Whether @p message, a call of a method that takes no arguments, brings none.
 *
 * Qt D-Bus hands such a method every call of its name, whatever it brings. One that brings
 * arguments is answered here with the error that every other method of ours answers to a wrong
 * signature: org.freedesktop.DBus.Error.UnknownMethod.
 */
bool hasNoArguments(const QDBusMessage &message);

/**
 * Whether the map in @p message, a call of a method that takes one, is within the limits of
 * limitedMap(). Otherwise the method got an empty one, and the call is answered here with
 * org.freedesktop.DBus.Error.LimitsExceeded.
 */
bool hasMapWithinLimits(const QDBusMessage &message);

#endif
