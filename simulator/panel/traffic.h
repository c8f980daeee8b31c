#ifndef TRAFFIC_H
#define TRAFFIC_H

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVector>

/** A message to or from the daemon, formatted for people. */
struct TrafficLine {
    enum Kind { Signal, Call, Reply, Error };

    Kind kind;
    /** The machine's time as HH:mm:ss.zzz. */
    QString time;
    /**
     * The interface, without the prefix that the daemon's interfaces share: "WIFI", but
     * "net.connman.Service".
     */
    QString interface;
    QString member;
    /** The values, or an error's name and text. */
    QString values;

    /** Returns the line as it is saved to a file. */
    QString text() const;
};

/** Formats the messages that "busctl --json=short monitor" prints. */
class Traffic
{
public:
    /**
     * The maximum number of calls that wait for their replies. Beyond it, the oldest calls are
     * forgotten.
     */
    static constexpr int mostCalls = 1000;

    /**
     * Formats one message.
     *
     * @param message the next message of the bus
     * @param ignored a bus name whose calls, and the replies to them, are left out
     * @param line the formatted message
     * @return false if the message is left out
     */
    bool take(const QJsonObject &message, const QString &ignored, TrafficLine &line);

private:
    struct Call {
        QString caller;
        int serial;
        QString interface;
        QString member;
    };

    Call takeCall(const QString &caller, int serial);

    /** Calls without a reply yet, the oldest first; some never get one. */
    QVector<Call> m_calls;
};

/** A value of busctl's output, formatted for people; variants are unwrapped. */
QString valueText(const QJsonValue &value);

#endif
