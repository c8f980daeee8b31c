#include "busvalue.h"
#include "instrumentrecord.h"
#include "keptrecord.h"
#include "measurerecord.h"
#include "newrecord.h"
#include "peer.h"
#include "require.h"

#include <QDBusArgument>

#include <climits>

namespace
{
/** The container levels around a value in a map: array, entry and variant. */
constexpr int levelsOfMap = 3;

/** Returns a map with a value of any type for each of @p keys; sometimes a key is missing. */
template <std::size_t count>
QVariantMap mapOf(const char *const (&keys)[count], Choices &choices)
{
    QVariantMap map = firstMap(Peer::instance().receive("a{sv}", choices));
    for (const char *key : keys) {
        if (choices.oneIn(40))
            continue;
        const QVariant value =
            Peer::instance().receive(choices.oneIn(2) ? "av" : "v", choices, levelsOfMap).value(0);
        // No value comes from a message with more descriptors than a bus delivers.
        if (value.isValid())
            map[QLatin1String(key)] = value;
    }
    return map;
}

const char *const instrumentKeys[] = {
    "Subsidiary",
    "Fabrication",
    "Brand",
    "Type",
    "Model",
    "SerialNumber",
    "WarrantyNumber",
    "FirstPassTag",
    "TroubleshootingTag",
    "RelaunchTag",
    "IrdInstrumentPassword",
    "IrdSessionPassword",
};

const char *const measureKeys[] = {"AdjustementSite", "AdjustementDate", "NextAdjustementDate",
                                   "AdjustementCoefficients"};

void checkKept(const QVariantMap &map, const QVariantMap &fields)
{
    const QVariantMap kept = keptRecord(map, fields);
    require(Peer::instance().canSend({kept}), "a kept record can be sent");
    require(!kept.contains(QStringLiteral("CRC")), "the caller's CRC is not kept");
    const QVariantMap whole = storableMap(map);
    int surplus = 0;
    for (auto entry = whole.constBegin(); entry != whole.constEnd(); ++entry) {
        if (fields.contains(entry.key()))
            require(kept.contains(entry.key()), "every field is kept");
        else if (kept.contains(entry.key()))
            surplus += entry.key().toUtf8().size() + sizeOnBus(entry.value(), INT_MAX);
    }
    require(surplus <= mostSurplusBytes, "the surplus entries are limited in total");
}

void checkNew(const std::optional<NewRecord> &record, const QVariantMap &map,
              const std::optional<QVariantMap> &fields)
{
    require(record.has_value() == (fields && canBeKept(*fields)),
            "a record is refused if a field is missing or the fields are too large");
    if (!record)
        return;
    const QStringList keys = record->kept.keys();
    const QStringList expected = keptRecord(map, *fields).keys();
    require(keys == expected, "a new record keeps the values of keptRecord()");
}

void checkInstrument(const QVariantMap &map)
{
    const std::optional<QVariantMap> fields = instrumentFields(map);
    checkKept(map, fields.value_or(QVariantMap()));
    const std::optional<NewRecord> made = newInstrumentRecord(map);
    checkNew(made, map, fields);
    if (!fields)
        return;
    const QByteArray record = encodeInstrumentRecord(basicMap(*fields));
    require(!made || made->bytes == record, "the bytes of a new record are those of its fields");
    require(record.size() == instrumentRecordSize, "every record has the same size");
    const QVariantMap decoded = decodeInstrumentRecord(record);
    require(decoded.value(QStringLiteral("CRC")).toBool(), "a record has its checksum");
    require(encodeInstrumentRecord(decoded) == record, "a record that was read can be written");
}

void checkMeasure(const QVariantMap &map)
{
    const std::optional<QVariantMap> fields = measureFields(map);
    checkKept(map, fields.value_or(QVariantMap()));
    const std::optional<NewRecord> made = newMeasureRecord(map);
    checkNew(made, map, fields);
    if (!fields)
        return;
    const QVector<quint32> coefficients =
        toNumbers(fields->value(QStringLiteral("AdjustementCoefficients")));
    const QByteArray record = encodeMeasureRecord(basicMap(*fields), coefficients);
    require(!made || made->bytes == record, "the bytes of a new record are those of its fields");
    require(record.size() == 12 + 4 * coefficients.size(), "every coefficient is in the record");
    const QVariantMap decoded = decodeMeasureRecord(record);
    require(decoded.value(QStringLiteral("CRC")).toBool() == (record.size() == measureRecordSize),
            "a record of the right size can be read");
}
} // namespace

/** Clients' maps for writing the EEPROMs. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    checkInstrument(mapOf(instrumentKeys, choices));
    checkMeasure(mapOf(measureKeys, choices));
    return 0;
}
