#include "text.h"

#include <locale>
#include <sstream>

namespace board
{
std::string text(bool value)
{
    return value ? "true" : "false";
}

std::string text(float value)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

std::string text(const Bytes &bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string hexadecimal;
    hexadecimal.reserve(2 * bytes.content.size());
    for (const char byte : bytes.content) {
        hexadecimal += digits[static_cast<unsigned char>(byte) >> 4];
        hexadecimal += digits[byte & 0x0F];
    }
    return hexadecimal;
}

std::string text(const cmeter_data &data)
{
    return text(data.flag) + ' ' + text(data.charge) + ' ' + text(data.voltage);
}
} // namespace board
