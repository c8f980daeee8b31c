#ifndef KYPOWERMAN_H
#define KYPOWERMAN_H

#include "ipowerman.h"

/** Power-management microcontroller; implemented in libKyBoard.so.1. */
class KyPowerman : public IPowerman
{
public:
    KyPowerman();
    ~KyPowerman() override;
    KyPowerman(const KyPowerman &) = delete;
    KyPowerman &operator=(const KyPowerman &) = delete;

    int wifiPower(bool on) override;
    int wifiSoftReset() override;
    int wifiHardReset() override;
    int setAckWatchdog() override;

private:
    void *m_handle;
};

#endif
