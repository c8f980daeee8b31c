#include "recordframe.h"

#include "crc16.h"

#include <QtEndian>

namespace
{
constexpr int crcSize = 2;
}

QByteArray framed(QByteArray data)
{
    QByteArray crc(crcSize, Qt::Uninitialized);
    qToBigEndian(crc16(data), reinterpret_cast<uchar *>(crc.data()));
    return data.prepend(crc);
}

std::optional<QByteArray> unframed(const QByteArray &record, int size)
{
    if (record.size() != size)
        return std::nullopt;
    const quint16 crc =
        qFromBigEndian<quint16>(reinterpret_cast<const uchar *>(record.constData()));
    const QByteArray data = record.mid(crcSize);
    if (crc != crc16(data))
        return std::nullopt;
    return data;
}
