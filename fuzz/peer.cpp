#include "peer.h"

#include "require.h"
#include "wirevalue.h"

#include <QCoreApplication>
#include <QDBusArgument>

namespace
{
const QString path = QStringLiteral("/values");
const QString interface = QStringLiteral("com.orvendis.Strandel.Values");
const QString member = QStringLiteral("value");

/** The event loop that Qt D-Bus needs; never destroyed. */
QCoreApplication &application()
{
    static int count = 1;
    static char name[] = "fuzzer";
    static char *arguments[] = {name, nullptr};
    static auto *made = new QCoreApplication(count, arguments);
    return *made;
}
} // namespace

Peer &Peer::instance()
{
    application();
    static auto *peer = new Peer;
    return *peer;
}

Peer::Peer() : m_server(QStringLiteral("unix:tmpdir=/tmp")), m_receiver(QString())
{
    connect(&m_server, &QDBusServer::newConnection, this, &Peer::accept);
    DBusError error = DBUS_ERROR_INIT;
    m_sender = dbus_connection_open_private(m_server.address().toUtf8().constData(), &error);
    require(m_sender != nullptr, "a connection within the process");
    dbus_connection_set_exit_on_disconnect(m_sender, false);
    while (!m_receiver.isConnected() || !dbus_connection_get_is_authenticated(m_sender)) {
        drain();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

void Peer::accept(const QDBusConnection &connection)
{
    m_receiver = connection;
    require(m_receiver.connect(QString(), path, interface, member, this, SLOT(keep(QDBusMessage))),
            "the peer can listen");
}

void Peer::keep(const QDBusMessage &message)
{
    m_values = message.arguments();
    m_isDelivered = true;
}

QVariantList Peer::receive(const std::string &signature, Choices &choices, int around)
{
    DBusMessage *message = newMessage();
    ValueWriter writer(message, choices);
    writer.append(signature, around);
    return deliver(message, writer.isSendable());
}

QVariantList Peer::receiveAnything(Choices &choices)
{
    DBusMessage *message = newMessage();
    ValueWriter writer(message, choices);
    writer.appendAnything();
    return deliver(message, writer.isSendable());
}

bool Peer::canSend(const QVariantList &values)
{
    QDBusMessage message = QDBusMessage::createSignal(path, interface, member);
    message.setArguments(values);
    return m_receiver.send(message) && isReceived();
}

/**
 * Returns true when the message of canSend() has arrived, false if the connection was closed
 * because of this message.
 */
bool Peer::isReceived()
{
    bool isReceived = false;
    while (!isReceived && dbus_connection_read_write(m_sender, -1)) {
        while (DBusMessage *message = dbus_connection_pop_message(m_sender)) {
            isReceived = isReceived || dbus_message_has_interface(message, qPrintable(interface));
            dbus_message_unref(message);
        }
    }
    return isReceived;
}

DBusMessage *Peer::newMessage()
{
    return dbus_message_new_signal(qPrintable(path), qPrintable(interface), qPrintable(member));
}

/**
 * Sends @p message and returns its values as they were received; no values if @p isSendable is
 * false, because no bus would deliver the message.
 */
QVariantList Peer::deliver(DBusMessage *message, bool isSendable)
{
    m_isDelivered = !isSendable;
    if (isSendable)
        dbus_connection_send(m_sender, message, nullptr);
    dbus_message_unref(message);
    dbus_connection_flush(m_sender);
    while (!m_isDelivered) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        drain();
        require(dbus_connection_get_is_connected(m_sender), "the message can be received");
    }
    QVariantList values;
    values.swap(m_values);
    return values;
}

/** Discards everything that Qt D-Bus has sent back. */
void Peer::drain()
{
    dbus_connection_read_write(m_sender, 0);
    while (DBusMessage *message = dbus_connection_pop_message(m_sender))
        dbus_message_unref(message);
}

QString anyText(Choices &choices)
{
    return QString::fromStdString(choices.text());
}

QVariantMap firstMap(const QVariantList &values)
{
    return qdbus_cast<QVariantMap>(values.value(0));
}
