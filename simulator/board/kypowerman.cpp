#include "kypowerman.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

using namespace board;

KyPowerman::KyPowerman() : m_handle(nullptr)
{
    createOnce();
}

KyPowerman::~KyPowerman() = default;

int KyPowerman::wifiPower(bool on)
{
    return Call("KyPowerman.wifiPower", on).act([on] {
        return writeNumber("powerman/wifi_supply", on);
    });
}

int KyPowerman::wifiSoftReset()
{
    return Call("KyPowerman.wifiSoftReset").act([] {
        return increment("powerman/wifi_soft_resets");
    });
}

int KyPowerman::wifiHardReset()
{
    return Call("KyPowerman.wifiHardReset").act([] {
        return increment("powerman/wifi_hard_resets");
    });
}

int KyPowerman::setAckWatchdog()
{
    return Call("KyPowerman.setAckWatchdog").act([] {
        return increment("powerman/watchdog_acknowledgements");
    });
}
