#ifndef BATTERYSTATUS_H
#define BATTERYSTATUS_H

#include "kyalimentation.h"

/**
 * The battery status that a measurement stands for.
 *
 * @param meterType the type of charge meter fitted; with the charger present only types 1 and 2
 *        tell how full the battery is
 * @param measurement its charge may be any number
 */
KyAlimentation::BatteryStatus batteryStatus(bool chargerPresent, int meterType,
                                            const cmeter_data &measurement);

#endif
