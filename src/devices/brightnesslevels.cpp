#include "brightnesslevels.h"

namespace
{
constexpr int lowestLevel = 1;
constexpr int highestLevel = 16;
} // namespace

int brightnessLevel(double lux, const BrightnessBounds &bounds)
{
    for (int level = lowestLevel; level <= highestLevel; ++level) {
        if (bounds.level[level] >= lux)
            return level;
    }
    return highestLevel;
}

std::optional<BrightnessBand> brightnessBand(int level, const BrightnessBounds &bounds)
{
    const BrightnessBand around = {bounds.level[level - 1], bounds.level[level + 1]};
    if (around.low < 0 || around.low > around.high)
        return std::nullopt;
    return around;
}

unsigned char thresholdTimerByte(unsigned int timer)
{
    return static_cast<unsigned char>((timer * 10) & 0xFE);
}
