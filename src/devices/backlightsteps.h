#ifndef BACKLIGHTSTEPS_H
#define BACKLIGHTSTEPS_H

/*
 * The steps of the screen backlight: which step a percentage is, and which percentage a step is.
 */

/** The percentages of the steps. They should ascend; no other order does harm. */
struct BacklightSteps {
    int percentage[13];
};

/** The step of a percentage above all of the table. */
const int stepAboveAll = 15;

/**
 * The step of @p percentage: the first of 1 to 12 that is not below it, stepAboveAll when none is.
 *
 * Step 0 is never the answer, not even to its own percentage: clients rely on it.
 */
int backlightStep(int percentage, const BacklightSteps &steps);

/** What the light asks for. */
struct LightStep {
    /** A step of the table. */
    int step;
    /** The light is beyond the table: the step is the last one, and no reason to leave another. */
    bool isBeyondTable;
};

/** The step for the light's level @p level (1 to 16). */
LightStep stepForLevel(int level);

/** Whether the table has an entry for @p step: 0 to 12. */
bool hasBacklightEntry(int step);

/** Whether a client may ask for @p step: 0 to 13. */
bool isBacklightStep(int step);

/** The entry of the table that @p step (0 or more) means: the last one for all steps beyond it. */
int backlightEntry(int step);

#endif
