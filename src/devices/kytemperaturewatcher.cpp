#include "kytemperaturewatcher.h"

#include "enumnames.h"
#include "error.h"
#include "kytemperature.h"

#include <QDebug>
#include <QTimer>

namespace
{
constexpr int startIntervalMs = 300000;
constexpr int shortestIntervalMs = 1000;
constexpr int startThresholdCelsius = 80;

QMetaEnum deviceNames()
{
    return registeredEnum(KyTemperatureWatcher::staticMetaObject, "Device");
}
} // namespace

KyTemperatureWatcher::KyTemperatureWatcher(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_checkTimer(new QTimer(this)),
      m_somThreshold(startThresholdCelsius),
      m_analogChainThreshold(startThresholdCelsius)
{
    m_checkTimer->setTimerType(Qt::PreciseTimer);
    connect(m_checkTimer, &QTimer::timeout, this, &KyTemperatureWatcher::periodicTemperatureCheck);
    m_checkTimer->start(startIntervalMs);
}

QVariantMap KyTemperatureWatcher::getTemperatures()
{
    KyTemperature sensors;
    QVariantMap temperatures;
    readSensor(sensors, SOM, m_somThreshold, "Failed to get SoM chain temperature !", temperatures);
    readSensor(sensors, ANALOG_CHAIN, m_analogChainThreshold,
               "Failed to get analog chain temperature !", temperatures);
    return temperatures;
}

void KyTemperatureWatcher::setTemperatureThreshold(QString device, int threshold,
                                                   const QDBusMessage &message)
{
    const std::optional<int> number = enumValue(deviceNames(), device);
    if (!number) {
        sendErrorReply(Error::InvalidArgument, QStringLiteral("Unknown device"), message);
        return;
    }
    (*number == SOM ? m_somThreshold : m_analogChainThreshold) = threshold;
}

void KyTemperatureWatcher::setInterval(int interval, const QDBusMessage &message)
{
    if (interval < shortestIntervalMs) {
        // Clients match on this wording, although 1000 itself is accepted.
        sendErrorReply(Error::InvalidArgument,
                       QStringLiteral("Intervall is too short, should be > 1s (1000)"), message);
        return;
    }
    m_checkTimer->setInterval(interval);
}

void KyTemperatureWatcher::periodicTemperatureCheck()
{
    getTemperatures();
}

/**
 * Adds the temperature of @p device to @p temperatures, and announces it if it is at or above
 * @p threshold. If the sensor cannot be read, only logs @p failure.
 */
void KyTemperatureWatcher::readSensor(KyTemperature &sensors, Device device, int threshold,
                                      const char *failure, QVariantMap &temperatures)
{
    int temperature = 0;
    if (sensors.getTemperature(static_cast<e_tempdev>(device), &temperature) != 0) {
        qDebug() << failure;
        return;
    }
    const QString name = enumName(deviceNames(), device);
    temperatures.insert(name, temperature);
    if (temperature >= threshold)
        Q_EMIT temperatureReached(name, temperature);
}
