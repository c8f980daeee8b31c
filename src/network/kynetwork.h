#ifndef KYNETWORK_H
#define KYNETWORK_H

#include "introspection/Network.h"
#include "kypowerman.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

/**
 * The supply and the resets of the Redpine Wi-Fi module.
 *
 * Every call goes to the hardware, whatever state the module is in.
 */
class KyNetwork : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Network")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_NETWORK)

public:
    /** Does not access the hardware yet. */
    explicit KyNetwork(QObject *parent);

public Q_SLOTS:
    /** Switches the supply on or off; Error::m_write on failure. */
    void redpinePower(bool state, const QDBusMessage &message);

    /** Resets the module by software; Error::m_write on failure. */
    void redpineSoftReset(const QDBusMessage &message);

    /** Resets the module by its reset line; Error::m_write on failure. */
    void redpineHardReset(const QDBusMessage &message);

private:
    KyPowerman m_powerman;
};

#endif
