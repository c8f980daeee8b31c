#ifndef KYCONNMANAGENT_H
#define KYCONNMANAGENT_H

#include "agentanswer.h"
#include "introspection/Agent.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QVariantMap>

class QDBusMessage;

/**
 * ConnMan's agent: provides the credentials while ConnMan joins a secured network.
 *
 * The agent does not watch ConnMan. After a restart of ConnMan, the next connection registers the
 * agent again.
 */
class KyConnmanAgent : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.connman.Agent")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_AGENT)

public:
    explicit KyConnmanAgent(QObject *parent);

    /** Stores the credentials for the next requests, and allows two replies. */
    void setCredentials(const QString &identity, const QString &passphrase);

public Q_SLOTS:
    /**
     * Returns the stored value for each credential that @p fields marks as mandatory; no value for
     * other fields.
     *
     * Fails with net.connman.Agent.Error.Canceled and an empty text before the first
     * setCredentials(), and from the third request after each setCredentials() on.
     */
    QVariantMap RequestInput(const QDBusObjectPath &service, const QVariantMap &fields,
                             const QDBusMessage &message);

    /**
     * Always replies with net.connman.Agent.Error.Retry and an empty text, whatever @p error is.
     */
    void ReportError(const QDBusObjectPath &service, const QString &error,
                     const QDBusMessage &message);

private:
    Credentials m_credentials;
    /** One more than the number of requests that may still be answered; 0 after a refusal. */
    qint16 m_remainingRequests = 0;
};

#endif
