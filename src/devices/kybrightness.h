#ifndef KYBRIGHTNESS_H
#define KYBRIGHTNESS_H

#include "introspection/Brightness.h"
#include "lightsensor.h"

#include <QDBusAbstractAdaptor>

#include <optional>

class QDBusMessage;

/**
 * The ambient light: reads its illuminance and announces changes of its level.
 *
 * Nothing is polled: the sensor interrupts when the illuminance leaves the band around the current
 * level (see brightnessBand()). A sensor whose initialisation failed stays unusable until the next
 * start.
 */
class KyBrightness : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Brightness")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_BRIGHTNESS)

public:
    /** Reads the levels from the settings, sets the sensor up and watches its interrupt. */
    explicit KyBrightness(QObject *parent);

    /** Returns the illuminance in lux; nothing if the sensor failed to initialise or to read. */
    std::optional<double> readLight();

    /** The level of @p lux, 1 to 16. */
    int levelOf(double lux) const;

public Q_SLOTS:
    /**
     * Returns the current illuminance in lux.
     *
     * Error::m_initialisation if the sensor failed to initialise, Error::m_read if the read fails.
     */
    double getBrightness(const QDBusMessage &message);

Q_SIGNALS:
    /**
     * The light left the band around its level. Sent at every interrupt of the sensor, even if the
     * level is the same as before, but not if the new band cannot be set.
     *
     * @param brightness the illuminance in lux; -1 if it could not be read
     * @param brightnessLevel its level, 1 to 16
     */
    void reachedBrightnessThreshold(double brightness, int brightnessLevel);

private Q_SLOTS:
    void handleAlsActivation(int socket);

private:
    LightSensor m_sensor;
};

#endif
