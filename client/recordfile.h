#ifndef RECORDFILE_H
#define RECORDFILE_H

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/*
 * A copy of both identification records as a JSON file. The functions convert the records to the
 * content of the file, and back; they access neither files nor the bus.
 *
 * Each record is an object with all fields of the record, named as on the bus, and with the CRC of
 * the record as hexadecimal text. A field with a number is a JSON number. A field of bytes is a
 * text with one character for each byte of the field, unused bytes included. The code of the
 * character is the value of the byte.
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
 * @return false, with the error in @p complaint, if the content is not JSON of this format, if a
 *         field is missing, unknown or has an invalid value, or if a record's CRC does not match
 *         its fields
 */
bool readRecords(const QByteArray &content, Records &records, QString &complaint);

#endif
