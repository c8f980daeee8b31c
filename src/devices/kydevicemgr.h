#ifndef KYDEVICEMGR_H
#define KYDEVICEMGR_H

#include "kyalimentation.h"
#include "kyled.h"
#include "kynetwork.h"
#include "kystorage.h"
#include "kytemperaturewatcher.h"
#include "kyversion.h"
#include "kywatchdog.h"

#include <QObject>

/** The root of the device side: owns the adaptors of the board's devices and wires them up. */
class KyDeviceMgr : public QObject
{
    Q_OBJECT

public:
    /** Attaches the adaptors to @p parent and makes the LEDs show the present state. */
    explicit KyDeviceMgr(QObject *parent);

private:
    KyAlimentation m_alimentation;
    KyLED m_led;
    KyNetwork m_network;
    KyStorage m_storage;
    KyTemperatureWatcher m_temperatureWatcher;
    KyVersion m_version;
    KyWatchdog m_watchdog;
};

#endif
