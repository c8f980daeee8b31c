#ifndef KYDEVICEMGR_H
#define KYDEVICEMGR_H

#include "kyalimentation.h"
#include "kyled.h"
#include "kystorage.h"
#include "kytemperaturewatcher.h"

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
    KyStorage m_storage;
    KyTemperatureWatcher m_temperatureWatcher;
};

#endif
