#include "lightsensor.h"

#include "lightsettings.h"

#include <unistd.h>

namespace
{
/**
 * getinterruptHandler() returns this number on failure: the sensor is not ready. After any other
 * negative number the sensor is ready, but sends no interrupts.
 */
constexpr int noHandler = -2;
} // namespace

LightSensor::LightSensor() : m_bounds(readBrightnessBounds()), m_isReady(start() && findInterrupt())
{
}

std::optional<double> LightSensor::read()
{
    float lux = -1;
    if (m_als.readLux(&lux) != 0)
        return std::nullopt;
    return static_cast<double>(lux);
}

bool LightSensor::acknowledge(int descriptor)
{
    char event[8];
    // If the descriptor is a sysfs value file, the event is pending until the file is read from its
    // start. If it is a socket, lseek() fails and has no effect.
    lseek(descriptor, 0, SEEK_SET);
    // This read only clears the event: the value comes from the sensor.
    const ssize_t drained = ::read(descriptor, event, sizeof event);
    static_cast<void>(drained);
    bool isRaised = false;
    return m_als.interruptRead(&isRaised) == 0;
}

bool LightSensor::setBand(int level)
{
    const std::optional<BrightnessBand> band = brightnessBand(level, m_bounds);
    if (!band)
        return false;
    const auto high = m_als.convLuxInExponentMantissaByte(static_cast<float>(band->high));
    const auto low = m_als.convLuxInExponentMantissaByte(static_cast<float>(band->low));
    return m_als.setThresholds(high, low) == 0;
}

/** Starts the sensor and sets its band around the current light; returns false on any failure. */
bool LightSensor::start()
{
    if (m_als.init() != 0)
        return false;
    const std::optional<double> lux = read();
    return lux && setBand(levelOf(*lux)) &&
           m_als.setThresholdsTimer(thresholdTimerByte(readThresholdTimer())) == 0 &&
           m_als.interruptEnable(true) == 0;
}

/** Requests the interrupt line. Returns false on failure. */
bool LightSensor::findInterrupt()
{
    const int descriptor = m_als.getinterruptHandler();
    if (descriptor >= 0)
        m_interrupt = descriptor;
    return descriptor != noHandler;
}
