#ifndef BUSMONITOR_H
#define BUSMONITOR_H

#include <QList>
#include <QString>
#include <QStringList>

struct DBusConnection;
struct DBusMessage;

/** A message on the bus. */
struct BusMessage {
    enum Type { Call, Return, Error, Signal };

    Type type;
    uint serial;
    /** The serial of the call that a reply answers. */
    uint replySerial;
    QString sender;
    QString destination;
    QString path;
    QString interface;
    QString member;
    QString errorName;
    QString signature;
    /** The first value, if it is a text. */
    QString text;

    /**
     * "call INTERFACE.MEMBER(SIGNATURE)", "signal INTERFACE.MEMBER(SIGNATURE)",
     * "return (SIGNATURE)" or "error NAME: TEXT".
     */
    QString line() const;
};

/**
 * Records every message on the system bus, including those that the bus does not deliver, such as
 * replies after the first one.
 */
class BusMonitor
{
public:
    BusMonitor();
    ~BusMonitor();
    BusMonitor(const BusMonitor &) = delete;
    BusMonitor &operator=(const BusMonitor &) = delete;

    /**
     * Returns all messages since the last take(), in order, but no introspection calls. First waits
     * until the daemon has finished the slot that it is running.
     */
    QList<BusMessage> take();

    /**
     * Returns true if a call of @p member has arrived since the last take(). Does not call the
     * daemon.
     */
    bool hasSeen(const char *member);

    /**
     * Calls take(); returns the lines of the messages that the daemon sent to @p destination. If
     * @p destination is empty, returns the lines of all messages that the daemon sent.
     */
    QStringList takeFromDaemon(const QString &destination = QString());

private:
    DBusConnection *m_connection;
    QList<BusMessage> m_messages;
    int m_markers = 0;
};

#endif
