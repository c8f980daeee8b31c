#ifndef SCREENLIGHT_H
#define SCREENLIGHT_H

#include <optional>

/* The hardware's backlight, in percent. */

/** Returns the current percentage; nothing if it cannot be read. */
std::optional<int> readScreenLight();

/** Sets the percentage; returns false if the hardware refuses. */
bool writeScreenLight(int percentage);

/** Switches the backlight on or off; returns false if the hardware refuses. */
bool enableScreenLight(bool enable);

#endif
