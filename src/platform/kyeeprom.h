#ifndef KYEEPROM_H
#define KYEEPROM_H

#include "ieeprom.h"

/** Identification EEPROMs; implemented in libKyBoard.so.1. */
class KyEeprom : public IEeprom
{
public:
    KyEeprom();
    ~KyEeprom() override;
    KyEeprom(const KyEeprom &) = delete;
    KyEeprom &operator=(const KyEeprom &) = delete;

    int readEeprom(e_eeprom eeprom, char **buffer, unsigned int offset, unsigned int size) override;
    int writeEeprom(e_eeprom eeprom, char *bytes, unsigned int offset, unsigned int size) override;
    int setWriteEnable(bool enable) override;

private:
    void *m_handle;
};

#endif
