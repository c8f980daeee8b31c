#include "agents.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace
{
/** ConnMan's timeout for a person who types a passphrase. */
constexpr int answerTimeoutMs = 120000;
} // namespace

Agents::Agents(QObject *parent) : QObject(parent)
{
    m_watcher.setConnection(QDBusConnection::systemBus());
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, &Agents::forget);
}

bool Agents::add(const QString &connection, const QString &path)
{
    if (m_paths.contains(connection))
        return false;
    m_paths.insert(connection, path);
    m_latest = connection;
    m_watcher.addWatchedService(connection);
    return true;
}

bool Agents::remove(const QString &connection, const QString &path)
{
    if (!m_paths.contains(connection) || m_paths.value(connection) != path)
        return false;
    forget(connection);
    return true;
}

void Agents::forget(const QString &connection)
{
    m_watcher.removeWatchedService(connection);
    m_paths.remove(connection);
    if (m_latest == connection)
        m_latest = m_paths.isEmpty() ? QString() : m_paths.lastKey();
}

bool Agents::has(const QString &connection) const
{
    return m_paths.contains(connection);
}

QString Agents::latest() const
{
    return m_latest;
}

void Agents::call(const QString &connection, const QString &method,
                  const QList<QVariant> &arguments, const Answered &answered)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        connection, m_paths.value(connection), QStringLiteral("net.connman.Agent"), method);
    message.setArguments(arguments);
    auto *watcher = new QDBusPendingCallWatcher(
        QDBusConnection::systemBus().asyncCall(message, answerTimeoutMs), this);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, answered] {
        watcher->deleteLater();
        answered(QDBusPendingReply<>(*watcher).reply());
    });
}
