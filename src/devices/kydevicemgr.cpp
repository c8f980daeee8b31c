#include "kydevicemgr.h"

#include "kyscreenbacklight.h"
#include "screenmodel.h"

#include <QDBusMessage>

KyDeviceMgr::KyDeviceMgr(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_alimentation(parent),
      m_led(parent),
      m_network(parent),
      m_screenBacklight(nullptr),
      m_storage(parent),
      m_temperatureWatcher(parent),
      m_version(parent),
      m_watchdog(parent)
{
    if (readScreenPresence())
        m_screenBacklight = new KyScreenBacklight(parent);
    wireLeds();
    showPresentState();
}

void KyDeviceMgr::prepareForShutdown(const QDBusMessage & /*message*/)
{
    disconnect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handleAlimentation);
    disconnect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handlePowerButton);
    m_led.prepareForShutdown();
    m_alimentation.prepareForShutdown();
}

/**
 * Returns true if the instrument's model has a screen. Reading the instrument record also passes
 * brand and model to the board library.
 */
bool KyDeviceMgr::readScreenPresence()
{
    const QVariantMap instrument = m_version.getEepromInstrument();
    return hasScreen(instrument.value(QStringLiteral("Model")).toString());
}

void KyDeviceMgr::wireLeds()
{
    connect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handleAlimentation);
    connect(&m_alimentation, &KyAlimentation::batteryStatus, &m_led, &KyLED::handlePowerButton);
    connect(&m_storage, &KyStorage::deviceChangedMountState, &m_led, &KyLED::handleStorage);
}

/** Updates the LEDs, because the next event may be a long time away. */
void KyDeviceMgr::showPresentState()
{
    Q_EMIT m_alimentation.batteryStatus(m_alimentation.readBatteryStatus());
    const QString card = QStringLiteral("SD");
    m_led.handleStorage(card, m_storage.isMounted(card));
}
