#include "value.h"

#include "boarddirectory.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <locale>
#include <sstream>

namespace board
{
namespace
{
constexpr std::size_t longestLine = 64;
constexpr char blanks[] = " \t\r\n";
} // namespace

std::optional<std::string> readText(const std::string &file)
{
    const std::optional<std::string> content = readFile(file, longestLine);
    if (!content)
        return {};
    const std::size_t first = content->find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return content->substr(first, content->find_last_not_of(blanks) - first + 1);
}

std::optional<long long> readNumber(const std::string &file, long long lowest, long long highest)
{
    const std::optional<std::string> text = readText(file);
    if (!text)
        return {};
    const bool hexadecimal = text->compare(0, 2, "0x") == 0;
    char *end = nullptr;
    errno = 0;
    const long long number = std::strtoll(text->c_str(), &end, hexadecimal ? 16 : 10);
    if (errno != 0 || end != text->c_str() + text->size() || number < lowest || number > highest)
        return {};
    return number;
}

std::optional<bool> readFlag(const std::string &file)
{
    const std::optional<long long> number = readNumber(file, 0, 1);
    if (!number)
        return {};
    return *number == 1;
}

std::optional<float> readReal(const std::string &file, float lowest, float highest)
{
    const std::optional<std::string> text = readText(file);
    if (!text)
        return {};
    // Unlike strtof(), a stream accepts a decimal point in every locale.
    std::istringstream stream(*text);
    stream.imbue(std::locale::classic());
    float number = 0;
    if (!(stream >> number) || stream.peek() != std::istringstream::traits_type::eof() ||
        !(number >= lowest && number <= highest))
        return {};
    return number;
}

bool writeText(const std::string &file, const std::string &text)
{
    return writeFile(file, text + '\n');
}

bool writeNumber(const std::string &file, long long number)
{
    return writeText(file, std::to_string(number));
}

bool increment(const std::string &file)
{
    const Lock lock;
    const std::optional<long long> count = readNumber(file, 0, LLONG_MAX - 1);
    return count && writeNumber(file, *count + 1);
}
} // namespace board
