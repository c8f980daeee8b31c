#include "kyscreenbacklight.h"

#include "arguments.h"
#include "error.h"
#include "kybacklight.h"
#include "kybrightness.h"
#include "settings.h"

#include <QDBusMessage>
#include <QDebug>

namespace
{
/** The settings of the steps, in their order; the first three keys of the group are no steps. */
const struct {
    const QString &key;
    int defaultPercentage;
} stepSettings[] = {
    {SCREEN_BACKLIGHT_STEP_3, 15},   {SCREEN_BACKLIGHT_STEP_4, 20},  {SCREEN_BACKLIGHT_STEP_5, 25},
    {SCREEN_BACKLIGHT_STEP_6, 30},   {SCREEN_BACKLIGHT_STEP_7, 35},  {SCREEN_BACKLIGHT_STEP_8, 40},
    {SCREEN_BACKLIGHT_STEP_9, 45},   {SCREEN_BACKLIGHT_STEP_10, 50}, {SCREEN_BACKLIGHT_STEP_11, 60},
    {SCREEN_BACKLIGHT_STEP_12, 70},  {SCREEN_BACKLIGHT_STEP_13, 80}, {SCREEN_BACKLIGHT_STEP_14, 90},
    {SCREEN_BACKLIGHT_STEP_15, 100},
};

const ErrorText getBacklightErrors[] = {
    {Error::Read, "Could not get the current backlight value"},
};

const ErrorText setBacklightErrors[] = {
    {Error::InvalidArgument, "One of the argument is invalid."},
    {Error::Write, "Could not set the current backlight value"},
};

const ErrorText enableBacklightErrors[] = {
    {Error::Write, "Could not set the current backlight value"},
};

const ErrorText getBacklightStepErrors[] = {
    {Error::Read, "Could not get the current backlight value"},
    {Error::Configuration,
     "The gotten backlight value is more than the maximum found in the step configurations."},
};

const ErrorText setBacklightStepErrors[] = {
    {Error::InvalidArgument, "One of the argument is invalid."},
    {Error::Read, "Could not get the current brightness value"},
    {Error::Write, "Could not set the current backlight value"},
};

BacklightSteps readSteps()
{
    BacklightSteps steps{};
    static_assert(sizeof steps.percentage / sizeof(int) ==
                      sizeof stepSettings / sizeof stepSettings[0],
                  "every step has its setting");
    int *percentage = steps.percentage;
    for (const auto &row : stepSettings)
        *percentage++ = Settings::instance().value(row.key, row.defaultPercentage).toInt();
    return steps;
}
} // namespace

KyScreenBacklight::KyScreenBacklight(QObject *parent)
    : QDBusAbstractAdaptor(parent),
      m_brightness(nullptr),
      m_autoBacklight(false),
      m_steps(readSteps())
{
    m_brightness = new KyBrightness(parent);
    connect(m_brightness, &KyBrightness::reachedBrightnessThreshold, this,
            &KyScreenBacklight::handleBrightnessChange);
}

int KyScreenBacklight::getBacklight(const QDBusMessage &message)
{
    int percentage = 0;
    if (!hasNoArguments(message))
        return percentage;
    reportFailure(readPercentage(percentage), getBacklightErrors, message);
    return percentage;
}

void KyScreenBacklight::setBacklight(int backlight, const QDBusMessage &message)
{
    reportFailure(writePercentage(backlight), setBacklightErrors, message);
}

void KyScreenBacklight::enableBacklight(bool enable, const QDBusMessage &message)
{
    KyBacklight backlight;
    const int code = backlight.enableBacklight(enable) == 0 ? Error::None : Error::Write;
    reportFailure(code, enableBacklightErrors, message);
}

int KyScreenBacklight::getBacklightStep(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return 0;
    int percentage;
    const int code = readPercentage(percentage);
    reportFailure(code, getBacklightStepErrors, message);
    return code == Error::None ? backlightStep(percentage, m_steps) : 0;
}

void KyScreenBacklight::setBacklightStep(bool autoBacklight, int getBacklightStep,
                                         const QDBusMessage &message)
{
    m_autoBacklight = autoBacklight;
    reportFailure(applyStep(getBacklightStep), setBacklightStepErrors, message);
}

/** In automatic mode, follows the ambient light to another step. */
void KyScreenBacklight::handleBrightnessChange(double brightness, int brightnessLevel)
{
    Q_UNUSED(brightness)
    const int step = brightnessLevel - 1;
    // Light above the table leaves the backlight as it is.
    if (!m_autoBacklight || !hasBacklightEntry(step))
        return;
    int percentage;
    if (readPercentage(percentage) != Error::None) {
        qDebug() << qPrintable(Q_FUNC_INFO +
                               QStringLiteral("Could not retrieve current backlight"));
        Q_EMIT backlightChanged(-1, -1);
        return;
    }
    if (backlightStep(percentage, m_steps) != step)
        applyStep(step);
}

/** Gives the present percentage and Error::None, or Error::Read with the 0 of a failed method. */
int KyScreenBacklight::readPercentage(int &percentage) const
{
    KyBacklight backlight;
    percentage = backlight.getBrightness();
    if (percentage != -1)
        return Error::None;
    percentage = 0;
    return Error::Read;
}

/** Error::None, Error::InvalidArgument for anything but 0 to 100, or Error::Write. */
int KyScreenBacklight::writePercentage(int percentage) const
{
    if (percentage < 0 || percentage > 100)
        return Error::InvalidArgument;
    KyBacklight backlight;
    return backlight.setBrightness(static_cast<uchar>(percentage)) == 0 ? Error::None
                                                                        : Error::Write;
}

/** Sets the backlight to @p step or, in automatic mode, by the light; one of setBacklightStep(). */
int KyScreenBacklight::applyStep(int step)
{
    if (!isBacklightStep(step))
        return Error::InvalidArgument;
    if (m_autoBacklight)
        return applyLight();
    return writePercentage(m_steps.percentage[backlightEntry(step)]);
}

/** Sets the backlight by the present light and announces it; only a failed reading is an error. */
int KyScreenBacklight::applyLight()
{
    double lux;
    if (m_brightness->readLight(lux) != Error::None)
        return Error::Read;
    const int entry = backlightEntry(m_brightness->levelOf(lux) - 1);
    const int percentage = m_steps.percentage[entry];
    if (writePercentage(percentage) == Error::None)
        Q_EMIT backlightChanged(percentage, entry);
    else
        Q_EMIT backlightChanged(-1, -1);
    return Error::None;
}
