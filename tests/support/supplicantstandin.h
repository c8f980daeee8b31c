#ifndef SUPPLICANTSTANDIN_H
#define SUPPLICANTSTANDIN_H

#include <QProcess>
#include <QString>

/**
 * Wi-Fi without a radio: the interface "wifi_sta", which the real ConnMan takes for a wireless one,
 * and the stand-in for the supplicant, a process that owns fi.w1.wpa_supplicant1.
 *
 * Leases are of 10.78.0.50 to 10.78.0.99, netmask 255.255.255.0, gateway and name server 10.78.0.1.
 */
class SupplicantStandIn
{
public:
    ~SupplicantStandIn();

    /** Creates the network and the access points and starts the stand-in; waits for its name. */
    void start();

    /** Kills it; waits until its name has left the bus. */
    void kill();

    /** Writes a property of an access point: set("cafe/in_range", "0"). */
    void set(const QString &property, const QByteArray &value);

    /** Sets whether the DHCP server of the access points ignores all requests. */
    void setDhcpServerMute(bool mute);

private:
    QProcess m_process;
};

#endif
