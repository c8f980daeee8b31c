#ifndef BATTERY_H
#define BATTERY_H

#include <QString>

/** The meaning of a battery status of the daemon, for example "CHARGER_OFF_BAT_INF_80". */
struct Battery {
    /** The charge is at most this percentage, for example 80; -1 if the charge is unknown. */
    int level = -1;
    bool isChargerThere = false;
};

/** Parses a status. An unknown or empty status results in unknown values. */
Battery batteryFrom(const QString &status);

#endif
