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
 * The root of the device side: owns the adaptors of the board's devices, wires them to one another
 * and prepares the board for power-off.
 *
 * All of them adapt the object that this one adapts.
 */
class KyDeviceMgr : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.MGR")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_MGR)

public:
    /**
     * Initialises the devices and makes the LEDs show the present state.
     *
     * Screen backlight and light sensor are offered on the models that have a screen; an
     * instrument record that cannot be read counts as one without.
     */
    explicit KyDeviceMgr(QObject *parent);

public Q_SLOTS:
    /**
     * Brings the LEDs and the battery monitor into the state in which power may be cut. From then
     * on the battery status, which is still announced, no longer changes any LED.
     *
     * Never fails, whatever arguments it brings; a repeated call does the same again.
     */
    void prepareForShutdown(const QDBusMessage &message);

private:
    bool readScreenPresence();
    void wireLeds();
    void showPresentState();

    // The devices are initialised in this order.
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
