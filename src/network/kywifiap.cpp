#include "kywifiap.h"

#include "arguments.h"

#include <QDBusMessage>

KyWifiAp::KyWifiAp(QObject *parent)
    : KyTcpIp(QStringLiteral("wifi"), QStringLiteral("wifi_ap"), parent,
              QStringLiteral("/net/wap")),
      m_accessPoint(m_parts)
{
    QObject::connect(&m_accessPoint, &LinkDriver::propertyChanged, this, &KyTcpIp::propertyChanged);
}

void KyWifiAp::connect(const QVariantMap &parameters, const QDBusMessage &message)
{
    if (!hasMapWithinLimits(message))
        return;
    m_accessPoint.call(LinkEvent::ConnectCalled, message, parameters);
}

void KyWifiAp::disconnect(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        m_accessPoint.call(LinkEvent::DisconnectCalled, message);
}

void KyWifiAp::wpsEnable() {}
