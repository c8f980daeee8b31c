#ifndef IEEPROM_H
#define IEEPROM_H

/** The identification EEPROMs of the board. */
enum e_eeprom : unsigned int {
    EEPROM_INSTRUMENT = 0,
    EEPROM_MESURE = 1,
};

/** Access to the identification EEPROMs. Every operation returns 0 on success. */
class IEeprom
{
public:
    virtual ~IEeprom() = default;

    /**
     * Reads @p size bytes of @p eeprom from byte @p offset on.
     * @param buffer points to the caller's buffer of at least @p size bytes
     */
    virtual int readEeprom(e_eeprom eeprom, char **buffer, unsigned int offset,
                           unsigned int size) = 0;

    /** Writes @p size bytes to @p eeprom from byte @p offset on; fails while protected. */
    virtual int writeEeprom(e_eeprom eeprom, char *bytes, unsigned int offset,
                            unsigned int size) = 0;

    /** Lifts (true) or restores (false) the write protection of both EEPROMs. */
    virtual int setWriteEnable(bool enable) = 0;
};

#endif
