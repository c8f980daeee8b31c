#ifndef UEVENT_H
#define UEVENT_H

#include <string_view>

/** What a kernel event means to the storage devices. */
enum class StorageEvent {
    None,
    SdCardInserted,
    SdCardRemoved,
    UsbKeyInserted,
    UsbKeyRemoved,
};

/**
 * The meaning of the kernel event @p message, which may be any bytes of any length.
 *
 * Only its header counts, which is what stands before its first zero byte, or all of it where it
 * has none: the action, an at sign and the device path. Only the first partition of each storage
 * device is watched, and only its coming and going.
 */
StorageEvent storageEvent(std::string_view message);

#endif
