#ifndef CHOICES_H
#define CHOICES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * The source of a generator's decisions: the bytes of a fuzzer's input, or a seed.
 *
 * The same bytes, or the same seed, give the same decisions. After the last byte, every decision is
 * the first alternative. A generator must therefore terminate if it gets only first alternatives.
 */
class Choices
{
public:
    Choices(const std::uint8_t *data, std::size_t size);
    explicit Choices(std::uint64_t seed);

    /** Returns a number from 0 to @p limit - 1. */
    std::uint32_t below(std::uint32_t limit);

    /** Returns true in one of @p times cases on average; false after the last byte. */
    bool oneIn(std::uint32_t times) { return below(times) == times - 1; }

    /** Returns any number. The bounds of the integer types are more likely than others. */
    std::uint64_t number();

    /** Returns one of @p alternatives. */
    template <typename Value, std::size_t count>
    const Value &among(const Value (&alternatives)[count])
    {
        return alternatives[below(static_cast<std::uint32_t>(count))];
    }
    const std::string &among(const std::vector<std::string> &alternatives)
    {
        return alternatives[below(static_cast<std::uint32_t>(alternatives.size()))];
    }

    /** Returns up to @p most bytes of any value. */
    std::string bytes(std::size_t most);

    /**
     * Returns valid UTF-8 without NUL: a word from the table in choices.cpp, or up to @p most
     * random characters.
     */
    std::string text(std::size_t most = 24);

    /** Returns all remaining bytes of the fuzzer's input. */
    std::string rest();

private:
    std::uint8_t byte();

    const std::uint8_t *m_data = nullptr;
    std::size_t m_size = 0;
    std::uint64_t m_state = 0;
    bool m_isSeeded = false;
};

#endif
