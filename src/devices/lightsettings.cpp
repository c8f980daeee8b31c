#include "lightsettings.h"

#include "settings.h"

namespace
{
/** A setting and its default. */
struct Row {
    const QString &key;
    int defaultValue;
};

// Row 0 is step 0 of the backlight, but its key is step3: the keys step0 to step2 are not used.
const Row steps[] = {
    {SCREEN_BACKLIGHT_STEP_3, 15},   {SCREEN_BACKLIGHT_STEP_4, 20},  {SCREEN_BACKLIGHT_STEP_5, 25},
    {SCREEN_BACKLIGHT_STEP_6, 30},   {SCREEN_BACKLIGHT_STEP_7, 35},  {SCREEN_BACKLIGHT_STEP_8, 40},
    {SCREEN_BACKLIGHT_STEP_9, 45},   {SCREEN_BACKLIGHT_STEP_10, 50}, {SCREEN_BACKLIGHT_STEP_11, 60},
    {SCREEN_BACKLIGHT_STEP_12, 70},  {SCREEN_BACKLIGHT_STEP_13, 80}, {SCREEN_BACKLIGHT_STEP_14, 90},
    {SCREEN_BACKLIGHT_STEP_15, 100},
};

// Row 0 is level 0.
const Row levels[] = {
    {BRIGHTNESS_LEVEL_0, 0},    {BRIGHTNESS_LEVEL_1, 10},    {BRIGHTNESS_LEVEL_2, 15},
    {BRIGHTNESS_LEVEL_3, 25},   {BRIGHTNESS_LEVEL_4, 50},    {BRIGHTNESS_LEVEL_5, 75},
    {BRIGHTNESS_LEVEL_6, 100},  {BRIGHTNESS_LEVEL_7, 150},   {BRIGHTNESS_LEVEL_8, 175},
    {BRIGHTNESS_LEVEL_9, 200},  {BRIGHTNESS_LEVEL_10, 250},  {BRIGHTNESS_LEVEL_11, 300},
    {BRIGHTNESS_LEVEL_12, 350}, {BRIGHTNESS_LEVEL_13, 400},  {BRIGHTNESS_LEVEL_14, 450},
    {BRIGHTNESS_LEVEL_15, 500}, {BRIGHTNESS_LEVEL_16, 1000}, {BRIGHTNESS_LEVEL_17, 10000},
};

constexpr unsigned int defaultTimer = 5;

/** Reads the setting of each row into the element of @p values with the same index. */
template <int Rows>
void readRows(const Row (&rows)[Rows], int (&values)[Rows])
{
    for (int index = 0; index < Rows; ++index)
        values[index] =
            Settings::instance().value(rows[index].key, rows[index].defaultValue).toInt();
}
} // namespace

BacklightSteps readBacklightSteps()
{
    BacklightSteps read{};
    readRows(steps, read.percentage);
    return read;
}

BrightnessBounds readBrightnessBounds()
{
    BrightnessBounds read{};
    readRows(levels, read.level);
    return read;
}

unsigned int readThresholdTimer()
{
    return Settings::instance().value(BRIGHTNESS_TIMER, defaultTimer).toUInt();
}
