#ifndef KYVERSION_H
#define KYVERSION_H

#include "eeproms.h"
#include "introspection/Version.h"
#include "kyboardrev.h"

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

class QDBusMessage;

/**
 * The identity of the instrument: the two identification records in EEPROMs, the revisions of the
 * board's parts and the versions of the installed software.
 *
 * Every answer is gathered once and kept. A record is kept until it is set or invalidated, also
 * one that could not be read; revisions and versions are kept until the next start.
 */
class KyVersion : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Version")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_VERSION)

public:
    /** Touches no hardware yet. */
    explicit KyVersion(QObject *parent);

public Q_SLOTS:
    /**
     * The instrument record: "Subsidiary", "Fabrication", "Brand", "Type", "TroubleshootingTag",
     * "RelaunchTag", "FirstPassTag" (int, 0 to 255), "Model" (hexadecimal text), "SerialNumber",
     * "WarrantyNumber", "IrdInstrumentPassword", "IrdSessionPassword" (byte arrays) and "CRC" =
     * true; only "CRC" = false when it cannot be read or is not valid. After a set, the values
     * that were given.
     *
     * Reading a valid record tells the board library the instrument's brand and model.
     */
    QVariantMap getEepromInstrument();

    /**
     * Writes the instrument record; values are converted, not checked.
     *
     * Error::m_write for a missing field and for fields that are too long to be kept (canBeKept()),
     * in which cases nothing is written, for a failed write and for a write protection that cannot
     * be restored; Error::m_initialisation for one that cannot be lifted.
     */
    void setEepromInstrument(const QVariantMap &map, const QDBusMessage &message);

    /**
     * The record of the measure card: "AdjustementSite" (int, 0 to 65535), "AdjustementDate",
     * "NextAdjustementDate" (unsigned int), "AdjustementCoefficients" (list of unsigned int) and
     * "CRC" = true; otherwise as getEepromInstrument().
     */
    QVariantMap getEepromMesure();

    /** Writes the record of the measure card; errors as setEepromInstrument(). */
    void setEepromMesure(const QVariantMap &map, const QDBusMessage &message);

    /**
     * Spoils both records: their CRCs become 0, their data stays.
     *
     * Sends an error for each step that fails: Error::m_initialisation for a write protection that
     * cannot be lifted, Error::m_write for each record that cannot be written and for a write
     * protection that cannot be restored.
     */
    void invalidateEepromsContent(const QDBusMessage &message);

    /**
     * The revisions of the board: "SOM", "HPS", "MESURE_CARD" (unsigned int) and "FPGA" (text, as
     * in "2.3"), without those that cannot be read.
     *
     * The board library is told the revision of the system-on-module.
     */
    QVariantMap getRevision();

    /**
     * The versions of the software: "BSP" and "KyApp" (byte arrays) and "KyBoardManager" (text),
     * without those that cannot be found out.
     *
     * The first call waits for the application's answer, for at most 3000 ms.
     */
    QVariantMap getSoftwareVersions();

private:
    void writeRecord(e_eeprom eeprom, const QByteArray &record, QVariantMap &cache,
                     const QDBusMessage &message);
    bool write(const QVector<Eeproms::Content> &contents, const QDBusMessage &message);

    KyBoardRev m_boardRev;
    Eeproms m_eeproms;
    QVariantMap m_instrument;
    QVariantMap m_measure;
    QVariantMap m_revisions;
    QVariantMap m_softwareVersions;
};

#endif
