#include "kybatmonitor.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

#include <climits>

using namespace board;

namespace
{
constexpr int nonsenseType = 31337;
const cmeter_data nonsenseData = {0xAA, INT_MIN, USHRT_MAX};

std::optional<cmeter_data> measure()
{
    const auto flag = readNumber<unsigned char>("battery/flag", 0, UCHAR_MAX);
    const auto charge = readNumber<int>("battery/charge", INT_MIN, INT_MAX);
    const auto voltage = readNumber<unsigned short>("battery/voltage", 0, USHRT_MAX);
    if (!flag || !charge || !voltage)
        return {};
    return cmeter_data{*flag, *charge, *voltage};
}
} // namespace

KyBatmonitor::KyBatmonitor() : m_handle(nullptr)
{
    createOnce();
}

KyBatmonitor::~KyBatmonitor() = default;

int KyBatmonitor::update(bool chargerPresent)
{
    return Call("KyBatmonitor.update", chargerPresent).act([chargerPresent] {
        return writeNumber("battery/charger_told", chargerPresent);
    });
}

int KyBatmonitor::getCmeterType()
{
    return Call("KyBatmonitor.getCmeterType").answer(-1, nonsenseType, [] {
        return readNumber<int>("battery/type", 0, INT_MAX);
    });
}

int KyBatmonitor::getBatteryInfo(cmeter_data *data)
{
    return Call("KyBatmonitor.getBatteryInfo").read(data, nonsenseData, measure);
}

int KyBatmonitor::prepareForShutdown()
{
    return Call("KyBatmonitor.prepareForShutdown").act([] {
        return increment("battery/shutdowns_prepared");
    });
}
