#ifndef KYALIMENTATION_H
#define KYALIMENTATION_H

#include "batterystatus.h"
#include "introspection/Alimentation.h"
#include "kybatmonitor.h"

#include <QDBusAbstractAdaptor>
#include <QString>

class QTimer;

/**
 * The power supply: reduces the charger and the battery's charge meter to one of fourteen statuses.
 *
 * The status is checked every 10 s for the first eleven times and every 5 minutes from then on.
 * Nothing is reported when the hardware fails: a charger that cannot be read counts as absent, a
 * battery that cannot be read as unknown.
 */
class KyAlimentation : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Alimentation")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_ALIMENTATION)
    /**
     * The name of the present status. Reading it measures; when the charger came or went since the
     * last measurement, the signal of the same name is sent, too.
     */
    Q_PROPERTY(QString batteryStatus READ readBatteryStatus)

public:
    using BatteryStatus = Battery::Status;

    /** Tells the monitor whether the charger is connected and starts the periodic check. */
    explicit KyAlimentation(QObject *parent);

    /** Measures; the value of the property, with the signal that reading it may send. */
    QString readBatteryStatus();

    /** Brings the battery monitor into the state in which power may be cut. The check goes on. */
    void prepareForShutdown();

public Q_SLOTS:
    /** The voltage of the last successful measurement, in the charge meter's unit; 0 before. */
    uint getBatteryVoltage() const;

Q_SIGNALS:
    /** Sent at every periodic check, and by a reading that notices the charger come or go. */
    void batteryStatus(QString status);

private:
    void periodicBatteryCheck();
    void refresh();
    BatteryStatus measure();

    QTimer *m_checkTimer;
    KyBatmonitor m_batmonitor;
    /** Checks left at the interval of the start; negative once the steady interval runs. */
    qint16 m_fastChecksLeft;
    bool m_chargerPresent;
    quint16 m_batteryVoltage;
};

#endif
