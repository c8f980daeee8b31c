#include "batterystatus.h"

#include "enumnames.h"

#include <limits>

namespace
{
/** A status and the highest charge, in percent, that it covers. */
struct Bound {
    qint64 highest;
    Battery::Status status;
};

constexpr qint64 unbounded = std::numeric_limits<qint64>::max();

const Bound discharging[] = {
    {10, Battery::CHARGER_OFF_BAT_PRWT},   {20, Battery::CHARGER_OFF_BAT_INF_20},
    {40, Battery::CHARGER_OFF_BAT_INF_40}, {60, Battery::CHARGER_OFF_BAT_INF_60},
    {80, Battery::CHARGER_OFF_BAT_INF_80}, {unbounded, Battery::CHARGER_OFF_BAT_INF_100},
};

const Bound charging[] = {
    {20, Battery::CHARGER_ON_BAT_INF_20},
    {40, Battery::CHARGER_ON_BAT_INF_40},
    {60, Battery::CHARGER_ON_BAT_INF_60},
    {80, Battery::CHARGER_ON_BAT_INF_80},
    {100, Battery::CHARGER_ON_BAT_INF_100},
    // A charge above 100 % is invalid.
    {unbounded, Battery::CHARGER_OFF_UNKNOWN_BAT},
};

/**
 * Returns the status of the first row that covers @p charge. @p charge has 64 bits, because the
 * negation of the lowest int is not an int.
 */
Battery::Status statusOf(qint64 charge, const Bound *bound)
{
    while (charge > bound->highest)
        ++bound;
    return bound->status;
}

QMetaEnum names()
{
    return registeredEnum(Battery::staticMetaObject, "Status");
}
} // namespace

Battery::Status batteryStatus(bool chargerPresent, int meterType,
                              const BatteryMeasurement &measurement)
{
    const qint64 charge = measurement.charge;
    if (!chargerPresent)
        return statusOf(charge, discharging);
    if (meterType != 1 && meterType != 2)
        return Battery::CHARGER_ON_NO_BAT;
    // The charge meter reports a negative percentage while the battery is being charged.
    if (charge < 0)
        return statusOf(-charge, charging);
    return measurement.isCharging ? Battery::CHARGER_ON_BAT_INF_20 : Battery::CHARGER_ON_BAT_FULL;
}

QString batteryStatusName(Battery::Status status)
{
    return enumName(names(), status);
}

std::optional<Battery::Status> batteryStatusNamed(const QString &name)
{
    const std::optional<int> value = enumValue(names(), name);
    if (!value)
        return std::nullopt;
    return static_cast<Battery::Status>(*value);
}
