#ifndef WIRE_H
#define WIRE_H

#include <QString>

struct DBusConnection;
struct DBusMessage;

/**
 * A client of the system bus that sends values of any type, on a connection of its own.
 *
 * The values of a message have busctl's format, separated by blanks: the signature, then the
 * values; an array begins with the number of its elements, a variant with its signature. The empty
 * text is "". A file descriptor has the signature h and any number as its value; it refers to
 * /dev/null.
 */
class Wire
{
public:
    Wire();
    ~Wire();
    Wire(const Wire &) = delete;
    Wire &operator=(const Wire &) = delete;

    /** The unique name of this client. */
    QString name() const;

    /**
     * Calls a method and waits for the first reply.
     *
     * @return "()" for a reply without values, the signature in parentheses for another one; for an
     *         error its name, a colon, a blank and its text
     */
    QString call(const QString &service, const QString &path, const QString &interface,
                 const QString &method, const QString &values = QString());

    /** Broadcasts a signal. */
    void signal(const QString &path, const QString &interface, const QString &member,
                const QString &values);

private:
    DBusConnection *m_connection;
};

/**
 * From now on the bus lets file descriptors through to the daemon, as it would without the daemon's
 * policy. Returns false if the bus rejects the rule.
 */
bool letDescriptorsThrough();

/**
 * Lifts the message size limits that come with the daemon; the default limits of the bus then
 * apply. The bus applies new limits to new connections only: call this function before the first
 * connection. Returns false if the bus rejects the new limits.
 */
bool liftBusLimits();

#endif
