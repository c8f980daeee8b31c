#include "help.h"

#include "commands.h"
#include "present.h"

namespace
{
const char introduction[] =
    "usage: kyboardctl [OPTION...] COMMAND [ARGUMENT...]\n"
    "\n"
    "Asks the board manager of the instrument, and tells it what to do.\n"
    "\n"
    "Options:\n"
    "  --json             print values for machines\n"
    "  --timeout SECONDS  how long to wait for the outcome of a network operation\n"
    "  --no-wait          start a network operation without waiting for its outcome\n"
    "  --open             wifi connect: the network needs no passphrase\n"
    "  --user NAME        wifi connect: user name for enterprise networks\n"
    "  --help, --version\n"
    "\n"
    "Passphrases come from a prompt or from standard input, never from the command line.\n"
    "\n"
    "Commands:\n"
    "  status   the whole instrument on one screen\n"
    "  monitor  every signal, a line each\n";

const char exitStatuses[] =
    "\n"
    "Exit status: 0 done, 1 the daemon answered an error, 2 wrong command line,\n"
    "3 the daemon is away, 4 this model has no such interface, 5 the operation\n"
    "failed, 6 the operation came to no end in time.\n";

QString valuesText(const Argument &argument)
{
    switch (argument.kind) {
    case Kind::Choice:
        return argument.choices.join(QStringLiteral(", "));
    case Kind::Integer:
        return QStringLiteral("%1 to %2").arg(argument.minimum).arg(argument.maximum);
    case Kind::Secret:
    case Kind::SecretBytes:
        return QStringLiteral("asked for");
    default:
        return QString();
    }
}

void describe(const Argument &argument, Lines &lines)
{
    QString text = argument.help;
    const QString values = valuesText(argument);
    if (!values.isEmpty())
        text += text.isEmpty() ? values : QStringLiteral(": ") + values;
    lines.add(argument.name, text);
    for (const Argument &key : argument.keys)
        describe(key, lines);
}

QString commandHelp(const Command &command)
{
    Lines lines;
    for (const Argument &argument : command.arguments)
        describe(argument, lines);
    return QStringLiteral("kyboardctl %1\n  %2\n").arg(synopsis(command), command.help) +
           lines.text(QStringLiteral("    "));
}
} // namespace

QString helpText(const QStringList &words)
{
    QList<const Command *> chosen;
    for (const Command &command : commands()) {
        if (command.words.split(QLatin1Char(' ')).mid(0, words.size()) == words)
            chosen << &command;
    }
    if (words.isEmpty() || chosen.isEmpty()) {
        Lines lines;
        for (const Command &command : commands())
            lines.add(synopsis(command), command.help);
        return QString::fromLatin1(introduction) + lines.text(QStringLiteral("  ")) +
               QString::fromLatin1(exitStatuses);
    }
    QString text;
    for (const Command *command : chosen)
        text += commandHelp(*command);
    return text;
}

QStringList completions(const QStringList &words)
{
    const QString begun = words.isEmpty() ? QString() : words.last();
    const QStringList before = words.mid(0, words.size() - 1);
    QStringList candidates;
    if (before.isEmpty())
        candidates << QStringLiteral("status") << QStringLiteral("monitor")
                   << QStringLiteral("help");
    for (const Command &command : commands()) {
        const QStringList name = command.words.split(QLatin1Char(' '));
        if (before.size() < name.size() && name.mid(0, before.size()) == before)
            candidates << name.at(before.size());
        if (before.size() < name.size() || before.mid(0, name.size()) != name)
            continue;
        const int index = before.size() - name.size();
        if (command.arguments.isEmpty())
            continue;
        const Argument &last = command.arguments.last();
        if (last.kind == Kind::Settings) {
            for (const Argument &key : last.keys) {
                if (key.kind != Kind::Secret && key.kind != Kind::SecretBytes)
                    candidates << key.name + QLatin1Char('=');
            }
        } else if (index < command.arguments.size()) {
            const Argument &argument = command.arguments.at(index);
            if (argument.kind == Kind::Switch)
                candidates << QStringLiteral("on") << QStringLiteral("off");
            candidates << argument.choices;
        }
    }
    candidates.removeDuplicates();
    QStringList fitting;
    for (const QString &candidate : candidates) {
        if (candidate.startsWith(begun))
            fitting << candidate;
    }
    return fitting;
}
