#ifndef SCREENLIGHT_H
#define SCREENLIGHT_H

#include <optional>

/*
 * The screen's light as the hardware has it, in percent.
 */

/** The present percentage; nothing when it cannot be read. */
std::optional<int> readScreenLight();

/** Sets the percentage; false when the hardware refuses. */
bool writeScreenLight(int percentage);

/** Switches the light on or off; false when the hardware refuses. */
bool enableScreenLight(bool enable);

#endif
