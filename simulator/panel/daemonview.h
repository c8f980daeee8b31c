#ifndef DAEMONVIEW_H
#define DAEMONVIEW_H

#include "instrument.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QObject>

#include <functional>
#include <memory>

/**
 * The daemon's state, over D-Bus. Queries it once when the daemon appears, and subscribes to
 * changes; survives the end of the daemon and of the bus.
 */
class DaemonView : public QObject
{
    Q_OBJECT

public:
    DaemonView();
    ~DaemonView() override;

    /** Writes the known state to @p instrument. */
    void fill(Instrument &instrument) const;

    /**
     * Returns true if the bus is connected, and the daemon has either answered every query or does
     * not run.
     */
    bool isComplete() const;

    /**
     * Queries a running daemon again at the next joinBus(). isComplete() returns false until the
     * daemon has answered.
     */
    void askAgain() { m_isToAsk = m_known.isDaemonThere; }

    /** Our own unique name on the bus, for example ":1.7"; empty without a bus. */
    QString ownName() const;

    /** Connects to the bus if it is not connected. Call it periodically. */
    void joinBus();

Q_SIGNALS:
    void busCame();

private:
    struct Proxies;

    void leaveBus();
    void setDaemonThere(bool isThere);
    void beginIdle();
    void ask();
    void takeProperty(const QString &interface, const QString &path, const QString &name,
                      const QVariant &value);
    void askAddress(const QString &interface);
    void askStrength();
    void follow(const QDBusPendingCall &call,
                const std::function<void(const QDBusPendingCall &)> &take);

    int m_unanswered = 0;
    bool m_isToAsk = false;
    /** Only the members that describe the daemon are used. */
    Instrument m_known;
    std::unique_ptr<Proxies> m_proxies;
};

#endif
