#include "backlightsteps.h"

namespace
{
constexpr int lastEntry = 12;
} // namespace

int backlightStep(int percentage, const BacklightSteps &steps)
{
    // Starts at entry 1: step 0 is never the result.
    for (int step = 1; step <= lastEntry; ++step) {
        if (steps.percentage[step] >= percentage)
            return step;
    }
    return stepAboveAll;
}

LightStep stepForLevel(int level)
{
    const int step = level - 1;
    return {backlightEntry(step), !hasBacklightEntry(step)};
}

bool hasBacklightEntry(int step)
{
    return step >= 0 && step <= lastEntry;
}

bool isBacklightStep(int step)
{
    return step >= 0 && step <= lastEntry + 1;
}

int backlightEntry(int step)
{
    return step < lastEntry ? step : lastEntry;
}

std::optional<int> requestedPercentage(int step, const BacklightSteps &steps)
{
    if (!isBacklightStep(step))
        return std::nullopt;
    return steps.percentage[backlightEntry(step)];
}

bool isPercentage(int percentage)
{
    return percentage >= 0 && percentage <= 100;
}
