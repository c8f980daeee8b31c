#ifndef LEDNAME_H
#define LEDNAME_H

#include "ileds.h"

namespace board
{
/** An LED and its name on the panel. */
struct LedName {
    e_leds led;
    const char *name;
};

/** The state of an LED and its name in the board's files. */
struct LedStateName {
    e_led_state state;
    const char *name;
};

const LedName ledNames[] = {
    {LED_BAT_RS1, "BAT_RS1"},
    {LED_BAT_GS1, "BAT_GS1"},
    {LED_BAT_GS2, "BAT_GS2"},
    {LED_BAT_GS3, "BAT_GS3"},
    {LED_BAT_GS4, "BAT_GS4"},
    {LED_BAT_GS5, "BAT_GS5"},
    {LED_UTC_SYNC, "UTC_SYNC"},
    {LED_RECORDING, "RECORDING"},
    {LED_BT, "BT"},
    {LED_WIFI, "WIFI"},
    {LED_WPS, "WPS"},
    {LED_POWER_Y, "POWER_Y"},
    {LED_POWER_G, "POWER_G"},
    {LED_SD_STATUS, "SD_STATUS"},
};

const LedStateName ledStateNames[] = {
    {LED_OFF, "OFF"}, {LED_BLINK_1HZ, "BLINK_1HZ"}, {LED_BLINK_3HZ, "BLINK_3HZ"},
    {LED_ON, "ON"},   {LED_UNKNOWN, "UNKNOWN"},
};
} // namespace board

#endif
