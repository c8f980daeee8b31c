#include "kyalimentation.h"

#include "kysocmanager.h"

#include <QTimer>

namespace
{
constexpr int startIntervalMs = 10000;
constexpr int steadyIntervalMs = 300000;

constexpr unsigned short supplyRegister = 0x600;
constexpr unsigned int chargerPresentBit = 1U << 30;

/** Returns false if the charger is absent, or if the register cannot be read. */
bool readChargerPresence()
{
    KySocManager socManager;
    socManager.initSPI();
    unsigned int value = 0;
    return socManager.getSoCRegister(supplyRegister, &value) == 0 &&
           (value & chargerPresentBit) != 0;
}
} // namespace

KyAlimentation::KyAlimentation(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_checkTimer(new QTimer(this)),
      m_fastChecksLeft(10),
      m_chargerPresent(false),
      m_batteryVoltage(0)
{
    m_checkTimer->setTimerType(Qt::PreciseTimer);
    connect(m_checkTimer, &QTimer::timeout, this, &KyAlimentation::periodicBatteryCheck);
    m_checkTimer->start(startIntervalMs);
    refresh();
}

QString KyAlimentation::readBatteryStatus()
{
    const bool present = readChargerPresence();
    const bool changed = present != m_chargerPresent;
    if (changed) {
        m_chargerPresent = present;
        m_batmonitor.update(present);
    }
    QString status = batteryStatusName(measure());
    if (changed)
        Q_EMIT batteryStatus(status);
    return status;
}

void KyAlimentation::prepareForShutdown()
{
    m_batmonitor.prepareForShutdown();
}

uint KyAlimentation::getBatteryVoltage() const
{
    return m_batteryVoltage;
}

void KyAlimentation::periodicBatteryCheck()
{
    if (m_fastChecksLeft > 0) {
        --m_fastChecksLeft;
    } else if (m_fastChecksLeft == 0) {
        m_checkTimer->start(steadyIntervalMs);
        m_fastChecksLeft = -1;
    }
    refresh();
    Q_EMIT batteryStatus(readBatteryStatus());
}

/** Updates the monitor's charger state even when it has not changed. */
void KyAlimentation::refresh()
{
    m_chargerPresent = readChargerPresence();
    m_batmonitor.update(m_chargerPresent);
}

KyAlimentation::BatteryStatus KyAlimentation::measure()
{
    const int meterType = m_batmonitor.getCmeterType();
    cmeter_data measurement = {};
    if (m_batmonitor.getBatteryInfo(&measurement) != 0)
        return Battery::CHARGER_OFF_UNKNOWN_BAT;
    m_batteryVoltage = measurement.voltage;
    return ::batteryStatus(m_chargerPresent, meterType,
                           {measurement.flag != 0, measurement.charge});
}
