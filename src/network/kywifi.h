#ifndef KYWIFI_H
#define KYWIFI_H

#include "introspection/WIFI.h"
#include "kytcpip.h"
#include "wifistation.h"

/**
 * The Wi-Fi station: scans for networks and joins a network through ConnMan.
 *
 * A scan or a connect first starts the module's mode script (see ModeScript), and then follows
 * ConnMan's signals. Changes of the link state and the result of a scan are announced. Every step
 * is appended to the trace file (see appendWifiTrace()).
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
     * Joins a network. The call is ignored unless the state is "idle" or "failure". There is no
     * current service until ConnMan has joined the network.
     *
     * If the mode script still runs or cannot be started, the method fails with "Cannot switch in
     * mode '1' (WLAN STATION)", and the state becomes "failure". Later failures show in the state
     * only.
     *
     * @param settings "Service" (the name of the network), "User" (the user name) and "Password"
     *         (the passphrase)
     */
    void connect(const QVariantMap &settings, const QDBusMessage &message);

    /**
     * Leaves and forgets the network.
     *
     * Fails with
     * - "Cannot remove service" if ConnMan does not forget the network;
     * - otherwise "Cannot set property Powered: " and ConnMan's text if ConnMan refuses to power
     *   the technology off, for example because the technology is already off.
     *
     * The state always becomes "idle": immediately if ConnMan refuses to power the technology off,
     * otherwise when the technology is off, at the latest after 15 s.
     */
    void disconnect(const QDBusMessage &message);

    /**
     * Scans for networks. Ignored unless the state is "idle" or "failure". Also ignored while a
     * connect is in progress, even if the state is still "idle".
     *
     * servicesListChanged() reports the result, at the latest 15 s after the module is in the
     * station mode.
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
