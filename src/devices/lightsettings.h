#ifndef LIGHTSETTINGS_H
#define LIGHTSETTINGS_H

#include "backlightsteps.h"
#include "brightnesslevels.h"

/* The settings of the backlight and the light sensor. */

/** Reads the percentages of the backlight's steps. */
BacklightSteps readBacklightSteps();

/** Reads the lux bounds of the brightness levels. */
BrightnessBounds readBrightnessBounds();

/** Reads how long the light must stay outside its band, in s, for thresholdTimerByte(). */
unsigned int readThresholdTimer();

#endif
