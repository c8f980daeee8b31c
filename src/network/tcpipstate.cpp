#include "tcpipstate.h"

namespace KyTcpIpState
{
const char *const tpc_i_tcpIpState[7] = {
    "idle", "failure", "association", "configuration", "ready", "disconnect", "online",
};
}
