#ifndef IKYFACCESS_H
#define IKYFACCESS_H

/** The removable storage devices of the instrument. */
enum e_storagedevice : unsigned int {
    STORAGE_SD = 0,
    STORAGE_USB = 1,
};

/** Removable storage as the file-access library sees it. */
class IKyFaccess
{
public:
    virtual ~IKyFaccess() = default;

    /** Returns true if @p device is inserted. */
    virtual bool isDeviceInserted(e_storagedevice device) = 0;

    /** Returns true if @p device is mounted. */
    virtual bool isMounted(e_storagedevice device) = 0;

    /** Unmounts @p device; 0 on success. */
    virtual int unmountDevice(e_storagedevice device) = 0;
};

#endif
