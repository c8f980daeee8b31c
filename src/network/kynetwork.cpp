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

/** Answers with the error of @p code, unless it is none. */
template <size_t Rows>
void report(int code, const ErrorText (&table)[Rows], const QDBusMessage &message)
{
    if (code != Error::None)
        sendErrorReply(code, errorText(code, table, QString::fromLatin1(unhandledError)), message);
}

int codeOf(int result)
{
    return result == 0 ? Error::None : Error::Write;
}
} // namespace

KyNetwork::KyNetwork(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyNetwork::redpinePower(bool state, const QDBusMessage &message)
{
    report(power(state), powerErrors, message);
}

void KyNetwork::redpineSoftReset(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        report(softReset(), softResetErrors, message);
}

void KyNetwork::redpineHardReset(const QDBusMessage &message)
{
    if (hasNoArguments(message))
        report(hardReset(), hardResetErrors, message);
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
