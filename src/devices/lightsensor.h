#ifndef LIGHTSENSOR_H
#define LIGHTSENSOR_H

#include "brightnesslevels.h"
#include "kyals.h"

#include <optional>

/**
 * The ambient-light sensor, silent while the light stays in the band around its level.
 *
 * One that could not be set up stays unusable.
 */
class LightSensor
{
public:
    /** Sets the sensor up with the levels and the timer of the settings. */
    LightSensor();

    /** Whether everything worked that was needed to set it up. */
    bool isReady() const { return m_isReady; }

    /** The descriptor that tells of interrupts by urgent data; nothing where there is none. */
    std::optional<int> interrupt() const { return m_interrupt; }

    /** The illuminance in lux; nothing when it cannot be read. */
    std::optional<double> read();

    /** The level of @p lux, 1 to 16. */
    int levelOf(double lux) const { return brightnessLevel(lux, m_bounds); }

    /** Acknowledges the interrupt that @p descriptor tells of. False if the sensor refuses. */
    bool acknowledge(int descriptor);

    /** Puts the band around @p level; false for bounds out of order, or if the sensor refuses. */
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
