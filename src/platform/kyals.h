#ifndef KYALS_H
#define KYALS_H

#include "ials.h"

/** Ambient-light sensor; implemented in libKyBoard.so.1. */
class KyAls : public IAls
{
public:
    KyAls();
    ~KyAls() override;
    KyAls(const KyAls &) = delete;
    KyAls &operator=(const KyAls &) = delete;

    int init() override;
    int readLux(float *lux) override;
    unsigned char convLuxInExponentMantissaByte(float lux) override;
    int setThresholds(unsigned char high, unsigned char low) override;
    int setThresholdsTimer(unsigned char persistence) override;
    int interruptEnable(bool enable) override;
    int getinterruptHandler() override;
    int interruptRead(bool *raised) override;

private:
    void *m_handle;
};

#endif
