#ifndef KYBACKLIGHT_H
#define KYBACKLIGHT_H

/** Screen backlight; implemented in libKyBoard.so.1. */
class KyBacklight
{
public:
    KyBacklight();
    virtual ~KyBacklight();
    KyBacklight(const KyBacklight &) = delete;
    KyBacklight &operator=(const KyBacklight &) = delete;

    /** The brightness in percent, 0 to 100; -1 on failure. */
    int getBrightness();

    /** Sets the brightness in percent, 0 to 100; 0 on success. */
    int setBrightness(unsigned char brightness);

    /** Switches the backlight on or off without changing its brightness; 0 on success. */
    int enableBacklight(bool enable);

private:
    void *m_handle;
};

#endif
