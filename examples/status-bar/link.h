#ifndef LINK_H
#define LINK_H

#include <QObject>
#include <QString>
#include <QVariant>

/**
 * One way to the network, as QML sees it: the cable, the Wi-Fi station or the access point.
 *
 * The daemon announces each change of a link, and has no method that tells its state. So the state
 * is "unknown" in a program that starts later than the daemon, until something changes or an answer
 * shows that the link is up.
 */
class Link : public QObject
{
    Q_OBJECT
    /** "idle", "association", "configuration", "ready", "online", "failure", "disconnect",
     * "unknown". */
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    /** Whether it has come up, and works. */
    Q_PROPERTY(bool online READ isOnline NOTIFY stateChanged)
    /** The IPv4 address; empty where there is none. */
    Q_PROPERTY(QString address READ address NOTIFY addressChanged)
    /** Of the Wi-Fi station, in percent; -1 where nothing is known. */
    Q_PROPERTY(int strength READ strength NOTIFY strengthChanged)

public:
    explicit Link(QObject *parent = nullptr);

    QString state() const { return m_state; }
    bool isOnline() const;
    QString address() const { return m_address; }
    int strength() const { return m_strength; }

    /** Forgets everything: nothing is known of the link. */
    void forget();

    /** The daemon has just started: it starts with every link down. */
    void beginIdle();

    /** Takes what the signal "propertyChanged" of the link's interface brings. */
    void takeProperty(const QString &name, const QVariant &value);

    /** Takes an answer by which the link is up, or which does not tell. */
    void takeEvidence(bool isUp);

    void takeAddress(const QString &address);
    void takeStrength(int strength);

Q_SIGNALS:
    void stateChanged();
    void addressChanged();
    void strengthChanged();

    /** The address is worth asking for again. */
    void addressWanted();

private:
    void setState(const QString &state);

    QString m_state;
    QString m_address;
    int m_strength;
};

#endif
