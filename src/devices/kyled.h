#ifndef KYLED_H
#define KYLED_H

#include "introspection/LED.h"
#include "kyleds.h"
#include "leds.h"

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

public:
    using Led = Leds::Led;
    using State = Leds::State;

    /** Changes no LED. */
    explicit KyLED(QObject *parent);

    /**
     * Makes the battery gauge show @p status, a name of Battery::Status; any other
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
