#include "kydevicemgr.h"

KyDeviceMgr::KyDeviceMgr(QObject *parent)
    : QObject(parent),
      m_alimentation(parent),
      m_led(parent),
      m_network(parent),
      m_storage(parent),
      m_temperatureWatcher(parent),
      m_version(parent),
      m_watchdog(parent)
{
    connect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handleAlimentation);
    connect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handlePowerButton);
    connect(&m_storage, &KyStorage::deviceChangedMountState, &m_led, &KyLED::handleStorage);

    // Nothing may have changed for long, so nobody would tell the LEDs.
    Q_EMIT m_alimentation.batteryStatus(m_alimentation.readBatteryStatus());
    m_led.handleStorage(QStringLiteral("SD"), m_storage.isMounted(QStringLiteral("SD")));
}
