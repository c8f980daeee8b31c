#ifndef KYALIMENTATION_H
#define KYALIMENTATION_H

#include "batterystatus.h"
#include "introspection/Alimentation.h"
#include "kybatmonitor.h"

#include <QDBusAbstractAdaptor>
#include <QString>

class QTimer;

/**
 * The power supply: derives one of fourteen statuses from the charger and the battery's charge
 * meter.
 *
 * The status is checked every 10 s for the first eleven times and every 5 minutes afterwards.
 * Hardware failures are not reported: a charger that cannot be read counts as absent, a battery
 * that cannot be read as unknown.
 */
class KyAlimentation : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Alimentation")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_ALIMENTATION)
    /**
     * The name of the current status. A read takes a measurement. If the charger has been connected
     * or disconnected since the last measurement, the read also sends the signal of the same name.
     */
    Q_PROPERTY(QString batteryStatus READ readBatteryStatus)

public:
    using BatteryStatus = Battery::Status;

    /** Tells the battery monitor whether the charger is connected; starts the periodic check. */
    explicit KyAlimentation(QObject *parent);

    /** Takes a measurement and returns the value of the property; may send the signal. */
    QString readBatteryStatus();

    /** Prepares the battery monitor for power off. The periodic check continues. */
    void prepareForShutdown();

public Q_SLOTS:
    /**
     * Returns the voltage of the last successful measurement, in the charge meter's unit; 0 before
     * the first one.
     */
    uint getBatteryVoltage() const;

Q_SIGNALS:
    /** Sent at every periodic check, and by a read that detects a change of the charger. */
    void batteryStatus(QString status);

private:
    void periodicBatteryCheck();
    void refresh();
    BatteryStatus measure();

    QTimer *m_checkTimer;
    KyBatmonitor m_batmonitor;
    /** 10 before the first of the eleven checks at 10 s, 0 before the last one, then -1. */
    qint16 m_fastChecksLeft;
    bool m_chargerPresent;
    quint16 m_batteryVoltage;
};

#endif
