#include "bus.h"
#include "commandline.h"
#include "commands.h"
#include "follower.h"
#include "help.h"
#include "invocation.h"
#include "monitor.h"
#include "passphrase.h"
#include "present.h"
#include "status.h"
#include "terminal.h"
#include "textrules.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{
void printJson(const QJsonValue &value)
{
    // A document holds an array or an object: a lone value is the inside of an array of one.
    if (value.isObject()) {
        print(QString::fromUtf8(QJsonDocument(value.toObject()).toJson()));
        return;
    }
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    print(QString::fromUtf8(array.mid(1, array.size() - 2)) + QLatin1Char('\n'));
}

void printNetworks(const QVariantMap &networks)
{
    Lines lines;
    for (auto network = networks.constBegin(); network != networks.constEnd(); ++network) {
        const QVariantList values = network.value().value<QVariantList>();
        lines.add(network.key(), QStringLiteral("%1 %  %2")
                                     .arg(values.value(1).toString(), 3)
                                     .arg(values.value(2).toString()));
    }
    print(lines.isEmpty() ? QStringLiteral("no network in reach\n") : lines.text());
}

/**
 * Why @p command would be ignored: the daemon answers a connect while it is connected as any other,
 * and does nothing. Empty where nothing is known against it.
 */
QString objection(const Command &command)
{
    if (command.method != QLatin1String("connect") || command.interface == QLatin1String("WIFIAP"))
        return QString();
    const Answer answer = call(command.path, command.interface, QStringLiteral("getIPv4"));
    const QVariant address =
        answer.values.value(0).toMap().value(QStringLiteral("Address"), QString());
    if (address.toString().isEmpty())
        return QString();
    const QString group = command.words.section(QLatin1Char(' '), 0, 0);
    return QStringLiteral("connected already, as %1; 'kyboardctl %2 disconnect' first")
        .arg(address.toString(), group);
}

ExitStatus fail(const Command &command, ExitStatus status, const QString &complaint)
{
    complain(command.words + QStringLiteral(": ") + complaint);
    return status;
}

/** Tells how an operation ended, which took at most so many seconds. */
ExitStatus reportOutcome(const Command &command, const Invocation &invocation,
                         const Follower &follower, ExitStatus status, int seconds)
{
    if (status == DaemonAway)
        fail(command, status, QStringLiteral("the board manager went away"));
    if (status == OutcomeMissing)
        fail(command, status, QStringLiteral("no outcome within %1 s").arg(seconds));
    if (status == OutcomeFailed)
        fail(command, status, QStringLiteral("failed"));
    const bool bringsNetworks = command.outcome.success.isEmpty();
    const QStringList states = follower.states();
    if (invocation.has("--json"))
        printJson(bringsNetworks ? toJson(follower.networks())
                                 : QJsonValue(QJsonArray::fromStringList(states)));
    else if (bringsNetworks && status == Success)
        printNetworks(follower.networks());
    else if (!states.isEmpty())
        print(states.last() + QLatin1Char('\n'));
    return status;
}

/** Starts what takes time and waits for its outcome. */
ExitStatus runOperation(const Command &command, const Invocation &invocation,
                        const QVariantList &arguments)
{
    const QString complaint = objection(command);
    if (!complaint.isEmpty())
        return fail(command, OutcomeFailed, complaint);
    Follower follower(command);
    const Answer answer = call(command.path, command.interface, command.method, arguments);
    if (!answer.isGood()) {
        complain(answer.complaint());
        return answer.status;
    }
    // Of all operations this is the one whose beginning is announced.
    if (command.method == QLatin1String("scan") && !follower.hasStarted())
        return fail(command, OutcomeFailed,
                    QStringLiteral("not while it is connected or busy with something else"));
    if (invocation.has("--no-wait"))
        return Success;
    const int seconds =
        invocation.has("--timeout") ? invocation.number("--timeout") : command.outcome.seconds;
    const ExitStatus status = follower.wait(seconds);
    return reportOutcome(command, invocation, follower, status, seconds);
}

ExitStatus runCommand(const Command &command, const Invocation &invocation,
                      const QStringList &words)
{
    QVariantList arguments;
    QString complaint = invocation.misplaced(command);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, arguments, complaint) ||
        !addPassphrase(command, invocation, readSecret, arguments, complaint))
        return fail(command, BadUsage, complaint);
    if (invocation.has("--timeout"))
        setCallTimeout(invocation.number("--timeout"));
    if (command.isOperation())
        return runOperation(command, invocation, arguments);

    const Answer answer = command.property.isEmpty()
                              ? call(command.path, command.interface, command.method, arguments)
                              : readProperty(command.path, command.interface, command.property);
    if (answer.status == OutcomeMissing)
        return fail(command, answer.status, answer.complaint());
    if (!answer.isGood()) {
        complain(answer.complaint());
        return answer.status;
    }
    if (invocation.has("--json"))
        printJson(replyJson(answer.values));
    else
        print(replyText(answer.values));
    return Success;
}

/** status and monitor, which are more than one call. */
int runOwnCommand(const Command &command, const Invocation &invocation, const QStringList &words)
{
    QVariantList none;
    QString complaint = invocation.misplaced(command);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, none, complaint))
        return fail(command, BadUsage, complaint);
    if (invocation.has("--timeout"))
        setCallTimeout(invocation.number("--timeout"));
    return command.words == QLatin1String("status") ? showStatus(invocation.has("--json"))
                                                    : Monitor(invocation.has("--json")).run();
}

QString noSuchCommand(const QStringList &words)
{
    const QString complaint = QStringLiteral("no command '%1'; 'kyboardctl help%2' lists them");
    const QString &group = words.first();
    return complaint.arg(shown(words.join(QLatin1Char(' '))),
                         helpText({group}).isEmpty() ? QString() : QLatin1Char(' ') + group);
}

ExitStatus showHelp(const QStringList &words)
{
    const QString text = words.isEmpty() ? helpText() : helpText(words);
    if (text.isEmpty()) {
        complain(noSuchCommand(words));
        return BadUsage;
    }
    print(text);
    return Success;
}

int run(const QStringList &arguments)
{
    if (arguments.value(0) == QLatin1String("complete")) {
        const QStringList candidates = completions(arguments.mid(1));
        for (const QString &candidate : candidates)
            print(candidate + QLatin1Char('\n'));
        return Success;
    }
    const Invocation invocation(arguments);
    if (!invocation.complaint().isEmpty()) {
        complain(invocation.complaint());
        return BadUsage;
    }
    const QStringList words = invocation.words();
    if (invocation.has("--version")) {
        print(QStringLiteral("kyboardctl %1\n").arg(QCoreApplication::applicationVersion()));
        return Success;
    }
    if (invocation.has("--help"))
        return showHelp(words);
    if (words.value(0) == QLatin1String("help"))
        return showHelp(words.mid(1));
    if (words.isEmpty()) {
        complain(QStringLiteral("no command is given; 'kyboardctl help' lists them"));
        return BadUsage;
    }
    int used = 0;
    const Command *command = findCommand(words, &used);
    if (!command) {
        complain(noSuchCommand(words));
        return BadUsage;
    }
    return command->interface.isEmpty() ? runOwnCommand(*command, invocation, words.mid(used))
                                        : runCommand(*command, invocation, words.mid(used));
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kyboardctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KYBOARDMANAGER_VERSION));
    const int status = run(QCoreApplication::arguments().mid(1));
    if (status != Success || isAllPrinted())
        return status;
    complain(QStringLiteral("standard output cannot be written"));
    return OutputLost;
}
