#ifndef BRIGHTNESSLEVELS_H
#define BRIGHTNESSLEVELS_H

#include <optional>

/*
 * The brightness levels: how an illuminance is sorted into them, and around which band of it the
 * light sensor is to stay silent.
 */

/** The lux bounds of the levels. They should ascend; no other order does harm. */
struct BrightnessBounds {
    int level[18];
};

/** An illuminance band, in lux, ends included. */
struct BrightnessBand {
    int low;
    int high;
};

/**
 * The level of @p lux: the first of 1 to 16 whose bound is not below it, 16 above all of them.
 *
 * The outermost bounds, 0 and 17, are no level of their own; they only close the bands.
 */
int brightnessLevel(double lux, const BrightnessBounds &bounds);

/**
 * The band around @p level (1 to 16), which reaches from the bound below it to the one above it:
 * the light must cross a neighbouring level before it counts as changed. Nothing where that band
 * would be negative or upside down.
 */
std::optional<BrightnessBand> brightnessBand(int level, const BrightnessBounds &bounds);

/** The sensor's persistence byte for the setting @p timer, of which only the low bits count. */
unsigned char thresholdTimerByte(unsigned int timer);

#endif
