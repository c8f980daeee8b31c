#ifndef ITEMPERATURE_H
#define ITEMPERATURE_H

/** The temperature sensors of the board. */
enum e_tempdev : unsigned int {
    TEMPDEV_SOM = 0,
    TEMPDEV_ANALOG_CHAIN = 1,
};

/** The temperature sensors. */
class ITemperature
{
public:
    virtual ~ITemperature() = default;

    /** Reads the temperature of @p sensor, in degrees Celsius; returns 0 on success. */
    virtual int getTemperature(e_tempdev sensor, int *temperature) = 0;
};

#endif
