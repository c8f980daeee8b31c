#include "connmansignals.h"

#include "deadline.h"
#include "remote.h"
#include "render.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTest>

#include <algorithm>

ConnmanSignals::ConnmanSignals()
{
    for (const char *interface : {"Manager", "Technology", "Service"})
        QDBusConnection::systemBus().connect(QStringLiteral("net.connman"), QString(),
                                             QStringLiteral("net.connman.") +
                                                 QLatin1String(interface),
                                             QString(), this, SLOT(record(QDBusMessage)));
}

QStringList ConnmanSignals::take()
{
    // The bus preserves the order of one sender: everything sent before this reply has arrived.
    Remote("net.connman", "/", "net.connman.Manager").reply("GetTechnologies");
    QCoreApplication::processEvents();
    QStringList recorded;
    recorded.swap(m_signals);
    return recorded;
}

bool ConnmanSignals::waitFor(const QString &beginning)
{
    return QTest::qWaitFor(
        [&] {
            return std::any_of(m_signals.begin(), m_signals.end(),
                               [&](const QString &signal) { return signal.startsWith(beginning); });
        },
        deadlineMs);
}

bool ConnmanSignals::waitForQuiet()
{
    const auto isSending = [this] { return !m_signals.isEmpty(); };
    for (int times = 0; times < 20; ++times) {
        m_signals.clear();
        if (!QTest::qWaitFor(isSending, 1000))
            return true;
    }
    return false;
}

void ConnmanSignals::record(const QDBusMessage &message)
{
    m_signals << message.path() + QLatin1Char(' ') + message.member() + QLatin1Char(' ') +
                     render(message.arguments());
}
