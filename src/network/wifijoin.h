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

/**
 * Whether the attempt to join has failed, when its time is over in the station's state @p state (a
 * KyTcpIpState::State), while ConnMan gives the network's service the state @p serviceState.
 */
bool failsAtTimeout(int state, const QString &serviceState);

/**
 * Whether the attempt to join has failed, when ConnMan answers its Connect in the station's state
 * @p state (a KyTcpIpState::State) with the D-Bus error @p errorName (empty: with none).
 *
 * Only an error of ConnMan's own fails it, and only in "association". A connection that stands or
 * is under way already is no failure, and neither is a reply that has not come in time.
 */
bool failsJoin(int state, const QString &errorName);

#endif
