#include "battery.h"

Battery batteryFrom(const QString &status)
{
    Battery battery;
    battery.isChargerThere = status.startsWith(QLatin1String("CHARGER_ON_"));
    // "..._BAT_INF_80": up to 80 %.
    const QString below = QStringLiteral("_BAT_INF_");
    bool isNumber = false;
    const int level = status.section(below, 1).toInt(&isNumber);
    if (isNumber)
        battery.level = level;
    else if (status.endsWith(QLatin1String("_BAT_FULL")))
        battery.level = 100;
    else if (status.endsWith(QLatin1String("_BAT_PRWT")))
        battery.level = 10;
    return battery;
}
