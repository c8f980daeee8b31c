#ifndef KYDEVICEMGR_H
#define KYDEVICEMGR_H

#include "introspection/MGR.h"
#include "kyalimentation.h"
#include "kyled.h"
#include "kynetwork.h"
#include "kystorage.h"
#include "kytemperaturewatcher.h"
#include "kyversion.h"
#include "kywatchdog.h"

#include <QDBusAbstractAdaptor>

class KyScreenBacklight;
class QDBusMessage;

/**
 * Owns the adaptors of the board's devices, connects them with one another and prepares the board
 * for power off.
 *
 * All of these adaptors have the same parent object as KyDeviceMgr.
 */
class KyDeviceMgr : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.MGR")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_MGR)

public:
    /**
     * Initialises the devices and makes the LEDs show the current state.
     *
     * Exports backlight and light sensor only on models with a screen. If the instrument record
     * cannot be read, the model counts as one without a screen.
     */
    explicit KyDeviceMgr(QObject *parent);

public Q_SLOTS:
    /**
     * Prepares the LEDs and the battery monitor for power off. Afterwards the battery status is
     * still announced, but changes no LED.
     *
     * Never fails, whatever arguments it gets; a repeated call does the same again.
     */
    void prepareForShutdown(const QDBusMessage &message);

private:
    bool readScreenPresence();
    void wireLeds();
    void showPresentState();

    // The devices are initialised in this order, except the backlight: it comes last.
    KyAlimentation m_alimentation;
    KyLED m_led;
    KyNetwork m_network;
    /** Null on a model without screen; the adapted object owns it. */
    KyScreenBacklight *m_screenBacklight;
    KyStorage m_storage;
    KyTemperatureWatcher m_temperatureWatcher;
    KyVersion m_version;
    KyWatchdog m_watchdog;
};

#endif
