#include "kyversion.h"

#include "arguments.h"
#include "boardrevision.h"
#include "busvalue.h"
#include "error.h"
#include "instrumentrecord.h"
#include "keptrecord.h"
#include "measurerecord.h"
#include "softwareversion.h"
#include "terminationsignals.h"

#include <QCoreApplication>

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
    m_instrument = decodeInstrumentRecord(readRecord(EEPROM_INSTRUMENT, instrumentRecordSize));
    if (m_instrument.value(crc).toBool()) {
        const unsigned int brand = m_instrument.value(QStringLiteral("Brand")).toUInt();
        const QString model = m_instrument.value(QStringLiteral("Model")).toString();
        m_boardRev.setBrand(static_cast<e_brand>(brand));
        m_boardRev.setModel(static_cast<e_model>(libraryModel(model.toUShort(nullptr, 16))));
    }
    return m_instrument;
}

void KyVersion::setEepromInstrument(const QVariantMap &map, const QDBusMessage &message)
{
    m_instrument.clear();
    const QVariantMap fields = instrumentFields(map);
    if (fields.isEmpty() || !canBeKept(fields)) {
        sendErrorReply(Error::Write, notValid, message);
        return;
    }
    m_instrument = keptRecord(map, fields);
    writeRecord(EEPROM_INSTRUMENT, encodeInstrumentRecord(basicMap(fields)), m_instrument, message);
}

QVariantMap KyVersion::getEepromMesure()
{
    if (m_measure.isEmpty())
        m_measure = decodeMeasureRecord(readRecord(EEPROM_MESURE, measureRecordSize));
    return m_measure;
}

void KyVersion::setEepromMesure(const QVariantMap &map, const QDBusMessage &message)
{
    m_measure.clear();
    const QVariantMap fields = measureFields(map);
    if (fields.isEmpty() || !canBeKept(fields)) {
        sendErrorReply(Error::Write, notValid, message);
        return;
    }
    m_measure = keptRecord(map, fields);
    const QVector<quint32> coefficients =
        toNumbers(fields.value(QStringLiteral("AdjustementCoefficients")));
    writeRecord(EEPROM_MESURE, encodeMeasureRecord(basicMap(fields), coefficients), m_measure,
                message);
}

void KyVersion::invalidateEepromsContent(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    m_instrument.clear();
    m_measure.clear();
    const HeldTermination held;
    if (!liftWriteProtection(message))
        return;
    const QByteArray noCrc(2, '\0');
    write(EEPROM_INSTRUMENT, noCrc, message);
    write(EEPROM_MESURE, noCrc, message);
    restoreWriteProtection(message);
}

QVariantMap KyVersion::getRevision()
{
    if (!m_revisions.isEmpty())
        return m_revisions;
    unsigned int revision = 0;
    if (m_boardRev.getRevision(DEVICE_SOM, &revision) == 0) {
        m_revisions.insert(QStringLiteral("SOM"), revision);
        m_boardRev.setSoMRevision(revision);
    }
    if (m_boardRev.getRevision(DEVICE_HPS, &revision) == 0)
        m_revisions.insert(QStringLiteral("HPS"), revision);
    if (m_boardRev.getRevision(DEVICE_FPGA, &revision) == 0)
        m_revisions.insert(QStringLiteral("FPGA"), fpgaRevisionText(revision));
    if (m_boardRev.getRevision(DEVICE_MESURE_CARD, &revision) == 0)
        m_revisions.insert(QStringLiteral("MESURE_CARD"), revision);
    return m_revisions;
}

QVariantMap KyVersion::getSoftwareVersions()
{
    if (!m_softwareVersions.isEmpty())
        return m_softwareVersions;
    QByteArray version;
    if (readBspVersion(version))
        m_softwareVersions.insert(QStringLiteral("BSP"), version);
    m_softwareVersions.insert(QStringLiteral("KyBoardManager"),
                              QCoreApplication::applicationVersion());
    if (askApplicationVersion(version))
        m_softwareVersions.insert(QStringLiteral("KyApp"), version);
    return m_softwareVersions;
}

/** A null byte array when it cannot be read. */
QByteArray KyVersion::readRecord(e_eeprom eeprom, int size)
{
    // A buffer that the library leaves as it is must not pass for a record: zeros would.
    QByteArray record(size, '\xFF');
    char *buffer = record.data();
    const int result = m_eeprom.readEeprom(eeprom, &buffer, 0, static_cast<unsigned int>(size));
    return result == 0 ? record : QByteArray();
}

/** Writes @p record and marks @p cache, which holds its values, as valid. */
void KyVersion::writeRecord(e_eeprom eeprom, const QByteArray &record, QVariantMap &cache,
                            const QDBusMessage &message)
{
    const HeldTermination held;
    if (!liftWriteProtection(message))
        return;
    write(eeprom, record, message);
    restoreWriteProtection(message);
    // Also after a failed write: clients see the values that they have set.
    cache.insert(crc, true);
}

bool KyVersion::liftWriteProtection(const QDBusMessage &message)
{
    if (m_eeprom.setWriteEnable(true) == 0)
        return true;
    sendErrorReply(Error::Initialisation, notEnabled, message);
    return false;
}

void KyVersion::write(e_eeprom eeprom, QByteArray bytes, const QDBusMessage &message)
{
    if (m_eeprom.writeEeprom(eeprom, bytes.data(), 0, static_cast<unsigned int>(bytes.size())) != 0)
        sendErrorReply(Error::Write, notWritten, message);
}

void KyVersion::restoreWriteProtection(const QDBusMessage &message)
{
    if (m_eeprom.setWriteEnable(false) != 0)
        sendErrorReply(Error::Write, notDisabled, message);
}
