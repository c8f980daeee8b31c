#ifndef BUSVALUE_H
#define BUSVALUE_H

#include <QVariant>
#include <QVector>

/*
 * Safe reading of values from the bus.
 *
 * Qt D-Bus aborts the process when a compound is read as the wrong type, or read twice. Therefore
 * pass every variant, and every map of variants, of a message to one of these functions first. They
 * check the type and read a copy, so the original can still be read and sent. If a map has several
 * entries with the same key, the last one counts.
 */

/**
 * Unwraps variants, and converts compounds to ordinary Qt values, at every depth:
 * - "a{sv}" to a QVariantMap, "av" to a QVariantList;
 * - "as" to a QStringList, "ay" to a QByteArray;
 * - any other array of numbers to a QList of numbers of the same type;
 * - any other compound (structure, other dictionary, array of arrays) to an invalid QVariant.
 */
QVariant plainValue(const QVariant &value);

/** Applies plainValue() to every value of @p map. Move the map to avoid a copy. */
QVariantMap plainMap(QVariantMap map);

/**
 * Removes the variants around a number, a text, a byte array (ay) or a list of texts (as). Returns
 * an invalid QVariant for any other compound, without reading it.
 */
QVariant basicValue(const QVariant &value);

/** Applies basicValue() to every value of @p map. */
QVariantMap basicMap(const QVariantMap &map);

/** Returns plainValue() of @p value if that is a map, otherwise an empty map. */
QVariantMap toMap(const QVariant &value);

/**
 * Returns @p map without the invalid values and the empty signatures that it holds at any depth.
 *
 * Qt D-Bus silently drops a whole message that contains such a value, and sends no error either.
 */
QVariantMap sendableMap(const QVariantMap &map);

/**
 * Returns the elements of @p value: an array of texts (as), of variants (av), or of numbers of one
 * type. Returns an empty vector for any other value.
 *
 * Every element is truncated to its low 32 bits; a floating-point number is rounded. An element
 * that is neither a number nor the text of a number becomes 0.
 */
QVector<quint32> toNumbers(const QVariant &value);

/**
 * Returns @p map without the entries that cannot be stored and sent later: entries with a file
 * descriptor or an empty signature at any depth.
 *
 * A stored file descriptor keeps the sender's file open, and Qt D-Bus leaks a file descriptor each
 * time it sends one inside a compound. For empty signatures see sendableMap().
 */
QVariantMap storableMap(const QVariantMap &map);

/**
 * Returns a copy of @p value with the same D-Bus type. The copy holds no reference to the message
 * in which @p value came. Compounds are marshalled again: their copy can be sent, but not read.
 */
QVariant detachedValue(const QVariant &value);

/**
 * Estimates how many bytes @p value takes on the bus: 8 for each number, text, byte array and other
 * compound, plus the length of texts (as UTF-8) and byte arrays.
 *
 * @param enough counting may stop at this size; a result that reaches it is a lower bound
 */
int sizeOnBus(const QVariant &value, int enough);

#endif
