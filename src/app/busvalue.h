#ifndef BUSVALUE_H
#define BUSVALUE_H

#include <QVariant>

/**
 * A value that came from the bus, as ordinary Qt values all the way down.
 *
 * This is the only place that reads compound values of messages: the bus library ends the process
 * when one is read as another type than it has, or read twice. So whoever takes a variant, or a
 * map of them, from a message converts it here, once, before looking at it.
 *
 * Variants are unwrapped at every depth. a{sv} becomes a QVariantMap, av a QVariantList, as a
 * QStringList, ay a QByteArray, an array of numbers a list of that number's type. Any other
 * compound (structures, other dictionaries, arrays of arrays) becomes an invalid QVariant, and a
 * map entry or a list element of such a value stays in its place as an invalid one.
 */
QVariant plainValue(const QVariant &value);

/** plainValue() of every value of @p map. */
QVariantMap plainMap(const QVariantMap &map);

/** @p value as a map where it is one, an empty map otherwise. */
QVariantMap toMap(const QVariant &value);

/**
 * @p map without the invalid values in it, at every depth: what can be sent on.
 *
 * The bus library sends no message at all, not even an error, in the place of one with such a
 * value in it.
 */
QVariantMap sendableMap(const QVariantMap &map);

#endif
