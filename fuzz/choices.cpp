#include "choices.h"

#include <limits>

namespace
{
/** Texts that the daemon, its clients and ConnMan exchange. */
const char *const words[] = {
    "",
    "Address",
    "AdjustementCoefficients",
    "AdjustementDate",
    "AdjustementSite",
    "ANALOG_CHAIN",
    "BAT_RS1",
    "BLINK_3HZ",
    "Brand",
    "CRC",
    "Channel",
    "Connected",
    "DNS1",
    "DNS2",
    "Error",
    "Ethernet",
    "Fabrication",
    "FirstPassTag",
    "Gateway",
    "IP",
    "IPv4",
    "Identity",
    "Interface",
    "IrdInstrumentPassword",
    "IrdSessionPassword",
    "MTU",
    "Method",
    "Model",
    "Name",
    "Netmask",
    "NextAdjustementDate",
    "OFF",
    "ON",
    "Passphrase",
    "Password",
    "Powered",
    "RelaunchTag",
    "Requirement",
    "SD",
    "SD_STATUS",
    "SOM",
    "SSID",
    "Security",
    "SerialNumber",
    "Service",
    "State",
    "Strength",
    "Subsidiary",
    "TroubleshootingTag",
    "Type",
    "USB",
    "UTC_SYNC",
    "User",
    "Username",
    "WIFI",
    "WPA2",
    "WarrantyNumber",
    "Workshop",
    "192.168.2.3",
    "255.255.255.0",
    "0.0.0.0",
    "10.0.0.300",
    "8345",
    "8347",
    "9999999999",
    "-1",
    "association",
    "configuration",
    "dhcp",
    "ethernet",
    "failure",
    "idle",
    "mandatory",
    "manual",
    "online",
    "optional",
    "psk",
    "ready",
    "user1",
    "user2",
    "user3",
    "user4",
    "user5",
    "wifi",
    "../../../../etc/passwd",
    "%s%n%1",
    "a\nwpa_passphrase=b",
};

/** Characters of each UTF-8 length, and characters that programs often treat specially. */
const char *const characters[] = {
    "a", "Z", "0",    " ",    "=", "/",      ".",  ",",      "\n",     "\t",     "\\", "\"",
    "'", "%", "\x01", "\x7f", "é", "\u0300", "中", "\u202e", "\ufeff", "\uffff", "😀",  "\U0010ffff",
};

template <typename Integer>
std::uint64_t lowest()
{
    return static_cast<std::uint64_t>(std::numeric_limits<Integer>::min());
}

template <typename Integer>
std::uint64_t highest()
{
    return static_cast<std::uint64_t>(std::numeric_limits<Integer>::max());
}

const std::uint64_t bounds[] = {
    0,
    1,
    highest<std::uint64_t>(),
    highest<std::int8_t>(),
    highest<std::uint8_t>(),
    lowest<std::int16_t>(),
    highest<std::int16_t>(),
    highest<std::uint16_t>(),
    lowest<std::int32_t>(),
    highest<std::int32_t>(),
    highest<std::uint32_t>(),
    lowest<std::int64_t>(),
    highest<std::int64_t>(),
    // NaN and the infinities, as doubles.
    0x7ff8000000000000,
    0x7ff0000000000000,
    0xfff0000000000000,
};
} // namespace

Choices::Choices(const std::uint8_t *data, std::size_t size) : m_data(data), m_size(size) {}

Choices::Choices(std::uint64_t seed) : m_state(seed), m_isSeeded(true) {}

std::uint8_t Choices::byte()
{
    if (m_isSeeded) {
        // SplitMix64: every seed, even 0 or a neighbour of another seed, gives its own sequence.
        m_state += 0x9e3779b97f4a7c15;
        std::uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
        return static_cast<std::uint8_t>((mixed ^ (mixed >> 31)) >> 32);
    }
    if (m_size == 0)
        return 0;
    --m_size;
    return *m_data++;
}

std::uint32_t Choices::below(std::uint32_t limit)
{
    std::uint32_t value = byte();
    for (std::uint32_t range = 0x100; range < limit && range != 0; range <<= 8)
        value = (value << 8) | byte();
    return value % limit;
}

std::uint64_t Choices::number()
{
    const std::uint32_t kind = below(4);
    if (kind == 0)
        return below(20);
    if (kind == 1)
        return among(bounds);
    std::uint64_t value = 0;
    for (std::size_t count = kind == 2 ? 2 : sizeof value; count > 0; --count)
        value = (value << 8) | byte();
    return value;
}

std::string Choices::bytes(std::size_t most)
{
    std::string made(below(static_cast<std::uint32_t>(most) + 1), '\0');
    for (char &character : made)
        character = static_cast<char>(byte());
    return made;
}

std::string Choices::text(std::size_t most)
{
    if (!oneIn(3))
        return among(words);
    std::string made;
    for (std::uint32_t left = below(static_cast<std::uint32_t>(most) + 1); left > 0; --left)
        made += among(characters);
    return made;
}

std::string Choices::rest()
{
    std::string left(reinterpret_cast<const char *>(m_data), m_size);
    m_size = 0;
    return left;
}
