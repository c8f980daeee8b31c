#ifndef LINK_H
#define LINK_H

#include <QObject>
#include <QString>
#include <QVariant>

/**
 * A network link for QML: the cable, the Wi-Fi station or the access point.
 *
 * The daemon announces each change of a link, and has no method that returns its state. So in a
 * program that starts after the daemon, the state is "unknown" until the daemon announces a change,
 * or until a reply shows that the link is up.
 */
class Link : public QObject
{
    Q_OBJECT
    /** "idle", "association", "configuration", "ready", "online", "failure", "disconnect",
     * "unknown". */
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)
    /** True while the link is up and usable. */
    Q_PROPERTY(bool online READ isOnline NOTIFY stateChanged)
    /** The IPv4 address; empty if there is none. */
    Q_PROPERTY(QString address READ address NOTIFY addressChanged)
    /** The strength of the Wi-Fi station's network in percent; -1 if unknown. */
    Q_PROPERTY(int strength READ strength NOTIFY strengthChanged)

public:
    explicit Link(QObject *parent = nullptr);

    QString state() const { return m_state; }
    bool isOnline() const;
    QString address() const { return m_address; }
    int strength() const { return m_strength; }

    /** Resets everything to unknown. */
    void forget();

    /** The daemon has just started: all links are down. */
    void beginIdle();

    /** Handles the signal "propertyChanged" of the link's interface. */
    void takeProperty(const QString &name, const QVariant &value);

    /**
     * Handles a reply about the link. If @p isUp is true, the reply shows that the link is up.
     * Otherwise the reply says nothing about the state.
     */
    void takeEvidence(bool isUp);

    void takeAddress(const QString &address);
    void takeStrength(int strength);

Q_SIGNALS:
    void stateChanged();
    void addressChanged();
    void strengthChanged();

    /** The address should be queried again. */
    void addressWanted();

private:
    void setState(const QString &state);

    QString m_state;
    QString m_address;
    int m_strength;
};

#endif
