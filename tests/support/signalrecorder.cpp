#include "signalrecorder.h"

#include "remote.h"
#include "render.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTest>

SignalRecorder::SignalRecorder(const QString &path) : m_path(path)
{
    // Qt D-Bus subscribes to interfaces, not to whole objects.
    for (const char *suffix :
         {"Users", "Ethernet", "WIFI", "WIFIAP", "MGR", "Alimentation", "LED", "Network", "Storage",
          "Temperature", "Version", "Watchdog", "Backlight", "Brightness"})
        QDBusConnection::systemBus().connect(QString(), path,
                                             daemonName + QLatin1Char('.') + QLatin1String(suffix),
                                             QString(), this, SLOT(record(QDBusMessage)));
    // Qt D-Bus does not wait until the bus has added the match rule; this call does.
    Remote(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
           QStringLiteral("org.freedesktop.DBus"))
        .reply(QStringLiteral("GetId"));
}

QStringList SignalRecorder::take()
{
    // The bus preserves the order of one sender, and the daemon answers introspection on its main
    // thread, where it also emits its signals: everything emitted before the reply has arrived. A
    // ping would not do; Qt D-Bus answers it on another thread.
    Remote(daemonName, m_path, QStringLiteral("org.freedesktop.DBus.Introspectable"))
        .reply(QStringLiteral("Introspect"));
    QCoreApplication::processEvents();
    QStringList recorded;
    recorded.swap(m_signals);
    return recorded;
}

QStringList SignalRecorder::waitFor(int count, int milliseconds)
{
    // The caller compares the signals and so detects a missing one.
    static_cast<void>(
        QTest::qWaitFor([this, count] { return m_signals.size() >= count; }, milliseconds));
    return take();
}

void SignalRecorder::record(const QDBusMessage &message)
{
    const QString interface = message.interface().startsWith(daemonName + QLatin1Char('.'))
                                  ? message.interface().mid(daemonName.size() + 1)
                                  : message.interface();
    m_signals << interface + QLatin1Char('.') + message.member() + render(message.arguments());
}
