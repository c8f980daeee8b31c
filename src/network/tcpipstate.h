#ifndef TCPIPSTATE_H
#define TCPIPSTATE_H

/** The link states of a network interface. */
namespace KyTcpIpState
{
enum State {
    /** Not connected and nothing under way. With Failure the only state that takes a connect. */
    Idle = 0,
    Failure = 1,
    Association = 2,
    Configuration = 3,
    /** ConnMan has the service ready; the IPv4 settings were handed to it. */
    Ready = 4,
    Disconnect = 5,
    /** The service has an address and a netmask. */
    Online = 6,
};

/** What clients are told, by state: ConnMan's words for the states of a service. */
extern const char *const tpc_i_tcpIpState[7];
} // namespace KyTcpIpState

#endif
