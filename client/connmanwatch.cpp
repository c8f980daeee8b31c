#include "connmanwatch.h"

#include "busvalue.h"
#include "failurereason.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace
{
const QString connman = QStringLiteral("net.connman");
const QString managerPath = QStringLiteral("/");
const QString managerInterface = QStringLiteral("net.connman.Manager");
const QString serviceInterface = QStringLiteral("net.connman.Service");

/** A service as ConnMan lists it. On the bus: (oa{sv}). */
struct Service {
    QString path;
    QVariantMap properties;
};

QList<Service> servicesIn(const QVariant &value)
{
    QList<Service> services;
    const QDBusArgument argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(oa{sv})"))
        return services;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusObjectPath path;
        QVariantMap properties;
        argument.beginStructure();
        argument >> path >> properties;
        argument.endStructure();
        services << Service{path.path(), properties};
    }
    argument.endArray();
    return services;
}

QDBusMessage methodCall(const QString &path, const QString &interface, const char *method)
{
    return QDBusMessage::createMethodCall(connman, path, interface, QString::fromLatin1(method));
}
} // namespace

ConnmanWatch::ConnmanWatch(const QString &network) : m_network(network)
{
    bus().connect(connman, managerPath, managerInterface, QStringLiteral("ServicesChanged"), this,
                  SLOT(takeServices(QDBusMessage)));
    bus().connect(connman, QString(), serviceInterface, QStringLiteral("PropertyChanged"), this,
                  SLOT(takeProperty(QDBusMessage)));
}

bool ConnmanWatch::isConnmanThere()
{
    return bus().isConnected() && bus().interface()->isServiceRegistered(connman);
}

Answer ConnmanWatch::find(QString &path, QString &state) const
{
    QDBusMessage reply;
    Answer answer = send(methodCall(managerPath, managerInterface, "GetServices"), &reply);
    const QList<Service> services = servicesIn(reply.arguments().value(0));
    for (const Service &service : services) {
        if (isServiceOf(service.path, m_network)) {
            path = service.path;
            state = plainValue(service.properties.value(QStringLiteral("State"))).toString();
        }
    }
    return answer;
}

Answer ConnmanWatch::remove(const QString &path)
{
    return send(methodCall(path, serviceInterface, "Remove"));
}

void ConnmanWatch::takeServices(const QDBusMessage &message)
{
    const QList<Service> services = servicesIn(message.arguments().value(0));
    for (const Service &service : services) {
        if (!isServiceOf(service.path, m_network))
            continue;
        m_isListed = true;
        takeError(service.properties.value(QStringLiteral("Error")));
        Q_EMIT listed(service.path);
    }
}

void ConnmanWatch::takeProperty(const QDBusMessage &message)
{
    if (message.signature() != QLatin1String("sv") || !isServiceOf(message.path(), m_network))
        return;
    const QString property = message.arguments().at(0).toString();
    const QVariant value = message.arguments().at(1);
    if (property == QLatin1String("Error"))
        takeError(value);
    else if (property == QLatin1String("State"))
        m_states << plainValue(value).toString();
}

void ConnmanWatch::takeError(const QVariant &error)
{
    // ConnMan clears the error before the next attempt: keep the last one.
    const QString text = plainValue(error).toString();
    if (!text.isEmpty())
        m_error = text;
}
