#ifndef LIVELY_H
#define LIVELY_H

#include "behaviour.h"
#include "connman.h"

#include <QMap>
#include <QTimer>

/**
 * Behaves as the real ConnMan, without instructions from a test: lists the cable and the networks
 * in reach while their technology is powered, carries out calls, makes connections, and announces
 * all changes. Sends signals in the same order as the real ConnMan.
 *
 * A cable is connected as soon as its technology is powered, and gets the address 10.77.0.72. A
 * network is joined on Connect, with the passphrase that the caller's agent returns.
 */
class Lively : public QObject, public Behaviour
{
    Q_OBJECT

public:
    Lively(Connman &connman, QObject *parent);

    /**
     * Adds or removes a cable or a network. ConnMan lists the service while its technology is
     * powered.
     */
    void add(const ListedObject &service);
    void remove(const QString &service);

    /** Sets the passphrase of a network. A network without one accepts every passphrase. */
    void setPassphrase(const QString &service, const QString &passphrase);

    /** Carries out a call, announces its consequences and replies. */
    void setPowered(const QDBusMessage &call, bool powered) override;
    void setServiceProperty(const QDBusMessage &call, const QString &name,
                            const QVariant &value) override;
    void connectService(const QDBusMessage &call) override;
    void disconnectService(const QDBusMessage &call) override;
    void removeService(const QDBusMessage &call) override;
    void scan(const QDBusMessage &call) override;

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
