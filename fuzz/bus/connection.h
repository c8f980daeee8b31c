#ifndef CONNECTION_H
#define CONNECTION_H

#include <dbus/dbus.h>

#include <memory>
#include <string>
#include <vector>

struct MessageDeleter {
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

/** A message that is given back when its owner ends. */
using Message = std::unique_ptr<DBusMessage, MessageDeleter>;

/** A connection to the system bus that never waits, on its own. */
class Connection
{
public:
    Connection();
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    /** Sends @p message as soon as the bus takes it. @return its serial number */
    std::uint32_t send(const Message &message);

    /** The next message that has arrived; null where there is none yet. */
    Message take();

    /** Sends a call and waits for its reply; messages that come before it are lost. */
    Message callAndWait(const Message &message);

    /** Lets everything go out that has been sent; false when the bus has ended the connection. */
    bool flush();

    int descriptor() const;
    bool hasUnsent() const;

private:
    DBusConnection *m_connection;
};

/** Waits until something arrives at one of @p connections or can be sent, or for a time. */
void waitForAny(const std::vector<const Connection *> &connections, int milliseconds);

/** Ends the program with a message when what it needs is not there. */
[[noreturn]] void giveUp(const std::string &why);

extern const char daemonName[];

#endif
