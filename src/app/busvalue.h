#ifndef BUSVALUE_H
#define BUSVALUE_H

#include <QVariant>
#include <QVector>

/*
 * Safe reading of values from the bus.
 *
 * No other file reads compound values of messages: Qt D-Bus aborts the process when a compound is
 * read as the wrong type, or read twice. Pass every variant, and every map of variants, of a
 * message to one of these functions first. They read a copy, so the original can still be read and
 * sent. Of several map entries with the same key the last one counts.
 */

/**
 * Converts @p value to ordinary Qt values at every depth.
 *
 * Variants are unwrapped at every depth. a{sv} becomes a QVariantMap, av a QVariantList, as a
 * QStringList, ay a QByteArray, an array of numbers a list of that number's type. Any other
 * compound (structure, other dictionary, array of arrays) becomes an invalid QVariant; in a map or
 * list the invalid QVariant takes its place.
 */
QVariant plainValue(const QVariant &value);

/** plainValue() of every value of @p map. Cheapest when the map is moved. */
QVariantMap plainMap(QVariantMap map);

/**
 * Unwraps @p value from the variants around it if it is a number, a text, a byte array (ay) or a
 * list of texts (as). Returns an invalid QVariant for any other compound, without reading it.
 */
QVariant basicValue(const QVariant &value);

/** basicValue() of every value of @p map. */
QVariantMap basicMap(const QVariantMap &map);

/** Returns @p value if it is a map, otherwise an empty map. */
QVariantMap toMap(const QVariant &value);

/**
 * Returns @p map without invalid values and empty signatures, at every depth.
 *
 * Qt D-Bus silently sends no message at all, not even an error, for a message with such a value in
 * it.
 */
QVariantMap sendableMap(const QVariantMap &map);

/**
 * Returns the numbers of a list of numbers of any type, of texts (as) or of variants (av), of any
 * length; an empty vector for any other value.
 *
 * Every element is truncated to its low 32 bits; a floating-point one is rounded. An element that
 * is neither a number nor the text of one is 0.
 */
QVector<quint32> toNumbers(const QVariant &value);

/**
 * Returns @p map without the entries that cannot be stored and sent later: those with a file
 * descriptor or an empty signature at any depth.
 *
 * A stored descriptor keeps the sender's file open, and Qt D-Bus leaks a descriptor each time it
 * sends one inside a compound. Qt D-Bus never sends a message with an empty signature (see
 * sendableMap()).
 */
QVariantMap storableMap(const QVariantMap &map);

/**
 * Returns a copy of @p value with the same D-Bus type that holds no reference to the message in
 * which it came. Compounds are marshalled again: the copy can be sent, but not read.
 */
QVariant detachedValue(const QVariant &value);

/**
 * Estimates how many bytes @p value takes on the bus: 8 for each number, text, byte array and other
 * compound, plus the length of texts (as UTF-8) and byte arrays.
 *
 * @param enough counting may stop here; a larger result only means "more than this"
 */
int sizeOnBus(const QVariant &value, int enough);

#endif
