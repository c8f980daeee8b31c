#include "leds.h"

#include "enumnames.h"

namespace
{
/**
 * Returns the enumerators of @p enumeration with their names. Callers keep the list instead of
 * building it for each reply.
 */
QVector<NamedValue> listNames(const char *enumeration)
{
    const QMetaEnum registered = registeredEnum(Leds::staticMetaObject, enumeration);
    QVector<NamedValue> names;
    for (int index = 0; index < registered.keyCount(); ++index)
        names.append({registered.value(index), QString::fromLatin1(registered.key(index))});
    return names;
}

const QVector<NamedValue> &stateNames()
{
    static const QVector<NamedValue> names = listNames("State");
    return names;
}

std::optional<int> valueNamed(const QVector<NamedValue> &names, const QString &name)
{
    for (const NamedValue &known : names) {
        if (known.name == name)
            return known.value;
    }
    return std::nullopt;
}
} // namespace

const QVector<NamedValue> &ledNames()
{
    static const QVector<NamedValue> names = listNames("Led");
    return names;
}

std::optional<int> ledNamed(const QString &name)
{
    return valueNamed(ledNames(), name);
}

std::optional<int> ledStateNamed(const QString &name)
{
    return valueNamed(stateNames(), name);
}

QString ledStateName(int state)
{
    for (const NamedValue &known : stateNames()) {
        if (known.value == state)
            return known.name;
    }
    return enumName(registeredEnum(Leds::staticMetaObject, "State"), Leds::UNKNOWN);
}
