#include "follower.h"

#include "busvalue.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTimer>

namespace
{
constexpr int progressIntervalMs = 1000;
}

Follower::Follower(const Command &command)
    : m_outcome(command.outcome),
      m_words(command.words),
      m_hasEnded(false),
      m_status(OutcomeMissing)
{
    subscribe(command.path, command.interface, QStringLiteral("propertyChanged"), this,
              SLOT(takeProperty(QDBusMessage)));
    subscribe(command.path, command.interface, QStringLiteral("servicesListChanged"), this,
              SLOT(takeNetworks(QDBusMessage)));
    auto watcher = new QDBusServiceWatcher(daemonService, bus(),
                                           QDBusServiceWatcher::WatchForUnregistration, this);
    QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        if (!m_hasEnded)
            end(DaemonAway);
    });
    // Qt D-Bus delivers no signals before the first run of the event loop.
    QCoreApplication::processEvents();
}

bool Follower::hasStarted()
{
    // Deliver the signals that arrived before the reply.
    QCoreApplication::processEvents();
    return m_hasEnded || !m_states.isEmpty();
}

ExitStatus Follower::wait(int seconds)
{
    QEventLoop loop;
    QTimer second;
    int left = seconds;
    QObject::connect(&second, &QTimer::timeout, &loop, [&] {
        if (m_hasEnded || --left <= 0)
            loop.quit();
        else
            showProgress(QStringLiteral("%1: %2 (%3 s)")
                             .arg(m_words, m_states.isEmpty() ? QStringLiteral("under way")
                                                              : m_states.last())
                             .arg(seconds - left));
    });
    QObject::connect(this, &Follower::ended, &loop, &QEventLoop::quit);
    second.start(progressIntervalMs);
    if (!m_hasEnded)
        loop.exec();
    clearProgress();
    return m_status;
}

void Follower::takeProperty(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (message.signature() != QLatin1String("ssv") || m_hasEnded ||
        arguments.at(1).toString() != QLatin1String("State"))
        return;
    const QString state = plainValue(arguments.at(2)).toString();
    m_states << state;
    showProgress(m_words + QStringLiteral(": ") + state);
    if (!m_outcome.success.isEmpty() && state == m_outcome.success)
        end(Success);
    else if (!m_outcome.failure.isEmpty() && state == m_outcome.failure)
        end(OutcomeFailed);
}

void Follower::takeNetworks(const QDBusMessage &message)
{
    if (m_hasEnded || !m_outcome.success.isEmpty())
        return;
    m_networks = toMap(message.arguments().value(0));
    end(Success);
}

void Follower::end(ExitStatus status)
{
    m_hasEnded = true;
    m_status = status;
    Q_EMIT ended();
}
