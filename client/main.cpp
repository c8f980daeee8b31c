#include "bus.h"
#include "calls.h"
#include "commandline.h"
#include "commands.h"
#include "forget.h"
#include "help.h"
#include "invocation.h"
#include "monitor.h"
#include "operations.h"
#include "output.h"
#include "passphrase.h"
#include "records.h"
#include "status.h"
#include "terminal.h"
#include "textrules.h"
#include "watch.h"

#include <QCoreApplication>

namespace
{
ExitStatus runCommand(const Command &command, const Invocation &invocation,
                      const QStringList &words)
{
    QVariantList arguments;
    QString complaint = invocation.misplaced(command);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, arguments, complaint) ||
        !addPassphrase(command, invocation, readSecret, arguments, complaint))
        return fail(command, BadUsage, complaint);
    const ExitStatus consent = confirm(command, invocation);
    if (consent != Success)
        return consent;
    if (invocation.has("--timeout"))
        setCallTimeout(invocation.number("--timeout"));
    if (command.isOperation())
        return runOperation(command, invocation, arguments);
    return runCall(command, invocation, arguments);
}

ExitStatus runMonitor(const Command &, const Invocation &invocation, const QVariantList &arguments)
{
    Monitor::Options options;
    options.asJson = invocation.has("--json");
    options.signalNames = arguments.value(0).toStringList();
    options.count = invocation.number("--count");
    options.seconds = invocation.number("--timeout");
    return Monitor(options).run();
}

ExitStatus runWatch(const Command &command, const Invocation &invocation, const QVariantList &)
{
    if (!isShownAtTerminal())
        return fail(command, BadUsage,
                    QStringLiteral("needs a terminal; 'kyboardctl monitor' prints lines"));
    const Answer found = findDaemon();
    if (!found.isGood())
        return fail(command, found);
    if (!invocation.has("--timeout"))
        setCallTimeout(5);
    return Watch().run();
}

ExitStatus runStatus(const Command &command, const Invocation &invocation, const QVariantList &)
{
    return showStatus(command, invocation);
}

/** The commands that make several calls or none. */
const struct {
    const char *words;
    ExitStatus (*run)(const Command &, const Invocation &, const QVariantList &);
} ownRunners[] = {
    {"status", runStatus},        {"watch", runWatch},
    {"monitor", runMonitor},      {"wifi forget", forgetNetwork},
    {"eeprom dump", dumpRecords}, {"eeprom restore", restoreRecords},
};

ExitStatus runOwnCommand(const Command &command, const Invocation &invocation,
                         const QStringList &words)
{
    QVariantList arguments;
    QString complaint = invocation.misplaced(command);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, arguments, complaint))
        return fail(command, BadUsage, complaint);
    if (invocation.has("--timeout"))
        setCallTimeout(invocation.number("--timeout"));
    for (const auto &runner : ownRunners) {
        if (command.words == QLatin1String(runner.words))
            return runner.run(command, invocation, arguments);
    }
    return BadUsage;
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
    explain(text);
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
    if (invocation.has("--verbose"))
        showDetails();
    if (invocation.has("--address"))
        selectBus(invocation.value("--address"));
    if (invocation.has("--host"))
        selectHost(invocation.value("--host"));
    int used = 0;
    const Command *command = findCommand(words, &used);
    if (!command) {
        complain(noSuchCommand(words));
        return BadUsage;
    }
    return command->interface.isEmpty() ? runOwnCommand(*command, invocation, words.mid(used))
                                        : runCommand(*command, invocation, words.mid(used));
}

/**
 * Reads the arguments as UTF-8 in every locale: all output is UTF-8, too. Returns false if an
 * argument is not UTF-8.
 */
bool readArguments(int count, char *words[], QStringList &arguments)
{
    for (int index = 1; index < count; ++index) {
        const QByteArray bytes(words[index]);
        arguments << QString::fromUtf8(bytes);
        if (arguments.last().toUtf8() != bytes)
            return false;
    }
    return true;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kyboardctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KYBOARDMANAGER_VERSION));
    QStringList arguments;
    if (!readArguments(argc, argv, arguments)) {
        complain(QStringLiteral("an argument is not UTF-8"));
        return BadUsage;
    }
    const int status = run(arguments);
    if (status != Success || isAllPrinted())
        return status;
    complain(QStringLiteral("standard output cannot be written"));
    return OutputLost;
}
