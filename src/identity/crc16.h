#ifndef CRC16_H
#define CRC16_H

#include <QByteArray>

/**
 * Returns the CRC-16/ARC of @p data: polynomial 0x8005 processed bit-reflected, initial value 0, no
 * final XOR. Check value: 0xBB3D for "123456789".
 */
quint16 crc16(const QByteArray &data);

#endif
