#include "connection.h"

#include <cstdio>
#include <cstdlib>
#include <poll.h>

const char daemonName[] = "com.orvendis.Strandel.BoardManager";

namespace
{
constexpr int timeoutMs = 60000;
}

void giveUp(const std::string &why)
{
    static_cast<void>(std::fprintf(stderr, "hostilebus: %s\n", why.c_str()));
    std::exit(1);
}

Connection::Connection() : m_connection(dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr))
{
    if (m_connection == nullptr)
        giveUp("there is no system bus");
    dbus_connection_set_exit_on_disconnect(m_connection, false);
    // Allow several unread messages of the maximum size and with the maximum of file descriptors.
    dbus_connection_set_max_received_size(m_connection, 1 << 28);
    dbus_connection_set_max_received_unix_fds(m_connection, 1 << 10);
}

Connection::~Connection()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

std::uint32_t Connection::send(const Message &message)
{
    std::uint32_t serial = 0;
    dbus_connection_send(m_connection, message.get(), &serial);
    return serial;
}

Message Connection::take()
{
    dbus_connection_read_write(m_connection, 0);
    return Message(dbus_connection_pop_message(m_connection));
}

Message Connection::callAndWait(const Message &message)
{
    return Message(
        dbus_connection_send_with_reply_and_block(m_connection, message.get(), timeoutMs, nullptr));
}

bool Connection::flush()
{
    dbus_connection_read_write(m_connection, 0);
    return dbus_connection_get_is_connected(m_connection);
}

int Connection::descriptor() const
{
    int descriptor = -1;
    dbus_connection_get_unix_fd(m_connection, &descriptor);
    return descriptor;
}

bool Connection::hasUnsent() const
{
    return dbus_connection_has_messages_to_send(m_connection);
}

void waitForAny(const std::vector<const Connection *> &connections, int milliseconds)
{
    std::vector<pollfd> descriptors;
    for (const Connection *connection : connections) {
        const int events = connection->hasUnsent() ? POLLIN | POLLOUT : POLLIN;
        descriptors.push_back({connection->descriptor(), static_cast<short>(events), 0});
    }
    poll(descriptors.data(), descriptors.size(), milliseconds);
}
