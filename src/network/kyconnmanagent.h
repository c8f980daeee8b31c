#ifndef KYCONNMANAGENT_H
#define KYCONNMANAGENT_H

#include "agentanswer.h"
#include "introspection/Agent.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QVariantMap>

class QDBusMessage;

/**
 * ConnMan's agent: answers its questions while it joins a secured network.
 *
 * It does not watch ConnMan: after a restart of ConnMan the next connection registers it anew.
 */
class KyConnmanAgent : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.connman.Agent")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_AGENT)

public:
    explicit KyConnmanAgent(QObject *parent);

    /** Stores what the next questions are answered with, and allows two answers. */
    void setCredentials(const QString &identity, const QString &passphrase);

public Q_SLOTS:
    /**
     * The stored value for each credential that @p fields calls mandatory; other fields stay
     * without an answer.
     *
     * net.connman.Agent.Error.Canceled, with an empty text, for the third request after
     * setCredentials() and for every later one, and before the first setCredentials().
     */
    QVariantMap RequestInput(const QDBusObjectPath &service, const QVariantMap &fields,
                             const QDBusMessage &message);

    /**
     * Asks ConnMan to try again, whatever the error was: net.connman.Agent.Error.Retry, with an
     * empty text, always.
     */
    void ReportError(const QDBusObjectPath &service, const QString &error,
                     const QDBusMessage &message);

private:
    Credentials m_credentials;
    /** How many more requests may still be answered, plus one. */
    qint16 m_remainingRequests = 0;
};

#endif
