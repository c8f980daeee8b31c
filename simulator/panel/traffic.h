#ifndef TRAFFIC_H
#define TRAFFIC_H

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/** A message to or from the daemon, for people. */
struct TrafficLine {
    enum Kind { Signal, Call, Reply, Error };

    Kind kind;
    /** HH:mm:ss.zzz, of the machine. */
    QString time;
    /** Without what the daemon's own have in common: "WIFI", "net.connman.Service". */
    QString interface;
    QString member;
    /** The values, or an error's name and text. */
    QString values;

    /** The line as it is saved. */
    QString text() const;
};

/** Makes lines of the messages of a bus, as "busctl --json=short monitor" prints them. */
class Traffic
{
public:
    /**
     * @param message the next message of the bus
     * @param ignored a name on the bus; its calls and the replies to them are nothing for people
     * @param line what becomes of it
     * @return whether there is a line
     */
    bool take(const QJsonObject &message, const QString &ignored, TrafficLine &line);

private:
    struct Call {
        QString interface;
        QString member;
    };
    /** Calls without a reply yet, by their caller and serial. */
    QHash<QString, Call> m_calls;
};

/** A value of busctl's, as people write it; variants are what they hold. */
QString valueText(const QJsonValue &value);

#endif
