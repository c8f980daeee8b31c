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

std::optional<int> readScreenLightStep(const BacklightSteps &steps)
{
    const std::optional<int> percentage = readScreenLight();
    if (!percentage)
        return std::nullopt;
    return backlightStep(*percentage, steps);
}

bool writeScreenLight(int percentage)
{
    KyBacklight backlight;
    return isPercentage(percentage) &&
           backlight.setBrightness(static_cast<unsigned char>(percentage)) == 0;
}

std::optional<ScreenLightChange> adaptScreenLight(int level, const BacklightSteps &steps)
{
    const int step = stepForLevel(level).step;
    const int percentage = steps.percentage[step];
    if (!writeScreenLight(percentage))
        return std::nullopt;
    return ScreenLightChange{percentage, step};
}

bool enableScreenLight(bool enable)
{
    KyBacklight backlight;
    return backlight.enableBacklight(enable) == 0;
}
