#include "kyfaccess.h"

#include "boarddirectory.h"
#include "call.h"
#include "value.h"

using namespace board;

namespace
{
constexpr bool nonsense = true;

/** Returns the path of @p value for @p device; empty for an unknown device. */
std::string fileOf(e_storagedevice device, const char *value)
{
    switch (device) {
    case STORAGE_SD:
        return std::string("storage/SD/") + value;
    case STORAGE_USB:
        return std::string("storage/USB/") + value;
    }
    return {};
}

std::optional<bool> flagOf(e_storagedevice device, const char *value)
{
    const std::string file = fileOf(device, value);
    return file.empty() ? std::nullopt : readFlag(file);
}
} // namespace

KyFaccess::KyFaccess() : m_handle(nullptr)
{
    createOnce();
}

KyFaccess::~KyFaccess() = default;

bool KyFaccess::isDeviceInserted(e_storagedevice device)
{
    return Call("KyFaccess.isDeviceInserted", device).answer(false, nonsense, [device] {
        return flagOf(device, "inserted");
    });
}

bool KyFaccess::isMounted(e_storagedevice device)
{
    return Call("KyFaccess.isMounted", device).answer(false, nonsense, [device] {
        return flagOf(device, "mounted");
    });
}

int KyFaccess::unmountDevice(e_storagedevice device)
{
    return Call("KyFaccess.unmountDevice", device).act([device] {
        const std::string file = fileOf(device, "mounted");
        return !file.empty() && writeNumber(file, 0);
    });
}
