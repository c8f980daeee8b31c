#ifndef BATTERY_H
#define BATTERY_H

#include <QString>

/** What a battery status of the daemon means, as in "CHARGER_OFF_BAT_INF_80". */
struct Battery {
    /** The highest percentage that the status stands for; -1 where the charge is not known. */
    int level = -1;
    bool isChargerThere = false;
};

/** Reads a status; one that is not known, or empty, tells nothing. */
Battery batteryFrom(const QString &status);

#endif
