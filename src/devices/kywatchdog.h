#ifndef KYWATCHDOG_H
#define KYWATCHDOG_H

#include "introspection/Watchdog.h"
#include "kypowerman.h"
#include "kysocmanager.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

/**
 * The proof that the instrument's application is alive.
 *
 * Two supervisors wait for it: the power-management microcontroller (MSP430), which has to be told
 * once that the system came up, and the watchdog in the FPGA, which has to be fed periodically.
 */
class KyWatchdog : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Watchdog")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_WATCHDOG)

public:
    /** Touches no hardware yet. */
    explicit KyWatchdog(QObject *parent);

public Q_SLOTS:
    /**
     * Feeds the FPGA's watchdog; the first successful call tells the MSP430 that the system is up.
     *
     * Error::m_initialisation when the HPS is not initialised or cannot be asked, or the MSP430
     * does not take the acknowledgement: the next call tries again. Error::m_write when the FPGA
     * cannot be fed.
     */
    void keepAlive(const QDBusMessage &message);

private:
    bool acknowledgeStartup(const QDBusMessage &message);

    bool m_startupPending = true;
    KyPowerman m_powerman;
    KySocManager m_socManager;
    const unsigned short m_keepAliveRegister = 0x68;
    /** Not 0 when the HPS, the processor part of the system-on-chip, is initialised. */
    const unsigned short m_hpsInitRegister = 0x6B;
};

#endif
