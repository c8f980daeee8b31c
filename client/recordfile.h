#ifndef RECORDFILE_H
#define RECORDFILE_H

#include <QByteArray>
#include <QString>
#include <QVariantMap>

/*
 * A copy of both identification records as a JSON file. Pure: records in, the file's content out,
 * and back again.
 *
 * Each record is an object with all of its fields, named as on the bus, and with the CRC that it
 * has in the EEPROM. Numbers are numbers; bytes are text of one character for each byte, of the
 * whole width of the field.
 */

/** Both records, the values of whose fields can be sent to the daemon as they are. */
struct Records {
    QVariantMap instrument;
    QVariantMap measure;
};

/**
 * The content of the file with @p records, as the daemon gave them.
 *
 * @param complaint why there is none, where the result is empty: a record that is not valid, or
 *        without some of its fields
 */
QByteArray writeRecords(const Records &records, QString &complaint);

/**
 * The records in a file of that @p content.
 *
 * @return false, with @p complaint, where the file is not whole: a field is missing, is none of the
 *         record's or no value of its kind, or the record has another CRC
 */
bool readRecords(const QByteArray &content, Records &records, QString &complaint);

#endif
