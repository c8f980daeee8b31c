#include "connmanwatch.h"

#include "busvalue.h"
#include "connman.h"
#include "failurereason.h"

#include <QDBusConnectionInterface>
#include <QDBusVariant>

namespace
{
QList<ConnmanObject> objectsIn(const QVariant &value)
{
    const QDBusArgument argument = value.value<QDBusArgument>();
    return argument.currentSignature() == QLatin1String("a(oa{sv})")
               ? qdbus_cast<QList<ConnmanObject>>(argument)
               : QList<ConnmanObject>();
}

QDBusMessage methodCall(const QString &path, const QString &interface, const char *method)
{
    return QDBusMessage::createMethodCall(connman::serviceName, path, interface,
                                          QString::fromLatin1(method));
}
} // namespace

ConnmanWatch::ConnmanWatch(const QString &network) : m_network(network)
{
    connman::registerTypes();
    bus().connect(connman::serviceName, connman::managerPath, connman::managerInterface,
                  QStringLiteral("ServicesChanged"), this, SLOT(takeServices(QDBusMessage)));
    bus().connect(connman::serviceName, QString(), connman::serviceInterface,
                  QStringLiteral("PropertyChanged"), this, SLOT(takeProperty(QDBusMessage)));
}

bool ConnmanWatch::isConnmanThere()
{
    return bus().isConnected() && bus().interface()->isServiceRegistered(connman::serviceName);
}

Answer ConnmanWatch::find(QString &path, QString &state) const
{
    QDBusMessage reply;
    const Answer answer =
        send(methodCall(connman::managerPath, connman::managerInterface, "GetServices"), &reply);
    const QList<ConnmanObject> services = objectsIn(reply.arguments().value(0));
    for (const ConnmanObject &service : services) {
        if (isServiceOf(service.path.path(), m_network)) {
            path = service.path.path();
            state = plainValue(service.properties.value(QStringLiteral("State"))).toString();
        }
    }
    return answer;
}

Answer ConnmanWatch::remove(const QString &path)
{
    return send(methodCall(path, connman::serviceInterface, "Remove"));
}

void ConnmanWatch::takeServices(const QDBusMessage &message)
{
    const QList<ConnmanObject> services = objectsIn(message.arguments().value(0));
    for (const ConnmanObject &service : services) {
        if (!isServiceOf(service.path.path(), m_network))
            continue;
        m_isListed = true;
        takeError(service.properties.value(QStringLiteral("Error")));
        Q_EMIT listed(service.path.path());
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
    // ConnMan clears it before the next attempt: what was wrong stays worth knowing.
    const QString text = plainValue(error).toString();
    if (!text.isEmpty())
        m_error = text;
}
