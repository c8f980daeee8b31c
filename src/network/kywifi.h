#ifndef KYWIFI_H
#define KYWIFI_H

#include "introspection/WIFI.h"
#include "kytcpip.h"
#include "wifistation.h"

/**
 * The Wi-Fi station: scans for networks and joins one through ConnMan.
 *
 * A scan or a connect starts the module's mode script first and then follows ConnMan's signals.
 * Every step is announced as a change of the link state or, for a scan, by servicesListChanged(),
 * and is appended to the trace file.
 */
class KyWifi : public KyTcpIp
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.WIFI")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_WIFI)

public:
    /** Subscribes to ConnMan's signals, powers the technology off and exports the agent. */
    explicit KyWifi(QObject *parent);

public Q_SLOTS:
    /**
     * Joins the network "Service" of @p settings, with the user name "User" and the passphrase
     * "Password"; ignored unless the state is "idle" or "failure". There is no current service
     * until ConnMan has joined the network.
     *
     * Fails with "Cannot switch in mode '1' (WLAN STATION)", and the state "failure", if the mode
     * script still runs or cannot be started. Later failures show in the state only.
     */
    void connect(const QVariantMap &settings, const QDBusMessage &message);

    /**
     * Leaves and forgets the network.
     *
     * Fails with "Cannot remove service" if ConnMan does not forget the network, otherwise with
     * "Cannot set property Powered: " and ConnMan's text if ConnMan refuses to power the technology
     * off, for example because it is already off. The state always becomes "idle": immediately if
     * ConnMan refuses to power the technology off, otherwise when the technology is off, or after
     * 15 s.
     */
    void disconnect(const QDBusMessage &message);

    /**
     * Scans for networks. Ignored unless the state is "idle" or "failure". Also ignored while a
     * connect is in progress, even if the state is still "idle".
     *
     * servicesListChanged() reports the result, at the latest 15 s after the module has been
     * switched.
     *
     * Fails in the same cases as connect().
     */
    void scan(const QDBusMessage &message);

    /** Returns "Strength" of the current service as ConnMan reports it; empty without a service. */
    QVariantMap getStrength();

Q_SIGNALS:
    /** The networks that a scan found; see wifiScanList(). */
    void servicesListChanged(const QVariantMap &services);

private:
    WifiStation m_station;
};

#endif
