#include "watch.h"

#include "commands.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QSocketNotifier>
#include <QTime>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{
/** The time between a signal and the update of the screen: one change causes several signals. */
constexpr int drawingDelayMs = 100;

/** The interval of queries for values without a signal, such as the battery's voltage. */
constexpr int refreshIntervalMs = 10000;

/**
 * Query the temperatures only as often as the daemon checks them by default, and not in reply to
 * the signal temperatureReached: a query makes the daemon send the signal again to all clients.
 */
constexpr int refreshesPerTemperatureQuery = 30;
constexpr char temperature[] = "Temperature";

int signalPipe[2] = {-1, -1};

void noteSignal(int signal)
{
    const char byte = char(signal);
    static_cast<void>(!::write(signalPipe[1], &byte, 1));
}

QSet<QString> interfaces()
{
    QSet<QString> all;
    for (const Command &command : commands())
        all << command.interface;
    return all;
}
} // namespace

Watch::Watch() : m_refreshes(0), m_isDaemonThere(false)
{
    m_drawing.setSingleShot(true);
    QObject::connect(&m_drawing, &QTimer::timeout, this, &Watch::askAndDraw);
    QObject::connect(&m_refreshing, &QTimer::timeout, this, &Watch::refresh);
    QSet<QString> subscribed;
    for (const Command &command : commands()) {
        if (!subscribed.contains(command.interface))
            subscribe(command.path, command.interface, QString(), this, SLOT(take(QDBusMessage)));
        subscribed << command.interface;
    }
    auto watcher = new QDBusServiceWatcher(daemonService, bus(),
                                           QDBusServiceWatcher::WatchForOwnerChange, this);
    QObject::connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        m_changed = interfaces();
        m_drawing.start(drawingDelayMs);
    });
    bus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(leave()));
}

ExitStatus Watch::run()
{
    if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return DaemonError;
    QSocketNotifier notifier(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, this,
                     [this] { takeSignal(signalPipe[0]); });
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH})
        static_cast<void>(std::signal(signal, noteSignal));
    takeScreen();
    m_changed = interfaces();
    askAndDraw();
    m_refreshing.start(refreshIntervalMs);
    const int status = QCoreApplication::exec();
    giveScreenBack();
    if (status == DaemonAway)
        complain(QStringLiteral("the connection to the bus ended"));
    return ExitStatus(status);
}

void Watch::takeSignal(int descriptor)
{
    char signal = 0;
    bool isToEnd = false;
    while (read(descriptor, &signal, 1) == 1)
        isToEnd = isToEnd || signal != SIGWINCH;
    if (isToEnd)
        QCoreApplication::exit(Success);
    else
        m_drawing.start(drawingDelayMs);
}

void Watch::take(const QDBusMessage &message)
{
    const QString interface = message.interface().mid(daemonService.size() + 1);
    if (interface != QLatin1String(temperature))
        m_changed << interface;
    // LEDs follow the battery and the storage and have no signal of their own.
    m_changed << QStringLiteral("LED");
    if (!m_drawing.isActive())
        m_drawing.start(drawingDelayMs);
}

void Watch::refresh()
{
    m_changed = interfaces();
    m_changed.remove(QStringLiteral("Version"));
    if (++m_refreshes % refreshesPerTemperatureQuery != 0)
        m_changed.remove(QLatin1String(temperature));
    askAndDraw();
}

void Watch::askAndDraw()
{
    const Answer found = findDaemon();
    if (!found.isGood()) {
        m_isDaemonThere = false;
        draw(found.complaint);
        return;
    }
    if (!m_isDaemonThere)
        m_changed = interfaces();
    m_isDaemonThere = true;
    Answer answer = found;
    const QSet<QString> changed = m_changed;
    m_changed.clear();
    for (const QString &interface : changed) {
        answer = m_view.ask(interface);
        if (answer.status == DaemonAway || answer.status == DaemonError)
            break;
    }
    draw(answer.status == DaemonAway || answer.status == DaemonError ? answer.complaint
                                                                     : QString());
}

void Watch::draw(const QString &headline)
{
    const QString time = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    drawScreen(QStringLiteral("Strandel  %1  %2\n\n")
                   .arg(time, headline.isEmpty() ? QStringLiteral("Ctrl-C ends") : headline) +
               (m_isDaemonThere ? m_view.text() : QString()));
}

void Watch::leave()
{
    QCoreApplication::exit(DaemonAway);
}
