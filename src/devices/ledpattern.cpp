#include "ledpattern.h"

namespace
{
constexpr Leds::State OFF = Leds::OFF;
constexpr Leds::State BLINK_1HZ = Leds::BLINK_1HZ;
constexpr Leds::State BLINK_3HZ = Leds::BLINK_3HZ;
constexpr Leds::State ON = Leds::ON;

// The columns of the table below: the LEDs of the battery gauge, and the LEDs of the power button.
constexpr Leds::Led gaugeLeds[] = {Leds::BAT_RS1, Leds::BAT_GS1, Leds::BAT_GS2,
                                   Leds::BAT_GS3, Leds::BAT_GS4, Leds::BAT_GS5};
constexpr Leds::Led buttonLeds[] = {Leds::POWER_G, Leds::POWER_Y};

constexpr int gaugeColumns = sizeof gaugeLeds / sizeof gaugeLeds[0];
constexpr int buttonColumns = sizeof buttonLeds / sizeof buttonLeds[0];

/** A row of the table. Battery::Status is the index of the row. */
struct Pattern {
    Leds::State gauge[gaugeColumns];
    Leds::State button[buttonColumns];
};

// While the battery is being charged, the gauge's current segment blinks.
// clang-format off
const Pattern patterns[] = {
    //                             BAT_RS1    BAT_GS1    BAT_GS2    BAT_GS3    BAT_GS4    BAT_GS5      POWER_G    POWER_Y
    /* CHARGER_OFF_UNKNOWN_BAT */ {{BLINK_3HZ, OFF,       OFF,       OFF,       OFF,       OFF      }, {OFF,       OFF      }},
    /* CHARGER_ON_NO_BAT       */ {{BLINK_1HZ, OFF,       OFF,       OFF,       OFF,       OFF      }, {OFF,       OFF      }},
    /* CHARGER_OFF_BAT_PRWT    */ {{BLINK_1HZ, OFF,       OFF,       OFF,       OFF,       OFF      }, {OFF,       BLINK_1HZ}},
    /* CHARGER_OFF_BAT_INF_20  */ {{ON,        OFF,       OFF,       OFF,       OFF,       OFF      }, {OFF,       ON       }},
    /* CHARGER_OFF_BAT_INF_40  */ {{OFF,       ON,        ON,        OFF,       OFF,       OFF      }, {OFF,       ON       }},
    /* CHARGER_OFF_BAT_INF_60  */ {{OFF,       ON,        ON,        ON,        OFF,       OFF      }, {OFF,       ON       }},
    /* CHARGER_OFF_BAT_INF_80  */ {{OFF,       ON,        ON,        ON,        ON,        OFF      }, {OFF,       ON       }},
    /* CHARGER_OFF_BAT_INF_100 */ {{OFF,       ON,        ON,        ON,        ON,        ON       }, {OFF,       ON       }},
    /* CHARGER_ON_BAT_INF_20   */ {{OFF,       BLINK_1HZ, OFF,       OFF,       OFF,       OFF      }, {BLINK_1HZ, OFF      }},
    /* CHARGER_ON_BAT_INF_40   */ {{OFF,       ON,        BLINK_1HZ, OFF,       OFF,       OFF      }, {BLINK_1HZ, OFF      }},
    /* CHARGER_ON_BAT_INF_60   */ {{OFF,       ON,        ON,        BLINK_1HZ, OFF,       OFF      }, {BLINK_1HZ, OFF      }},
    /* CHARGER_ON_BAT_INF_80   */ {{OFF,       ON,        ON,        ON,        BLINK_1HZ, OFF      }, {BLINK_1HZ, OFF      }},
    /* CHARGER_ON_BAT_INF_100  */ {{OFF,       ON,        ON,        ON,        ON,        BLINK_1HZ}, {BLINK_1HZ, OFF      }},
    /* CHARGER_ON_BAT_FULL     */ {{OFF,       ON,        ON,        ON,        ON,        ON       }, {ON,        OFF      }},
};
// clang-format on

/**
 * Returns the settings in this order: every LED off, then the steady LEDs from last to first, then
 * the blinking LEDs.
 */
template <int Columns>
QVector<LedSetting> inOrder(const Leds::Led (&leds)[Columns], const Leds::State (&states)[Columns])
{
    QVector<LedSetting> settings;
    for (const Leds::Led led : leds)
        settings.append({led, OFF});
    for (int column = Columns - 1; column >= 0; --column) {
        if (states[column] == ON)
            settings.append({leds[column], ON});
    }
    for (int column = 0; column < Columns; ++column) {
        if (states[column] != ON && states[column] != OFF)
            settings.append({leds[column], states[column]});
    }
    return settings;
}
} // namespace

QVector<LedSetting> batteryGaugePattern(Battery::Status status)
{
    return inOrder(gaugeLeds, patterns[status].gauge);
}

QVector<LedSetting> powerButtonPattern(Battery::Status status)
{
    return inOrder(buttonLeds, patterns[status].button);
}
