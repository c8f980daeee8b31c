#ifndef ENUMNAMES_H
#define ENUMNAMES_H

#include <QMetaEnum>
#include <QString>
#include <QStringList>

#include <optional>

/*
 * Converts enumerators to their names on the bus and back, with Qt's meta-object data.
 */

/** Returns the enumeration @p name of the class that @p metaObject describes. */
QMetaEnum registeredEnum(const QMetaObject &metaObject, const char *name);

/**
 * Returns the value of the enumerator called @p name, or nothing if there is none.
 *
 * The comparison is exact: QMetaEnum::keyToValue() would also accept a name qualified with its
 * class.
 */
std::optional<int> enumValue(const QMetaEnum &enumeration, const QString &name);

/** Returns the name of the enumerator with @p value; empty if there is none. */
QString enumName(const QMetaEnum &enumeration, int value);

/** Returns the names of all enumerators, in the order of their declaration. */
QStringList enumNames(const QMetaEnum &enumeration);

#endif
