#ifndef BACKLIGHTSTEPS_H
#define BACKLIGHTSTEPS_H

#include <optional>

/*
 * The steps of the screen backlight: converts a percentage to a step, and a step to a percentage.
 */

/** The percentages of the steps. They should ascend; another order is harmless. */
struct BacklightSteps {
    int percentage[13];
};

/** The step of a percentage above the whole table. */
constexpr int stepAboveAll = 15;

/**
 * Returns the first step from 1 to 12 whose percentage is at least @p percentage, or stepAboveAll
 * if there is none.
 *
 * Never returns step 0, not even for the percentage of step 0: clients rely on this.
 */
int backlightStep(int percentage, const BacklightSteps &steps);

/** The step for a light level. */
struct LightStep {
    /** A step of the table. */
    int step;
    /**
     * The level is above the table: the step is the last one, and a change of the light to this
     * level must not change the backlight.
     */
    bool isBeyondTable;
};

/** Returns the step for light level @p level (1 to 16). */
LightStep stepForLevel(int level);

/** Returns true if the table has an entry for @p step: 0 to 12. */
bool hasBacklightEntry(int step);

/** Returns true if a client may set @p step: 0 to 13. */
bool isBacklightStep(int step);

/** Returns the table entry of @p step (0 or more). A step above the table has the last entry. */
int backlightEntry(int step);

/** Returns the percentage of @p step; nothing if a client may not set that step. */
std::optional<int> requestedPercentage(int step, const BacklightSteps &steps);

/** Returns true if @p percentage is from 0 to 100. */
bool isPercentage(int percentage);

#endif
