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
 * Returns the first level from 1 to 16 whose bound is at least @p lux; 16 if there is none.
 *
 * The outermost bounds, 0 and 17, are not levels; they only end the bands.
 */
int brightnessLevel(double lux, const BrightnessBounds &bounds);

/**
 * Returns the band around @p level (1 to 16): from the bound of the level below to the bound of the
 * level above. Returns nothing if the band would be negative or inverted.
 *
 * The light counts as changed only when it leaves this band.
 */
std::optional<BrightnessBand> brightnessBand(int level, const BrightnessBounds &bounds);

/**
 * Converts the time that the light must stay outside its band: @p timer is in s, the result in the
 * sensor's unit of 0.1 s. The result is reduced to 8 bits, with the lowest bit cleared.
 */
unsigned char thresholdTimerByte(unsigned int timer);

#endif
