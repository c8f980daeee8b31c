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

    /** Stores the credentials for the next two requests. */
    void setCredentials(const QString &identity, const QString &passphrase);

public Q_SLOTS:
    /**
     * Returns the stored value for each credential that @p fields marks as mandatory; no value for
     * other fields.
     *
     * Each setCredentials() allows two requests. All further requests, and all requests before the
     * first setCredentials(), fail with net.connman.Agent.Error.Canceled and an empty text.
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
    /** setCredentials() sets 3. Each request subtracts 1, and fails if 0 is left. */
    qint16 m_remainingRequests = 0;
};

#endif
