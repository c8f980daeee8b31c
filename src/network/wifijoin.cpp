#include "wifijoin.h"

#include "tcpipstate.h"

namespace
{
const int anyState = -1;

const struct {
    const char *serviceState;
    int state;
    JoinStep step;
} steps[] = {
    {"idle", KyTcpIpState::Idle, JoinStep::Associate},
    {"failure", KyTcpIpState::Association, JoinStep::Fail},
    {"ready", KyTcpIpState::Association, JoinStep::Configure},
    {"online", anyState, JoinStep::GoOnline},
};

const QLatin1String connmanErrors("net.connman.Error.");
} // namespace

JoinStep nextJoinStep(int state, const QString &serviceState)
{
    for (const auto &row : steps) {
        if ((row.state == anyState || row.state == state) &&
            serviceState == QLatin1String(row.serviceState))
            return row.step;
    }
    return JoinStep::Wait;
}

bool failsAtTimeout(int state, const QString &serviceState)
{
    switch (state) {
    case KyTcpIpState::Idle:
    case KyTcpIpState::Association:
        return true;
    case KyTcpIpState::Configuration:
        return serviceState != QLatin1String("ready") && serviceState != QLatin1String("online");
    default:
        return false;
    }
}

bool failsJoin(int state, const QString &errorName)
{
    return state == KyTcpIpState::Association && errorName.startsWith(connmanErrors) &&
           errorName != connmanErrors + QStringLiteral("InProgress") &&
           errorName != connmanErrors + QStringLiteral("AlreadyConnected");
}
