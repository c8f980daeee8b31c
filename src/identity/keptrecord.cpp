#include "keptrecord.h"

#include "busvalue.h"

bool canBeKept(const QVariantMap &fields)
{
    int room = mostFieldBytes;
    for (const QVariant &value : fields) {
        if (!value.isValid())
            return false;
        room -= sizeOnBus(value, room + 1);
        if (room < 0)
            return false;
    }
    return true;
}

QVariantMap keptRecord(const QVariantMap &map, const QVariantMap &fields)
{
    QVariantMap kept = fields;
    int room = mostSurplusBytes;
    // If a key occurs more than once, its last entry counts.
    for (auto entry = map.constBegin(); entry != map.constEnd();
         entry = map.upperBound(entry.key())) {
        if (fields.contains(entry.key()) || !entry.value().isValid())
            continue;
        const int size = entry.key().toUtf8().size() + sizeOnBus(entry.value(), room + 1);
        if (size > room)
            continue;
        room -= size;
        kept.insert(entry.key(), entry.value());
    }
    kept.remove(QStringLiteral("CRC"));
    kept = storableMap(kept);
    for (QVariant &value : kept)
        value = detachedValue(value);
    return kept;
}
