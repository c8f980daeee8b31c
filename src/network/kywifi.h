#ifndef KYWIFI_H
#define KYWIFI_H

#include "introspection/WIFI.h"
#include "kytcpip.h"
#include "wifistation.h"

/**
 * The Wi-Fi station: scans for networks and joins one through ConnMan.
 *
 * A scan or a connect begins with the mode script of the Wi-Fi module and is followed through
 * ConnMan's signals. Every step is announced as a change of the link state or, for a scan, by
 * servicesListChanged(), and is appended to the trace file.
 */
class KyWifi : public KyTcpIp
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.WIFI")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_WIFI)

public:
    /** Listens to ConnMan, powers the technology off and offers the agent. */
    explicit KyWifi(QObject *parent);

public Q_SLOTS:
    /**
     * Joins the network "Service" of @p settings, with the user name "User" and the pass phrase
     * "Password"; ignored unless the state is "idle" or "failure". There is no current service
     * until ConnMan has joined the network.
     *
     * Fails with "Cannot switch in mode '1' (WLAN STATION)", and the state "failure", when the mode
     * script still runs or cannot be started. Whatever goes wrong later shows in the state alone.
     */
    void connect(const QVariantMap &settings, const QDBusMessage &message);

    /**
     * Leaves and forgets the network.
     *
     * Fails with "Cannot remove service" when ConnMan does not forget it, else with "Cannot set
     * property Powered: " and ConnMan's text when it refuses to power the technology off, as it
     * does where that is off already. The state becomes "idle" in any case: when the technology is
     * off, at once after a refusal, and after 15 s at the latest.
     */
    void disconnect(const QDBusMessage &message);

    /**
     * Scans for networks; ignored unless the state is "idle" or "failure", and while a connect is
     * under way whose state is still "idle". The outcome comes with servicesListChanged(), after
     * 15 s at the latest once the module is switched.
     *
     * Fails as connect() does.
     */
    void scan(const QDBusMessage &message);

    /** "Strength" of the current service, as ConnMan gives it; empty without one. */
    QVariantMap getStrength();

Q_SIGNALS:
    /** The networks that a scan found; see wifiScanList(). */
    void servicesListChanged(const QVariantMap &services);

private:
    WifiStation m_station;
};

#endif
