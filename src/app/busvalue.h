#ifndef BUSVALUE_H
#define BUSVALUE_H

#include <QVariant>
#include <QVector>

/*
 * Values that came from the bus, read safely.
 *
 * This is the only place that reads compound values of messages: Qt D-Bus ends the process
 * when one is read as another type than it has, or read twice. Whoever takes a variant, or a map
 * of them, from a message lets one of these functions read it before looking at it. They read a
 * copy: the value that they were given can be read again, and sent again as it came. Where a map
 * has several entries of one key, the last one counts.
 */

/**
 * @p value as ordinary Qt values all the way down.
 *
 * Variants are unwrapped at every depth. a{sv} becomes a QVariantMap, av a QVariantList, as a
 * QStringList, ay a QByteArray, an array of numbers a list of that number's type. Any other
 * compound (structures, other dictionaries, arrays of arrays) becomes an invalid QVariant, and a
 * map entry or a list element of such a value stays in its place as an invalid one.
 */
QVariant plainValue(const QVariant &value);

/** plainValue() of every value of @p map, which is cheapest when it is moved here. */
QVariantMap plainMap(QVariantMap map);

/**
 * @p value out of the variants around it, where it is a number, a text, a byte array (ay) or a
 * list of texts (as); an invalid QVariant for any other compound, which is not even read.
 */
QVariant basicValue(const QVariant &value);

/** basicValue() of every value of @p map. */
QVariantMap basicMap(const QVariantMap &map);

/** @p value as a map where it is one, an empty map otherwise. */
QVariantMap toMap(const QVariant &value);

/**
 * @p map without the invalid values and empty signatures in it, at every depth: what can be sent
 * on.
 *
 * Qt D-Bus sends no message at all, not even an error, in the place of one with such a value in it.
 */
QVariantMap sendableMap(const QVariantMap &map);

/**
 * The numbers of a list of numbers of any kind, of texts (as) or of variants (av), however long;
 * nothing for any other value.
 *
 * Every element is cut to its low 32 bits, a floating-point one is rounded. One that is no number,
 * nor text of one, is 0.
 */
QVector<quint32> toNumbers(const QVariant &value);

/**
 * @p map without the entries that cannot be stored and sent later: those that hold, at whatever
 * depth, a file descriptor or an empty signature.
 *
 * The sender's files would stay open, and Qt D-Bus leaks a descriptor each time it sends one inside
 * a compound. A message with an empty signature in it is never sent (see sendableMap()).
 */
QVariantMap storableMap(const QVariantMap &map);

/**
 * A copy of @p value, of the same type on the bus, that does not keep alive the message in which it
 * came. Compounds are written once more; they can be sent, and not be read any more.
 */
QVariant detachedValue(const QVariant &value);

/**
 * About how many bytes @p value takes on the bus: 8 for each number, text, byte array and other
 * compound, and the length of texts (as UTF-8) and byte arrays.
 *
 * @param enough where counting may stop: anything from there on means more than that
 */
int sizeOnBus(const QVariant &value, int enough);

#endif
