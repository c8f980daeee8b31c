#ifndef UEVENT_H
#define UEVENT_H

#include <string_view>

/** The meaning of a kernel event for the storage devices. */
enum class StorageEvent {
    None,
    SdCardInserted,
    SdCardRemoved,
    UsbKeyInserted,
    UsbKeyRemoved,
};

/**
 * Interprets the kernel event @p message, which may have any content and length.
 *
 * Reads only the header, which ends at the first zero byte or at the end of the message: the
 * action, an at sign and the device path. Recognises only additions and removals of the first
 * partition of each storage device.
 */
StorageEvent storageEvent(std::string_view message);

#endif
