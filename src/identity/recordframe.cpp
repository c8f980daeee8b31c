#include "recordframe.h"

#include "crc16.h"

#include <QtEndian>

namespace
{
const int crcSize = 2;
}

QByteArray framed(const QByteArray &data)
{
    QByteArray record(crcSize, Qt::Uninitialized);
    qToBigEndian(crc16(data), reinterpret_cast<uchar *>(record.data()));
    return record + data;
}

QByteArray unframed(const QByteArray &record, int size)
{
    if (record.size() != size)
        return QByteArray();
    const quint16 crc =
        qFromBigEndian<quint16>(reinterpret_cast<const uchar *>(record.constData()));
    const QByteArray data = record.mid(crcSize);
    return crc == crc16(data) ? data : QByteArray();
}
