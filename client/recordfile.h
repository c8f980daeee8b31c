#ifndef RECORDFILE_H
#define RECORDFILE_H

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/*
 * A copy of both identification records as a JSON file. Pure: records to content, and content to
 * records.
 *
 * Each record is an object with all fields of the record, named as on the bus, and with the CRC
 * that the EEPROM holds. Numbers are JSON numbers; bytes are text with one character for each byte,
 * in the full width of the field.
 */

/** Both records; the values of their fields can be sent to the daemon unchanged. */
struct Records {
    QVariantMap instrument;
    QVariantMap measure;
};

/**
 * Returns the content of the file for @p records, which the daemon has returned.
 *
 * @param complaint the error if the result is empty: a record is invalid or lacks fields
 */
QByteArray writeRecords(const Records &records, QString &complaint);

/**
 * Reads the records from a file with that @p content.
 *
 * @return false, with @p complaint, if the file is incomplete or changed: a field is missing,
 *         unknown or has a wrong value, or the record has another CRC
 */
bool readRecords(const QByteArray &content, Records &records, QString &complaint);

#endif
