#include "kyversion.h"

#include "arguments.h"
#include "boardrevisions.h"
#include "error.h"
#include "instrumentrecord.h"
#include "measurerecord.h"
#include "softwareversion.h"
#include "terminationsignals.h"

namespace
{
const QString crc = QStringLiteral("CRC");
const QString notValid = QStringLiteral("Data not valid");
const QString notEnabled = QStringLiteral("Not able to enable write permission in eeprom");
const QString notWritten = QStringLiteral("Not able to write in eeprom");
const QString notDisabled = QStringLiteral("Not able to disable write permission in eeprom");
} // namespace

KyVersion::KyVersion(QObject *parent) : QDBusAbstractAdaptor(parent) {}

QVariantMap KyVersion::getEepromInstrument()
{
    if (!m_instrument.isEmpty())
        return m_instrument;
    m_instrument = decodeInstrumentRecord(
        m_eeproms.read(EEPROM_INSTRUMENT, instrumentRecordSize).value_or(QByteArray()));
    if (m_instrument.value(crc).toBool())
        passInstrument(m_instrument, m_boardRev);
    return m_instrument;
}

void KyVersion::setEepromInstrument(const QVariantMap &map, const QDBusMessage &message)
{
    setRecord(EEPROM_INSTRUMENT, newInstrumentRecord(map), m_instrument, message);
}

QVariantMap KyVersion::getEepromMesure()
{
    if (m_measure.isEmpty())
        m_measure = decodeMeasureRecord(
            m_eeproms.read(EEPROM_MESURE, measureRecordSize).value_or(QByteArray()));
    return m_measure;
}

void KyVersion::setEepromMesure(const QVariantMap &map, const QDBusMessage &message)
{
    setRecord(EEPROM_MESURE, newMeasureRecord(map), m_measure, message);
}

void KyVersion::invalidateEepromsContent(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    m_instrument.clear();
    m_measure.clear();
    const QByteArray noCrc(2, '\0');
    write({{EEPROM_INSTRUMENT, noCrc}, {EEPROM_MESURE, noCrc}}, message);
}

QVariantMap KyVersion::getRevision()
{
    if (m_revisions.isEmpty())
        m_revisions = readRevisions(m_boardRev);
    return m_revisions;
}

QVariantMap KyVersion::getSoftwareVersions()
{
    if (m_softwareVersions.isEmpty())
        m_softwareVersions = readSoftwareVersions();
    return m_softwareVersions;
}

/** Writes @p record and keeps its values in @p cache; sends an error if there is no record. */
void KyVersion::setRecord(e_eeprom eeprom, const std::optional<NewRecord> &record,
                          QVariantMap &cache, const QDBusMessage &message)
{
    cache.clear();
    if (!record) {
        sendErrorReply(Error::Write, notValid, message);
        return;
    }
    cache = record->kept;
    // "CRC" is absent only if the protection could not be lifted. After a failed write it is true,
    // because clients expect to read the record that they have set.
    if (write({{eeprom, record->bytes}}, message))
        cache.insert(crc, true);
}

/** Sends an error for each failed step; returns false if the protection could not be lifted. */
bool KyVersion::write(const QVector<Eeproms::Content> &contents, const QDBusMessage &message)
{
    const HeldTermination held;
    const QVector<Eeproms::Step> failed = m_eeproms.write(contents);
    for (const Eeproms::Step step : failed) {
        if (step == Eeproms::Step::LiftProtection)
            sendErrorReply(Error::Initialisation, notEnabled, message);
        else
            sendErrorReply(Error::Write, step == Eeproms::Step::Write ? notWritten : notDisabled,
                           message);
    }
    return !failed.contains(Eeproms::Step::LiftProtection);
}
