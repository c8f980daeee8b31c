#ifndef TEXT_H
#define TEXT_H

#include "kybatmonitor.h"

#include <string>

/** The format of arguments and results in the journal. */
namespace board
{
/** Bytes written to or read from an EEPROM. */
struct Bytes {
    std::string content;
};

std::string text(bool value);
std::string text(float value);
std::string text(const Bytes &bytes);
std::string text(const cmeter_data &data);

/** Numbers and enumerations in decimal. */
template <typename Number>
std::string text(Number value)
{
    return std::to_string(static_cast<long long>(value));
}
} // namespace board

#endif
