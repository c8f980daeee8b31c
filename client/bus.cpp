#include "bus.h"

#include "busaddress.h"
#include "busfault.h"
#include "busvalue.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QElapsedTimer>

#include <algorithm>
#include <limits>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

const QString daemonService = QStringLiteral("com.orvendis.Strandel.BoardManager");

namespace
{
/** The timeout of a call, see setCallTimeout(). */
int replyTimeoutMs = 60000;

struct SelectedBus {
    /** Empty for the system bus of this machine. */
    QString address;
    /** Empty for a bus of this machine. */
    QString host;
};

SelectedBus &selectedBus()
{
    static SelectedBus bus;
    return bus;
}

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

QString userName()
{
    const passwd *user = getpwuid(geteuid());
    return user ? QString::fromLocal8Bit(user->pw_name) : QString::number(geteuid());
}

/**
 * Returns true if this user is root or in the group strandel. The bus policy lets nobody else call
 * the daemon.
 */
bool isMember()
{
    const group *members = getgrnam("strandel");
    if (geteuid() == 0)
        return true;
    gid_t groups[1024];
    const int count = getgroups(1024, groups);
    return members && (getegid() == members->gr_gid ||
                       std::find(groups, groups + std::max(count, 0), members->gr_gid) !=
                           groups + std::max(count, 0));
}

QString systemBusAddress()
{
    const QString given = QString::fromLocal8Bit(qgetenv("DBUS_SYSTEM_BUS_ADDRESS"));
    return given.isEmpty() ? QStringLiteral("unix:path=/var/run/dbus/system_bus_socket") : given;
}

Answer faulty(ExitStatus status, bool isJoined, const QString &name, const QString &text)
{
    BusFault fault;
    fault.bus = QStringLiteral("the system bus");
    if (!selectedBus().host.isEmpty())
        fault.bus += QStringLiteral(" of ") + selectedBus().host;
    else if (!selectedBus().address.isEmpty())
        fault.bus = QStringLiteral("the bus");
    if (selectedBus().host.isEmpty()) {
        fault.address =
            selectedBus().address.isEmpty() ? systemBusAddress() : selectedBus().address;
        fault.user = userName();
    }
    fault.isJoined = isJoined;
    fault.isMember = isMember();
    fault.errorName = name;
    fault.errorText = text;
    return {status, {}, sentence(fault), name, text};
}

Answer refusal()
{
    const QDBusError error = bus().lastError();
    return faulty(DaemonAway, false, error.name(), error.message());
}
} // namespace

void selectBus(const QString &address)
{
    selectedBus().address = address;
}

void selectHost(const QString &host)
{
    selectedBus().host = host;
    selectedBus().address = addressOfHost(host);
}

QDBusConnection bus()
{
    // Qt D-Bus's thread uses the registry of meta types until a static destructor stops the thread.
    // Create the registry first, so that it is destroyed after the thread has ended.
    static const int registered = qRegisterMetaType<QDBusMessage>();
    Q_UNUSED(registered)
    static const QDBusConnection connection =
        selectedBus().address.isEmpty()
            ? QDBusConnection::systemBus()
            : QDBusConnection::connectToBus(selectedBus().address, QStringLiteral("kyboardctl"));
    return connection;
}

void setCallTimeout(int seconds)
{
    replyTimeoutMs = std::min(seconds, std::numeric_limits<int>::max() / 1000) * 1000;
}

Answer findDaemon()
{
    if (!bus().isConnected())
        return refusal();
    if (bus().interface()->isServiceRegistered(daemonService))
        return {Success, {}, {}, {}, {}};
    return faulty(DaemonAway, true, QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner"),
                  QStringLiteral("The name %1 has no owner").arg(daemonService));
}

Answer send(const QDBusMessage &message, QDBusMessage *whole)
{
    if (!bus().isConnected())
        return refusal();
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage reply = bus().call(message, QDBus::Block, replyTimeoutMs);
    if (whole)
        *whole = reply;
    if (reply.type() == QDBusMessage::ErrorMessage) {
        // A timeout is the error NoReply. If the daemon ends during the call, the bus sends the
        // same error at once: only the elapsed time tells the two apart. Qt's timers are coarse, so
        // 90 % of the timeout is enough.
        if (timer.hasExpired(qint64(replyTimeoutMs) / 10 * 9))
            return {OutcomeMissing,
                    {},
                    QStringLiteral("no answer within %1 s").arg(replyTimeoutMs / 1000),
                    reply.errorName(),
                    reply.errorMessage()};
        return faulty(statusOf(reply), true, reply.errorName(), reply.errorMessage());
    }
    const QVariantList arguments = reply.arguments();
    QVariantList values;
    for (const QVariant &value : arguments)
        values << plainValue(value);
    return {Success, values, {}, {}, {}};
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
    return bus().connect(daemonService, path, fullName(interface), signal, receiver, slot);
}
