#ifndef KYBRIGHTNESS_H
#define KYBRIGHTNESS_H

#include "brightnesslevels.h"
#include "introspection/Brightness.h"
#include "kyals.h"

#include <QDBusAbstractAdaptor>

class QDBusMessage;
class QSocketNotifier;

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

    /**
     * Reads the illuminance, in lux, into @p lux.
     *
     * @return Error::None; or Error::Initialisation for a sensor that could not be set up and
     *         Error::Read when the reading fails, both with -1 as illuminance
     */
    int readLight(double &lux);

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
    int setUp();
    bool programSensor();
    bool watchInterrupt();
    int setBand(int level);

    int m_initError;
    KyAls m_als;
    /** Null where no interrupt is watched; the adapted object owns it. */
    QSocketNotifier *m_notifier;
    BrightnessBounds m_bounds;
};

#endif
