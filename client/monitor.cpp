#include "monitor.h"

#include "bus.h"
#include "busvalue.h"
#include "commands.h"
#include "present.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QDBusServiceWatcher>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTimer>

#include <algorithm>

namespace
{
/** The units of signal arguments. */
const struct {
    const char *signal;
    int place;
    const char *unit;
} units[] = {
    {"Temperature.temperatureReached", 1, "\u00b0C"},
    {"Backlight.backlightChanged", 0, "%"},
    {"Brightness.reachedBrightnessThreshold", 0, "lux"},
};

QString unitOf(const QString &signal, int place)
{
    for (const auto &known : units) {
        if (signal == QLatin1String(known.signal) && place == known.place)
            return QString::fromUtf8(known.unit);
    }
    return QString();
}
} // namespace

Monitor::Monitor(const Options &options) : m_options(options), m_printed(0)
{
    QSet<QString> subscribed;
    for (const Command &command : commands()) {
        if (subscribed.contains(command.interface))
            continue;
        subscribed.insert(command.interface);
        subscribe(command.path, command.interface, QString(), this, SLOT(take(QDBusMessage)));
    }
    auto watcher = new QDBusServiceWatcher(daemonService, bus(),
                                           QDBusServiceWatcher::WatchForOwnerChange, this);
    bus().connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(leave()));
    QObject::connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
                     [this] { printLine(QStringLiteral("daemon"), QStringLiteral("came"), {}); });
    QObject::connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
                     [this] { printLine(QStringLiteral("daemon"), QStringLiteral("left"), {}); });
}

ExitStatus Monitor::run()
{
    const Answer found = findDaemon();
    if (!bus().isConnected()) {
        complain(found.complaint, found.detail());
        return DaemonAway;
    }
    printLine(QStringLiteral("daemon"),
              found.isGood() ? QStringLiteral("there") : QStringLiteral("away"), {});
    if (m_options.seconds > 0)
        QTimer::singleShot(std::min(m_options.seconds, 2000000) * 1000, this, [this] {
            QCoreApplication::exit(m_printed < m_options.count ? SignalsMissing : Success);
        });
    const int status = QCoreApplication::exec();
    if (status == SignalsMissing)
        complain(QStringLiteral("monitor: %1 of %2 signals came within %3 s")
                     .arg(m_printed)
                     .arg(m_options.count)
                     .arg(m_options.seconds));
    if (status == DaemonAway)
        complain(QStringLiteral("monitor: the connection to the bus ended"));
    return ExitStatus(status);
}

void Monitor::take(const QDBusMessage &message)
{
    const QString interface = message.interface().mid(daemonService.size() + 1);
    const QString name = interface + QLatin1Char('.') + message.member();
    if (!m_options.signalNames.isEmpty() && !m_options.signalNames.contains(name))
        return;
    if (m_options.count > 0 && m_printed == m_options.count)
        return;
    const QVariantList arguments = message.arguments();
    QVariantList values;
    for (const QVariant &argument : arguments)
        values << plainValue(argument);
    printLine(interface, message.member(), values);
    if (++m_printed == m_options.count)
        QCoreApplication::exit(Success);
}

void Monitor::leave()
{
    QCoreApplication::exit(DaemonAway);
}

void Monitor::printLine(const QString &interface, const QString &signal,
                        const QVariantList &arguments)
{
    const QDateTime now = QDateTime::currentDateTime();
    if (m_options.asJson) {
        QJsonObject line;
        line.insert(QStringLiteral("time"),
                    now.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")));
        line.insert(QStringLiteral("interface"), interface);
        line.insert(QStringLiteral("signal"), signal);
        line.insert(QStringLiteral("arguments"), toJson(arguments));
        print(QString::fromUtf8(QJsonDocument(line).toJson(QJsonDocument::Compact)) +
              QLatin1Char('\n'));
        return;
    }
    const QString name = interface + QLatin1Char('.') + signal;
    QStringList texts;
    for (int place = 0; place < arguments.size(); ++place)
        texts << inlineText(arguments.at(place), unitOf(name, place));
    show(QStringLiteral("%1  %2  %3")
             .arg(now.toString(QStringLiteral("HH:mm:ss.zzz")), name,
                  texts.join(QStringLiteral("  ")))
             .trimmed() +
         QLatin1Char('\n'));
}
