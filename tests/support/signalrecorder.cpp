#include "signalrecorder.h"

#include "remote.h"
#include "render.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTest>

namespace
{
const QString daemonName = QStringLiteral("com.orvendis.Strandel.BoardManager");
}

SignalRecorder::SignalRecorder(const QString &path) : m_path(path)
{
    // The library subscribes to interfaces, not to whole objects.
    for (const char *suffix :
         {"Users", "Ethernet", "WIFI", "WIFIAP", "MGR", "Alimentation", "LED", "Network", "Storage",
          "Temperature", "Version", "Watchdog", "Backlight", "Brightness"})
        QDBusConnection::systemBus().connect(QString(), path,
                                             daemonName + QLatin1Char('.') + QLatin1String(suffix),
                                             QString(), this, SLOT(record(QDBusMessage)));
    // The library does not wait until the bus knows; this does.
    Remote(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
           QStringLiteral("org.freedesktop.DBus"))
        .reply(QStringLiteral("GetId"));
}

QStringList SignalRecorder::take()
{
    // The bus keeps the order of one sender, and the daemon answers this where it also emits its
    // signals, in its main thread: what was emitted before the reply is here after it. A Ping
    // would not do, Qt D-Bus answers it in a thread of its own.
    Remote(daemonName, m_path, QStringLiteral("org.freedesktop.DBus.Introspectable"))
        .reply(QStringLiteral("Introspect"));
    QCoreApplication::processEvents();
    QStringList recorded;
    recorded.swap(m_signals);
    return recorded;
}

QStringList SignalRecorder::waitFor(int count, int milliseconds)
{
    // The caller compares what came; a missing signal shows there.
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
