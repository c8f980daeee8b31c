#ifndef STILL_H
#define STILL_H

#include "behaviour.h"

#include <QMap>

class Connman;

/**
 * The behaviour for tests that send every signal themselves. Replies to all calls, and stores the
 * properties that they set. Connect calls the agent only if askOnConnect() has requested this.
 */
class Still : public Behaviour
{
public:
    explicit Still(Connman &connman) : m_connman(connman) {}

    /** Makes Connect of this service ask the caller's agent for @p fields before it replies. */
    void askOnConnect(const QString &service, const QVariantMap &fields);

    void setPowered(const QDBusMessage &call, bool powered) override;
    void setServiceProperty(const QDBusMessage &call, const QString &name,
                            const QVariant &value) override;
    void connectService(const QDBusMessage &call) override;
    void disconnectService(const QDBusMessage &call) override;
    void removeService(const QDBusMessage &call) override;
    void scan(const QDBusMessage &call) override;

private:
    Connman &m_connman;
    QMap<QString, QVariantMap> m_questions;
};

#endif
