#include "busvalue.h"
#include "connman.h"
#include "peer.h"
#include "require.h"
#include "stationtable.h"
#include "wifiservices.h"

namespace
{
/** ConnMan's list, read as by connman::services(). */
QList<ConnmanObject> readObjects(Choices &choices)
{
    static const bool isRegistered = [] {
        connman::registerTypes();
        return true;
    }();
    static_cast<void>(isRegistered);
    auto objects =
        qdbus_cast<QList<ConnmanObject>>(Peer::instance().receive("a(oa{sv})", choices).value(0));
    for (ConnmanObject &object : objects) {
        object.properties = plainMap(object.properties);
        // Random properties rarely include the type and the name of a network.
        if (choices.oneIn(2))
            object.properties[QStringLiteral("Type")] = QStringLiteral("wifi");
        if (choices.oneIn(2))
            object.properties[QStringLiteral("Name")] = anyText(choices);
    }
    return objects;
}
} // namespace

/** The services that ConnMan, or another owner of its name, lists. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QList<ConnmanObject> services = readObjects(choices);
    const QList<ConnmanObject> networks = wifiServices(services);
    require(networks.size() <= services.size(), "every network is a listed service");

    const QVariantMap list = wifiScanList(services);
    require(list.size() <= services.size(), "a scan lists each network once");
    for (auto entry = list.constBegin(); entry != list.constEnd(); ++entry)
        require(entry.value().toStringList().size() == 3, "a network has three texts");
    require(Peer::instance().canSend({list}), "the outcome of a scan can be sent");

    const QString name = anyText(choices);
    const std::optional<ConnmanObject> named = wifiServiceNamed(networks, name);
    require(!named || named->properties.value(QStringLiteral("Name")).toString() == name,
            "the network that is found has the name");
    const std::optional<ConnmanObject> found =
        connman::findObject(services, QStringLiteral("Type"), name);
    require(!found || found->properties.value(QStringLiteral("Type")).toString() == name,
            "the object that is found has the property");
    if (named)
        requestedEvent(named->properties.value(QStringLiteral("State")).toString());
    for (const ConnmanObject &service : services) {
        for (auto property = service.properties.cbegin(); property != service.properties.cend();
             ++property) {
            const QVariant value = wifiServiceChange(property.key(), property.value()).value;
            require(!value.isValid() || Peer::instance().canSend({value}),
                    "a property for clients can be sent");
        }
    }
    return 0;
}
