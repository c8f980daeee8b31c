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
 * Lets values pass through the bus library in this process, so that readers get them in the very
 * form in which the daemon gets them, without a bus.
 */
class Peer : public QObject
{
    Q_OBJECT

public:
    /** The one of the process, made on first use. */
    static Peer &instance();

    /** The values of the types @p signature that @p choices make, as a slot receives them. */
    QVariantList receive(const std::string &signature, Choices &choices);

    /** Up to five values of any types. */
    QVariantList receiveAnything(Choices &choices);

    /** Whether the bus library can send a message with @p values. */
    bool canSend(const QVariantList &values);

private Q_SLOTS:
    void accept(const QDBusConnection &connection);
    void keep(const QDBusMessage &message);

private:
    Peer();
    DBusMessage *newMessage();
    QVariantList deliver(DBusMessage *message, bool isSendable);
    void drain();

    QDBusServer m_server;
    QDBusConnection m_receiver;
    DBusConnection *m_sender = nullptr;
    bool m_isDelivered = false;
    QVariantList m_values;
};

/** @p text of the choices, as Qt has it. */
QString anyText(Choices &choices);

/** The first of @p values as the map that a slot with such a parameter gets. */
QVariantMap firstMap(const QVariantList &values);

#endif
