#ifndef KYTEMPERATURE_H
#define KYTEMPERATURE_H

#include "itemperature.h"

/** Temperature sensors; implemented in libKyBoard.so.1. */
class KyTemperature : public ITemperature
{
public:
    KyTemperature();
    ~KyTemperature() override;
    KyTemperature(const KyTemperature &) = delete;
    KyTemperature &operator=(const KyTemperature &) = delete;

    int getTemperature(e_tempdev sensor, int *temperature) override;

private:
    void *m_handle;
};

#endif
