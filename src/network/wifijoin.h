#ifndef WIFIJOIN_H
#define WIFIJOIN_H

#include <QString>

/** What the station does next about the network that it joins. */
enum class JoinStep {
    Wait,
    /** Let ConnMan connect to it. */
    Associate,
    /** It is connected: hand the IPv4 settings over. */
    Configure,
    Fail,
    /** It is connected and reaches the Internet. */
    GoOnline,
};

/**
 * The next step in the station's state @p state (a KyTcpIpState::State), when ConnMan gives the
 * network's service the state @p serviceState.
 */
JoinStep nextJoinStep(int state, const QString &serviceState);

#endif
