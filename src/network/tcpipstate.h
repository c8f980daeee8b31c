#ifndef TCPIPSTATE_H
#define TCPIPSTATE_H

/** The link states of a network interface. */
namespace KyTcpIpState
{
enum State {
    /** Not connected, nothing in progress. Only Idle and Failure accept a connect. */
    Idle = 0,
    Failure = 1,
    Association = 2,
    Configuration = 3,
    /** ConnMan reports the service as ready; it has received the IPv4 settings. */
    Ready = 4,
    Disconnect = 5,
    /** The service has an address and a netmask. */
    Online = 6,
};

/** The state names in announcements: ConnMan's words for the states of a service. */
extern const char *const tpc_i_tcpIpState[7];
} // namespace KyTcpIpState

#endif
