#include "enumnames.h"

#include <QMetaObject>

QMetaEnum registeredEnum(const QMetaObject &metaObject, const char *name)
{
    return metaObject.enumerator(metaObject.indexOfEnumerator(name));
}

std::optional<int> enumValue(const QMetaEnum &enumeration, const QString &name)
{
    for (int index = 0; index < enumeration.keyCount(); ++index) {
        if (name == QLatin1String(enumeration.key(index)))
            return enumeration.value(index);
    }
    return std::nullopt;
}

QString enumName(const QMetaEnum &enumeration, int value)
{
    return QString::fromLatin1(enumeration.valueToKey(value));
}

QStringList enumNames(const QMetaEnum &enumeration)
{
    QStringList names;
    for (int index = 0; index < enumeration.keyCount(); ++index)
        names << QString::fromLatin1(enumeration.key(index));
    return names;
}
