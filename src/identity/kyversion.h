#ifndef KYVERSION_H
#define KYVERSION_H

#include "eeproms.h"
#include "introspection/Version.h"
#include "kyboardrev.h"
#include "newrecord.h"

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

class QDBusMessage;

/**
 * The identity of the instrument: the two identification records in EEPROMs, the revisions of the
 * board's parts and the versions of the installed software.
 *
 * Every result is read once and cached. A record, or the failure to read it, stays cached until the
 * record is set or invalidated. Revisions and versions stay cached until the next start.
 */
class KyVersion : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orvendis.Strandel.BoardManager.Version")
    Q_CLASSINFO("D-Bus Introspection", INTROSPECTION_VERSION)

public:
    /** Does not access the hardware yet. */
    explicit KyVersion(QObject *parent);

public Q_SLOTS:
    /**
     * Returns the instrument record: "Subsidiary", "Fabrication", "Brand", "Type",
     * "TroubleshootingTag", "RelaunchTag", "FirstPassTag" (int, 0 to 255), "Model" (hexadecimal
     * text), "SerialNumber", "WarrantyNumber", "IrdInstrumentPassword", "IrdSessionPassword" (byte
     * arrays) and "CRC" = true. Returns only "CRC" = false if the record cannot be read or is
     * invalid. After setEepromInstrument(), returns the values that were set.
     *
     * Reading a valid record passes the instrument's brand and model to the board library.
     */
    QVariantMap getEepromInstrument();

    /**
     * Writes the instrument record; converts the values without checking them.
     *
     * Error::m_write if a field is missing or the fields are too long (canBeKept()); nothing is
     * written then. Error::m_write also if the write fails, or if the write protection cannot be
     * restored. Error::m_initialisation if the write protection cannot be lifted.
     */
    void setEepromInstrument(const QVariantMap &map, const QDBusMessage &message);

    /**
     * Returns the measure card's record: "AdjustementSite" (int, 0 to 65535), "AdjustementDate",
     * "NextAdjustementDate" (unsigned int), "AdjustementCoefficients" (list of unsigned int) and
     * "CRC" = true. Returns only "CRC" = false if the record cannot be read or is invalid. After
     * setEepromMesure(), returns the values that were set.
     */
    QVariantMap getEepromMesure();

    /** Writes the measure card's record. Sends the same errors as setEepromInstrument(). */
    void setEepromMesure(const QVariantMap &map, const QDBusMessage &message);

    /**
     * Invalidates both records: sets their CRCs to 0 and keeps their data.
     *
     * Sends an error for each failed step: Error::m_initialisation if the write protection cannot
     * be lifted, Error::m_write for each record that cannot be written and if the write protection
     * cannot be restored.
     */
    void invalidateEepromsContent(const QDBusMessage &message);

    /**
     * Returns the board's revisions: "SOM", "HPS", "MESURE_CARD" (unsigned int) and "FPGA" (text,
     * for example "2.3"), without those that cannot be read.
     *
     * Reading the system-on-module's revision passes it to the board library.
     */
    QVariantMap getRevision();

    /**
     * Returns the versions of the software: "BSP" and "KyApp" (byte arrays) and "KyBoardManager"
     * (text), without those that cannot be determined.
     *
     * The first call runs the application to read its version, and waits at most 3000 ms for it
     * (see askApplicationVersion()).
     */
    QVariantMap getSoftwareVersions();

private:
    void setRecord(e_eeprom eeprom, const std::optional<NewRecord> &record, QVariantMap &cache,
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
