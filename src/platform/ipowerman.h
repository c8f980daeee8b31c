#ifndef IPOWERMAN_H
#define IPOWERMAN_H

/** The power-management microcontroller. Every operation returns 0 on success. */
class IPowerman
{
public:
    virtual ~IPowerman() = default;

    /** Switches the supply of the Wi-Fi module on or off. */
    virtual int wifiPower(bool on) = 0;

    /** Resets the Wi-Fi module by software. */
    virtual int wifiSoftReset() = 0;

    /** Resets the Wi-Fi module by its reset line. */
    virtual int wifiHardReset() = 0;

    /** Reports to the microcontroller that the system is up and must not be rebooted. */
    virtual int setAckWatchdog() = 0;
};

#endif
