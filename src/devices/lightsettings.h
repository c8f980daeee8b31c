#ifndef LIGHTSETTINGS_H
#define LIGHTSETTINGS_H

#include "backlightsteps.h"
#include "brightnesslevels.h"

/*
 * What the settings say about the backlight and the light sensor.
 */

/** The percentages of the backlight's steps. */
BacklightSteps readBacklightSteps();

/** The lux bounds of the brightness levels. */
BrightnessBounds readBrightnessBounds();

/** How long the light must stay outside its band, for thresholdTimerByte(). */
unsigned int readThresholdTimer();

#endif
