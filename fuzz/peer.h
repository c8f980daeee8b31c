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
 * Lets values pass through Qt D-Bus in this process, so that readers get them in the very
 * form in which the daemon gets them, without a bus.
 */
class Peer : public QObject
{
    Q_OBJECT

public:
    /** The one of the process, made on first use. */
    static Peer &instance();

    /**
     * The values of the types @p signature that @p choices make, as a slot receives them.
     *
     * @param around how many levels of containers will be around the values in what is made of them
     */
    QVariantList receive(const std::string &signature, Choices &choices, int around = 0);

    /** Up to five values of any types. */
    QVariantList receiveAnything(Choices &choices);

    /** Whether Qt D-Bus can send a message with @p values, and its receiver takes it. */
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

/** @p text of the choices, as Qt has it. */
QString anyText(Choices &choices);

/** The first of @p values as the map that a slot with such a parameter gets. */
QVariantMap firstMap(const QVariantList &values);

#endif
