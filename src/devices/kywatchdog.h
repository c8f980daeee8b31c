#ifndef KYWATCHDOG_H
#define KYWATCHDOG_H

#include "introspection/Watchdog.h"
#include "kypowerman.h"
#include "kysocmanager.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

/**
 * Proves that the instrument's application is alive.
 *
 * Two supervisors expect it: the power-management microcontroller (MSP430), once after the system
 * came up, and the watchdog in the FPGA, periodically.
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
     * Feeds the FPGA's watchdog; the first successful call reports to the MSP430 that the system is
     * up.
     *
     * Error::m_initialisation if the HPS is not initialised or does not answer, or if the MSP430
     * rejects the acknowledgement; the next call tries again. Error::m_write if the FPGA's watchdog
     * cannot be fed.
     */
    void keepAlive(const QDBusMessage &message);

private:
    bool acknowledgeStartup(const QDBusMessage &message);

    bool m_startupPending = true;
    KyPowerman m_powerman;
    KySocManager m_socManager;
    static constexpr unsigned short m_keepAliveRegister = 0x68;
    /** Not 0 when the HPS, the processor part of the system-on-chip, is initialised. */
    static constexpr unsigned short m_hpsInitRegister = 0x6B;
};

#endif
