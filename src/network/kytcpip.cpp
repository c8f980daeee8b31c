#include "kytcpip.h"

#include "arguments.h"
#include "busfailure.h"
#include "busvalue.h"
#include "connman.h"
#include "networkinterface.h"

#include <QDBusMessage>

KyTcpIp::KyTcpIp(const QString &technology, const QString &interfaceName, QObject *parent,
                 const QString &servicePath)
    : QDBusAbstractAdaptor(parent), m_parts(technology, interfaceName, servicePath)
{
}

void KyTcpIp::setIPv4(const QVariantMap &settings, const QDBusMessage &message)
{
    if (!hasMapWithinLimits(message))
        return;
    const std::optional<ConnmanObject> technology =
        connman::findObject(connman::technologies(), QStringLiteral("Type"), m_parts.technology);
    if (technology &&
        technology->properties.value(QStringLiteral("Connected")).type() == QVariant::Bool)
        m_parts.settings.take(settings);
    else
        sendFailure(QStringLiteral("Cannot get property Connected"), message);
}

QVariantMap KyTcpIp::getIPv4()
{
    return m_parts.service.ipv4();
}

QVariantMap KyTcpIp::getHardwareInfos()
{
    const QVariantMap properties = m_parts.service.properties();
    if (!properties.isEmpty())
        return sendableMap(toMap(properties.value(QStringLiteral("Ethernet"))));

    const QNetworkInterface interface = findNetworkInterface(m_parts.interfaceName);
    if (!interface.isValid())
        return QVariantMap();
    return {{QStringLiteral("Method"), QString()},
            {QStringLiteral("Interface"), m_parts.interfaceName},
            {QStringLiteral("Address"), interface.hardwareAddress()},
            {QStringLiteral("MTU"),
             QVariant::fromValue(maximumTransmissionUnit(interface).value_or(0))}};
}
