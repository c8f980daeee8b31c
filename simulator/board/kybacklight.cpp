#include "kybacklight.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

using namespace board;

namespace
{
constexpr int fullBrightness = 100;
constexpr int nonsensePercent = 31337;
} // namespace

KyBacklight::KyBacklight() : m_handle(nullptr)
{
    createOnce();
}

KyBacklight::~KyBacklight() = default;

int KyBacklight::getBrightness()
{
    return Call("KyBacklight.getBrightness").answer(-1, nonsensePercent, [] {
        return readNumber<int>("backlight/brightness", 0, fullBrightness);
    });
}

int KyBacklight::setBrightness(unsigned char brightness)
{
    return Call("KyBacklight.setBrightness", brightness).act([brightness] {
        return brightness <= fullBrightness && writeNumber("backlight/brightness", brightness);
    });
}

int KyBacklight::enableBacklight(bool enable)
{
    return Call("KyBacklight.enableBacklight", enable).act([enable] {
        return writeNumber("backlight/enabled", enable);
    });
}
