#ifndef KYWATCHDOG_H
#define KYWATCHDOG_H

#include "introspection/Watchdog.h"
#include "kypowerman.h"
#include "kysocmanager.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

/**
 * Reports to two supervisors that the instrument's application is alive. The application calls
 * keepAlive() periodically: every call feeds the watchdog in the FPGA, and the first one also
 * reports to the power-management microcontroller (MSP430).
 */
class KyWatchdog : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Watchdog")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_WATCHDOG)

public:
    /** Does not access the hardware yet. */
    explicit KyWatchdog(QObject *parent);

public Q_SLOTS:
    /**
     * Feeds the FPGA's watchdog. Before that, reports to the MSP430 that the system is up, unless
     * an earlier call has already done so.
     *
     * Error::m_initialisation if the HPS (the processor part of the system-on-chip) is not
     * initialised or does not answer, or if the MSP430 rejects the report; the next call retries.
     * Error::m_write if the FPGA's watchdog cannot be fed.
     */
    void keepAlive(const QDBusMessage &message);

private:
    bool acknowledgeStartup(const QDBusMessage &message);

    bool m_startupPending = true;
    KyPowerman m_powerman;
    KySocManager m_socManager;
    static constexpr unsigned short m_keepAliveRegister = 0x68;
    /** Not 0 when the HPS is initialised. */
    static constexpr unsigned short m_hpsInitRegister = 0x6B;
};

#endif
