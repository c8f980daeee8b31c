#ifndef THRESHOLDCODE_H
#define THRESHOLDCODE_H

/**
 * The light sensor's one-byte code of a quantity of light.
 *
 * The upper four bits are the exponent e, the lower four the mantissa m. The sensor counts in
 * quarters of a lux; a code stands for the counts from
 *
 *     m                    when e is 0
 *     (16 + m) * 2^(e-1)   when e is 1 to 15
 *
 * up to the first count of the next code. So codes increase with the light. Below 8 lux a code
 * covers a quarter of a lux; above, it covers at most a sixteenth of its smallest value. The last
 * code, 255, covers everything from 126976 lux on.
 */
namespace board
{
/** Returns the code of @p lux; 0 for a negative value and NaN. */
unsigned char thresholdCode(float lux);

/** Returns the smallest value in lux that has @p code. */
float leastLux(unsigned char code);
} // namespace board

#endif
