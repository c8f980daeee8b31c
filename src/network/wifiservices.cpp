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

ConnmanObject wifiServiceNamed(const QList<ConnmanObject> &services, const QString &name)
{
    for (const ConnmanObject &service : services) {
        if (service.properties.contains(nameProperty) &&
            service.properties.value(nameProperty).toString() == name)
            return service;
    }
    return ConnmanObject();
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

QVariant strengthOf(const QVariant &value)
{
    const QVariant basic = basicValue(value);
    return basic.canConvert(QMetaType::UInt) ? basic : QVariant();
}

WifiServiceChange wifiServiceChange(const QString &name, const QVariant &value)
{
    if (name == QStringLiteral("Strength") && strengthOf(value).isValid())
        return {LinkEvent::ServiceStrength, strengthOf(value)};
    // ConnMan announces an empty error when it clears one.
    if (name == QStringLiteral("Error") && !basicValue(value).toString().isEmpty())
        return {LinkEvent::ServiceError, QVariant()};
    if (name == QStringLiteral("IPv4") && toMap(value).contains(QStringLiteral("Address")))
        return {LinkEvent::ServiceAddress, QVariant()};
    return {LinkEvent::ServiceOther, QVariant()};
}
