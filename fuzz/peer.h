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
 * Sends values through Qt D-Bus within this process, without a bus. A fuzzer thus gets the values
 * in the form in which the daemon gets them.
 */
class Peer : public QObject
{
    Q_OBJECT

public:
    /** The only instance in the process, created on first use. */
    static Peer &instance();

    /**
     * Returns values with the types of @p signature, generated from @p choices, in the form in
     * which a slot receives them.
     *
     * @param around the number of container levels that the caller will put around the values
     */
    QVariantList receive(const std::string &signature, Choices &choices, int around = 0);

    /** Returns up to five values of any types. */
    QVariantList receiveAnything(Choices &choices);

    /** Returns true if Qt D-Bus sends a message with @p values, and the receiver accepts it. */
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

/** Returns Choices::text() of @p choices as a QString. */
QString anyText(Choices &choices);

/** Returns the first of @p values as a map, in the form in which a slot gets a map parameter. */
QVariantMap firstMap(const QVariantList &values);

#endif
