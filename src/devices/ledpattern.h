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

/** Returns the battery gauge's LEDs for @p status in the order in which to set them. */
QVector<LedSetting> batteryGaugePattern(Battery::Status status);

/** Returns the power button's LEDs for @p status in the order in which to set them. */
QVector<LedSetting> powerButtonPattern(Battery::Status status);

#endif
