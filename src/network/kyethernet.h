#ifndef KYETHERNET_H
#define KYETHERNET_H

#include "ethernetlink.h"
#include "introspection/Ethernet.h"
#include "kytcpip.h"

/**
 * Brings the wired interface up and down through ConnMan.
 *
 * The technology "ethernet" is powered only while a connection is wanted. A connection attempt
 * begins with the mode script of the Wi-Fi module and is followed through ConnMan's signals; every
 * step is announced as a change of the link state.
 */
class KyEthernet : public KyTcpIp
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Ethernet")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_ETHERNET)

public:
    /** Listens to ConnMan and powers the technology off. */
    explicit KyEthernet(QObject *parent);

public Q_SLOTS:
    /**
     * Starts a connection; ignored unless the state is "idle" or "failure".
     *
     * Fails with "Cannot switch in mode '1' (WLAN STATION)", and the state "failure", when the mode
     * script still runs or cannot be started. Whatever goes wrong later shows in the state alone.
     */
    void connect(const QDBusMessage &message);

    /**
     * Ends the connection; the state is "idle" afterwards in any case.
     *
     * Fails with "Cannot set property Powered: " and ConnMan's text when it refuses to power the
     * technology off.
     */
    void disconnect(const QDBusMessage &message);

private:
    EthernetLink m_link;
};

#endif
