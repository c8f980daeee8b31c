#ifndef KYETHERNET_H
#define KYETHERNET_H

#include "ethernetlink.h"
#include "introspection/Ethernet.h"
#include "kytcpip.h"

/**
 * Connects and disconnects the wired interface through ConnMan.
 *
 * The technology "ethernet" is powered only while a client wants a connection. An attempt first
 * starts the Wi-Fi module's mode script (see ModeScript), and then follows ConnMan's signals. Every
 * change of the link state is announced.
 */
class KyEthernet : public KyTcpIp
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Ethernet")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_ETHERNET)

public:
    /** Subscribes to ConnMan's signals and powers the technology off. */
    explicit KyEthernet(QObject *parent);

public Q_SLOTS:
    /**
     * Starts a connection. The call is ignored unless the state is "idle" or "failure".
     *
     * If the mode script still runs or cannot be started, the method fails with "Cannot switch in
     * mode '1' (WLAN STATION)", and the state becomes "failure". Later failures show in the state
     * only.
     */
    void connect(const QDBusMessage &message);

    /**
     * Ends the connection; the state becomes "idle" even if the method fails.
     *
     * Fails with "Cannot set property Powered: " and ConnMan's text if ConnMan refuses to power the
     * technology off.
     */
    void disconnect(const QDBusMessage &message);

private:
    EthernetLink m_link;
};

#endif
