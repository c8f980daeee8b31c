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
 * What the daemon says of itself, over D-Bus. Asks once when the daemon comes and listens from then
 * on; survives the end of the daemon and of the bus.
 */
class DaemonView : public QObject
{
    Q_OBJECT

public:
    DaemonView();
    ~DaemonView() override;

    /** Puts what is known into @p instrument. */
    void fill(Instrument &instrument) const;

    /** Whether the daemon is there and has answered everything that it was asked. */
    bool isComplete() const;

    /** Our own name on the bus, as in ":1.7"; empty where there is no bus. */
    QString ownName() const;

    /** Joins the bus, where it is not joined yet or not any more. Call it from time to time. */
    void joinBus();

Q_SIGNALS:
    void busCame();

private:
    struct Proxies;

    void leaveBus();
    void setDaemonThere(bool isThere);
    void ask();
    void takeProperty(const QString &interface, const QString &path, const QString &name,
                      const QVariant &value);
    void askAddress(const QString &interface);
    void askStrength();
    void follow(const QDBusPendingCall &call,
                const std::function<void(const QDBusPendingCall &)> &take);

    int m_unanswered = 0;
    bool m_isToAsk = false;
    /** The daemon's parts of it alone are in use. */
    Instrument m_known;
    std::unique_ptr<Proxies> m_proxies;
};

#endif
