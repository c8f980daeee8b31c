#ifndef DEFAULTS_H
#define DEFAULTS_H

#include <cstddef>
#include <string>
#include <vector>

namespace board
{
/** A file of the board and its content on a new board. */
struct DefaultFile {
    std::string name;
    std::string content;
};

/** Every file of a new board. */
const std::vector<DefaultFile> &defaultFiles();

/** Sizes of the two EEPROMs in bytes. */
constexpr std::size_t instrumentEepromSize = 128;
constexpr std::size_t measureEepromSize = 4096;
} // namespace board

#endif
