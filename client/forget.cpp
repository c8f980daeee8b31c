#include "forget.h"

#include "connmanwatch.h"
#include "follower.h"
#include "operations.h"
#include "output.h"

namespace
{
/** A scan can miss a network. After this many such scans, the network counts as out of reach. */
constexpr int mostMisses = 3;

/**
 * The number of scans to try. The daemon switches the radio off as soon as it has the list of
 * networks, so the removal of a listed network can come too late.
 */
constexpr int mostScans = 10;

const Command &commandOf(const char *words)
{
    int used = 0;
    return *findCommand(QString::fromLatin1(words).split(QLatin1Char(' ')), &used);
}

bool isInUse(const QString &state)
{
    return state != QLatin1String("idle") && state != QLatin1String("failure") &&
           state != QLatin1String("disconnect");
}

/**
 * Starts a scan and removes the network when ConnMan lists it. Returns Success if the scan
 * succeeds; @p removed is the answer to the removal. @p isListed tells whether ConnMan listed the
 * network in this scan.
 */
ExitStatus removeInScan(const Command &command, const QString &network, Answer &removed,
                        bool &isListed)
{
    const Command &scan = commandOf("wifi scan");
    Follower follower(scan);
    ConnmanWatch watch(network);
    QObject::connect(&watch, &ConnmanWatch::listed, &watch, [&removed](const QString &path) {
        if (!removed.isGood())
            removed = ConnmanWatch::remove(path);
    });
    const Answer answer = call(scan.path, scan.interface, scan.method);
    if (!answer.isGood())
        return fail(command, answer);
    if (!follower.hasStarted())
        return fail(command, OutcomeFailed,
                    QStringLiteral("not in reach, or the station is busy with something else"));
    const ExitStatus status = follower.wait(scan.outcome.seconds);
    isListed = watch.isListed();
    return status == Success ? Success
                             : fail(command, status, QStringLiteral("the scan did not succeed"));
}
} // namespace

ExitStatus forgetNetwork(const Command &command, const Invocation &invocation,
                         const QVariantList &arguments)
{
    const QString network = arguments.value(0).toString();
    const Answer daemon = findDaemon();
    if (!daemon.isGood())
        return fail(command, daemon);
    if (!ConnmanWatch::isConnmanThere())
        return fail(command, OutcomeFailed, QStringLiteral("ConnMan does not run"));
    QString path;
    QString state;
    const Answer found = ConnmanWatch(network).find(path, state);
    if (!found.isGood())
        return fail(command, found.status,
                    QStringLiteral("ConnMan does not answer: %1").arg(found.errorText));
    if (!path.isEmpty() && isInUse(state))
        return runOperation(commandOf("wifi disconnect"), invocation, {});

    Answer removed = {OutcomeFailed, {}, {}, {}, {}};
    if (!path.isEmpty())
        removed = ConnmanWatch::remove(path);
    int misses = 0;
    for (int scans = 0; !removed.isGood() && scans < mostScans && misses < mostMisses; ++scans) {
        bool isListed = false;
        const ExitStatus status = removeInScan(command, network, removed, isListed);
        if (status != Success)
            return status;
        if (!isListed)
            ++misses;
    }
    if (removed.isGood())
        return Success;
    if (misses == mostMisses)
        return fail(command, OutcomeFailed,
                    QStringLiteral("not in reach: ConnMan forgets only what it sees"));
    return fail(command, OutcomeFailed,
                QStringLiteral("ConnMan refuses: %1").arg(removed.errorText));
}
