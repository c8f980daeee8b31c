#include "kyscreenbacklight.h"

#include "arguments.h"
#include "error.h"
#include "kybrightness.h"
#include "lightsettings.h"
#include "screenlight.h"

#include <QDBusMessage>
#include <QDebug>

namespace
{
const ErrorText backlightErrors[] = {
    {Error::InvalidArgument, "One of the argument is invalid."},
    {Error::Read, "Could not get the current backlight value"},
    {Error::Write, "Could not set the current backlight value"},
};

const ErrorText setBacklightStepErrors[] = {
    {Error::InvalidArgument, "One of the argument is invalid."},
    {Error::Read, "Could not get the current brightness value"},
    {Error::Write, "Could not set the current backlight value"},
};

int codeOfWrite(int percentage)
{
    if (!isPercentage(percentage))
        return Error::InvalidArgument;
    return writeScreenLight(percentage) ? Error::None : Error::Write;
}
} // namespace

KyScreenBacklight::KyScreenBacklight(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_brightness(new KyBrightness(parent)),
      m_autoBacklight(false),
      m_steps(readBacklightSteps())
{
    connect(m_brightness, &KyBrightness::reachedBrightnessThreshold, this,
            &KyScreenBacklight::handleBrightnessChange);
}

int KyScreenBacklight::getBacklight(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return 0;
    const std::optional<int> percentage = readScreenLight();
    reportFailure(percentage ? Error::None : Error::Read, backlightErrors, message);
    return percentage.value_or(0);
}

void KyScreenBacklight::setBacklight(int backlight, const QDBusMessage &message)
{
    reportFailure(codeOfWrite(backlight), backlightErrors, message);
}

void KyScreenBacklight::enableBacklight(bool enable, const QDBusMessage &message)
{
    reportFailure(enableScreenLight(enable) ? Error::None : Error::Write, backlightErrors, message);
}

int KyScreenBacklight::getBacklightStep(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return 0;
    const std::optional<int> step = readScreenLightStep(m_steps);
    reportFailure(step ? Error::None : Error::Read, backlightErrors, message);
    return step.value_or(0);
}

void KyScreenBacklight::setBacklightStep(bool autoBacklight, int getBacklightStep,
                                         const QDBusMessage &message)
{
    m_autoBacklight = autoBacklight;
    const std::optional<int> percentage = requestedPercentage(getBacklightStep, m_steps);
    int code = Error::InvalidArgument;
    if (percentage)
        code = autoBacklight ? followLight() : codeOfWrite(*percentage);
    reportFailure(code, setBacklightStepErrors, message);
}

/** Automatic mode: changes the step with the ambient light. */
void KyScreenBacklight::handleBrightnessChange(double /*brightness*/, int brightnessLevel)
{
    const LightStep light = stepForLevel(brightnessLevel);
    if (!m_autoBacklight || light.isBeyondTable)
        return;
    const std::optional<int> step = readScreenLightStep(m_steps);
    if (!step) {
        qDebug() << qPrintable(Q_FUNC_INFO +
                               QStringLiteral("Could not retrieve current backlight"));
        Q_EMIT backlightChanged(-1, -1);
    } else if (*step != light.step) {
        followLight();
    }
}

/**
 * Adapts the backlight to the current light and announces the result. Returns Error::Read if the
 * light cannot be read. A failed write is only announced: the result is Error::None.
 */
int KyScreenBacklight::followLight()
{
    const std::optional<double> lux = m_brightness->readLight();
    if (!lux)
        return Error::Read;
    const auto change = adaptScreenLight(m_brightness->levelOf(*lux), m_steps);
    Q_EMIT backlightChanged(change ? change->percentage : -1, change ? change->step : -1);
    return Error::None;
}
