#include "backlightsteps.h"
#include "batterystatus.h"
#include "boardrevision.h"
#include "brightnesslevels.h"
#include "choices.h"
#include "errorcode.h"
#include "ledpattern.h"
#include "require.h"
#include "screenmodel.h"

namespace
{
void checkBattery(Choices &choices)
{
    BatteryMeasurement measurement = {};
    measurement.charge = static_cast<int>(choices.number());
    measurement.isCharging = static_cast<unsigned char>(choices.number()) != 0;
    const auto status =
        batteryStatus(choices.oneIn(2), static_cast<int>(choices.number()), measurement);
    require(!batteryGaugePattern(status).isEmpty(), "every status shows on the gauge");
    require(!powerButtonPattern(status).isEmpty(), "every status shows on the power button");
}

void checkBacklight(Choices &choices)
{
    BacklightSteps steps;
    for (int &percentage : steps.percentage)
        percentage = static_cast<int>(choices.number());
    const int step = backlightStep(static_cast<int>(choices.number()), steps);
    require(hasBacklightEntry(step) || step == stepAboveAll, "a percentage has a step");
    const int asked = static_cast<int>(choices.number());
    require(!isBacklightStep(asked) || hasBacklightEntry(backlightEntry(asked)),
            "a valid step has an entry");
}

void checkBrightness(Choices &choices)
{
    BrightnessBounds bounds;
    for (int &level : bounds.level)
        level = static_cast<int>(choices.number());
    const int level = brightnessLevel(static_cast<double>(choices.number()), bounds);
    require(level >= 1 && level <= 16, "light has a level");
    if (const auto band = brightnessBand(level, bounds))
        require(band->low >= 0 && band->low <= band->high, "a band has ordered bounds");
    require(hasBacklightEntry(stepForLevel(level).step), "a level has a step");
    thresholdTimerByte(static_cast<unsigned int>(choices.number()));
}
} // namespace

/** Numbers of any size from the sensors, the records and the settings. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    checkBattery(choices);
    checkBacklight(choices);
    checkBrightness(choices);

    const int code = static_cast<int>(choices.number());
    const int known = Error::codeOf(Error::nameOf(code));
    require(known == code || known == Error::Undefined, "an error's name leads back to its code");
    const auto revision = static_cast<unsigned int>(choices.number());
    require(fpgaRevisionText(revision).count(QLatin1Char('.')) == 1, "a revision has two numbers");
    const auto model = static_cast<quint16>(choices.number());
    require(hasScreen(QString::number(model, 16)) == (model == 0x8345 || model == 0x8347),
            "two models have a screen");
    require(libraryModel(model) <= 3, "every model has a number in the library");
    hasScreen(QString::fromStdString(choices.text()));
    return 0;
}
