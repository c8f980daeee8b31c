#ifndef BRIGHTNESSLEVELS_H
#define BRIGHTNESSLEVELS_H

#include <optional>

/*
 * The brightness levels: the level of an illuminance, and the band in which the light sensor must
 * not interrupt.
 */

/** The lux bounds of the levels. They should ascend; another order is harmless. */
struct BrightnessBounds {
    int level[18];
};

/** An illuminance band in lux, both ends included. */
struct BrightnessBand {
    int low;
    int high;
};

/**
 * Returns the level of @p lux: the first of 1 to 16 whose bound is not below it, or 16.
 *
 * The outermost bounds, 0 and 17, are not levels; they only end the bands.
 */
int brightnessLevel(double lux, const BrightnessBounds &bounds);

/**
 * Returns the band around @p level (1 to 16), from the bound below it to the bound above it: the
 * light must cross a neighbouring level before it counts as changed. Nothing if the band would be
 * negative or inverted.
 */
std::optional<BrightnessBand> brightnessBand(int level, const BrightnessBounds &bounds);

/** Returns the sensor's persistence byte for the setting @p timer; only the low bits count. */
unsigned char thresholdTimerByte(unsigned int timer);

#endif
