#include "connmanservice.h"

#include "busvalue.h"
#include "connman.h"

namespace
{
const char *const receiveSlot = SLOT(receive(QString, QDBusVariant));
}

void ConnmanService::watch(const QString &path)
{
    // Unsubscribe from the changes of the previous service.
    if (path != m_path)
        forget();
    m_path = path;
    connman::watchProperties(path, connman::serviceInterface, this, receiveSlot);
}

void ConnmanService::forget()
{
    if (!m_path.isEmpty())
        connman::unwatchProperties(m_path, connman::serviceInterface, this, receiveSlot);
    m_path.clear();
}

QVariantMap ConnmanService::properties() const
{
    if (m_path.isEmpty())
        return QVariantMap();
    const QList<ConnmanObject> services = connman::services();
    for (const ConnmanObject &service : services) {
        if (service.path.path() == m_path)
            return service.properties;
    }
    return QVariantMap();
}

QVariantMap ConnmanService::ipv4() const
{
    return sendableMap(toMap(properties().value(QStringLiteral("IPv4"))));
}

void ConnmanService::receive(const QString &name, const QDBusVariant &value)
{
    Q_EMIT propertyChanged(name, value.variant());
}
