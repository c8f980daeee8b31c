#include "busmonitor.h"

#include "deadline.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>

#include <dbus/dbus.h>

#include <algorithm>

namespace
{
const QString markerInterface = QStringLiteral("com.orvendis.Strandel.Monitor");

BusMessage::Type typeOf(DBusMessage *message)
{
    switch (dbus_message_get_type(message)) {
    case DBUS_MESSAGE_TYPE_METHOD_CALL:
        return BusMessage::Call;
    case DBUS_MESSAGE_TYPE_METHOD_RETURN:
        return BusMessage::Return;
    case DBUS_MESSAGE_TYPE_ERROR:
        return BusMessage::Error;
    default:
        return BusMessage::Signal;
    }
}

QString firstText(DBusMessage *message)
{
    const char *text = nullptr;
    DBusMessageIter iterator;
    if (dbus_message_iter_init(message, &iterator) &&
        dbus_message_iter_get_arg_type(&iterator) == DBUS_TYPE_STRING)
        dbus_message_iter_get_basic(&iterator, &text);
    return QString::fromUtf8(text);
}

BusMessage record(DBusMessage *message)
{
    BusMessage recorded;
    recorded.type = typeOf(message);
    recorded.serial = dbus_message_get_serial(message);
    recorded.replySerial = dbus_message_get_reply_serial(message);
    recorded.sender = QString::fromUtf8(dbus_message_get_sender(message));
    recorded.destination = QString::fromUtf8(dbus_message_get_destination(message));
    recorded.path = QString::fromUtf8(dbus_message_get_path(message));
    recorded.interface = QString::fromUtf8(dbus_message_get_interface(message));
    recorded.member = QString::fromUtf8(dbus_message_get_member(message));
    recorded.errorName = QString::fromUtf8(dbus_message_get_error_name(message));
    recorded.signature = QString::fromUtf8(dbus_message_get_signature(message));
    recorded.text = firstText(message);
    return recorded;
}

void becomeMonitor(DBusConnection *connection)
{
    DBusMessage *call = dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                     DBUS_INTERFACE_MONITORING, "BecomeMonitor");
    const char *const *rules = nullptr;
    const dbus_uint32_t flags = 0;
    dbus_message_append_args(call, DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &rules, 0, DBUS_TYPE_UINT32,
                             &flags, DBUS_TYPE_INVALID);
    DBusMessage *reply =
        dbus_connection_send_with_reply_and_block(connection, call, deadlineMs, nullptr);
    if (reply == nullptr)
        qFatal("cannot monitor the system bus");
    dbus_message_unref(call);
    dbus_message_unref(reply);
}

/** Removes every call of @p member of @p interface, and all replies to these calls. */
void removeCalls(QList<BusMessage> &messages, const QString &interface, const QString &member)
{
    const QList<BusMessage> all = messages;
    const auto isPartOfCall = [&](const BusMessage &message) {
        return std::any_of(all.begin(), all.end(),
                           [&](const BusMessage &call) {
                               return call.type == BusMessage::Call &&
                                      call.interface == interface && call.member == member &&
                                      message.destination == call.sender &&
                                      message.replySerial == call.serial;
                           }) ||
               (message.interface == interface && message.member == member);
    };
    messages.erase(std::remove_if(messages.begin(), messages.end(), isPartOfCall), messages.end());
}
} // namespace

QString BusMessage::line() const
{
    const QString values = QLatin1Char('(') + signature + QLatin1Char(')');
    switch (type) {
    case Call:
        return QStringLiteral("call ") + interface + QLatin1Char('.') + member + values;
    case Signal:
        return QStringLiteral("signal ") + interface + QLatin1Char('.') + member + values;
    case Return:
        return QStringLiteral("return ") + values;
    case Error:
        return QStringLiteral("error ") + errorName + QStringLiteral(": ") + text;
    }
    return QString();
}

BusMonitor::BusMonitor() : m_connection(dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr))
{
    if (m_connection == nullptr)
        qFatal("no system bus");
    dbus_connection_set_exit_on_disconnect(m_connection, false);
    becomeMonitor(m_connection);
}

BusMonitor::~BusMonitor()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

QList<BusMessage> BusMonitor::take()
{
    // The daemon answers introspection only after the running slot, but a ping at once.
    const QString introspectable = QStringLiteral("org.freedesktop.DBus.Introspectable");
    const QString introspect = QStringLiteral("Introspect");
    Remote(daemonName, QStringLiteral("/KyDeviceMgr"), introspectable).reply(introspect);
    const QString marker = QStringLiteral("Marker%1").arg(++m_markers);
    QDBusConnection::systemBus().send(
        QDBusMessage::createSignal(QStringLiteral("/"), markerInterface, marker));

    QElapsedTimer timer;
    timer.start();
    const auto isMarked = [&] {
        return !m_messages.isEmpty() && m_messages.last().interface == markerInterface &&
               m_messages.last().member == marker;
    };
    while (!isMarked()) {
        if (timer.elapsed() > deadlineMs || !dbus_connection_read_write(m_connection, 100))
            qFatal("the monitor lost the bus");
        DBusMessage *message = nullptr;
        while (!isMarked() && (message = dbus_connection_pop_message(m_connection)) != nullptr) {
            m_messages << record(message);
            dbus_message_unref(message);
        }
    }
    m_messages.removeLast();
    QList<BusMessage> taken;
    taken.swap(m_messages);
    removeCalls(taken, introspectable, introspect);
    return taken;
}

bool BusMonitor::hasSeen(const char *member)
{
    if (!dbus_connection_read_write(m_connection, 0))
        qFatal("the monitor lost the bus");
    DBusMessage *message = nullptr;
    while ((message = dbus_connection_pop_message(m_connection)) != nullptr) {
        m_messages << record(message);
        dbus_message_unref(message);
    }
    return std::any_of(m_messages.begin(), m_messages.end(), [member](const BusMessage &seen) {
        return seen.type == BusMessage::Call && seen.member == QLatin1String(member);
    });
}

QStringList BusMonitor::takeFromDaemon(const QString &destination)
{
    const QString daemon =
        QDBusConnection::systemBus().interface()->serviceOwner(daemonName).value();
    QStringList lines;
    for (const BusMessage &message : take()) {
        if (message.sender == daemon &&
            (destination.isEmpty() || message.destination == destination))
            lines << message.line();
    }
    return lines;
}
