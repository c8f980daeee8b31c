#include "bus.h"
#include "commandline.h"
#include "commands.h"
#include "follower.h"
#include "help.h"
#include "monitor.h"
#include "present.h"
#include "status.h"
#include "terminal.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{
struct Options {
    bool asJson = false;
    bool isOpen = false;
    bool waits = true;
    int seconds = 0;
    QString user;
    /** All that were given, in order. */
    QStringList given;
};

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

/** What the calls of the two operations that ask for a password need beyond their arguments. */
bool complete(const Command &command, const Options &options, QVariantList &arguments,
              QString &complaint)
{
    QString password;
    if (command.words == QLatin1String("wifi connect")) {
        if (!options.isOpen && !readSecret(QStringLiteral("Passphrase"), password)) {
            complaint = QStringLiteral("no passphrase on standard input (--open for none)");
            return false;
        }
        arguments = {QVariantMap{{QStringLiteral("Service"), arguments.value(0)},
                                 {QStringLiteral("User"), options.user},
                                 {QStringLiteral("Password"), password}}};
    } else if (command.words == QLatin1String("ap start")) {
        QVariantMap map = arguments.value(0).toMap();
        if (map.value(QStringLiteral("Security")) == QLatin1String("WPA2")) {
            if (!readSecret(QStringLiteral("Password"), password)) {
                complaint = QStringLiteral("no password on standard input");
                return false;
            }
            map.insert(QStringLiteral("Password"), password);
        }
        arguments = {map};
    }
    return true;
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
ExitStatus reportOutcome(const Command &command, const Options &options, const Follower &follower,
                         ExitStatus status, int seconds)
{
    if (status == DaemonAway)
        fail(command, status, QStringLiteral("the board manager went away"));
    if (status == OutcomeMissing)
        fail(command, status, QStringLiteral("no outcome within %1 s").arg(seconds));
    if (status == OutcomeFailed)
        fail(command, status, QStringLiteral("failed"));
    const bool bringsNetworks = command.outcome.success.isEmpty();
    const QStringList states = follower.states();
    if (options.asJson)
        printJson(bringsNetworks ? toJson(follower.networks())
                                 : QJsonValue(QJsonArray::fromStringList(states)));
    else if (bringsNetworks && status == Success)
        printNetworks(follower.networks());
    else if (!states.isEmpty())
        print(states.last() + QLatin1Char('\n'));
    return status;
}

/** Starts what takes time and waits for its outcome. */
ExitStatus runOperation(const Command &command, const Options &options,
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
    if (!options.waits)
        return Success;
    const int seconds = options.seconds > 0 ? options.seconds : command.outcome.seconds;
    const ExitStatus status = follower.wait(seconds);
    return reportOutcome(command, options, follower, status, seconds);
}

/** What is wrong with the options of @p command; empty where nothing is. */
QString misplacedOption(const Command &command, const Options &options)
{
    for (const Option &option : ::options()) {
        if (!belongsTo(option, command) && options.given.contains(option.name))
            return option.name + QStringLiteral(" does not belong here");
    }
    return QString();
}

ExitStatus runCommand(const Command &command, const Options &options, const QStringList &words)
{
    QVariantList arguments;
    QString complaint = misplacedOption(command, options);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, arguments, complaint) ||
        !complete(command, options, arguments, complaint))
        return fail(command, BadUsage, complaint);
    if (command.isOperation())
        return runOperation(command, options, arguments);

    const Answer answer = command.property.isEmpty()
                              ? call(command.path, command.interface, command.method, arguments)
                              : readProperty(command.path, command.interface, command.property);
    if (!answer.isGood()) {
        complain(answer.complaint());
        return answer.status;
    }
    if (options.asJson)
        printJson(replyJson(answer.values));
    else
        print(replyText(answer.values));
    return Success;
}

/** status and monitor, which are more than one call. */
int runOwnCommand(const Command &command, const Options &options, const QStringList &words)
{
    QVariantList none;
    QString complaint = misplacedOption(command, options);
    if (!complaint.isEmpty() || !parseArguments(command, words, readSecret, none, complaint))
        return fail(command, BadUsage, complaint);
    return command.words == QLatin1String("status") ? showStatus(options.asJson)
                                                    : Monitor(options.asJson).run();
}

/** Takes one option's meaning; false where its value makes no sense. */
bool takeOption(const QString &name, const QString &value, Options &options)
{
    options.given << name;
    options.asJson = options.asJson || name == QLatin1String("--json");
    options.isOpen = options.isOpen || name == QLatin1String("--open");
    options.waits = options.waits && name != QLatin1String("--no-wait");
    if (name == QLatin1String("--user"))
        options.user = value;
    if (name != QLatin1String("--timeout"))
        return true;
    options.seconds = value.toInt();
    return options.seconds > 0;
}

/** Takes the options out of @p words; what is wrong with them, if anything is. */
QString takeOptions(QStringList &words, Options &options)
{
    QStringList rest;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        if (word == QLatin1String("--"))
            break;
        // Behind a command, a word with one dash may be a negative number.
        if (!word.startsWith(QLatin1String("--")) &&
            (!rest.isEmpty() || !word.startsWith(QLatin1Char('-')))) {
            rest << word;
            continue;
        }
        const Option *option = findOption(word);
        if (!option)
            return QStringLiteral("unknown option ") + word;
        if (!option->value.isEmpty() && words.isEmpty())
            return QStringLiteral("%1 wants %2").arg(word, option->value);
        const QString value = option->value.isEmpty() ? QString() : words.takeFirst();
        if (!takeOption(word, value, options))
            return QStringLiteral("%1: '%2' is not a number of seconds").arg(word, value);
    }
    words = rest + words;
    return QString();
}

QString noSuchCommand(const QStringList &words)
{
    const QString complaint = QStringLiteral("no command '%1'; 'kyboardctl help%2' lists them");
    const QString &group = words.first();
    return complaint.arg(words.join(QLatin1Char(' ')),
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

int run(QStringList words)
{
    if (words.value(0) == QLatin1String("complete")) {
        const QStringList candidates = completions(words.mid(1));
        for (const QString &candidate : candidates)
            print(candidate + QLatin1Char('\n'));
        return Success;
    }
    Options options;
    const QString complaint = takeOptions(words, options);
    if (!complaint.isEmpty()) {
        complain(complaint);
        return BadUsage;
    }
    if (options.given.contains(QStringLiteral("--version"))) {
        print(QStringLiteral("kyboardctl %1\n").arg(QCoreApplication::applicationVersion()));
        return Success;
    }
    if (options.given.contains(QStringLiteral("--help")))
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
    return command->interface.isEmpty() ? runOwnCommand(*command, options, words.mid(used))
                                        : runCommand(*command, options, words.mid(used));
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
