#include "brightnesslevels.h"

#include "errorcode.h"

namespace
{
const int lowestLevel = 1;
const int highestLevel = 16;
} // namespace

int brightnessLevel(double lux, const BrightnessBounds &bounds)
{
    for (int level = lowestLevel; level <= highestLevel; ++level) {
        if (bounds.level[level] >= lux)
            return level;
    }
    return highestLevel;
}

int brightnessBand(int level, const BrightnessBounds &bounds, BrightnessBand &band)
{
    const BrightnessBand around = {bounds.level[level - 1], bounds.level[level + 1]};
    if (around.low < 0 || around.low > around.high)
        return Error::InvalidArgument;
    band = around;
    return Error::None;
}

unsigned char thresholdTimerByte(unsigned int timer)
{
    return static_cast<unsigned char>((timer * 10) & 0xFE);
}
