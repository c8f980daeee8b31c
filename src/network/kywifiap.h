#ifndef KYWIFIAP_H
#define KYWIFIAP_H

#include "accesspoint.h"
#include "introspection/WIFIAP.h"
#include "kytcpip.h"

/**
 * The Wi-Fi access point: writes hostapd's configuration, runs the module's mode script (see
 * ModeScript) and checks the network interface until it has carrier.
 *
 * The script starts hostapd and dhcpd. connect() and disconnect() do not use ConnMan.
 */
class KyWifiAp : public KyTcpIp
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.WIFIAP")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_WIFIAP)

public:
    explicit KyWifiAp(QObject *parent);

public Q_SLOTS:
    /**
     * Starts the access point.
     *
     * @param parameters "Channel" (its low 16 bits), "SSID", "Password", "Security" ("WPA2", or
     *         anything else for an open network) and "IP"; a missing value is 0 or empty. Values
     *         are only checked for control characters.
     *
     * Fails with
     * - "Cannot connect, wap busy" unless the state is "idle" or "failure";
     * - "Cannot create hostapd conf file" if a text has a control character, the template cannot be
     *   read or the configuration cannot be written;
     * - "Cannot switch in mode '2' (WLAN ACCESS POINT)" if the mode script still runs or cannot be
     *   started.
     *
     * After the second and the third error the state is "failure". Later failures show in the state
     * only.
     */
    void connect(const QVariantMap &parameters, const QDBusMessage &message);

    /**
     * Stops the access point; the state becomes "idle" while the script still runs.
     *
     * Fails with "Cannot disconnect WAP, already disconnected" in the state "idle".
     */
    void disconnect(const QDBusMessage &message);

    /** Accepted, but has no effect in this version. */
    void wpsEnable();

private:
    AccessPoint m_accessPoint;
};

#endif
