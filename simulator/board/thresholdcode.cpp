#include "thresholdcode.h"

namespace board
{
namespace
{
constexpr float countsPerLux = 4;
constexpr unsigned int mantissaBits = 4;
constexpr unsigned int hiddenBit = 1u << mantissaBits;

unsigned int leastCount(unsigned int code)
{
    const unsigned int exponent = code >> mantissaBits;
    const unsigned int mantissa = code & (hiddenBit - 1);
    return exponent == 0 ? mantissa : (hiddenBit + mantissa) << (exponent - 1);
}
} // namespace

unsigned char thresholdCode(float lux)
{
    if (!(lux > 0))
        return 0;
    const float greatest = static_cast<float>(leastCount(255));
    if (lux * countsPerLux >= greatest)
        return 255;
    unsigned int mantissa = static_cast<unsigned int>(lux * countsPerLux);
    if (mantissa < hiddenBit)
        return static_cast<unsigned char>(mantissa);
    unsigned int exponent = 1;
    for (; mantissa >= 2 * hiddenBit; mantissa >>= 1)
        ++exponent;
    return static_cast<unsigned char>(exponent << mantissaBits | (mantissa - hiddenBit));
}

float leastLux(unsigned char code)
{
    return static_cast<float>(leastCount(code)) / countsPerLux;
}
} // namespace board
