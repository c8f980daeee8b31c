#ifndef BATTERYSTATUS_H
#define BATTERYSTATUS_H

#include <QObject>
#include <QString>

#include <optional>

/** The battery statuses. Their names are part of the interface. */
class Battery
{
    Q_GADGET
    Q_ENUMS(Status)

public:
    /** A name that ends in a number covers charges up to and including that percentage. */
    enum Status {
        CHARGER_OFF_UNKNOWN_BAT = 0,
        CHARGER_ON_NO_BAT = 1,
        CHARGER_OFF_BAT_PRWT = 2,
        CHARGER_OFF_BAT_INF_20 = 3,
        CHARGER_OFF_BAT_INF_40 = 4,
        CHARGER_OFF_BAT_INF_60 = 5,
        CHARGER_OFF_BAT_INF_80 = 6,
        CHARGER_OFF_BAT_INF_100 = 7,
        CHARGER_ON_BAT_INF_20 = 8,
        CHARGER_ON_BAT_INF_40 = 9,
        CHARGER_ON_BAT_INF_60 = 10,
        CHARGER_ON_BAT_INF_80 = 11,
        CHARGER_ON_BAT_INF_100 = 12,
        CHARGER_ON_BAT_FULL = 13,
    };
};

/** A measurement of the charge meter. */
struct BatteryMeasurement {
    /** False when charging has ended. Ignored without the charger, and if @ref charge < 0. */
    bool isCharging;
    /** In percent, negative while the battery is being charged; can be any number. */
    int charge;
};

/**
 * Returns the battery status for @p measurement.
 *
 * @param meterType the type of the charge meter; with the charger present, any type except 1 and 2
 *         means that there is no battery
 */
Battery::Status batteryStatus(bool chargerPresent, int meterType,
                              const BatteryMeasurement &measurement);

/** The name of @p status. */
QString batteryStatusName(Battery::Status status);

/** Returns the status with exactly that name; nothing for any other text. */
std::optional<Battery::Status> batteryStatusNamed(const QString &name);

#endif
