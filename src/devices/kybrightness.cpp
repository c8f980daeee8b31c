#include "kybrightness.h"

#include "arguments.h"
#include "error.h"

#include <QDBusMessage>
#include <QDebug>
#include <QSocketNotifier>

namespace
{
const ErrorText getBrightnessErrors[] = {
    {Error::Read, "Could not get the current brightness value"},
    {Error::Initialisation, "The initialisation of the ALS failed"},
};
} // namespace

KyBrightness::KyBrightness(QObject *parent) : QDBusAbstractAdaptor(parent)
{
    if (!m_sensor.interrupt())
        return;
    // The kernel reports an edge of the interrupt line as urgent data.
    auto *notifier = new QSocketNotifier(*m_sensor.interrupt(), QSocketNotifier::Exception, parent);
    // Qt 5.15 has a second overload of the signal; only the string syntax selects the first one.
    connect(notifier, SIGNAL(activated(int)), SLOT(handleAlsActivation(int)));
}

std::optional<double> KyBrightness::readLight()
{
    return m_sensor.isReady() ? m_sensor.read() : std::nullopt;
}

int KyBrightness::levelOf(double lux) const
{
    return m_sensor.levelOf(lux);
}

double KyBrightness::getBrightness(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return 0;
    const std::optional<double> lux = readLight();
    if (!lux)
        reportFailure(m_sensor.isReady() ? Error::Read : Error::Initialisation, getBrightnessErrors,
                      message);
    return lux.value_or(-1);
}

/** Handles an interrupt: sets the band around the new level and announces the level. */
void KyBrightness::handleAlsActivation(int socket)
{
    if (!m_sensor.isReady())
        return;
    // A failed reading counts as -1.
    const double lux = m_sensor.read().value_or(-1);
    const int level = m_sensor.levelOf(lux);
    if (!m_sensor.acknowledge(socket))
        qDebug() << qPrintable(Q_FUNC_INFO + QStringLiteral("Read interrupt ALS failed"));
    if (!m_sensor.setBand(level)) {
        // The journal's readers rely on the spelling.
        qDebug() << qPrintable(Q_FUNC_INFO +
                               QStringLiteral("Setting the new theresholds for ALS failed"));
        return;
    }
    Q_EMIT reachedBrightnessThreshold(lux, level);
}
