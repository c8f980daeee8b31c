#ifndef CHOICES_H
#define CHOICES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/**
 * Where a generator takes its decisions from: the bytes of a fuzzer's input, or a seed.
 *
 * The same bytes, or the same seed, give the same decisions. When the bytes are used up every
 * decision is the first alternative, which has to be the one that ends the generation.
 */
class Choices
{
public:
    Choices(const std::uint8_t *data, std::size_t size);
    explicit Choices(std::uint64_t seed);

    /** A number from 0 to @p limit - 1. */
    std::uint32_t below(std::uint32_t limit);

    /** True once in @p times; false when the bytes are used up. */
    bool oneIn(std::uint32_t times) { return below(times) == times - 1; }

    /** Any number; the bounds of the integer types more often than others. */
    std::uint64_t number();

    /** One of @p alternatives. */
    template <typename Value, std::size_t count>
    const Value &among(const Value (&alternatives)[count])
    {
        return alternatives[below(static_cast<std::uint32_t>(count))];
    }
    const std::string &among(const std::vector<std::string> &alternatives)
    {
        return alternatives[below(static_cast<std::uint32_t>(alternatives.size()))];
    }

    /** Up to @p most bytes of any value. */
    std::string bytes(std::size_t most);

    /** Text without zeros in valid UTF-8: a word of the daemon's world, or up to @p most others. */
    std::string text(std::size_t most = 24);

    /** Everything that is left of the bytes. */
    std::string rest();

private:
    std::uint8_t byte();

    const std::uint8_t *m_data = nullptr;
    std::size_t m_size = 0;
    std::uint64_t m_state = 0;
    bool m_isSeeded = false;
};

#endif
