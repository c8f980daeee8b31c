#ifndef CONNECTION_H
#define CONNECTION_H

#include <dbus/dbus.h>

#include <memory>
#include <string>
#include <vector>

struct MessageDeleter {
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

/** An owned reference to a message. */
using Message = std::unique_ptr<DBusMessage, MessageDeleter>;

/** A private, non-blocking connection to the system bus. */
class Connection
{
public:
    Connection();
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /**
     * Queues @p message for sending. @return its serial number
     */
    std::uint32_t send(const Message &message);

    /** Returns the next message that has arrived; null if there is none. */
    Message take();

    /** Sends a call and waits for its reply; discards earlier messages. */
    Message callAndWait(const Message &message);

    /**
     * Writes queued messages without waiting. Returns false if the bus has closed the connection.
     */
    bool flush();

    int descriptor() const;
    bool hasUnsent() const;

private:
    DBusConnection *m_connection;
};

/** Waits until one of @p connections can be read or written, or for the timeout. */
void waitForAny(const std::vector<const Connection *> &connections, int milliseconds);

/** Prints @p why and exits with an error status. */
[[noreturn]] void giveUp(const std::string &why);

extern const char daemonName[];

#endif
