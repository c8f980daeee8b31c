#include "systemdwatchdog.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>

#include <climits>
#include <cstddef>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

int watchdogInterval(const QByteArray &allowed, const QByteArray &process, qint64 itself)
{
    const qint64 allowedMilliseconds = allowed.toLongLong() / 1000;
    const bool isOurs = process.isEmpty() || process.toLongLong() == itself;
    if (!isOurs || allowedMilliseconds <= 0)
        return 0;
    return static_cast<int>(qBound<qint64>(1, allowedMilliseconds / 8, INT_MAX));
}

namespace
{
/** The interval of calls to dbus-daemon until it answers. */
constexpr int retryMs = 250;

/** Writes @p text to systemd's socket; NOTIFY_SOCKET is its path, or "@" and an abstract name. */
void notifySystemd(const QByteArray &text)
{
    const QByteArray name = qgetenv("NOTIFY_SOCKET");
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (name.isEmpty() || size_t(name.size()) >= sizeof address.sun_path)
        return;
    memcpy(address.sun_path, name.constData(), size_t(name.size()));
    if (name.startsWith('@'))
        address.sun_path[0] = '\0';
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return;
    // Non-blocking: a systemd that does not read must not block the main loop.
    const ssize_t sent =
        sendto(socket, text.constData(), size_t(text.size()), MSG_DONTWAIT | MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr *>(&address),
               socklen_t(offsetof(sockaddr_un, sun_path) + size_t(name.size())));
    static_cast<void>(sent);
    close(socket);
}

int interval()
{
    return watchdogInterval(qgetenv("WATCHDOG_USEC"), qgetenv("WATCHDOG_PID"),
                            QCoreApplication::applicationPid());
}

/** A method call that dbus-daemon itself answers. */
QDBusMessage question()
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    return QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus,
                                          QStringLiteral("GetId"));
}
} // namespace

SystemdWatchdog::SystemdWatchdog()
{
    if (interval() == 0)
        return;
    connect(&m_timer, &QTimer::timeout, this, &SystemdWatchdog::askBus);
    askBus();
}

/** Calls a method of dbus-daemon, and pings systemd when the answer arrives. */
void SystemdWatchdog::askBus()
{
    // dbus-daemon drops its answer while our queue of messages is full. A client that floods us
    // must not cause a restart, so retry.
    m_timer.start(qMin(interval(), retryMs));
    auto *answer =
        new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(question()), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this,
            [this](QDBusPendingCallWatcher *reply) {
                // If the connection is lost, libdbus itself returns an error.
                if (!reply->isError()) {
                    notifySystemd("WATCHDOG=1");
                    m_timer.start(interval());
                }
                reply->deleteLater();
            });
}

void pingSystemdMeanwhile()
{
    constexpr int longestWaitMs = 5000;
    if (interval() != 0 &&
        QDBusConnection::systemBus().call(question(), QDBus::Block, longestWaitMs).type() ==
            QDBusMessage::ReplyMessage)
        notifySystemd("WATCHDOG=1");
}
