#include "uevent.h"

namespace
{
struct Partition {
    std::string_view name;
    StorageEvent inserted;
    StorageEvent removed;
};

// The first row whose name occurs in the header decides.
constexpr Partition partitions[] = {
    {"mmcblk0p1", StorageEvent::SdCardInserted, StorageEvent::SdCardRemoved},
    {"sda1", StorageEvent::UsbKeyInserted, StorageEvent::UsbKeyRemoved},
};

bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

StorageEvent eventOf(const Partition &partition, std::string_view header)
{
    if (startsWith(header, "add@"))
        return partition.inserted;
    if (startsWith(header, "remove@"))
        return partition.removed;
    return StorageEvent::None;
}
} // namespace

StorageEvent storageEvent(std::string_view message)
{
    const std::string_view header = message.substr(0, message.find('\0'));
    for (const Partition &partition : partitions) {
        if (header.find(partition.name) != std::string_view::npos)
            return eventOf(partition, header);
    }
    return StorageEvent::None;
}
