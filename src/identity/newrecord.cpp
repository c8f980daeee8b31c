#include "newrecord.h"

#include "busvalue.h"
#include "instrumentrecord.h"
#include "keptrecord.h"
#include "measurerecord.h"

namespace
{
bool canBeSet(const std::optional<QVariantMap> &fields)
{
    return fields && canBeKept(*fields);
}
} // namespace

std::optional<NewRecord> newInstrumentRecord(const QVariantMap &map)
{
    const std::optional<QVariantMap> fields = instrumentFields(map);
    if (!canBeSet(fields))
        return std::nullopt;
    return NewRecord{keptRecord(map, *fields), encodeInstrumentRecord(basicMap(*fields))};
}

std::optional<NewRecord> newMeasureRecord(const QVariantMap &map)
{
    const std::optional<QVariantMap> fields = measureFields(map);
    if (!canBeSet(fields))
        return std::nullopt;
    const QVector<quint32> coefficients =
        toNumbers(fields->value(QStringLiteral("AdjustementCoefficients")));
    return NewRecord{keptRecord(map, *fields),
                     encodeMeasureRecord(basicMap(*fields), coefficients)};
}
