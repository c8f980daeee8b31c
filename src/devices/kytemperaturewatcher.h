#ifndef KYTEMPERATUREWATCHER_H
#define KYTEMPERATUREWATCHER_H

#include "introspection/Temperature.h"
#include "itemperature.h"

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QVariantMap>

class KyTemperature;
class QDBusMessage;
class QTimer;

/**
 * The board's temperatures: read on request, and compared periodically with a threshold for each
 * sensor.
 *
 * Temperatures and thresholds are in degrees Celsius. Thresholds and interval are not saved: every
 * start sets the thresholds to 80 and the interval to 300000 ms.
 */
class KyTemperatureWatcher : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Temperature")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_TEMPERATURE)
    Q_ENUMS(Device)

public:
    /** The sensors, numbered as in the board library. */
    enum Device {
        SOM = TEMPDEV_SOM,
        ANALOG_CHAIN = TEMPDEV_ANALOG_CHAIN,
    };

    /** Starts the periodic check. */
    explicit KyTemperatureWatcher(QObject *parent);

public Q_SLOTS:
    /**
     * Reads both sensors and announces each one at or above its threshold.
     *
     * @return the temperature (int) of each sensor by its name, without those that cannot be read
     */
    QVariantMap getTemperatures();

    /**
     * Sets the threshold of @p device, a name of Device, to any number.
     *
     * Error::m_invalidArgument for any other name.
     */
    void setTemperatureThreshold(QString device, int threshold, const QDBusMessage &message);

    /**
     * Sets the interval of the periodic check to @p interval milliseconds. The next check is one
     * whole interval away.
     *
     * Error::m_invalidArgument for less than 1000.
     */
    void setInterval(int interval, const QDBusMessage &message);

    /** Reads both sensors immediately, like getTemperatures(), but returns nothing. */
    void periodicTemperatureCheck();

Q_SIGNALS:
    /** Sent at every read while @p device is at or above its threshold. */
    void temperatureReached(QString device, int temperature);

private:
    void readSensor(KyTemperature &sensors, Device device, int threshold, const char *failure,
                    QVariantMap &temperatures);

    QTimer *m_checkTimer;
    int m_somThreshold;
    int m_analogChainThreshold;
};

#endif
