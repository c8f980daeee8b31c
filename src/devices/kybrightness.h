#ifndef KYBRIGHTNESS_H
#define KYBRIGHTNESS_H

#include "introspection/Brightness.h"
#include "lightsensor.h"

#include <QDBusAbstractAdaptor>

#include <optional>

class QDBusMessage;

/**
 * The ambient light: its illuminance, and the announcement that it changed by a level.
 *
 * Nothing is polled: the sensor interrupts when the light leaves the band around its present
 * level. A sensor that could not be set up stays unusable until the next start.
 */
class KyBrightness : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Brightness")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_BRIGHTNESS)

public:
    /** Reads the levels from the settings, sets the sensor up and watches its interrupt. */
    explicit KyBrightness(QObject *parent);

    /** The illuminance in lux; nothing for a sensor that could not be set up, or read. */
    std::optional<double> readLight();

    /** The level of @p lux, 1 to 16. */
    int levelOf(double lux) const;

public Q_SLOTS:
    /**
     * The present illuminance in lux.
     *
     * Error::m_initialisation for a sensor that could not be set up, Error::m_read when the reading
     * fails.
     */
    double getBrightness(const QDBusMessage &message);

Q_SIGNALS:
    /**
     * The light left the band around its level. Sent at every interrupt of the sensor, so the level
     * need not be another one than before.
     *
     * @param brightness the illuminance in lux; -1 when it could not be read
     * @param brightnessLevel its level, 1 to 16
     */
    void reachedBrightnessThreshold(double brightness, int brightnessLevel);

private Q_SLOTS:
    void handleAlsActivation(int socket);

private:
    LightSensor m_sensor;
};

#endif
