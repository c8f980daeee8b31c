#ifndef BUSMONITOR_H
#define BUSMONITOR_H

#include <QList>
#include <QString>
#include <QStringList>

struct DBusConnection;
struct DBusMessage;

/** A message as it went over the bus. */
struct BusMessage {
    enum Type { Call, Return, Error, Signal };

    Type type;
    uint serial;
    /** Serial of the call that a reply belongs to. */
    uint replySerial;
    QString sender;
    QString destination;
    QString path;
    QString interface;
    QString member;
    QString errorName;
    QString signature;
    /** The first value, where that is a text. */
    QString text;

    /**
     * "call INTERFACE.MEMBER(SIGNATURE)", "signal INTERFACE.MEMBER(SIGNATURE)",
     * "return (SIGNATURE)" or "error NAME: TEXT".
     */
    QString line() const;
};

/**
 * Records every message on the system bus, also those that the bus does not deliver: replies after
 * the first one, for example.
 */
class BusMonitor
{
public:
    BusMonitor();
    ~BusMonitor();
    BusMonitor(const BusMonitor &) = delete;
    BusMonitor &operator=(const BusMonitor &) = delete;

    /**
     * Everything since the last call, in order, including all that the daemon did before it became
     * ready for a further call now.
     */
    QList<BusMessage> take();

    /** Whether a call of @p member has come since the last take(), without asking the daemon. */
    bool hasSeen(const char *member);

    /** The lines of take() for what the daemon sent to @p destination, or to anybody. */
    QStringList takeFromDaemon(const QString &destination = QString());

private:
    DBusConnection *m_connection;
    QList<BusMessage> m_messages;
    int m_markers = 0;
};

#endif
