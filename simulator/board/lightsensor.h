#ifndef LIGHTSENSOR_H
#define LIGHTSENSOR_H

#include "descriptor.h"
#include "urgentline.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <sys/types.h>
#include <thread>

namespace board
{
/**
 * The ambient-light sensor on the simulated board.
 *
 * The band is the range between the two thresholds, which are codes of 8 bits. A value in lux is
 * outside the band when its code (thresholdCode()) is above the upper threshold or below the lower
 * one.
 *
 * While interrupts are enabled, the sensor interrupts
 * - at once when the light changes and the old or the new value is outside the band;
 * - repeatedly while the light stays outside: each time when the persistence time has passed
 *   since the last interrupt was acknowledged. The unit of this time is 0.1 s, its minimum 0.1 s.
 *
 * The sensor does not interrupt again before the acknowledgement. No change is lost: if the light
 * has changed since the interrupt, and the program has not read the new value before it
 * acknowledges, the sensor interrupts again right after the acknowledgement.
 */
class LightSensor
{
public:
    LightSensor();
    ~LightSensor();
    LightSensor(const LightSensor &) = delete;
    LightSensor &operator=(const LightSensor &) = delete;

    /** Starts measuring with interrupts off; returns false on failure. */
    bool init();

    /** Returns the light in lux; nothing if there is no valid value. */
    std::optional<float> read();

    /** Sets the band; false on failure. */
    bool setThresholds(unsigned char high, unsigned char low);

    /** Sets the persistence time in tenths of a second; false on failure. */
    bool setTimer(unsigned char persistence);

    /** Enables or disables the interrupt; returns false on failure. */
    bool enableInterrupt(bool enable);

    /** Returns the descriptor that signals urgent data at an interrupt; nothing on failure. */
    std::optional<int> descriptor();

    /** Acknowledges the interrupt. Returns true if there was one, nothing on failure. */
    std::optional<bool> acknowledge();

private:
    using Clock = std::chrono::steady_clock;

    bool start();
    void watch();
    int openWatch(Descriptor &changes) const;
    void evaluate();
    void measure(float lux, bool isOutside, bool wasOutside);
    void raise(float lux);
    int millisecondsToRepetition() const;

    std::mutex m_mutex;
    UrgentLine m_line;
    Descriptor m_stop;
    std::thread m_watcher;
    const pid_t m_process;
    /** The light that the program already knows: this value causes no further interrupt. */
    std::optional<float> m_settled;
    /** The time of the next interrupt if the light stays outside the band. */
    std::optional<Clock::time_point> m_repetition;
    bool m_isEnabled = false;
    bool m_isRaised = false;
};
} // namespace board

#endif
