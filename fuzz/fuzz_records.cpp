#include "choices.h"
#include "crc16.h"
#include "instrumentrecord.h"
#include "measurerecord.h"
#include "recordframe.h"
#include "require.h"

namespace
{
const QString crc = QStringLiteral("CRC");

QVector<quint32> coefficientsOf(const QVariantMap &map)
{
    const QVariantList elements = map.value(QStringLiteral("AdjustementCoefficients")).toList();
    QVector<quint32> coefficients;
    for (const QVariant &element : elements)
        coefficients << element.toUInt();
    return coefficients;
}

void checkInstrument(const QByteArray &bytes)
{
    const QVariantMap map = decodeInstrumentRecord(bytes);
    const bool isGood = map.value(crc).toBool();
    require(isGood || map.size() == 1, "a record without its checksum has no fields");
    require(isGood == unframed(bytes, instrumentRecordSize).has_value(), "the checksum decides");
    if (isGood)
        require(encodeInstrumentRecord(map) == bytes,
                "encoding a decoded record gives the same bytes");
}

void checkMeasure(const QByteArray &bytes)
{
    const QVariantMap map = decodeMeasureRecord(bytes);
    const bool isGood = map.value(crc).toBool();
    require(isGood || map.size() == 1, "a record without its checksum has no fields");
    if (isGood)
        require(encodeMeasureRecord(map, coefficientsOf(map)) == bytes,
                "encoding a decoded record gives the same bytes");
}
} // namespace

/** EEPROMs with any content: worn out, partially written, of another size, or valid. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const quint32 kind = choices.below(4);
    QByteArray bytes = QByteArray::fromStdString(choices.rest());
    if (kind == 1)
        bytes = bytes.leftJustified(instrumentRecordSize - 2, '\xff', true);
    else if (kind == 2)
        bytes = bytes.leftJustified(measureRecordSize - 2, '\0', true);
    if (kind != 0)
        bytes = framed(bytes);
    const quint16 checksum = crc16(bytes);
    require(crc16(bytes + char(checksum & 0xFF) + char(checksum >> 8)) == 0,
            "data followed by its checksum has the checksum 0");
    checkInstrument(bytes);
    checkMeasure(bytes);
    return 0;
}
