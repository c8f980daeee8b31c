#ifndef KYNETWORK_H
#define KYNETWORK_H

#include "introspection/Network.h"
#include "kypowerman.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;

/**
 * The supply and the resets of the Redpine Wi-Fi module.
 *
 * Every call goes to the hardware as it is, whatever state the module is in.
 */
class KyNetwork : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Network")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_NETWORK)

public:
    /** Touches no hardware yet. */
    explicit KyNetwork(QObject *parent);

public Q_SLOTS:
    /** Switches the supply on or off; Error::m_write when that fails. */
    void redpinePower(bool state, const QDBusMessage &message);

    /** Resets the module softly; Error::m_write when that fails. */
    void redpineSoftReset(const QDBusMessage &message);

    /** Resets the module by its reset line; Error::m_write when that fails. */
    void redpineHardReset(const QDBusMessage &message);

private:
    KyPowerman m_powerman;
};

#endif
