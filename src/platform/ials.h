#ifndef IALS_H
#define IALS_H

/**
 * The ambient-light sensor as the board library offers it.
 *
 * Every operation that returns int returns 0 on success, unless its description says otherwise.
 */
class IAls
{
public:
    virtual ~IAls() = default;

    /** Powers the sensor up and starts measuring. */
    virtual int init() = 0;

    /** Reads the illuminance, in lux, into @p lux. */
    virtual int readLux(float *lux) = 0;

    /** Converts @p lux into the sensor's one-byte exponent-and-mantissa threshold code. */
    virtual unsigned char convLuxInExponentMantissaByte(float lux) = 0;

    /** Sets the interrupt band from two threshold codes: the upper bound, then the lower. */
    virtual int setThresholds(unsigned char high, unsigned char low) = 0;

    /**
     * Sets how long the light must stay outside the band before the sensor interrupts, in tenths of
     * a second.
     */
    virtual int setThresholdsTimer(unsigned char persistence) = 0;

    /** Enables or disables the sensor's interrupt. */
    virtual int interruptEnable(bool enable) = 0;

    /** Returns a descriptor that signals urgent data at every interrupt; -2 on failure. */
    virtual int getinterruptHandler() = 0;

    /** Acknowledges the interrupt and reads the sensor's interrupt flag into @p raised. */
    virtual int interruptRead(bool *raised) = 0;
};

#endif
