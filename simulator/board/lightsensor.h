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
 * While interrupts are enabled it interrupts
 * - at once when the light changes to a value outside the band, or from one outside to one inside;
 * - again and again when the light stays outside, each time after the persistence time, counted in
 *   tenths of a second (at least one) from the acknowledgement of the last interrupt.
 *
 * It interrupts only once until that is acknowledged. Nothing is lost by this: a change that was
 * not read by then counts as a change at the acknowledgement.
 *
 * A value is outside the band when its code is above the upper threshold or below the lower one.
 */
class LightSensor
{
public:
    LightSensor();
    ~LightSensor();
    LightSensor(const LightSensor &) = delete;
    LightSensor &operator=(const LightSensor &) = delete;

    /** Brings the sensor into its measuring mode, with interrupts off; false on failure. */
    bool init();

    /** The light in lux; nothing when there is no sensible value. */
    std::optional<float> read();

    /** Sets the band; false on failure. */
    bool setThresholds(unsigned char high, unsigned char low);

    /** Sets the persistence time in tenths of a second; false on failure. */
    bool setTimer(unsigned char persistence);

    /** Lets the sensor interrupt or not; false on failure. */
    bool enableInterrupt(bool enable);

    /** The descriptor that signals urgent data at an interrupt; nothing on failure. */
    std::optional<int> descriptor();

    /** Acknowledges the interrupt; whether there was one, or nothing on failure. */
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
    /** The light for which no interrupt is due any more. */
    std::optional<float> m_settled;
    /** When light that stays outside interrupts again. */
    std::optional<Clock::time_point> m_repetition;
    bool m_isEnabled = false;
    bool m_isRaised = false;
};
} // namespace board

#endif
