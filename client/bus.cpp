#include "bus.h"

#include "busvalue.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QElapsedTimer>

#include <algorithm>
#include <limits>

const QString daemonService = QStringLiteral("com.orvendis.Strandel.BoardManager");

namespace
{
/** The longest that a method of the daemon takes when everything behind it is slow. */
int replyTimeout = 60000;

QString fullName(const QString &interface)
{
    return daemonService + QLatin1Char('.') + interface;
}

ExitStatus statusOf(const QDBusMessage &error)
{
    switch (QDBusError(error).type()) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::NoReply:
        return DaemonAway;
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownObject:
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownProperty:
        return InterfaceAbsent;
    default:
        return error.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")
                   ? DaemonAway
                   : DaemonError;
    }
}

Answer send(const QDBusMessage &message)
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return {DaemonAway, {}, bus.lastError().name(), bus.lastError().message()};
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage reply = bus.call(message, QDBus::Block, replyTimeout);
    // The bus says the same when the daemon ends, but at once. Qt's own timer is a coarse one.
    const bool isLate = timer.hasExpired(replyTimeout / 10 * 9);
    if (reply.type() == QDBusMessage::ErrorMessage)
        return {
            isLate ? OutcomeMissing : statusOf(reply), {}, reply.errorName(), reply.errorMessage()};
    const QVariantList arguments = reply.arguments();
    QVariantList values;
    for (const QVariant &value : arguments)
        values << plainValue(value);
    return {Success, values, {}, {}};
}
} // namespace

QString Answer::complaint() const
{
    switch (status) {
    case DaemonAway:
        return errorName == QLatin1String("org.freedesktop.DBus.Error.NoReply")
                   ? QStringLiteral("the board manager ended while it worked for this call")
                   : QStringLiteral("the board manager is not on the system bus");
    case InterfaceAbsent:
        return QStringLiteral("this instrument has no such interface (%1: %2)")
            .arg(errorName, errorText);
    case OutcomeMissing:
        return QStringLiteral("no answer within %1 s").arg(replyTimeout / 1000);
    default:
        return QStringLiteral("%1 (%2)").arg(errorText, errorName);
    }
}

void setCallTimeout(int seconds)
{
    replyTimeout = std::min(seconds, std::numeric_limits<int>::max() / 1000) * 1000;
}

bool isDaemonThere()
{
    const QDBusConnection bus = QDBusConnection::systemBus();
    return bus.isConnected() && bus.interface()->isServiceRegistered(daemonService);
}

Answer call(const QString &path, const QString &interface, const QString &method,
            const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(daemonService, path, fullName(interface), method);
    message.setArguments(arguments);
    return send(message);
}

Answer readProperty(const QString &path, const QString &interface, const QString &property)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        daemonService, path, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    message.setArguments({fullName(interface), property});
    return send(message);
}

bool subscribe(const QString &path, const QString &interface, const QString &signal,
               QObject *receiver, const char *slot)
{
    return QDBusConnection::systemBus().connect(daemonService, path, fullName(interface), signal,
                                                receiver, slot);
}
