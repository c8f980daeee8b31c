/* The file-access library of the benchmark: no card, no key. */

#include "kyfaccess.h"

KyFaccess::KyFaccess() : m_handle(nullptr) {}
KyFaccess::~KyFaccess() = default;

bool KyFaccess::isDeviceInserted(e_storagedevice)
{
    return false;
}

bool KyFaccess::isMounted(e_storagedevice)
{
    return false;
}

int KyFaccess::unmountDevice(e_storagedevice)
{
    return 0;
}
