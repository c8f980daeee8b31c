#include "connman.h"

#include "busvalue.h"
#include "systemdwatchdog.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QDBusVariant>
#include <QElapsedTimer>

#include <utility>

QDBusArgument &operator<<(QDBusArgument &argument, const ConnmanObject &object)
{
    argument.beginStructure();
    argument << object.path << object.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ConnmanObject &object)
{
    argument.beginStructure();
    argument >> object.path >> object.properties;
    argument.endStructure();
    return argument;
}

namespace connman
{
const QString serviceName = QStringLiteral("net.connman");
const QString managerPath = QStringLiteral("/");
const QString managerInterface = QStringLiteral("net.connman.Manager");
const QString serviceInterface = QStringLiteral("net.connman.Service");
const QString technologyInterface = QStringLiteral("net.connman.Technology");

QString technologyPath(const QString &technology)
{
    return QStringLiteral("/net/connman/technology/") + technology;
}

namespace
{
const QString propertyChanged = QStringLiteral("PropertyChanged");
const QString propertyChangedSignature = QStringLiteral("sv");

/** After a longer call, the daemon pings systemd's watchdog. An ordinary call takes about 1 ms. */
constexpr int longCallMs = 1000;

template <typename Type>
void registerType(const char *name)
{
    qRegisterMetaType<Type>(name);
    qDBusRegisterMetaType<Type>();
}

// Not a QDBusInterface: that would introspect the peer with another blocking call.
QDBusMessage methodCall(const QString &path, const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(serviceName, path, interface, method);
}

QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                  const QVariantList &arguments = {})
{
    QDBusMessage message = methodCall(path, interface, method);
    message.setArguments(arguments);
    QElapsedTimer duration;
    duration.start();
    const QDBusMessage reply = QDBusConnection::systemBus().call(message);
    // Two calls of 25 s each would exceed systemd's watchdog timeout.
    if (duration.elapsed() > longCallMs)
        pingSystemdMeanwhile();
    return reply;
}

QDBusError setProperty(const QString &path, const QString &interface, const QString &name,
                       const QVariant &value)
{
    return QDBusError(call(path, interface, QStringLiteral("SetProperty"),
                           {name, QVariant::fromValue(QDBusVariant(value))}));
}

bool isOnBus()
{
    QDBusConnectionInterface *bus = QDBusConnection::systemBus().interface();
    return bus && bus->isServiceRegistered(serviceName);
}

QList<ConnmanObject> listObjects(const QString &method)
{
    if (!isOnBus())
        return {};
    const QDBusMessage reply = call(managerPath, managerInterface, method);
    // Qt D-Bus aborts the process when it reads a value with another signature.
    if (reply.type() != QDBusMessage::ReplyMessage ||
        reply.signature() != QLatin1String("a(oa{sv})"))
        return {};
    auto objects = qdbus_cast<QList<ConnmanObject>>(reply.arguments().at(0));
    for (ConnmanObject &object : objects)
        object.properties = plainMap(std::move(object.properties));
    return objects;
}
} // namespace

void registerTypes()
{
    registerType<ConnmanObject>("ConnmanObject");
    registerType<QList<ConnmanObject>>("QList<ConnmanObject>");
    registerType<InterfaceList>("InterfaceList");
    registerType<ManagedObjectList>("ManagedObjectList");
}

QList<ConnmanObject> services()
{
    return listObjects(QStringLiteral("GetServices"));
}

QList<ConnmanObject> technologies()
{
    return listObjects(QStringLiteral("GetTechnologies"));
}

// Subscribe with the signature: without it Qt D-Bus also delivers a signal with other arguments,
// and aborts the process when they do not fit the slot.
void watchProperties(const QString &path, const QString &interface, QObject *receiver,
                     const char *slot)
{
    QDBusConnection::systemBus().connect(serviceName, path, interface, propertyChanged,
                                         QStringList(), propertyChangedSignature, receiver, slot);
}

void unwatchProperties(const QString &path, const QString &interface, QObject *receiver,
                       const char *slot)
{
    QDBusConnection::systemBus().disconnect(serviceName, path, interface, propertyChanged,
                                            QStringList(), propertyChangedSignature, receiver,
                                            slot);
}

std::optional<ConnmanObject> findObject(const QList<ConnmanObject> &objects, const QString &name,
                                        const QString &value)
{
    for (const ConnmanObject &object : objects) {
        if (object.properties.value(name).toString() == value)
            return object;
    }
    return std::nullopt;
}

bool isFlag(const QVariant &value, bool flag)
{
    return value.type() == QVariant::Bool && value.toBool() == flag;
}

QDBusError setTechnologyPowered(const QString &technology, bool powered)
{
    return setProperty(technologyPath(technology), technologyInterface, QStringLiteral("Powered"),
                       powered);
}

QDBusError setServiceProperty(const QString &path, const QString &name, const QVariant &value)
{
    return setProperty(path, serviceInterface, name, value);
}

QDBusPendingCall connectService(const QString &path)
{
    return QDBusConnection::systemBus().asyncCall(
        methodCall(path, serviceInterface, QStringLiteral("Connect")));
}

QDBusError remove(const QString &path)
{
    return QDBusError(call(path, serviceInterface, QStringLiteral("Remove")));
}

void scan(const QString &technology)
{
    call(technologyPath(technology), technologyInterface, QStringLiteral("AsyncScan"));
}

void registerAgent(const QString &path)
{
    call(managerPath, managerInterface, QStringLiteral("RegisterAgent"),
         {QVariant::fromValue(QDBusObjectPath(path))});
}

void unregisterAgent(const QString &path)
{
    call(managerPath, managerInterface, QStringLiteral("UnregisterAgent"),
         {QVariant::fromValue(QDBusObjectPath(path))});
}
} // namespace connman
