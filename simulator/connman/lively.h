#ifndef LIVELY_H
#define LIVELY_H

#include "connman.h"

#include <QMap>
#include <QTimer>

/**
 * What happens in ConnMan by itself: services come and go with the power of their technology, with
 * the cable and with the networks in reach, connections are made, and all of it is announced in
 * the order in which the real one announces it.
 *
 * A cable in a powered socket is connected at once, to a DHCP server that gives 10.77.0.72. A
 * network is joined on Connect, with the passphrase that the caller's agent knows.
 */
class Lively : public QObject
{
    Q_OBJECT

public:
    Lively(Connman &connman, QObject *parent);

    /**
     * Adds a cable or a network to the surroundings, or takes it away. While its technology is
     * powered it is listed.
     */
    void add(const ListedObject &service);
    void remove(const QString &service);

    /** The passphrase of a network; without one every passphrase is the right one. */
    void setPassphrase(const QString &service, const QString &passphrase);

    /** Does what a call asks for, announces what comes of it and answers the call. */
    void setPowered(const QDBusMessage &call, bool powered);
    void setServiceProperty(const QDBusMessage &call, const QString &name, const QVariant &value);
    void connectService(const QDBusMessage &call);
    void disconnectService(const QDBusMessage &call);
    void removeService(const QDBusMessage &call);
    void scan(const QDBusMessage &call);

private:
    bool isConnected(const QString &service) const;
    QString technologyOf(const QString &service) const;
    QVariantMap address(const QString &service) const;

    void change(const QString &path, const QString &name, const QVariant &value);
    void setConnected(const QString &service, bool connected);
    void announceServicesSoon();

    void appear(const ListedObject &service);
    void vanish(const QString &service);
    void tearDown(const QString &service);
    void askForPassphrase(const QDBusMessage &call);
    void join(const QDBusMessage &call, const QString &passphrase);
    void refuseMalformed(const QDBusMessage &call);
    void rejectPassphrase(const QDBusMessage &call);

    Connman &m_connman;
    ListedObjects m_surroundings;
    QMap<QString, QString> m_passphrases;
    QTimer m_announcement;
};

#endif
