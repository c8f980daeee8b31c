#include "kysocmanager.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

#include <climits>
#include <cstdio>

using namespace board;

namespace
{
constexpr unsigned short statusRegister = 0x600;
constexpr unsigned short watchdogRegister = 0x68;
constexpr unsigned int chargerPresentBit = 1u << 30;

std::optional<unsigned int> readRegister(unsigned short reg)
{
    char file[16];
    static_cast<void>(std::snprintf(file, sizeof file, "soc/0x%x", reg));
    const auto value = readNumber<unsigned int>(file, 0, UINT_MAX);
    // Reading the register feeds the watchdog. Ignore a failure to increment the counter.
    if (value && reg == watchdogRegister)
        static_cast<void>(increment("watchdog/feeds"));
    if (!value || reg != statusRegister)
        return value;
    const std::optional<bool> isChargerPresent = readFlag("charger/present");
    if (!isChargerPresent)
        return {};
    return *isChargerPresent ? *value | chargerPresentBit : *value & ~chargerPresentBit;
}
} // namespace

KySocManager::KySocManager() : m_handle(nullptr)
{
    createOnce();
}

KySocManager::~KySocManager() = default;

int KySocManager::initSPI()
{
    return Call("KySocManager.initSPI").act([] { return true; });
}

int KySocManager::getSoCRegister(unsigned short reg, unsigned int *value)
{
    return Call("KySocManager.getSoCRegister", reg).read(value, UINT_MAX, [reg] {
        return readRegister(reg);
    });
}
