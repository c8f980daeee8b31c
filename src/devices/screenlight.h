#ifndef SCREENLIGHT_H
#define SCREENLIGHT_H

#include "backlightsteps.h"

#include <optional>

/* The hardware's backlight, in percent and in steps. */

/** A percentage that has been set, and its step. */
struct ScreenLightChange {
    int percentage;
    int step;
};

/** Returns the current percentage; nothing if it cannot be read. */
std::optional<int> readScreenLight();

/** Returns the step of the current percentage; nothing if it cannot be read. */
std::optional<int> readScreenLightStep(const BacklightSteps &steps);

/** Sets the percentage; returns false if it is out of range, or if the hardware refuses. */
bool writeScreenLight(int percentage);

/** Sets the step for the light level @p level (1 to 16). Returns nothing if it cannot be set. */
std::optional<ScreenLightChange> adaptScreenLight(int level, const BacklightSteps &steps);

/** Switches the backlight on or off; returns false if the hardware refuses. */
bool enableScreenLight(bool enable);

#endif
