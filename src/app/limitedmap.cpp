#include "limitedmap.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>

const int mostValuesOfEntry = 8192;
const int mostValuesOfMap = 16 * mostValuesOfEntry;

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

/** Qt D-Bus counts ay and as among the basic types, and reads them in one step. */
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

/** Counts a variant, and what is in it where that is more than one basic value. */
int countVariant(const QDBusArgument &argument, int enough)
{
    // Qt D-Bus steps into a variant as it does into a structure, and has no other way to.
    argument.beginStructure();
    int count = 1;
    if (argument.currentType() != QDBusArgument::BasicType || isListOfTexts(argument))
        count += countValues(argument, enough - count);
    argument.endStructure();
    return count;
}

/**
 * Moves @p argument on by one value and counts what is in it, without making a QVariant of it.
 *
 * @param enough where counting may stop: anything from there on means more than that
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

/** False where there are too many values. */
bool readMap(const QDBusArgument &message, QVariantMap &map)
{
    // A copy: what has been read cannot be read again, although it is said to be const.
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
    // Qt D-Bus registers its own reader with the first look-up of a type.
    QDBusMetaType::typeToSignature(QMetaType::QVariantMap);
    QDBusMetaType::registerMarshallOperators(
        QMetaType::QVariantMap,
        reinterpret_cast<QDBusMetaType::MarshallFunction>(qDBusMarshallHelper<QVariantMap>),
        readLimited);
}
