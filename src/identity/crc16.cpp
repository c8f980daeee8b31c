#include "crc16.h"

#include <array>

namespace
{
constexpr unsigned int reflectedPolynomial = 0xA001;

/** The contribution of each byte value to the CRC. */
constexpr std::array<quint16, 256> makeTable()
{
    std::array<quint16, 256> contributions{};
    for (unsigned int byte = 0; byte < 256; ++byte) {
        unsigned int remainder = byte;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder >> 1) ^ ((remainder & 1) != 0 ? reflectedPolynomial : 0);
        contributions[byte] = static_cast<quint16>(remainder);
    }
    return contributions;
}

constexpr std::array<quint16, 256> table = makeTable();
} // namespace

quint16 crc16(const QByteArray &data)
{
    quint16 crc = 0;
    for (const char character : data) {
        const unsigned int index = (crc ^ static_cast<uchar>(character)) & 0xFF;
        crc = static_cast<quint16>((crc >> 8) ^ table[index]);
    }
    return crc;
}
