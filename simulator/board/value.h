#ifndef VALUE_H
#define VALUE_H

#include <optional>
#include <string>

/** The values that the files of the board hold, as one line of text each. */
namespace board
{
/** The line in @p file without the blanks around it; nothing when it is empty or unreadable. */
std::optional<std::string> readText(const std::string &file);

/**
 * The number in @p file, decimal or, with 0x in front, hexadecimal.
 *
 * @return nothing when it is no number or lies outside @p lowest to @p highest
 */
std::optional<long long> readNumber(const std::string &file, long long lowest, long long highest);

/** The same as a smaller type, which takes what is between @p lowest and @p highest. */
template <typename Number>
std::optional<Number> readNumber(const std::string &file, long long lowest, long long highest)
{
    const std::optional<long long> number = readNumber(file, lowest, highest);
    if (!number)
        return {};
    return static_cast<Number>(*number);
}

/** The 0 or 1 in @p file; nothing for anything else. */
std::optional<bool> readFlag(const std::string &file);

/** The number with or without a fraction in @p file; nothing as for readNumber(). */
std::optional<float> readReal(const std::string &file, float lowest, float highest);

/** Write a value as one line; false when the file cannot be written. */
bool writeText(const std::string &file, const std::string &text);
bool writeNumber(const std::string &file, long long number);

/** Adds one to the count in @p file; false when there is no count in it or it cannot be written. */
bool increment(const std::string &file);
} // namespace board

#endif
