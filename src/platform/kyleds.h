#ifndef KYLEDS_H
#define KYLEDS_H

#include "ileds.h"

/** Front-panel LEDs; implemented in libKyBoard.so.1. */
class KyLeds : public ILeds
{
public:
    KyLeds();
    ~KyLeds() override;
    KyLeds(const KyLeds &) = delete;
    KyLeds &operator=(const KyLeds &) = delete;

    int setLedState(e_leds led, e_led_state state) override;
    int getLedState(e_leds led, e_led_state *state) override;

private:
    void *m_handle;
};

#endif
