#include "kyleds.h"

#include "boarddirectory.h"
#include "call.h"
#include "ledname.h"
#include "value.h"

using namespace board;

namespace
{
const e_led_state nonsenseState = static_cast<e_led_state>(0xBAD);

/** Returns the file of @p led; empty for an unknown LED. */
std::string fileOf(e_leds led)
{
    for (const LedName &entry : ledNames)
        if (entry.led == led)
            return std::string("leds/") + entry.name;
    return {};
}

bool show(e_leds led, e_led_state state)
{
    const std::string file = fileOf(led);
    for (const LedStateName &entry : ledStateNames)
        if (entry.state == state)
            return !file.empty() && writeText(file, entry.name);
    return false;
}

std::optional<e_led_state> shownBy(e_leds led)
{
    const std::string file = fileOf(led);
    const std::optional<std::string> name = file.empty() ? std::nullopt : readText(file);
    for (const LedStateName &entry : ledStateNames)
        if (name == entry.name)
            return entry.state;
    return {};
}
} // namespace

KyLeds::KyLeds() : m_handle(nullptr)
{
    createOnce();
}

KyLeds::~KyLeds() = default;

int KyLeds::setLedState(e_leds led, e_led_state state)
{
    return Call("KyLeds.setLedState", led, state).act([=] { return show(led, state); });
}

int KyLeds::getLedState(e_leds led, e_led_state *state)
{
    return Call("KyLeds.getLedState", led).read(state, nonsenseState, [led] {
        return shownBy(led);
    });
}
