#include "bus.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

void fail(const std::string &why)
{
    static_cast<void>(std::fprintf(stderr, "%s\n", why.c_str()));
    std::exit(1);
}

double now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double readSeconds(const char *text)
{
    char *end = nullptr;
    const double seconds = std::strtod(text, &end);
    if (end == text || *end != '\0')
        fail(std::string("no number of seconds: ") + text);
    return seconds;
}

Bus::Bus() : m_connection(nullptr)
{
    const double deadline = now() + 10;
    while ((m_connection = dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr)) == nullptr) {
        if (now() > deadline)
            fail("there is no system bus");
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
}

Bus::~Bus()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

dbus_uint32_t Bus::send(const Message &message)
{
    dbus_uint32_t serial = 0;
    if (!dbus_connection_send(m_connection, message.get(), &serial))
        fail("out of memory");
    return serial;
}

void Bus::drain(long bytes, double end)
{
    while (now() < end && dbus_connection_get_outgoing_size(m_connection) > bytes &&
           dbus_connection_read_write(m_connection, 100)) {
    }
}

long Bus::pendingBytes() const
{
    return dbus_connection_get_outgoing_size(m_connection);
}

void Bus::stopReading()
{
    // Otherwise libdbus stops reading once this much is received and not taken.
    dbus_connection_set_max_received_size(m_connection, 0);
}

Message Bus::next(int milliseconds)
{
    Message message(dbus_connection_pop_message(m_connection));
    if (message)
        return message;
    dbus_connection_read_write(m_connection, milliseconds);
    return Message(dbus_connection_pop_message(m_connection));
}

bool Bus::isConnected() const
{
    return dbus_connection_get_is_connected(m_connection);
}

Message newCall(const Method &method)
{
    return Message(dbus_message_new_method_call(method.service.c_str(), method.path.c_str(),
                                                method.interface.c_str(), method.name.c_str()));
}
