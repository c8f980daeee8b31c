#include "kynetwork.h"

#include "arguments.h"
#include "error.h"

KyNetwork::KyNetwork(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyNetwork::redpinePower(bool state, const QDBusMessage &message)
{
    if (m_powerman.wifiPower(state) != 0)
        sendErrorReply(Error::Write, QStringLiteral("Fail to change redpine power state"), message);
}

void KyNetwork::redpineSoftReset(const QDBusMessage &message)
{
    if (hasNoArguments(message) && m_powerman.wifiSoftReset() != 0)
        sendErrorReply(Error::Write, QStringLiteral("Fail to soft reset redpine"), message);
}

void KyNetwork::redpineHardReset(const QDBusMessage &message)
{
    if (hasNoArguments(message) && m_powerman.wifiHardReset() != 0)
        sendErrorReply(Error::Write, QStringLiteral("Fail to hard reset redpine"), message);
}
