#include "newrecord.h"

#include "busvalue.h"
#include "instrumentrecord.h"
#include "keptrecord.h"
#include "measurerecord.h"

namespace
{
bool isComplete(const QVariantMap &fields)
{
    return !fields.isEmpty() && canBeKept(fields);
}
} // namespace

std::optional<NewRecord> newInstrumentRecord(const QVariantMap &map)
{
    const QVariantMap fields = instrumentFields(map);
    if (!isComplete(fields))
        return std::nullopt;
    return NewRecord{keptRecord(map, fields), encodeInstrumentRecord(basicMap(fields))};
}

std::optional<NewRecord> newMeasureRecord(const QVariantMap &map)
{
    const QVariantMap fields = measureFields(map);
    if (!isComplete(fields))
        return std::nullopt;
    const QVector<quint32> coefficients =
        toNumbers(fields.value(QStringLiteral("AdjustementCoefficients")));
    return NewRecord{keptRecord(map, fields), encodeMeasureRecord(basicMap(fields), coefficients)};
}
