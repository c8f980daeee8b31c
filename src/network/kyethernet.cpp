#include "kyethernet.h"

#include "arguments.h"

#include <QDBusMessage>

KyEthernet::KyEthernet(QObject *parent)
    : KyTcpIp(QStringLiteral("ethernet"), QStringLiteral("eth0"), parent), m_link(m_parts)
{
    QObject::connect(&m_link, &LinkDriver::propertyChanged, this, &KyTcpIp::propertyChanged);
    m_link.start();
}

void KyEthernet::connect(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        m_link.call(LinkEvent::ConnectCalled, message);
}

void KyEthernet::disconnect(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        m_link.call(LinkEvent::DisconnectCalled, message);
}
