#ifndef ILEDS_H
#define ILEDS_H

/** The front-panel LEDs by the board library's numbers, which go in steps of two. */
enum e_leds : unsigned int {
    LED_BAT_RS1 = 0,
    LED_BAT_GS1 = 2,
    LED_BAT_GS2 = 4,
    LED_BAT_GS3 = 6,
    LED_BAT_GS4 = 8,
    LED_BAT_GS5 = 10,
    LED_UTC_SYNC = 12,
    LED_RECORDING = 14,
    LED_BT = 16,
    LED_WIFI = 18,
    LED_WPS = 20,
    LED_POWER_Y = 22,
    LED_POWER_G = 24,
    LED_SD_STATUS = 26,
};

/** The state of an LED. */
enum e_led_state : unsigned int {
    LED_OFF = 0,
    LED_BLINK_1HZ = 1,
    LED_BLINK_3HZ = 2,
    LED_ON = 3,
    LED_UNKNOWN = 4,
};

/** The front-panel LEDs. Every operation returns 0 on success. */
class ILeds
{
public:
    virtual ~ILeds() = default;

    /** Sets @p led to @p state. */
    virtual int setLedState(e_leds led, e_led_state state) = 0;

    /** Reads the state of @p led into @p state. */
    virtual int getLedState(e_leds led, e_led_state *state) = 0;
};

#endif
