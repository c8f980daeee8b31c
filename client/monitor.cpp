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

Monitor::Monitor(bool asJson) : m_asJson(asJson)
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
    QCoreApplication::exec();
    return Success;
}

void Monitor::take(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    QVariantList values;
    for (const QVariant &argument : arguments)
        values << plainValue(argument);
    printLine(message.interface().mid(daemonService.size() + 1), message.member(), values);
}

void Monitor::printLine(const QString &interface, const QString &signal,
                        const QVariantList &arguments)
{
    const QDateTime now = QDateTime::currentDateTime();
    if (m_asJson) {
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
    QStringList texts;
    for (const QVariant &argument : arguments)
        texts << inlineText(argument);
    print(QStringLiteral("%1  %2.%3  %4")
              .arg(now.toString(QStringLiteral("HH:mm:ss.zzz")), interface, signal,
                   texts.join(QStringLiteral("  ")))
              .trimmed() +
          QLatin1Char('\n'));
}
