#include "records.h"

namespace board
{
namespace
{
std::string bigEndian(unsigned int value, int width)
{
    std::string bytes;
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xFF);
    return bytes;
}

std::string padded(std::string text, std::size_t width)
{
    text.resize(width, '\0');
    return text;
}

std::string withCrc(const std::string &data)
{
    return bigEndian(crc16(data), 2) + data;
}
} // namespace

unsigned short crc16(const std::string &bytes)
{
    unsigned int crc = 0;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xA001 : crc >> 1;
    }
    return static_cast<unsigned short>(crc);
}

std::string instrumentRecord()
{
    const unsigned int subsidiary = 1;
    const unsigned int fabrication = 2;
    const unsigned int brand = 1;
    const unsigned int type = 4;
    const unsigned int model = 0x8345;
    const std::string tags = bigEndian(0x000100, 3);
    return withCrc(bigEndian(subsidiary, 1) + bigEndian(fabrication, 1) + bigEndian(brand, 1) +
                   bigEndian(type, 1) + bigEndian(model, 2) + "STR00042" + "W-0004217" + tags +
                   padded("instrument", 30) + padded("session", 16));
}

std::string measureRecord()
{
    const unsigned int site = 17;
    const unsigned int date = 1561939200;
    const unsigned int nextDate = 1593561600;
    const unsigned int coefficients = 296;
    const unsigned int unity = 0x00800000;
    std::string data = bigEndian(site, 2) + bigEndian(date, 4) + bigEndian(nextDate, 4);
    for (unsigned int index = 0; index < coefficients; ++index)
        data += bigEndian(unity + index, 4);
    return withCrc(data);
}
} // namespace board
