#include "kywatchdog.h"

#include "arguments.h"
#include "error.h"

KyWatchdog::KyWatchdog(QObject *parent) : QDBusAbstractAdaptor(parent) {}

void KyWatchdog::keepAlive(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    if (m_startupPending && !acknowledgeStartup(message))
        return;
    m_startupPending = false;
    // Reading the register feeds the watchdog.
    unsigned int unused = 0;
    if (m_socManager.getSoCRegister(m_keepAliveRegister, &unused) != 0)
        sendErrorReply(Error::Write,
                       QStringLiteral("Fail to transfert the keepalive signal to the FPGA"),
                       message);
}

/**
 * Reports to the MSP430 that the system is up; on failure sends the error reply and returns false.
 */
bool KyWatchdog::acknowledgeStartup(const QDBusMessage &message)
{
    unsigned int isInitialised = 0;
    QString failure;
    if (m_socManager.getSoCRegister(m_hpsInitRegister, &isInitialised) != 0)
        failure = QStringLiteral("Fail to read the HPS initialisation state");
    else if (isInitialised == 0)
        failure = QStringLiteral("The HPS is not initialised yet");
    else if (m_powerman.setAckWatchdog() != 0)
        // Clients match on this spelling.
        failure = QStringLiteral("Fail to prevent the MSP430 from rebooting the sysem");
    else
        return true;
    sendErrorReply(Error::Initialisation, failure, message);
    return false;
}
