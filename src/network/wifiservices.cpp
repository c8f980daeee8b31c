#include "wifiservices.h"

#include "busvalue.h"

#include <QStringList>

namespace
{
const QString nameProperty = QStringLiteral("Name");

bool isListed(const ConnmanObject &service)
{
    const QString path = service.path.path();
    return path.contains(QLatin1String("wifi_")) && !path.contains(QLatin1String("hidden_")) &&
           service.properties.contains(nameProperty);
}

QStringList scanEntry(const ConnmanObject &service)
{
    return {
        service.path.path(),
        QString::number(service.properties.value(QStringLiteral("Strength")).toUInt()),
        service.properties.value(QStringLiteral("Security")).toStringList().join(QLatin1Char(','))};
}
} // namespace

QList<ConnmanObject> wifiServices(const QList<ConnmanObject> &services)
{
    QList<ConnmanObject> networks;
    for (const ConnmanObject &service : services) {
        if (service.properties.value(QStringLiteral("Type")).toString() == QLatin1String("wifi"))
            networks << service;
    }
    return networks;
}

std::optional<ConnmanObject> wifiServiceNamed(const QList<ConnmanObject> &services,
                                              const QString &name)
{
    for (const ConnmanObject &service : services) {
        if (service.properties.contains(nameProperty) &&
            service.properties.value(nameProperty).toString() == name)
            return service;
    }
    return std::nullopt;
}

QVariantMap wifiScanList(const QList<ConnmanObject> &services)
{
    QVariantMap list;
    for (const ConnmanObject &service : services) {
        const QString name = service.properties.value(nameProperty).toString();
        if (isListed(service) && !list.contains(name))
            list.insert(name, scanEntry(service));
    }
    return list;
}

std::optional<QVariant> strengthOf(const QVariant &value)
{
    QVariant basic = basicValue(value);
    if (!basic.canConvert(QMetaType::UInt))
        return std::nullopt;
    return basic;
}

WifiServiceChange wifiServiceChange(const QString &name, const QVariant &value)
{
    const std::optional<QVariant> strength = strengthOf(value);
    if (name == QStringLiteral("Strength") && strength)
        return {LinkEvent::ServiceStrength, *strength};
    // ConnMan announces an empty error when it clears one.
    if (name == QStringLiteral("Error") && !basicValue(value).toString().isEmpty())
        return {LinkEvent::ServiceError, QVariant()};
    if (name == QStringLiteral("IPv4") && toMap(value).contains(QStringLiteral("Address")))
        return {LinkEvent::ServiceAddress, QVariant()};
    return {LinkEvent::ServiceOther, QVariant()};
}
