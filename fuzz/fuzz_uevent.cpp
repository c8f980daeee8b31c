#include "choices.h"
#include "require.h"
#include "uevent.h"

#include <algorithm>
#include <string>

/** Messages on the socket of the kernel's events, from any sender. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const std::string pieces[] = {
        "",       "add@", "remove@",   "change@",   "add",
        "remove", "sda1", "mmcblk0p1", "/devices/", std::string(1, '\0')};
    Choices choices(data, size);
    std::string message;
    for (std::uint32_t left = choices.below(6); left > 0; --left)
        message += choices.among(pieces);
    message += choices.rest();

    const StorageEvent event = storageEvent(message);
    const std::string header(message.begin(), std::find(message.begin(), message.end(), '\0'));
    require(storageEvent(header) == event, "the header alone decides");
    const bool isPartition =
        header.find("sda1") != std::string::npos || header.find("mmcblk0p1") != std::string::npos;
    const bool isAdded = header.compare(0, 4, "add@") == 0;
    const bool isRemoved = header.compare(0, 7, "remove@") == 0;
    require((event != StorageEvent::None) == (isPartition && (isAdded || isRemoved)),
            "exactly the addition or removal of a known partition is an event");
    require(isRemoved == (event == StorageEvent::SdCardRemoved ||
                          event == StorageEvent::UsbKeyRemoved) ||
                event == StorageEvent::None,
            "a removal is not reported as an insertion");
    return 0;
}
