#include "screenlight.h"

#include "kybacklight.h"

std::optional<int> readScreenLight()
{
    KyBacklight backlight;
    const int percentage = backlight.getBrightness();
    if (percentage == -1)
        return std::nullopt;
    return percentage;
}

bool writeScreenLight(int percentage)
{
    KyBacklight backlight;
    return backlight.setBrightness(static_cast<unsigned char>(percentage)) == 0;
}

bool enableScreenLight(bool enable)
{
    KyBacklight backlight;
    return backlight.enableBacklight(enable) == 0;
}
