#ifndef TCPIPSTATE_H
#define TCPIPSTATE_H

/** The link states of a network interface. */
namespace KyTcpIpState
{
enum State {
    /**
     * Not connected. A scan, or the beginning of a connection attempt, may be in progress. Only
     * Idle and Failure accept a connect.
     */
    Idle = 0,
    Failure = 1,
    Association = 2,
    Configuration = 3,
    /**
     * Ethernet: ConnMan lists the service. Access point: hostapd and dhcpd run. The Wi-Fi station
     * does not enter this state.
     */
    Ready = 4,
    Disconnect = 5,
    /**
     * Ethernet: the service has an address. Wi-Fi station: the service has an address, or ConnMan
     * reports the service as online. Access point: the network interface has carrier.
     */
    Online = 6,
};

/** The state names in announcements: ConnMan's words for the states of a service. */
extern const char *const tpc_i_tcpIpState[7];
} // namespace KyTcpIpState

#endif
