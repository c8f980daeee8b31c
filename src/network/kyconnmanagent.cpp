#include "kyconnmanagent.h"

#include "error.h"

#include <QDBusMessage>

KyConnmanAgent::KyConnmanAgent(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyConnmanAgent::setCredentials(const QString &identity, const QString &passphrase)
{
    m_credentials = {identity, passphrase};
    m_remainingRequests = 3;
}

QVariantMap KyConnmanAgent::RequestInput(const QDBusObjectPath &, const QVariantMap &fields,
                                         const QDBusMessage &message)
{
    // Stop at zero, so that the counter cannot overflow: ConnMan may send thousands of requests a
    // second.
    if (m_remainingRequests > 0)
        --m_remainingRequests;
    if (m_remainingRequests < 1) {
        sendErrorReply(QStringLiteral("net.connman.Agent.Error.Canceled"), QString(), message);
        return QVariantMap();
    }
    return agentAnswer(fields, m_credentials);
}

void KyConnmanAgent::ReportError(const QDBusObjectPath &, const QString &,
                                 const QDBusMessage &message)
{
    sendErrorReply(QStringLiteral("net.connman.Agent.Error.Retry"), QString(), message);
}
