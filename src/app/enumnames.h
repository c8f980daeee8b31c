#ifndef ENUMNAMES_H
#define ENUMNAMES_H

#include <QMetaEnum>
#include <QString>
#include <QStringList>

#include <optional>

/*
 * Names of enumerators, as clients write and read them, from the type registry.
 */

/** The enumeration @p name that the class of @p metaObject registers. */
QMetaEnum registeredEnum(const QMetaObject &metaObject, const char *name);

/**
 * Returns the value of the enumerator called @p name, or nothing if there is none.
 *
 * Compares exactly: QMetaEnum's own look-up would accept a name qualified with its class, too.
 */
std::optional<int> enumValue(const QMetaEnum &enumeration, const QString &name);

/** Returns the name of the enumerator with @p value; empty if there is none. */
QString enumName(const QMetaEnum &enumeration, int value);

/** The names of all enumerators, in the order of their declaration. */
QStringList enumNames(const QMetaEnum &enumeration);

#endif
