#ifndef KYFACCESS_H
#define KYFACCESS_H

#include "ikyfaccess.h"

/** Removable storage; implemented in libKyFileaccess.so.1. */
class KyFaccess : public IKyFaccess
{
public:
    KyFaccess();
    ~KyFaccess() override;
    KyFaccess(const KyFaccess &) = delete;
    KyFaccess &operator=(const KyFaccess &) = delete;

    bool isDeviceInserted(e_storagedevice device) override;
    bool isMounted(e_storagedevice device) override;
    int unmountDevice(e_storagedevice device) override;

private:
    void *m_handle;
};

#endif
