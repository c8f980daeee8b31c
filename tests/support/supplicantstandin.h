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

    /** Makes the network and the access points afresh and starts the stand-in; waits for its name.
     */
    void start();

    /** Ends it at once; waits until its name is gone from the bus. */
    void kill();

    /** Writes a property of an access point: set("cafe/in_range", "0"). */
    void set(const QString &property, const QByteArray &value);

    /** Whether the DHCP server of the access points answers anybody. */
    void setDhcpServerMute(bool mute);

private:
    QProcess m_process;
};

#endif
