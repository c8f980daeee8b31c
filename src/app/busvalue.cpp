#include "busvalue.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QStringList>

namespace
{
/** Reads an array of numbers, keeping the numbers' type. */
template <typename Number>
QVariant readNumbers(const QDBusArgument &argument)
{
    return QVariant::fromValue(qdbus_cast<QList<Number>>(argument));
}

QVariantList plainList(const QVariantList &list)
{
    QVariantList plain;
    for (const QVariant &element : list)
        plain << plainValue(element);
    return plain;
}

using Reader = QVariant (*)(const QDBusArgument &);

/** How each compound that can be read is read, by its signature. */
const struct {
    const char *signature;
    Reader read;
} readers[] = {
    {"a{sv}",
     [](const QDBusArgument &a) -> QVariant { return plainMap(qdbus_cast<QVariantMap>(a)); }},
    {"av",
     [](const QDBusArgument &a) -> QVariant { return plainList(qdbus_cast<QVariantList>(a)); }},
    {"as", [](const QDBusArgument &a) -> QVariant { return qdbus_cast<QStringList>(a); }},
    {"ay", [](const QDBusArgument &a) -> QVariant { return qdbus_cast<QByteArray>(a); }},
    {"ab", readNumbers<bool>},
    {"an", readNumbers<short>},
    {"aq", readNumbers<ushort>},
    {"ai", readNumbers<int>},
    {"au", readNumbers<uint>},
    {"ax", readNumbers<qlonglong>},
    {"at", readNumbers<qulonglong>},
    {"ad", readNumbers<double>},
};

QVariant readCompound(const QDBusArgument &argument)
{
    const QString signature = argument.currentSignature();
    for (const auto &reader : readers) {
        if (signature == QLatin1String(reader.signature))
            return reader.read(argument);
    }
    return QVariant();
}
} // namespace

QVariant plainValue(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return plainValue(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return readCompound(value.value<QDBusArgument>());
    if (value.userType() == QMetaType::QVariantMap)
        return plainMap(value.toMap());
    if (value.userType() == QMetaType::QVariantList)
        return plainList(value.toList());
    return value;
}

QVariantMap plainMap(const QVariantMap &map)
{
    QVariantMap plain;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        plain.insert(entry.key(), plainValue(entry.value()));
    return plain;
}

QVariantMap toMap(const QVariant &value)
{
    return plainValue(value).toMap();
}

namespace
{
QVariant sendableValue(const QVariant &value);

QVariantList sendableList(const QVariantList &list)
{
    QVariantList sendable;
    for (const QVariant &element : list) {
        if (element.isValid())
            sendable << sendableValue(element);
    }
    return sendable;
}

QVariant sendableValue(const QVariant &value)
{
    if (value.userType() == QMetaType::QVariantMap)
        return sendableMap(value.toMap());
    if (value.userType() == QMetaType::QVariantList)
        return sendableList(value.toList());
    return value;
}
} // namespace

QVariantMap sendableMap(const QVariantMap &map)
{
    QVariantMap sendable;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        if (entry.value().isValid())
            sendable.insert(entry.key(), sendableValue(entry.value()));
    }
    return sendable;
}
