#ifndef BUS_H
#define BUS_H

#include <dbus/dbus.h>

#include <memory>
#include <string>

struct MessageDeleter {
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

using Message = std::unique_ptr<DBusMessage, MessageDeleter>;

/** A method of a service, as named on the command line. */
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
    /** Connects; retries for at most ten seconds, because the bus may be restarting. */
    Bus();
    ~Bus();
    Bus(const Bus &) = delete;
    Bus &operator=(const Bus &) = delete;

    /** Queues @p message. @return its serial number */
    dbus_uint32_t send(const Message &message);

    /** Writes until at most @p bytes are pending, the connection ends, or now() reaches @p end. */
    void drain(long bytes, double end);

    /** How many bytes are queued for writing. */
    long pendingBytes() const;

    /** Stops reading from the socket. */
    void stopReading();

    /** Returns the next message, after at most @p milliseconds; null if none came. */
    Message next(int milliseconds);

    bool isConnected() const;

private:
    DBusConnection *m_connection;
};

Message newCall(const Method &method);

/** Seconds of a monotonic clock. */
double now();

/** Parses seconds from @p text; exits on failure. */
double readSeconds(const char *text);

/** Prints @p why and exits with an error status. */
[[noreturn]] void fail(const std::string &why);

#endif
