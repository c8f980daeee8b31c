#ifndef LIGHTSETTINGS_H
#define LIGHTSETTINGS_H

#include "backlightsteps.h"
#include "brightnesslevels.h"

/* The settings of the backlight and the light sensor. */

/** The percentages of the backlight's steps. */
BacklightSteps readBacklightSteps();

/** The lux bounds of the brightness levels. */
BrightnessBounds readBrightnessBounds();

/** Returns how long the light must stay outside its band, for thresholdTimerByte(). */
unsigned int readThresholdTimer();

#endif
