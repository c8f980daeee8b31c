#include "busvalue.h"
#include "limitedmap.h"
#include "peer.h"
#include "render.h"
#include "require.h"

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>

namespace
{
bool isPlain(const QVariant &value)
{
    const QVariantList elements = value.userType() == QMetaType::QVariantMap
                                      ? value.toMap().values()
                                  : value.userType() == QMetaType::QVariantList ? value.toList()
                                                                                : QVariantList();
    for (const QVariant &element : elements) {
        if (!isPlain(element))
            return false;
    }
    return value.userType() != qMetaTypeId<QDBusArgument>() &&
           value.userType() != qMetaTypeId<QDBusVariant>();
}

void checkNumbers(const QVariant &value)
{
    const int count = toNumbers(value).size();
    const QVariant plain = plainValue(value);
    if (plain.userType() == QMetaType::QByteArray)
        require(count == plain.toByteArray().size(), "every byte becomes a number");
    if (plain.userType() == QMetaType::QVariantList)
        require(count == plain.toList().size(), "every element becomes a number");
}

void checkValue(const QVariant &value)
{
    const QVariant plain = plainValue(value);
    const QString text = render(plain);
    require(isPlain(plain), "a plain value contains no QDBusArgument and no QDBusVariant");
    require(render(plainValue(plain)) == text, "converting a plain value again changes nothing");
    require(render(plainValue(value)) == text, "a value can be read twice");

    const QVariant basic = basicValue(value);
    require(!basic.isValid() || render(basic) == text, "a basic value equals the plain value");
    checkNumbers(value);

    const QVariantMap map = toMap(value);
    require(map.isEmpty() || render(map) == text, "toMap() returns the whole map or none");
    const QVariantMap sendable = sendableMap(storableMap(map));
    require(Peer::instance().canSend({sendable}), "a sendable map can be sent");
}
} // namespace

/** Fuzzes the reading of values of every type that clients and ConnMan can send. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QVariantList values = Peer::instance().receiveAnything(choices);
    for (const QVariant &value : values)
        checkValue(value);

    const QVariantList map = Peer::instance().receive("a{sv}", choices);
    const QVariantMap sent = firstMap(map);
    const QVariantMap limited = limitedMap(map.value(0).value<QDBusArgument>());
    for (auto entry = limited.constBegin(); entry != limited.constEnd(); ++entry)
        require(render(plainValue(entry.value())) == render(plainValue(sent.value(entry.key()))),
                "an entry has the value that was sent");
    QStringList keys = sent.keys();
    keys.removeDuplicates();
    const QStringList limitedKeys = limited.keys();
    require(limitedKeys == keys, "a map within the limits is complete");
    for (const QVariant &value : sent)
        checkValue(value);
    const QVariantMap plain = plainMap(sent);
    for (auto entry = plain.constBegin(); entry != plain.constEnd(); ++entry)
        require(render(entry.value()) == render(plainValue(sent.value(entry.key()))),
                "if a key occurs several times, its last entry counts");

    const QVariantMap kept = storableMap(sent);
    require(
        !render(QVariant(kept))
             .contains(QLatin1String(QMetaType::typeName(qMetaTypeId<QDBusUnixFileDescriptor>()))),
        "no descriptor is kept");
    require(Peer::instance().canSend({kept}), "a storable map can be sent");
    return 0;
}
