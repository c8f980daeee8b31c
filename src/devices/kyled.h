#ifndef KYLED_H
#define KYLED_H

#include "introspection/LED.h"
#include "kyleds.h"

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QVariantMap>
#include <QVector>

struct LedSetting;
class QDBusMessage;

/**
 * The front-panel LEDs: set and read by clients, and driven by the battery status and the storage
 * devices.
 *
 * LEDs and what they show go by the names of the two enumerations, compared exactly. No state is
 * kept here: what an LED shows is read back from the hardware.
 */
class KyLED : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.LED")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_LED)
    Q_ENUMS(Led State)

public:
    /** The LEDs, by the board library's numbers. */
    enum Led {
        BAT_RS1 = LED_BAT_RS1,
        BAT_GS1 = LED_BAT_GS1,
        BAT_GS2 = LED_BAT_GS2,
        BAT_GS3 = LED_BAT_GS3,
        BAT_GS4 = LED_BAT_GS4,
        BAT_GS5 = LED_BAT_GS5,
        UTC_SYNC = LED_UTC_SYNC,
        RECORDING = LED_RECORDING,
        BT = LED_BT,
        WIFI = LED_WIFI,
        WPS = LED_WPS,
        POWER_Y = LED_POWER_Y,
        POWER_G = LED_POWER_G,
        SD_STATUS = LED_SD_STATUS,
    };

    /** What an LED shows, by the board library's numbers. */
    enum State {
        OFF = LED_OFF,
        BLINK_1HZ = LED_BLINK_1HZ,
        BLINK_3HZ = LED_BLINK_3HZ,
        ON = LED_ON,
        UNKNOWN = LED_UNKNOWN,
    };

    /** Changes no LED. */
    explicit KyLED(QObject *parent);

    /**
     * Makes the battery gauge show @p status, a name of KyAlimentation::BatteryStatus; any other
     * text changes nothing. Failures of the hardware are ignored.
     */
    void handleAlimentation(const QString &status);

    /** The same for the LEDs of the power button. */
    void handlePowerButton(const QString &status);

    /** Makes the LED of the SD card show whether it is mounted; other devices have no LED. */
    void handleStorage(const QString &device, bool isMounted);

public Q_SLOTS:
    /**
     * Makes @p led show @p status; every name of the states is passed on, "UNKNOWN" too.
     *
     * Error::m_invalidArgument for a name that is none, Error::m_write when the hardware refuses.
     */
    void setLEDStatus(QString led, QString status, const QDBusMessage &message);

    /** What each LED shows, by its name; an LED that cannot be read is left out. */
    QVariantMap getLEDStatus();

    /** Makes the power button show that the instrument shuts down; failures are ignored. */
    void prepareForShutdown();

private:
    void show(const QVector<LedSetting> &settings);

    KyLeds m_leds;
};

#endif
