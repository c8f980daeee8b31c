#include "connman.h"

#include "reply.h"
#include "serviceproperty.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <algorithm>
#include <utility>

namespace
{
const QString managerInterface = QStringLiteral("net.connman.Manager");
const QString technologyInterface = QStringLiteral("net.connman.Technology");
const QString serviceInterface = QStringLiteral("net.connman.Service");

void send(const QString &path, const QString &interface, const QString &member,
          const QList<QVariant> &values)
{
    QDBusMessage signal = QDBusMessage::createSignal(path, interface, member);
    signal.setArguments(values);
    QDBusConnection::systemBus().send(signal);
}

const ListedObject *findIn(const ListedObjects &objects, const QString &path)
{
    const auto found =
        std::find_if(objects.begin(), objects.end(),
                     [&](const ListedObject &object) { return object.path.path() == path; });
    return found == objects.end() ? nullptr : &*found;
}
} // namespace

const Connman::Method Connman::methods[] = {
    {"net.connman.Manager.GetProperties", "", &Connman::getManagerProperties},
    {"net.connman.Manager.GetTechnologies", "", &Connman::getTechnologies},
    {"net.connman.Manager.GetServices", "", &Connman::getServices},
    {"net.connman.Manager.RegisterAgent", "o", &Connman::registerAgent},
    {"net.connman.Manager.UnregisterAgent", "o", &Connman::unregisterAgent},
    {"net.connman.Technology.GetProperties", "", &Connman::getProperties},
    {"net.connman.Technology.SetProperty", "sv", &Connman::setTechnologyProperty},
    {"net.connman.Technology.Scan", "", &Connman::scan},
    {"net.connman.Technology.AsyncScan", "", &Connman::scan},
    {"net.connman.Service.GetProperties", "", &Connman::getProperties},
    {"net.connman.Service.SetProperty", "sv", &Connman::setServiceProperty},
    {"net.connman.Service.Connect", "", &Connman::connectService},
    {"net.connman.Service.Disconnect", "", &Connman::disconnectService},
    {"net.connman.Service.Remove", "", &Connman::removeService},
};

Connman::Connman(QObject *parent) : QObject(parent), m_agents(this) {}

void Connman::serve(const QDBusMessage &call)
{
    if (const Method *method = findMethod(call))
        (this->*method->serve)(call);
    else
        refuseUnknown(call, interfaceAt(call.path()).isEmpty() ? "UnknownObject" : "UnknownMethod");
}

const Connman::Method *Connman::findMethod(const QDBusMessage &call) const
{
    if (call.interface() != interfaceAt(call.path()))
        return nullptr;
    if (call.member() == QLatin1String("AsyncScan") && !m_asyncScan)
        return nullptr;
    const QString name = call.interface() + QLatin1Char('.') + call.member();
    for (const Method &method : methods) {
        if (name == QLatin1String(method.name) &&
            call.signature() == QLatin1String(method.signature))
            return &method;
    }
    return nullptr;
}

/** Returns the interface of the object at @p path; empty if there is none. */
QString Connman::interfaceAt(const QString &path) const
{
    if (path == QLatin1String("/"))
        return managerInterface;
    if (findIn(m_technologies, path))
        return technologyInterface;
    return findIn(m_services, path) ? serviceInterface : QString();
}

const ListedObject *Connman::find(const QString &path) const
{
    const ListedObject *technology = findIn(m_technologies, path);
    return technology ? technology : findIn(m_services, path);
}

ListedObject *Connman::find(const QString &path)
{
    for (ListedObjects *objects : {&m_technologies, &m_services}) {
        for (ListedObject &object : *objects) {
            if (object.path.path() == path)
                return &object;
        }
    }
    return nullptr;
}

void Connman::setTechnologies(const ListedObjects &technologies)
{
    m_technologies = technologies;
}

void Connman::setServices(const ListedObjects &services)
{
    m_services = services;
}

void Connman::setBehaviour(Behaviour *behaviour)
{
    m_behaviour = behaviour ? behaviour : &m_still;
}

void Connman::addService(const ListedObject &service)
{
    m_services.append(service);
}

void Connman::dropService(const QString &path)
{
    const auto isIt = [&](const ListedObject &service) { return service.path.path() == path; };
    m_services.erase(std::remove_if(m_services.begin(), m_services.end(), isIt), m_services.end());
}

void Connman::setAsyncScan(bool exists)
{
    m_asyncScan = exists;
}

bool Connman::storeProperty(const QString &path, const QString &name, const QVariant &value)
{
    ListedObject *object = find(path);
    if (object)
        object->properties.insert(name, value);
    return object;
}

QVariant Connman::property(const QString &path, const QString &name) const
{
    const ListedObject *object = find(path);
    return object ? object->properties.value(name) : QVariant();
}

