#ifndef LEDS_H
#define LEDS_H

#include <QObject>
#include <QString>
#include <QVector>

#include <optional>

/** The front-panel LEDs and their states. The names are part of the interface. */
class Leds
{
    Q_GADGET
    Q_ENUMS(Led State)

public:
    /** The LEDs, numbered as in the board library: in steps of two. */
    enum Led {
        BAT_RS1 = 0,
        BAT_GS1 = 2,
        BAT_GS2 = 4,
        BAT_GS3 = 6,
        BAT_GS4 = 8,
        BAT_GS5 = 10,
        UTC_SYNC = 12,
        RECORDING = 14,
        BT = 16,
        WIFI = 18,
        WPS = 20,
        POWER_Y = 22,
        POWER_G = 24,
        SD_STATUS = 26,
    };

    /** The state of an LED, numbered as in the board library. */
    enum State {
        OFF = 0,
        BLINK_1HZ = 1,
        BLINK_3HZ = 2,
        ON = 3,
        UNKNOWN = 4,
    };
};

/** An enumerator and its name. */
struct NamedValue {
    int value;
    QString name;
};

/** Returns every LED with its name. */
const QVector<NamedValue> &ledNames();

/** Returns the LED with exactly that name; nothing for any other text. */
std::optional<int> ledNamed(const QString &name);

/** Returns the state with exactly that name; nothing for any other text. */
std::optional<int> ledStateNamed(const QString &name);

/** Returns the name of @p state; UNKNOWN for a number that the enumeration does not have. */
QString ledStateName(int state);

#endif
