#include "help.h"

#include "present.h"

#include <utility>

namespace
{
QString valuesText(const Argument &argument)
{
    switch (argument.kind) {
    case Kind::Choice:
    case Kind::Choices:
        return argument.choices.join(QStringLiteral(", "));
    case Kind::Integer:
        return QStringLiteral("%1 to %2").arg(argument.minimum).arg(argument.maximum);
    case Kind::Numbers:
        return QStringLiteral("%1 numbers, separated by commas, or @FILE").arg(argument.maximum);
    case Kind::Bytes:
        return QStringLiteral("up to %1 ASCII characters").arg(argument.maximum);
    case Kind::SecretBytes:
        return QStringLiteral("up to %1 ASCII characters, asked for").arg(argument.maximum);
    default:
        return QString();
    }
}

void describe(const Argument &argument, Lines &lines)
{
    lines.add(argument.name, argumentText(argument));
    for (const Argument &key : argument.keys)
        describe(key, lines);
}

QString optionName(const Option &option)
{
    const QString letter =
        option.letter.isEmpty() ? QString() : QStringLiteral("-%1, ").arg(option.letter);
    return QStringLiteral("%1%2 %3").arg(letter, option.name, option.value).trimmed();
}

QString commandHelp(const Command &command)
{
    Lines lines;
    for (const Argument &argument : command.arguments)
        describe(argument, lines);
    for (const Option &option : options()) {
        if (option.scope != Scope::Every && belongsTo(option, command))
            lines.add(optionName(option), option.help);
    }
    return QStringLiteral("kyboardctl %1\n  %2\n").arg(synopsis(command), command.help) +
           lines.text(QStringLiteral("    "));
}

QStringList wordsOf(const Command &command)
{
    return command.words.split(QLatin1Char(' '));
}

QString optionHelp(const Option &option)
{
    const QString only = onlyCommand(option);
    return only.isEmpty() ? option.help : only + QStringLiteral(": ") + option.help;
}

/** Returns the possible values of an argument that are known in advance. */
QStringList candidatesFor(const Argument &argument)
{
    QStringList candidates = argument.choices;
    if (argument.kind == Kind::Switch)
        candidates << QStringLiteral("on") << QStringLiteral("off");
    for (const Argument &key : argument.keys) {
        if (key.kind == Kind::SecretBytes)
            continue;
        candidates << key.name + QLatin1Char('=');
        for (const QString &choice : key.choices)
            candidates << key.name + QLatin1Char('=') + choice;
    }
    return candidates;
}

/** Returns the words of a command line without options and their values. */
QStringList withoutOptions(const QStringList &words)
{
    QStringList rest;
    for (int index = 0; index < words.size(); ++index) {
        if (!words.at(index).startsWith(QLatin1String("--"))) {
            rest << words.at(index);
            continue;
        }
        const Option *option = findOption(words.at(index));
        index += option && !option->value.isEmpty() ? 1 : 0;
    }
    return rest;
}

/**
 * Returns the next word of the name of @p command after the words in @p before. After the whole
 * name, returns the possible values of the next argument.
 */
QStringList candidatesAfter(const QStringList &before, const Command &command)
{
    const QStringList name = wordsOf(command);
    if (before.size() < name.size())
        return name.mid(0, before.size()) == before ? QStringList{name.at(before.size())}
                                                    : QStringList();
    if (before.mid(0, name.size()) != name || command.arguments.isEmpty())
        return QStringList();
    const Argument &last = command.arguments.last();
    const int index = before.size() - name.size();
    if (last.kind == Kind::Settings || last.kind == Kind::Choices)
        return candidatesFor(last);
    return index < command.arguments.size() ? candidatesFor(command.arguments.at(index))
                                            : QStringList();
}

/**
 * Returns true if @p candidate is a completion of @p begun. Proposes a key with its equals sign
 * first, and the values of the key only after that sign.
 */
bool isNext(const QString &candidate, const QString &begun)
{
    if (!candidate.startsWith(begun))
        return false;
    const QString rest = candidate.mid(begun.size());
    const int equals = rest.indexOf(QLatin1Char('='));
    return rest.isEmpty() ? !begun.endsWith(QLatin1Char('='))
                          : equals < 0 || equals == rest.size() - 1;
}
} // namespace

QString argumentText(const Argument &argument)
{
    const QString values = valuesText(argument);
    if (values.isEmpty() || argument.help.isEmpty())
        return argument.help + values;
    return argument.help + QStringLiteral(": ") + values;
}

QString helpText()
{
    Lines optionLines;
    for (const Option &option : options())
        optionLines.add(optionName(option), optionHelp(option));
    Lines commandLines;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table)
            commandLines.add(synopsis(command), command.help);
    }
    Lines statusLines;
    for (const StatusMeaning &status : exitStatuses())
        statusLines.add(QString::number(status.status), status.meaning);
    const QString indent = QStringLiteral("  ");
    return QStringLiteral("usage: kyboardctl [OPTION...] COMMAND [ARGUMENT...]\n\n"
                          "Shows and controls the instrument through its board manager.\n\n"
                          "Options:\n") +
           optionLines.text(indent) +
           QStringLiteral("\nPassphrases come from a prompt or from standard input, never from the "
                          "command line.\n\n"
                          "Commands:\n") +
           commandLines.text(indent) + QStringLiteral("\nExit status:\n") +
           statusLines.text(indent);
}

QString helpText(const QStringList &words)
{
    QString text;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table) {
            if (wordsOf(command).mid(0, words.size()) == words)
                text += commandHelp(command);
        }
    }
    return text;
}

QStringList completions(const QStringList &words)
{
    const QString begun = words.isEmpty() ? QString() : words.last();
    QStringList before = withoutOptions(words.mid(0, words.size() - 1));
    if (before.value(0) == QLatin1String("help"))
        before.removeFirst();
    QStringList candidates;
    for (const QVector<Command> *table : {&ownCommands(), &commands()}) {
        for (const Command &command : *table)
            candidates << candidatesAfter(before, command);
    }
    const Option *option = words.size() > 1 ? findOption(words.at(words.size() - 2)) : nullptr;
    if (option && !option->value.isEmpty()) {
        candidates = option->choices;
    } else if (begun.startsWith(QLatin1Char('-'))) {
        for (const Option &each : options())
            candidates << each.name;
    }
    candidates.removeDuplicates();
    QStringList fitting;
    for (const QString &candidate : std::as_const(candidates)) {
        if (isNext(candidate, begun))
            fitting << candidate;
    }
    return fitting;
}
