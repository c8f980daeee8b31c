#include "busvalue.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

#include <algorithm>
#include <iterator>

namespace
{
/**
 * Calls @p take with the key and the value of each entry. If a key occurs more than once, only its
 * last entry counts.
 *
 * A peer may send a key more than once. Qt D-Bus then stores all entries, and QVariantMap::value()
 * returns the last one.
 */
template <typename Take>
void forEachEntry(const QVariantMap &map, Take take)
{
    for (auto entry = map.constBegin(); entry != map.constEnd();
         entry = map.upperBound(entry.key()))
        take(entry.key(), entry.value());
}

/** Reads an array of numbers and keeps their type. */
template <typename Number>
QVariant readNumbers(const QDBusArgument &argument)
{
    return QVariant::fromValue(qdbus_cast<QList<Number>>(argument));
}

QVariantList plainList(const QVariantList &list)
{
    QVariantList plain;
    for (const QVariant &element : list)
        plain << plainValue(element);
    return plain;
}

using Reader = QVariant (*)(const QDBusArgument &);

/** The function that reads each compound, by its signature. */
const struct {
    const char *signature;
    Reader read;
} readers[] = {
    {"a{sv}",
     [](const QDBusArgument &a) -> QVariant { return plainMap(qdbus_cast<QVariantMap>(a)); }},
    {"av",
     [](const QDBusArgument &a) -> QVariant { return plainList(qdbus_cast<QVariantList>(a)); }},
    {"ab", readNumbers<bool>},
    {"an", readNumbers<short>},
    {"aq", readNumbers<ushort>},
    {"ai", readNumbers<int>},
    {"au", readNumbers<uint>},
    {"ax", readNumbers<qlonglong>},
    {"at", readNumbers<qulonglong>},
    {"ad", readNumbers<double>},
};

QVariant readCompound(const QDBusArgument &argument)
{
    const QString signature = argument.currentSignature();
    for (const auto &reader : readers) {
        if (signature == QLatin1String(reader.signature))
            return reader.read(argument);
    }
    return QVariant();
}

quint32 toNumber(const QDBusVariant &element)
{
    return basicValue(element.variant()).toUInt();
}

template <typename Integer>
quint32 toNumber(Integer element)
{
    return static_cast<quint32>(element);
}

/** Rounds to the nearest integer, like QVariant::toUInt(). */
quint32 toNumber(double element)
{
    return QVariant(element).toUInt();
}

/** Reads one element at a time: a list of variants takes many times the memory of its numbers. */
template <typename Element>
QVector<quint32> readArray(const QDBusArgument &argument)
{
    QVector<quint32> numbers;
    argument.beginArray();
    while (!argument.atEnd()) {
        Element element{};
        argument >> element;
        numbers << toNumber(element);
    }
    argument.endArray();
    return numbers;
}

/** The function that reads each list of numbers, by its signature. */
const struct {
    const char *signature;
    QVector<quint32> (*read)(const QDBusArgument &);
} numberReaders[] = {
    {"av", readArray<QDBusVariant>}, {"ab", readArray<bool>},       {"an", readArray<short>},
    {"aq", readArray<ushort>},       {"ai", readArray<int>},        {"au", readArray<uint>},
    {"ax", readArray<qlonglong>},    {"at", readArray<qulonglong>}, {"ad", readArray<double>},
};

QVector<quint32> readNumberList(const QDBusArgument &argument)
{
    const QString signature = argument.currentSignature();
    for (const auto &reader : numberReaders) {
        if (signature == QLatin1String(reader.signature))
            return reader.read(argument);
    }
    return QVector<quint32>();
}

/**
 * Returns true if a value of type @p signature may contain a file descriptor or a signature,
 * directly or in a variant.
 */
bool mayBeUnstorable(const QString &signature)
{
    return std::any_of(signature.begin(), signature.end(), [](QChar type) {
        return type == QLatin1Char('h') || type == QLatin1Char('g') || type == QLatin1Char('v');
    });
}

bool isEmptySignature(const QVariant &value)
{
    return value.userType() == qMetaTypeId<QDBusSignature>() &&
           value.value<QDBusSignature>().signature().isEmpty();
}

bool isStorable(const QVariant &value);

bool areElementsStorable(const QDBusArgument &argument)
{
    bool areStorable = true;
    while (!argument.atEnd())
        areStorable = isStorable(argument.asVariant()) && areStorable;
    return areStorable;
}

bool areEntriesStorable(const QDBusArgument &argument)
{
    bool areStorable = true;
    while (!argument.atEnd()) {
        argument.beginMapEntry();
        areStorable = areElementsStorable(argument) && areStorable;
        argument.endMapEntry();
    }
    return areStorable;
}

bool isCompoundStorable(const QDBusArgument &argument)
{
    const QString signature = argument.currentSignature();
    if (signature.contains(QLatin1Char('h')))
        return false;
    // Most compounds need not be read: the signature already shows that they are storable.
    if (!mayBeUnstorable(signature))
        return true;
    bool areStorable = true;
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
        argument.beginArray();
        areStorable = areElementsStorable(argument);
        argument.endArray();
        return areStorable;
    case QDBusArgument::MapType:
        argument.beginMap();
        areStorable = areEntriesStorable(argument);
        argument.endMap();
        return areStorable;
    case QDBusArgument::StructureType:
        argument.beginStructure();
        areStorable = areElementsStorable(argument);
        argument.endStructure();
        return areStorable;
    default:
        return true;
    }
}

