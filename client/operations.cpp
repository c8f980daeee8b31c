#include "operations.h"

#include "follower.h"
#include "output.h"
#include "present.h"
#include "terminal.h"

#include <QJsonArray>

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
    print(lines.isEmpty() ? QStringLiteral("no network in reach\n") : lines.text());
}

/** The address that the interface of @p command has; empty while it is not connected. */
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
        print(states.last() + QLatin1Char('\n'));
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
    if (!bringsNetworks)
        printStates(follower.states(), invocation);
    else if (invocation.has("--json"))
        printJson(toJson(follower.networks()));
    else if (status == Success)
        printNetworks(follower.networks());
    return status;
}

/**
 * Whether @p command needs nothing done, or would be ignored, because the interface is connected:
 * the daemon answers a connect then as any other, and does nothing.
 */
bool isDone(const Command &command, const Invocation &invocation, ExitStatus &status)
{
    if (command.method != QLatin1String("connect") || command.interface == QLatin1String("WIFIAP"))
        return false;
    const QString address = addressOf(command);
    if (address.isEmpty())
        return false;
    status = Success;
    if (command.interface == QLatin1String("Ethernet"))
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
    if (isDone(command, invocation, status))
        return status;
    Follower follower(command);
    const Answer answer = call(command.path, command.interface, command.method, arguments);
    if (!answer.isGood())
        return fail(command, answer);
    // Of all operations this is the one whose beginning is announced.
    if (command.method == QLatin1String("scan") && !follower.hasStarted())
        return fail(command, OutcomeFailed,
                    QStringLiteral("not while it is connected or busy with something else"));
    if (invocation.has("--no-wait"))
        return Success;
    const int seconds =
        invocation.has("--timeout") ? invocation.number("--timeout") : command.outcome.seconds;
    status = follower.wait(seconds);
    return reportOutcome(command, invocation, follower, status, seconds);
}
