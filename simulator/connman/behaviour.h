#ifndef BEHAVIOUR_H
#define BEHAVIOUR_H

#include <QDBusMessage>
#include <QString>
#include <QVariant>

/**
 * Carries out the calls that ConnMan accepts, and replies to them. There are two behaviours: Still
 * sends no signals, so that a test decides about each of them; Lively acts as the real ConnMan.
 */
class Behaviour
{
public:
    virtual ~Behaviour() = default;

    virtual void setPowered(const QDBusMessage &call, bool powered) = 0;
    virtual void setServiceProperty(const QDBusMessage &call, const QString &name,
                                    const QVariant &value) = 0;
    virtual void connectService(const QDBusMessage &call) = 0;
    virtual void disconnectService(const QDBusMessage &call) = 0;
    virtual void removeService(const QDBusMessage &call) = 0;
    virtual void scan(const QDBusMessage &call) = 0;
};

#endif
