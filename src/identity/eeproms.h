#ifndef EEPROMS_H
#define EEPROMS_H

#include "kyeeprom.h"

#include <QByteArray>
#include <QVector>

#include <optional>

/** The identification EEPROMs. Their write protection is lifted only during a write. */
class Eeproms
{
public:
    /** A step of a write; each one can fail. */
    enum class Step { LiftProtection, Write, RestoreProtection };

    /** The bytes to write to the beginning of an EEPROM. */
    struct Content {
        e_eeprom eeprom;
        QByteArray bytes;
    };

    /** Returns the first @p size bytes of @p eeprom; nothing if it cannot be read. */
    std::optional<QByteArray> read(e_eeprom eeprom, int size);

    /**
     * Writes @p contents in order. Returns the failed steps, in their order. Writes nothing if the
     * protection cannot be lifted.
     */
    QVector<Step> write(const QVector<Content> &contents);

private:
    KyEeprom m_eeprom;
};

#endif
