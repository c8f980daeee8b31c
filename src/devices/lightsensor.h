#ifndef LIGHTSENSOR_H
#define LIGHTSENSOR_H

#include "brightnesslevels.h"
#include "kyals.h"

#include <optional>

/**
 * The ambient-light sensor. The sensor interrupts only when the illuminance leaves the band around
 * the current level (see brightnessBand()).
 *
 * A sensor whose initialisation failed stays unusable.
 */
class LightSensor
{
public:
    /** Initialises the sensor with the levels and the timer from the settings. */
    LightSensor();

    /** Returns true if the initialisation succeeded completely. */
    bool isReady() const { return m_isReady; }

    /**
     * Returns the file descriptor that signals interrupts as urgent data; nothing if the sensor has
     * no interrupt.
     */
    std::optional<int> interrupt() const { return m_interrupt; }

    /** Returns the illuminance in lux; nothing if it cannot be read. */
    std::optional<double> read();

    /** The level of @p lux, 1 to 16. */
    int levelOf(double lux) const { return brightnessLevel(lux, m_bounds); }

    /** Acknowledges the interrupt on @p descriptor. Returns false if the sensor refuses. */
    bool acknowledge(int descriptor);

    /**
     * Sets the band around @p level; returns false for invalid bounds, or if the sensor refuses.
     */
    bool setBand(int level);

private:
    bool start();
    bool findInterrupt();

    KyAls m_als;
    BrightnessBounds m_bounds;
    std::optional<int> m_interrupt;
    bool m_isReady;
};

#endif
