#ifndef VALUE_H
#define VALUE_H

#include <optional>
#include <string>

/** The values in the board's files, one line of text each. */
namespace board
{
/** Returns the trimmed line in @p file; nothing if it is empty or unreadable. */
std::optional<std::string> readText(const std::string &file);

/**
 * Returns the number in @p file, decimal or, with the prefix 0x, hexadecimal.
 *
 * @return nothing if the text is not a number, or the number is not in the range from @p lowest to
 *         @p highest
 */
std::optional<long long> readNumber(const std::string &file, long long lowest, long long highest);

/** Like readNumber(), with a result of the type @p Number, which must hold the whole range. */
template <typename Number>
std::optional<Number> readNumber(const std::string &file, long long lowest, long long highest)
{
    const std::optional<long long> number = readNumber(file, lowest, highest);
    if (!number)
        return {};
    return static_cast<Number>(*number);
}

/** Returns the 0 or 1 in @p file; nothing for anything else. */
std::optional<bool> readFlag(const std::string &file);

/**
 * Returns the decimal number in @p file, which may have a fraction.
 *
 * @return nothing in the same cases as readNumber()
 */
std::optional<float> readReal(const std::string &file, float lowest, float highest);

/** Writes a value as one line; returns false if the file cannot be written. */
bool writeText(const std::string &file, const std::string &text);
bool writeNumber(const std::string &file, long long number);

/** Increments the counter in @p file; returns false if it has no number or cannot be written. */
bool increment(const std::string &file);
} // namespace board

#endif
