#ifndef LEDPATTERN_H
#define LEDPATTERN_H

#include "batterystatus.h"
#include "leds.h"

#include <QVector>

/** One LED to be set. */
struct LedSetting {
    Leds::Led led;
    Leds::State state;
};
Q_DECLARE_TYPEINFO(LedSetting, Q_PRIMITIVE_TYPE);

/** What the battery gauge shows for @p status: its LEDs in the order in which they are to be set.
 */
QVector<LedSetting> batteryGaugePattern(Battery::Status status);

/** The same for the LEDs of the power button. */
QVector<LedSetting> powerButtonPattern(Battery::Status status);

#endif
