#ifndef LEDPATTERN_H
#define LEDPATTERN_H

#include "kyalimentation.h"
#include "kyled.h"

#include <QVector>

/** One LED to be set. */
struct LedSetting {
    KyLED::Led led;
    KyLED::State state;
};
Q_DECLARE_TYPEINFO(LedSetting, Q_PRIMITIVE_TYPE);

/** What the battery gauge shows for @p status: its LEDs in the order in which they are to be set.
 */
QVector<LedSetting> batteryGaugePattern(KyAlimentation::BatteryStatus status);

/** The same for the LEDs of the power button. */
QVector<LedSetting> powerButtonPattern(KyAlimentation::BatteryStatus status);

#endif
