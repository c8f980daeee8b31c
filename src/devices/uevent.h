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
 * Only the header counts, up to the first zero byte or the end: the action, an at sign and the
 * device path. Only the first partition of each storage device counts, and only its addition and
 * removal.
 */
StorageEvent storageEvent(std::string_view message);

#endif
