#include "wifijoin.h"

#include "kytcpip.h"

namespace
{
const int anyState = -1;

const struct {
    int state;
    const char *serviceState;
    JoinStep step;
} steps[] = {
    {KyTcpIpState::Idle, "idle", JoinStep::Associate},
    {KyTcpIpState::Association, "failure", JoinStep::Fail},
    {KyTcpIpState::Association, "ready", JoinStep::Configure},
    {anyState, "online", JoinStep::GoOnline},
};
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
