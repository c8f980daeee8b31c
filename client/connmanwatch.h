#ifndef CONNMANWATCH_H
#define CONNMANWATCH_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Follows what ConnMan reports about one Wi-Fi network, from the construction on. */
class ConnmanWatch : public QObject
{
    Q_OBJECT

public:
    explicit ConnmanWatch(const QString &network);

    /** Returns true if ConnMan is on the bus. */
    static bool isConnmanThere();

    /**
     * Asks ConnMan for the network.
     *
     * @param path its service's path; empty if ConnMan does not list it
     * @param state ConnMan's state of that service
     */
    Answer find(QString &path, QString &state) const;

    /** Makes ConnMan forget the service at @p path. */
    static Answer remove(const QString &path);

    /** Whether ConnMan has listed the network. */
    bool isListed() const { return m_isListed; }

    /** The last "Error" of the network's service; empty if there was none. */
    QString error() const { return m_error; }

    /** The states of the network's service that ConnMan has announced, in order. */
    QStringList states() const { return m_states; }

Q_SIGNALS:
    /** ConnMan lists the network. */
    void listed(const QString &path);

private Q_SLOTS:
    void takeServices(const QDBusMessage &message);
    void takeProperty(const QDBusMessage &message);

private:
    void takeError(const QVariant &error);

    const QString m_network;
    bool m_isListed = false;
    QString m_error;
    QStringList m_states;
};

#endif
