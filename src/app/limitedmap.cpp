#include "limitedmap.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

namespace
{
int countValues(const QDBusArgument &argument, int enough);

int countRest(const QDBusArgument &argument, int enough)
{
    int count = 0;
    while (count < enough && !argument.atEnd())
        count += countValues(argument, enough - count);
    return count;
}

int countEntries(const QDBusArgument &argument, int enough)
{
    int count = 0;
    while (count < enough && !argument.atEnd()) {
        argument.beginMapEntry();
        count += countRest(argument, enough - count);
        argument.endMapEntry();
    }
    return count;
}

int countArray(const QDBusArgument &argument, int enough)
{
    argument.beginArray();
    const int count = 1 + countRest(argument, enough - 1);
    argument.endArray();
    return count;
}

/** Returns true for an array of texts. Qt D-Bus reads it in one step, like a basic value. */
bool isListOfTexts(const QDBusArgument &argument)
{
    return argument.currentSignature() == QLatin1String("as");
}

int countBasic(const QDBusArgument &argument, int enough)
{
    if (isListOfTexts(argument))
        return countArray(argument, enough);
    argument.asVariant();
    return 1;
}

/** Counts a variant as one value. Adds its content unless the content is a single basic value. */
int countVariant(const QDBusArgument &argument, int enough)
{
    // Qt D-Bus can enter a variant only with beginStructure().
    argument.beginStructure();
    int count = 1;
    if (argument.currentType() != QDBusArgument::BasicType || isListOfTexts(argument))
        count += countValues(argument, enough - count);
    argument.endStructure();
    return count;
}

/**
 * Advances @p argument by one value, and counts that value and all values in it.
 *
 * @param enough counting may stop at this number; a result that reaches it is a lower bound
 */
int countValues(const QDBusArgument &argument, int enough)
{
    int count = 1;
    switch (argument.currentType()) {
    case QDBusArgument::VariantType:
        return countVariant(argument, enough);
    case QDBusArgument::ArrayType:
        return countArray(argument, enough);
    case QDBusArgument::MapType:
        argument.beginMap();
        count += countEntries(argument, enough - count);
        argument.endMap();
        return count;
    case QDBusArgument::StructureType:
        argument.beginStructure();
        count += countRest(argument, enough - count);
        argument.endStructure();
        return count;
    default:
        return countBasic(argument, enough);
    }
}

/**
 * Reads @p message into @p map. Returns false if the message holds more than mostValuesOfMap
 * values.
 */
bool readMap(const QDBusArgument &message, QVariantMap &map)
{
    // A copy: reading advances even a const QDBusArgument.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const QDBusArgument argument(message);
    int room = mostValuesOfMap;
    argument.beginMap();
    while (room >= 0 && !argument.atEnd()) {
        argument.beginMapEntry();
        QString key;
        argument >> key;
        // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
        const QDBusArgument ahead(argument);
        const int count = countValues(ahead, mostValuesOfEntry + 1);
        QDBusVariant value;
        if (count <= mostValuesOfEntry)
            argument >> value;
        argument.endMapEntry();
        map.insert(key, value.variant());
        room -= 1 + count;
    }
    argument.endMap();
    return room >= 0;
}

void readLimited(const QDBusArgument &argument, void *map)
{
    *static_cast<QVariantMap *>(map) = limitedMap(argument);
}
} // namespace

QVariantMap limitedMap(const QDBusArgument &argument)
{
    QVariantMap map;
    return readMap(argument, map) ? map : QVariantMap();
}

bool isWithinLimits(const QDBusArgument &argument)
{
    QVariantMap map;
    return readMap(argument, map);
}

void limitMaps()
{
    // Qt D-Bus registers its own readers at the first look-up of any type. Look a type up first:
    // later, Qt D-Bus would replace our reader.
    QDBusMetaType::typeToSignature(QMetaType::QVariantMap);
    QDBusMetaType::registerMarshallOperators(
        QMetaType::QVariantMap,
        reinterpret_cast<QDBusMetaType::MarshallFunction>(qDBusMarshallHelper<QVariantMap>),
        readLimited);
}
