#include "connman.h"

#include "reply.h"
#include "serviceproperty.h"

#include <QDBusConnection>
#include <QDBusVariant>

#include <algorithm>
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

ListedObject *findIn(ListedObjects &objects, const QString &path)
{
    const auto found =
        std::find_if(objects.begin(), objects.end(),
                     [&](const ListedObject &object) { return object.path.path() == path; });
    return found == objects.end() ? nullptr : &*found;
}

QString pathArgument(const QDBusMessage &call)
{
    return call.arguments().value(0).value<QDBusObjectPath>().path();
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
        refuseUnknownMethod(call);
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

/** The interface of the object at @p path; empty where there is none. */
QString Connman::interfaceAt(const QString &path) const
{
    const auto isThere = [&](const ListedObject &object) { return object.path.path() == path; };
    if (path == QLatin1String("/"))
        return managerInterface;
    if (std::any_of(m_technologies.begin(), m_technologies.end(), isThere))
        return technologyInterface;
    if (std::any_of(m_services.begin(), m_services.end(), isThere))
        return serviceInterface;
    return QString();
}

ListedObject *Connman::find(const QString &path)
{
    ListedObject *technology = findIn(m_technologies, path);
    return technology ? technology : findIn(m_services, path);
}

void Connman::setTechnologies(const ListedObjects &technologies)
{
    m_technologies = technologies;
}

void Connman::setServices(const ListedObjects &services)
{
    m_services = services;
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
    for (const ListedObject &service : m_services) {
        present.insert(service.path.path());
        const bool isNew = !m_announced.contains(service.path.path());
        list.append({service.path, isNew ? service.properties : QVariantMap()});
    }
    QList<QDBusObjectPath> removed;
    for (const QString &path : m_announced - present)
        removed.append(QDBusObjectPath(path));
    m_announced = present;
    send(QStringLiteral("/"), managerInterface, QStringLiteral("ServicesChanged"),
         {QVariant::fromValue(list), QVariant::fromValue(removed)});
}

void Connman::askOnConnect(const QString &service, const QVariantMap &fields)
{
    m_questions.insert(service, fields);
}

void Connman::getManagerProperties(const QDBusMessage &call)
{
    const auto isConnected = [](const ListedObject &technology) {
        return technology.properties.value(QStringLiteral("Connected")).toBool();
    };
    const bool ready = std::any_of(m_technologies.begin(), m_technologies.end(), isConnected);
    answer(call,
           {QVariantMap{
               {QStringLiteral("State"), ready ? QStringLiteral("ready") : QStringLiteral("idle")},
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
    if (name != QLatin1String("Powered"))
        return refuse(call, "InvalidProperty", "Invalid property");
    if (value.userType() != QMetaType::Bool)
        return refuse(call, "InvalidArguments", "Invalid arguments");
    if (value != find(call.path())->properties.value(name)) {
        storeProperty(call.path(), name, value);
        return answer(call);
    }
    if (value.toBool())
        return refuse(call, "AlreadyEnabled", "Already enabled");
    refuse(call, "AlreadyDisabled", "Already disabled");
}

void Connman::scan(const QDBusMessage &call)
{
    if (find(call.path())->properties.value(QStringLiteral("Type")) == QLatin1String("wifi"))
        answer(call);
    else
        refuse(call, "NotSupported", "Not supported");
}

void Connman::setServiceProperty(const QDBusMessage &call)
{
    const QString name = call.arguments().at(0).toString();
    const QVariant value = withoutVariant(call.arguments().at(1));
    switch (judgeServiceProperty(name, value)) {
    case PropertyVerdict::InvalidProperty:
        return refuse(call, "InvalidProperty", "Invalid property");
    case PropertyVerdict::InvalidArguments:
        return refuse(call, "InvalidArguments", "Invalid arguments");
    case PropertyVerdict::Accepted:
        storeProperty(call.path(), name, value);
        return answer(call);
    }
}

void Connman::connectService(const QDBusMessage &call)
{
    if (!m_questions.contains(call.path()) || !m_agents.has(call.service()))
        return answer(call);
    const QList<QVariant> question = {QVariant::fromValue(QDBusObjectPath(call.path())),
                                      m_questions.value(call.path())};
    m_agents.call(call.service(), QStringLiteral("RequestInput"), question,
                  [call](const QDBusMessage &reply) {
                      if (reply.type() == QDBusMessage::ReplyMessage)
                          answer(call);
                      else
                          refuse(call, "OperationAborted", "Operation aborted");
                  });
}

void Connman::disconnectService(const QDBusMessage &call)
{
    answer(call);
}

void Connman::removeService(const QDBusMessage &call)
{
    if (find(call.path())->properties.value(QStringLiteral("Type")) == QLatin1String("ethernet"))
        refuse(call, "NotSupported", "Not supported");
    else
        answer(call);
}
