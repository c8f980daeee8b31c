#ifndef RECORDFRAME_H
#define RECORDFRAME_H

#include <QByteArray>

#include <optional>

/*
 * The frame of all identification records: the CRC-16 of the data, high byte first, followed by the
 * data.
 */

/** Returns the CRC of @p data, followed by the data. Move the data to avoid a copy. */
QByteArray framed(QByteArray data);

/**
 * Returns the data of @p record; nothing if it has another size or a wrong CRC.
 *
 * @param size the size of the whole record in bytes
 */
std::optional<QByteArray> unframed(const QByteArray &record, int size);

#endif
