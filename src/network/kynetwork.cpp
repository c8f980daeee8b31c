#include "kynetwork.h"

#include "arguments.h"
#include "error.h"

namespace
{
const ErrorText powerErrors[] = {
    {Error::Write, "Fail to change redpine power state"},
};

const ErrorText softResetErrors[] = {
    {Error::Write, "Fail to soft reset redpine"},
};

const ErrorText hardResetErrors[] = {
    {Error::Write, "Fail to hard reset redpine"},
};

int codeOf(int result)
{
    return result == 0 ? Error::None : Error::Write;
}
} // namespace

KyNetwork::KyNetwork(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyNetwork::redpinePower(bool state, const QDBusMessage &message)
{
    reportFailure(power(state), powerErrors, message);
}

void KyNetwork::redpineSoftReset(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        reportFailure(softReset(), softResetErrors, message);
}

void KyNetwork::redpineHardReset(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        reportFailure(hardReset(), hardResetErrors, message);
}

int KyNetwork::power(bool state)
{
    return codeOf(m_powerman.wifiPower(state));
}

int KyNetwork::softReset()
{
    return codeOf(m_powerman.wifiSoftReset());
}

int KyNetwork::hardReset()
{
    return codeOf(m_powerman.wifiHardReset());
}
