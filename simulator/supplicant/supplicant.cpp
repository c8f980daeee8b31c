#include "supplicant.h"

#include "link.h"

#include <QDBusArgument>
#include <QDBusConnection>

namespace
{
const QString prefix = QStringLiteral("fi.w1.wpa_supplicant1.");

QDBusMessage unknownInterface(const QDBusMessage &call)
{
    return call.createErrorReply(
        prefix + QStringLiteral("InterfaceUnknown"),
        QStringLiteral("wpa_supplicant knows nothing about this interface."));
}

QDBusObjectPath objectOf(const Station &station)
{
    return QDBusObjectPath(station.path());
}
} // namespace

const QString Supplicant::path = QStringLiteral("/fi/w1/wpa_supplicant1");

void Supplicant::receive(const QDBusMessage &call)
{
    QDBusMessage reply = call.createErrorReply(QDBusError::UnknownMethod, QString());
    const QString method = call.member() + '(' + call.signature() + ')';
    if (method == QLatin1String("GetInterface(s)"))
        reply = getInterface(call);
    else if (method == QLatin1String("CreateInterface(a{sv})"))
        reply = createInterface(call);
    else if (method == QLatin1String("RemoveInterface(o)"))
        reply = removeInterface(call);
    QDBusConnection::systemBus().send(reply);
}

QDBusMessage Supplicant::getInterface(const QDBusMessage &call)
{
    if (!m_station || m_station->interfaceName() != call.arguments().at(0).toString())
        return unknownInterface(call);
    return call.createReply(QVariant::fromValue(objectOf(*m_station)));
}

QDBusMessage Supplicant::createInterface(const QDBusMessage &call)
{
    const QVariantMap settings =
        qdbus_cast<QVariantMap>(call.arguments().at(0).value<QDBusArgument>());
    const QString name = settings.value(QStringLiteral("Ifname")).toString();
    if (m_station)
        return call.createErrorReply(
            prefix + QStringLiteral("InterfaceExists"),
            QStringLiteral("wpa_supplicant already controls this interface."));
    if (!setLinkUp(name, true))
        return call.createErrorReply(
            prefix + QStringLiteral("UnknownError"),
            QStringLiteral("wpa_supplicant couldn't grab this interface."));
    m_station = std::make_unique<Station>(
        m_air, name, QStringLiteral("%1/Interfaces/%2").arg(path).arg(++m_lastStation));
    return call.createReply(QVariant::fromValue(objectOf(*m_station)));
}

QDBusMessage Supplicant::removeInterface(const QDBusMessage &call)
{
    const QDBusObjectPath removed = call.arguments().at(0).value<QDBusObjectPath>();
    if (!m_station || removed != objectOf(*m_station))
        return unknownInterface(call);
    setLinkUp(m_station->interfaceName(), false);
    m_station.reset();
    QDBusMessage signal = QDBusMessage::createSignal(path, QStringLiteral("fi.w1.wpa_supplicant1"),
                                                     QStringLiteral("InterfaceRemoved"));
    signal << QVariant::fromValue(removed);
    QDBusConnection::systemBus().send(signal);
    return call.createReply();
}
