#include "kybrightness.h"

#include "arguments.h"
#include "error.h"
#include "settings.h"

#include <QDBusMessage>
#include <QDebug>
#include <QSocketNotifier>

#include <unistd.h>

namespace
{
/** The settings of the levels, in their order. */
const struct {
    const QString &key;
    int defaultLux;
} levels[] = {
    {BRIGHTNESS_LEVEL_0, 0},    {BRIGHTNESS_LEVEL_1, 10},    {BRIGHTNESS_LEVEL_2, 15},
    {BRIGHTNESS_LEVEL_3, 25},   {BRIGHTNESS_LEVEL_4, 50},    {BRIGHTNESS_LEVEL_5, 75},
    {BRIGHTNESS_LEVEL_6, 100},  {BRIGHTNESS_LEVEL_7, 150},   {BRIGHTNESS_LEVEL_8, 175},
    {BRIGHTNESS_LEVEL_9, 200},  {BRIGHTNESS_LEVEL_10, 250},  {BRIGHTNESS_LEVEL_11, 300},
    {BRIGHTNESS_LEVEL_12, 350}, {BRIGHTNESS_LEVEL_13, 400},  {BRIGHTNESS_LEVEL_14, 450},
    {BRIGHTNESS_LEVEL_15, 500}, {BRIGHTNESS_LEVEL_16, 1000}, {BRIGHTNESS_LEVEL_17, 10000},
};
const uint defaultTimer = 5;

/** The library's failure in place of a descriptor; on any other negative one nothing is watched. */
const int noInterrupt = -2;

const ErrorText getBrightnessErrors[] = {
    {Error::Read, "Could not get the current brightness value"},
    {Error::Initialisation, "The initialisation of the ALS failed"},
};

BrightnessBounds readBounds()
{
    BrightnessBounds bounds{};
    static_assert(sizeof bounds.level / sizeof(int) == sizeof levels / sizeof levels[0],
                  "every level has its setting");
    int *level = bounds.level;
    for (const auto &row : levels)
        *level++ = Settings::instance().value(row.key, row.defaultLux).toInt();
    return bounds;
}
} // namespace

KyBrightness::KyBrightness(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_initError(Error::None),
      m_notifier(nullptr),
      m_bounds(readBounds())
{
    setAutoRelaySignals(false);
    m_initError = setUp();
}

int KyBrightness::readLight(double &lux)
{
    lux = -1;
    if (m_initError != Error::None)
        return m_initError;
    float measured = -1;
    if (m_als.readLux(&measured) != 0)
        return Error::Read;
    lux = static_cast<double>(measured);
    return Error::None;
}

int KyBrightness::levelOf(double lux) const
{
    return brightnessLevel(lux, m_bounds);
}

double KyBrightness::getBrightness(const QDBusMessage &message)
{
    double lux = 0;
    if (!hasNoArguments(message))
        return lux;
    reportFailure(readLight(lux), getBrightnessErrors, message);
    return lux;
}

/** Takes in an interrupt of the sensor: puts the band around the new level and announces it. */
void KyBrightness::handleAlsActivation(int socket)
{
    if (m_initError != Error::None)
        return;
    double lux;
    // A failed reading counts as the -1 it gives.
    readLight(lux);
    const int level = levelOf(lux);

    char event[8];
    // The kernel keeps the event of a value file until that is read from its beginning; a socket
    // has none, and refuses.
    lseek(socket, 0, SEEK_SET);
    // Only drains the event; whatever it holds, the sensor is asked itself.
    const ssize_t drained = read(socket, event, sizeof event);
    static_cast<void>(drained);
    bool isRaised = false;
    if (m_als.interruptRead(&isRaised) != 0)
        qDebug() << qPrintable(Q_FUNC_INFO + QStringLiteral("Read interrupt ALS failed"));
    if (setBand(level) != Error::None) {
        // The spelling is relied on.
        qDebug() << qPrintable(Q_FUNC_INFO +
                               QStringLiteral("Setting the new theresholds for ALS failed"));
        return;
    }
    Q_EMIT reachedBrightnessThreshold(lux, level);
}

/** Whichever step of the set-up fails, the sensor counts as not initialised. */
int KyBrightness::setUp()
{
    return programSensor() && watchInterrupt() ? Error::None : Error::Initialisation;
}

/** Starts the sensor and puts its band around the present light; whether everything worked. */
bool KyBrightness::programSensor()
{
    const uint timer = Settings::instance().value(BRIGHTNESS_TIMER, defaultTimer).toUInt();
    double lux;
    return m_als.init() == 0 && readLight(lux) == Error::None &&
           setBand(levelOf(lux)) == Error::None &&
           m_als.setThresholdsTimer(thresholdTimerByte(timer)) == 0 &&
           m_als.interruptEnable(true) == 0;
}

/** Listens to the sensor's interrupt line; false when the sensor offers none. */
bool KyBrightness::watchInterrupt()
{
    const int descriptor = m_als.getinterruptHandler();
    if (descriptor < 0)
        return descriptor != noInterrupt;
    // The edge of an interrupt line shows as urgent data.
    m_notifier = new QSocketNotifier(descriptor, QSocketNotifier::Exception, parent());
    connect(m_notifier, SIGNAL(activated(int)), SLOT(handleAlsActivation(int)));
    return true;
}

/**
 * Makes the sensor silent within the band around @p level.
 *
 * @return Error::None, Error::InvalidArgument for bounds that are out of order, Error::Write when
 *         the sensor refuses, or the error of a sensor that could not be set up
 */
int KyBrightness::setBand(int level)
{
    if (m_initError != Error::None)
        return m_initError;
    BrightnessBand band;
    const int code = brightnessBand(level, m_bounds, band);
    if (code != Error::None)
        return code;
    const uchar high = m_als.convLuxInExponentMantissaByte(static_cast<float>(band.high));
    const uchar low = m_als.convLuxInExponentMantissaByte(static_cast<float>(band.low));
    return m_als.setThresholds(high, low) == 0 ? Error::None : Error::Write;
}
