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
 * The front-panel LEDs: clients set and read them, battery status and storage devices drive them.
 *
 * The names of LEDs and states are the names of the enumerators of Led and State, compared exactly.
 * The class does not store the states of the LEDs: it reads them back from the hardware.
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
     * Makes the battery gauge show @p status, a name of Battery::Status; ignores any other text and
     * hardware failures.
     */
    void handleAlimentation(const QString &status);

    /** The same for the LEDs of the power button. */
    void handlePowerButton(const QString &status);

    /** Makes the SD card's LED show whether the card is mounted; other devices have no LED. */
    void handleStorage(const QString &device, bool isMounted);

public Q_SLOTS:
    /**
     * Sets @p led to @p status; passes every state name to the hardware, including "UNKNOWN".
     *
     * Error::m_invalidArgument for an unknown name, Error::m_write if the hardware refuses.
     */
    void setLEDStatus(QString led, QString status, const QDBusMessage &message);

    /** Returns the state of each LED by its name; leaves out an LED that cannot be read. */
    QVariantMap getLEDStatus();

    /** Makes the power button show that the instrument shuts down; failures are ignored. */
    void prepareForShutdown();

private:
    void show(const QVector<LedSetting> &settings);

    KyLeds m_leds;
};

#endif
