#ifndef EEPROMS_H
#define EEPROMS_H

#include "kyeeprom.h"

#include <QByteArray>
#include <QVector>

/** The identification EEPROMs, whose write protection is lifted for each write only. */
class Eeproms
{
public:
    /** A step of a write that can fail. */
    enum class Step { LiftProtection, Write, RestoreProtection };

    /** Bytes for the beginning of one of them. */
    struct Content {
        e_eeprom eeprom;
        QByteArray bytes;
    };

    /** The first @p size bytes of @p eeprom; a null byte array when it cannot be read. */
    QByteArray read(e_eeprom eeprom, int size);

    /**
     * Writes @p contents, one after another, and says which steps failed, in their order. Nothing
     * is written when the protection cannot be lifted.
     */
    QVector<Step> write(const QVector<Content> &contents);

private:
    KyEeprom m_eeprom;
};

#endif