bool isStorable(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return isStorable(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return isCompoundStorable(value.value<QDBusArgument>());
    return value.userType() != qMetaTypeId<QDBusUnixFileDescriptor>() && !isEmptySignature(value);
}
} // namespace

QVariant plainValue(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return plainValue(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return readCompound(value.value<QDBusArgument>());
    if (value.userType() == QMetaType::QVariantMap)
        return plainMap(value.toMap());
    if (value.userType() == QMetaType::QVariantList)
        return plainList(value.toList());
    return value;
}

QVariantMap plainMap(QVariantMap map)
{
    // Edit in place: an unshared map is not copied.
    for (auto entry = map.begin(); entry != map.end();) {
        entry.value() = plainValue(entry.value());
        auto next = std::next(entry);
        while (next != map.end() && next.key() == entry.key())
            next = map.erase(next);
        entry = next;
    }
    return map;
}

QVariant basicValue(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return basicValue(value.value<QDBusVariant>().variant());
    return value.userType() == qMetaTypeId<QDBusArgument>() ? QVariant() : value;
}

QVariantMap basicMap(const QVariantMap &map)
{
    QVariantMap basic;
    forEachEntry(map, [&basic](const QString &key, const QVariant &value) {
        basic.insert(key, basicValue(value));
    });
    return basic;
}

QVariantMap toMap(const QVariant &value)
{
    return plainValue(value).toMap();
}

namespace
{
QVariant sendableValue(const QVariant &value);

QVariantList sendableList(const QVariantList &list)
{
    QVariantList sendable;
    for (const QVariant &element : list) {
        if (element.isValid() && !isEmptySignature(element))
            sendable << sendableValue(element);
    }
    return sendable;
}

QVariant sendableValue(const QVariant &value)
{
    if (value.userType() == QMetaType::QVariantMap)
        return sendableMap(value.toMap());
    if (value.userType() == QMetaType::QVariantList)
        return sendableList(value.toList());
    return value;
}
} // namespace

QVariantMap sendableMap(const QVariantMap &map)
{
    QVariantMap sendable;
    forEachEntry(map, [&sendable](const QString &key, const QVariant &value) {
        if (value.isValid() && !isEmptySignature(value))
            sendable.insert(key, sendableValue(value));
    });
    return sendable;
}

QVector<quint32> toNumbers(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return toNumbers(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return readNumberList(value.value<QDBusArgument>());
    QVector<quint32> numbers;
    if (value.userType() == QMetaType::QByteArray) {
        const QByteArray bytes = value.toByteArray();
        numbers.reserve(bytes.size());
        for (const char byte : bytes)
            numbers << static_cast<uchar>(byte);
    } else if (value.userType() == QMetaType::QStringList) {
        const QStringList texts = value.toStringList();
        for (const QString &text : texts)
            numbers << QVariant(text).toUInt();
    }
    return numbers;
}

QVariantMap storableMap(const QVariantMap &map)
{
    QVariantMap storable;
    forEachEntry(map, [&storable](const QString &key, const QVariant &value) {
        if (isStorable(value))
            storable.insert(key, value);
    });
    return storable;
}

QVariant detachedValue(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return QVariant::fromValue(
            QDBusVariant(detachedValue(value.value<QDBusVariant>().variant())));
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value;
    QDBusArgument copy;
    copy.appendVariant(value);
    return QVariant::fromValue(copy);
}

namespace
{
constexpr int numberSize = 8;

int sizeOfElements(const QDBusArgument &argument, int enough)
{
    int size = 0;
    while (size < enough && !argument.atEnd())
        size += sizeOnBus(argument.asVariant(), enough - size);
    return size;
}

int sizeOfEntries(const QDBusArgument &argument, int enough)
{
    int size = 0;
    while (size < enough && !argument.atEnd()) {
        argument.beginMapEntry();
        size += sizeOfElements(argument, enough - size);
        argument.endMapEntry();
    }
    return size;
}

int sizeOfCompound(const QDBusArgument &argument, int enough)
{
    int size = 0;
    switch (argument.currentType()) {
    case QDBusArgument::ArrayType:
        argument.beginArray();
        size = sizeOfElements(argument, enough);
        argument.endArray();
        break;
    case QDBusArgument::MapType:
        argument.beginMap();
        size = sizeOfEntries(argument, enough);
        argument.endMap();
        break;
    case QDBusArgument::StructureType:
        argument.beginStructure();
        size = sizeOfElements(argument, enough);
        argument.endStructure();
        break;
    default:
        break;
    }
    return numberSize + size;
}
} // namespace

int sizeOnBus(const QVariant &value, int enough)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return sizeOnBus(value.value<QDBusVariant>().variant(), enough);
    if (value.userType() == qMetaTypeId<QDBusArgument>())
        return sizeOfCompound(value.value<QDBusArgument>(), enough);
    if (value.userType() == QMetaType::QByteArray)
        return numberSize + value.toByteArray().size();
    if (value.userType() == QMetaType::QString)
        return numberSize + value.toString().toUtf8().size();
    if (value.userType() == qMetaTypeId<QDBusObjectPath>())
        return numberSize + value.value<QDBusObjectPath>().path().size();
    if (value.userType() == qMetaTypeId<QDBusSignature>())
        return numberSize + value.value<QDBusSignature>().signature().size();
    int size = numberSize;
    if (value.userType() == QMetaType::QStringList) {
        const QStringList texts = value.toStringList();
        for (const QString &text : texts)
            size += sizeOnBus(text, enough);
    }
    return size;
}
