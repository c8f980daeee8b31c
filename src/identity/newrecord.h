#ifndef NEWRECORD_H
#define NEWRECORD_H

#include <QByteArray>
#include <QVariantMap>

#include <optional>

/** A record that a caller has set: its values as later replies show them, and its bytes. */
struct NewRecord {
    QVariantMap kept;
    QByteArray bytes;
};

/**
 * Returns the instrument record of @p map; nothing if a field is missing or the fields are too
 * large to keep (canBeKept()).
 */
std::optional<NewRecord> newInstrumentRecord(const QVariantMap &map);

/** Returns the measure record of @p map; nothing in the same cases as newInstrumentRecord(). */
std::optional<NewRecord> newMeasureRecord(const QVariantMap &map);

#endif
