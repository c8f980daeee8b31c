#ifndef CONNMANWATCH_H
#define CONNMANWATCH_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Records ConnMan's signals about one Wi-Fi network, starting in the constructor. */
class ConnmanWatch : public QObject
{
    Q_OBJECT

public:
    explicit ConnmanWatch(const QString &network);

    /** Returns true if ConnMan is on the bus. */
    static bool isConnmanThere();

    /**
     * Asks ConnMan for the network's service.
     *
     * @param path set to the path of the service; unchanged if ConnMan does not list the network
     * @param state set to the service's property "State"; unchanged if ConnMan does not list the
     *         network
     */
    Answer find(QString &path, QString &state) const;

    /** Makes ConnMan forget the service at @p path. */
    static Answer remove(const QString &path);

    /** Returns true if a signal of ConnMan has listed the network. */
    bool isListed() const { return m_isListed; }

    /** The last "Error" of the network's service; empty if there was none. */
    QString error() const { return m_error; }

    /** The states of the network's service that ConnMan has announced, in order. */
    QStringList states() const { return m_states; }

Q_SIGNALS:
    /** A signal of ConnMan listed the network, whose service has this @p path. */
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
