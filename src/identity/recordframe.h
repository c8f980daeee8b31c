#ifndef RECORDFRAME_H
#define RECORDFRAME_H

#include <QByteArray>

/*
 * The frame that all identification records share: the CRC-16 of the data, high byte first, and
 * the data behind it.
 */

/** @p data with its CRC in front, which is cheapest when it is moved here. */
QByteArray framed(QByteArray data);

/**
 * The data of @p record.
 *
 * @param size how many bytes the whole record has to have
 * @return a null byte array when @p record has another size or its CRC is not that of its data
 */
QByteArray unframed(const QByteArray &record, int size);

#endif
