#include "eeproms.h"

std::optional<QByteArray> Eeproms::read(e_eeprom eeprom, int size)
{
    // Fill with 0xFF: an untouched buffer of zeros would parse as a valid record.
    QByteArray record(size, '\xFF');
    char *buffer = record.data();
    if (m_eeprom.readEeprom(eeprom, &buffer, 0, static_cast<unsigned int>(size)) != 0)
        return std::nullopt;
    return record;
}

QVector<Eeproms::Step> Eeproms::write(const QVector<Content> &contents)
{
    if (m_eeprom.setWriteEnable(true) != 0)
        return {Step::LiftProtection};
    QVector<Step> failed;
    for (const Content &content : contents) {
        // writeEeprom() takes a pointer to non-const bytes.
        QByteArray bytes = content.bytes;
        const auto size = static_cast<unsigned int>(bytes.size());
        if (m_eeprom.writeEeprom(content.eeprom, bytes.data(), 0, size) != 0)
            failed.append(Step::Write);
    }
    if (m_eeprom.setWriteEnable(false) != 0)
        failed.append(Step::RestoreProtection);
    return failed;
}
