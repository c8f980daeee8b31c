#include "busface.h"

#include <QDBusConnection>
#include <QDBusVariant>

bool BusFace::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString interface = message.interface();
    Station *station = m_supplicant.station();
    if (interface == QLatin1String("org.freedesktop.DBus.Properties"))
        return handleProperties(message, connection);
    if (message.path() == Supplicant::path && interface == QLatin1String("fi.w1.wpa_supplicant1")) {
        m_supplicant.receive(message);
        return true;
    }
    if (station && message.path() == station->path() &&
        interface == QLatin1String("fi.w1.wpa_supplicant1.Interface")) {
        station->receive(message);
        return true;
    }
    return false;
}

QVariantMap BusFace::properties(const QString &path, const QString &interface) const
{
    const Station *station = m_supplicant.station();
    if (station && interface == QLatin1String("fi.w1.wpa_supplicant1.BSS"))
        return station->resultProperties(path);
    if (station && path == station->path() &&
        interface == QLatin1String("fi.w1.wpa_supplicant1.Interface"))
        return station->properties();
    return QVariantMap();
}

bool BusFace::handleProperties(const QDBusMessage &call, const QDBusConnection &connection) const
{
    const QList<QVariant> arguments = call.arguments();
    const QString method = call.member() + '(' + call.signature() + ')';
    if (method == QLatin1String("GetAll(s)")) {
        const QVariantMap all = properties(call.path(), arguments.at(0).toString());
        return connection.send(call.createReply(QVariant(all)));
    }
    // Accept and ignore these properties: they configure a real radio.
    if (method == QLatin1String("Set(ssv)"))
        return connection.send(call.createReply());
    if (method != QLatin1String("Get(ss)"))
        return false;
    const QVariant value =
        properties(call.path(), arguments.at(0).toString()).value(arguments.at(1).toString());
    return connection.send(
        value.isValid()
            ? call.createReply(QVariant::fromValue(QDBusVariant(value)))
            : call.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("No such property")));
}

QString BusFace::introspect(const QString &) const
{
    return QString();
}
