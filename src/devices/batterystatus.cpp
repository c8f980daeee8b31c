#include "batterystatus.h"

#include <limits>

namespace
{
/** A status and the highest charge, in percent, that it covers. */
struct Bound {
    qint64 highest;
    KyAlimentation::BatteryStatus status;
};

const qint64 unbounded = std::numeric_limits<qint64>::max();

const Bound discharging[] = {
    {10, KyAlimentation::CHARGER_OFF_BAT_PRWT},
    {20, KyAlimentation::CHARGER_OFF_BAT_INF_20},
    {40, KyAlimentation::CHARGER_OFF_BAT_INF_40},
    {60, KyAlimentation::CHARGER_OFF_BAT_INF_60},
    {80, KyAlimentation::CHARGER_OFF_BAT_INF_80},
    {unbounded, KyAlimentation::CHARGER_OFF_BAT_INF_100},
};

const Bound charging[] = {
    {20, KyAlimentation::CHARGER_ON_BAT_INF_20},
    {40, KyAlimentation::CHARGER_ON_BAT_INF_40},
    {60, KyAlimentation::CHARGER_ON_BAT_INF_60},
    {80, KyAlimentation::CHARGER_ON_BAT_INF_80},
    {100, KyAlimentation::CHARGER_ON_BAT_INF_100},
    // More than full is no measurement.
    {unbounded, KyAlimentation::CHARGER_OFF_UNKNOWN_BAT},
};

/** The status of the first row that covers @p charge, which is wide enough to be any int negated.
 */
KyAlimentation::BatteryStatus statusOf(qint64 charge, const Bound *bound)
{
    while (charge > bound->highest)
        ++bound;
    return bound->status;
}
} // namespace

KyAlimentation::BatteryStatus batteryStatus(bool chargerPresent, int meterType,
                                            const cmeter_data &measurement)
{
    const qint64 charge = measurement.charge;
    if (!chargerPresent)
        return statusOf(charge, discharging);
    if (meterType != 1 && meterType != 2)
        return KyAlimentation::CHARGER_ON_NO_BAT;
    // The meter negates the percentage while the battery is being charged.
    if (charge < 0)
        return statusOf(-charge, charging);
    return measurement.flag != 0 ? KyAlimentation::CHARGER_ON_BAT_INF_20
                                 : KyAlimentation::CHARGER_ON_BAT_FULL;
}
