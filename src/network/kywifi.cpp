#include "kywifi.h"

#include "arguments.h"
#include "wifiservices.h"

#include <QDBusMessage>

KyWifi::KyWifi(QObject *parent)
    : KyTcpIp(QStringLiteral("wifi"), QStringLiteral("wifi_sta"), parent), m_station(m_parts)
{
    QObject::connect(&m_station, &LinkDriver::propertyChanged, this, &KyTcpIp::propertyChanged);
    QObject::connect(&m_station, &WifiStation::servicesListChanged, this,
                     &KyWifi::servicesListChanged);
    m_station.start();
}

void KyWifi::connect(const QVariantMap &settings, const QDBusMessage &message)
{
    if (!hasMapWithinLimits(message))
        return;
    m_station.call(LinkEvent::ConnectCalled, message, settings);
}

void KyWifi::disconnect(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        m_station.call(LinkEvent::DisconnectCalled, message);
}

void KyWifi::scan(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        m_station.call(LinkEvent::ScanCalled, message);
}

QVariantMap KyWifi::getStrength()
{
    const QString key = QStringLiteral("Strength");
    const std::optional<QVariant> strength = strengthOf(m_parts.service.properties().value(key));
    return strength ? QVariantMap{{key, *strength}} : QVariantMap();
}
