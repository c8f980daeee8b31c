#ifndef CRC16_H
#define CRC16_H

#include <QByteArray>

/**
 * The CRC-16/ARC of @p data: polynomial 0x8005 processed bit-reflected, initial value 0, no final
 * XOR. Of "123456789" it is 0xBB3D, of any run of zero bytes 0.
 */
quint16 crc16(const QByteArray &data);

#endif