bool Connman::announceProperty(const QString &path, const QString &name)
{
    const ListedObject *object = find(path);
    if (object)
        send(path, interfaceAt(path), QStringLiteral("PropertyChanged"),
             {name, QVariant::fromValue(QDBusVariant(object->properties.value(name)))});
    return object;
}

void Connman::announceServices()
{
    ListedObjects list;
    QSet<QString> present;
    for (const ListedObject &service : std::as_const(m_services)) {
        present.insert(service.path.path());
        const bool isNew = !m_announced.contains(service.path.path());
        list.append({service.path, isNew ? service.properties : QVariantMap()});
    }
    const QSet<QString> gone = m_announced - present;
    QList<QDBusObjectPath> removed;
    for (const QString &path : gone)
        removed.append(QDBusObjectPath(path));
    m_announced = present;
    send(QStringLiteral("/"), managerInterface, QStringLiteral("ServicesChanged"),
         {QVariant::fromValue(list), QVariant::fromValue(removed)});
}

bool Connman::isAnnounced(const QString &path) const
{
    return !findIn(m_services, path) || m_announced.contains(path);
}

void Connman::announceState()
{
    send(QStringLiteral("/"), managerInterface, QStringLiteral("PropertyChanged"),
         {QStringLiteral("State"), QVariant::fromValue(QDBusVariant(state()))});
}

void Connman::askOnConnect(const QString &service, const QVariantMap &fields)
{
    m_still.askOnConnect(service, fields);
}

QString Connman::state() const
{
    const auto isConnected = [](const ListedObject &technology) {
        return technology.properties.value(QStringLiteral("Connected")).toBool();
    };
    return std::any_of(m_technologies.begin(), m_technologies.end(), isConnected)
               ? QStringLiteral("ready")
               : QStringLiteral("idle");
}

void Connman::getManagerProperties(const QDBusMessage &call)
{
    answer(call, {QVariantMap{
                     {QStringLiteral("State"), state()},
                     {QStringLiteral("OfflineMode"), false},
                     {QStringLiteral("SessionMode"), false},
                 }});
}

void Connman::getTechnologies(const QDBusMessage &call)
{
    answer(call, {QVariant::fromValue(m_technologies)});
}

void Connman::getServices(const QDBusMessage &call)
{
    answer(call, {QVariant::fromValue(m_services)});
}

void Connman::registerAgent(const QDBusMessage &call)
{
    if (m_agents.add(call.service(), pathArgument(call)))
        answer(call);
    else
        refuse(call, "AlreadyExists", "Already exists");
}

void Connman::unregisterAgent(const QDBusMessage &call)
{
    if (m_agents.remove(call.service(), pathArgument(call)))
        answer(call);
    else
        refuse(call, "NotRegistered", "Not registered");
}

void Connman::getProperties(const QDBusMessage &call)
{
    answer(call, {find(call.path())->properties});
}

void Connman::setTechnologyProperty(const QDBusMessage &call)
{
    const QString name = call.arguments().at(0).toString();
    const QVariant value = withoutVariant(call.arguments().at(1));
    if (name != QLatin1String("Powered")) {
        refuse(call, "InvalidProperty", "Invalid property");
        return;
    }
    if (value.userType() != QMetaType::Bool) {
        refuse(call, "InvalidArguments", "Invalid arguments");
        return;
    }
    if (value != property(call.path(), name)) {
        m_behaviour->setPowered(call, value.toBool());
        return;
    }
    if (value.toBool()) {
        refuse(call, "AlreadyEnabled", "Already enabled");
        return;
    }
    refuse(call, "AlreadyDisabled", "Already disabled");
}

void Connman::scan(const QDBusMessage &call)
{
    if (property(call.path(), QStringLiteral("Type")) != QLatin1String("wifi")) {
        refuse(call, "NotSupported", "Not supported");
        return;
    }
    m_behaviour->scan(call);
}

void Connman::setServiceProperty(const QDBusMessage &call)
{
    const QString name = call.arguments().at(0).toString();
    const QVariant value = withoutVariant(call.arguments().at(1));
    switch (judgeServiceProperty(name, value)) {
    case PropertyVerdict::InvalidProperty:
        refuse(call, "InvalidProperty", "Invalid property");
        return;
    case PropertyVerdict::InvalidArguments:
        refuse(call, "InvalidArguments", "Invalid arguments");
        return;
    case PropertyVerdict::Accepted:
        m_behaviour->setServiceProperty(call, name, value);
        return;
    }
}

void Connman::connectService(const QDBusMessage &call)
{
    m_behaviour->connectService(call);
}

void Connman::disconnectService(const QDBusMessage &call)
{
    m_behaviour->disconnectService(call);
}

void Connman::removeService(const QDBusMessage &call)
{
    if (property(call.path(), QStringLiteral("Type")) == QLatin1String("ethernet")) {
        refuse(call, "NotSupported", "Not supported");
        return;
    }
    m_behaviour->removeService(call);
}
