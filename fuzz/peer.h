#ifndef PEER_H
#define PEER_H

#include "choices.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>
#include <QObject>

#include <dbus/dbus.h>

#include <string>

/**
 * Sends values through Qt D-Bus within this process, so that readers get them in the same form as
 * the daemon, without a bus.
 */
class Peer : public QObject
{
    Q_OBJECT

public:
    /** The only instance in the process, created on first use. */
    static Peer &instance();

    /**
     * Returns values of the types @p signature, made from @p choices, as a slot receives them.
     *
     * @param around the number of container levels that will be around the values later
     */
    QVariantList receive(const std::string &signature, Choices &choices, int around = 0);

    /** Returns up to five values of any types. */
    QVariantList receiveAnything(Choices &choices);

    /** Returns true if Qt D-Bus can send a message with @p values, and its receiver accepts it. */
    bool canSend(const QVariantList &values);

private Q_SLOTS:
    void accept(const QDBusConnection &connection);
    void keep(const QDBusMessage &message);

private:
    Peer();
    DBusMessage *newMessage();
    QVariantList deliver(DBusMessage *message, bool isSendable);
    bool isReceived();
    void drain();

    QDBusServer m_server;
    QDBusConnection m_receiver;
    DBusConnection *m_sender = nullptr;
    bool m_isDelivered = false;
    QVariantList m_values;
};

/** Returns a text of the choices as a QString. */
QString anyText(Choices &choices);

/** Returns the first of @p values as the map that a slot with such a parameter gets. */
QVariantMap firstMap(const QVariantList &values);

#endif
