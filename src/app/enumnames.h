#ifndef ENUMNAMES_H
#define ENUMNAMES_H

#include <QMetaEnum>
#include <QString>

#include <optional>

/*
 * Names of enumerators, as clients write and read them, from the type registry.
 */

/** The enumeration @p name that the class of @p metaObject registers. */
QMetaEnum registeredEnum(const QMetaObject &metaObject, const char *name);

/**
 * The value of the enumerator called @p name.
 *
 * Exactly so: the registry's own look-up would also take a name qualified with its class.
 *
 * @return nothing when no enumerator has that name
 */
std::optional<int> enumValue(const QMetaEnum &enumeration, const QString &name);

/** The name of the enumerator with @p value; empty when none has it. */
QString enumName(const QMetaEnum &enumeration, int value);

#endif
