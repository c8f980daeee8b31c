#ifndef BUS_H
#define BUS_H

#include <dbus/dbus.h>

#include <memory>
#include <string>

struct MessageDeleter {
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

using Message = std::unique_ptr<DBusMessage, MessageDeleter>;

/** A method of a service, as it is named on a command line. */
struct Method {
    std::string service;
    std::string path;
    std::string interface;
    std::string name;
};

/** A private connection to the system bus. */
class Bus
{
public:
    /** Connects, again and again for at most ten seconds: the bus may be restarting. */
    Bus();
    ~Bus();
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    /** Queues @p message. @return its serial number */
    dbus_uint32_t send(const Message &message);

    /** Writes until at most @p bytes wait to be written, the bus ends the connection or @p end. */
    void drain(long bytes, double end);

    /** From now on leaves in the socket what the bus sends. */
    void stopReading();

    /** The next message, after a wait of at most @p milliseconds; null where none came. */
    Message next(int milliseconds);

    bool isConnected() const;

private:
    DBusConnection *m_connection;
};

Message newCall(const Method &method);

/** Seconds of a clock that never jumps. */
double now();

/** The seconds that @p text names; ends the program where it names none. */
double readSeconds(const char *text);

/** Ends the program with a message. */
[[noreturn]] void fail(const std::string &why);

#endif
