#include "operations.h"

#include "connmanwatch.h"
#include "failurereason.h"
#include "follower.h"
#include "output.h"
#include "present.h"
#include "terminal.h"

#include <QJsonArray>
#include <QJsonObject>

namespace
{
void printNetworks(const QVariantMap &networks)
{
    Lines lines;
    for (auto network = networks.constBegin(); network != networks.constEnd(); ++network) {
        const QVariantList values = network.value().value<QVariantList>();
        lines.add(network.key(), QStringLiteral("%1 %  %2")
                                     .arg(values.value(1).toString(), 3)
                                     .arg(values.value(2).toString()));
    }
    show(lines.isEmpty() ? QStringLiteral("no network in reach\n") : lines.text());
}

/** Returns the networks of a scan, each as an object with named fields. */
QJsonObject networksJson(const QVariantMap &networks)
{
    QJsonObject object;
    for (auto network = networks.constBegin(); network != networks.constEnd(); ++network) {
        const QVariantList values = network.value().value<QVariantList>();
        object.insert(network.key(),
                      QJsonObject{{QStringLiteral("path"), values.value(0).toString()},
                                  {QStringLiteral("strength"), values.value(1).toInt()},
                                  {QStringLiteral("security"), values.value(2).toString()}});
    }
    return object;
}

/** Returns the network of a connect; empty for every other operation. */
QString networkOf(const QVariantList &arguments)
{
    return arguments.value(0).toMap().value(QStringLiteral("Service")).toString();
}

/** Returns true if ConnMan reports the network as connected. */
bool isJoined(const QString &network)
{
    QString path;
    QString state;
    ConnmanWatch(network).find(path, state);
    return state == QLatin1String("ready") || state == QLatin1String("online");
}

/** Returns the IPv4 address of the interface of @p command; empty while it is not connected. */
QString addressOf(const Command &command)
{
    const Answer answer = call(command.path, command.interface, QStringLiteral("getIPv4"));
    return answer.values.value(0).toMap().value(QStringLiteral("Address")).toString();
}

void printStates(const QStringList &states, const Invocation &invocation)
{
    if (invocation.has("--json"))
        printJson(QJsonArray::fromStringList(states));
    else if (!states.isEmpty())
        show(states.last() + QLatin1Char('\n'));
}

QString failureText(const Command &command, const Follower &follower, const ConnmanWatch &watch)
{
    FailureFacts facts;
    facts.group = command.words.section(QLatin1Char(' '), 0, 0);
    facts.states = follower.states() + watch.states();
    facts.error = watch.error();
    facts.isListed = command.method == QLatin1String("scan") || watch.isListed();
    facts.isConnmanThere = ConnmanWatch::isConnmanThere();
    const QString reason = failureReason(facts);
    return reason.isEmpty() ? QStringLiteral("failed") : QStringLiteral("failed: ") + reason;
}

/** Reports the outcome of an operation, for which the program has waited up to @p seconds. */
ExitStatus reportOutcome(const Command &command, const Invocation &invocation,
                         const Follower &follower, const ConnmanWatch &watch, ExitStatus status,
                         int seconds)
{
    if (status == DaemonAway)
        fail(command, status, QStringLiteral("the board manager went away"));
    if (status == OutcomeMissing)
        fail(command, status, QStringLiteral("no outcome within %1 s").arg(seconds));
    if (status == OutcomeFailed)
        fail(command, status, failureText(command, follower, watch));
    const bool bringsNetworks = command.outcome.success.isEmpty();
    if (!bringsNetworks)
        printStates(follower.states(), invocation);
    else if (invocation.has("--json"))
        printJson(networksJson(follower.networks()));
    else if (status == Success)
        printNetworks(follower.networks());
    return status;
}

/**
 * Returns true if @p command connects Ethernet or the Wi-Fi station, and the interface is already
 * connected: the daemon would ignore the call without an error. Sets @p status to the exit status.
 */
bool isDone(const Command &command, const Invocation &invocation, const QVariantList &arguments,
            ExitStatus &status)
{
    if (command.method != QLatin1String("connect") || command.interface == QLatin1String("WIFIAP"))
        return false;
    const QString address = addressOf(command);
    if (address.isEmpty())
        return false;
    status = Success;
    if (command.interface == QLatin1String("Ethernet") || isJoined(networkOf(arguments)))
        printStates({command.outcome.success}, invocation);
    else
        status = fail(command, OutcomeFailed,
                      QStringLiteral("connected already, as %1; 'kyboardctl wifi disconnect' first")
                          .arg(address));
    return true;
}
} // namespace

ExitStatus runOperation(const Command &command, const Invocation &invocation,
                        const QVariantList &arguments)
{
    ExitStatus status = Success;
    if (isDone(command, invocation, arguments, status))
        return status;
    ConnmanWatch watch(networkOf(arguments));
    Follower follower(command);
    const Answer answer = call(command.path, command.interface, command.method, arguments);
    const bool isDoneAlready = !command.done.isEmpty() && answer.errorText == command.done;
    if (!answer.isGood() && !isDoneAlready)
        return fail(command, answer);
    // A busy daemon ignores a scan without an error. When it starts a scan, it announces a state
    // before it replies.
    if (command.method == QLatin1String("scan") && !follower.hasStarted())
        return fail(command, OutcomeFailed,
                    QStringLiteral("not while it is connected or busy with something else"));
    if (invocation.has("--no-wait"))
        return Success;
    if (isDoneAlready) {
        printStates({command.outcome.success}, invocation);
        return Success;
    }
    const int seconds =
        invocation.has("--timeout") ? invocation.number("--timeout") : command.outcome.seconds;
    status = follower.wait(seconds);
    return reportOutcome(command, invocation, follower, watch, status, seconds);
}
