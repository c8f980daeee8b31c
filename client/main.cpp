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

/** Starts what takes time and waits for its outcome. */
int runOperation(const Command &command, const Options &options, const QVariantList &arguments)
{
    const bool isScan = command.outcome.success.isEmpty();
    const int seconds = options.seconds > 0 ? options.seconds
                        : isScan            ? 30
                                            : command.outcome.seconds;
    Follower follower(command);
    const Answer answer = call(command.path, command.interface, command.method, arguments);
    if (!answer.isGood()) {
        complain(answer.complaint());
        return answer.status;
    }
    const ExitStatus status = options.waits ? follower.wait(seconds) : Success;
    if (status == OutcomeMissing)
        complain(QStringLiteral("%1: no outcome within %2 s").arg(command.words).arg(seconds));
    if (status == OutcomeFailed)
        complain(command.words + QStringLiteral(": failed"));
    if (!options.waits)
        return Success;
    if (options.asJson)
        printJson(isScan ? toJson(follower.networks())
                         : QJsonValue(QJsonArray::fromStringList(follower.states())));
    else if (isScan && status == Success)
        printNetworks(follower.networks());
    else if (!follower.states().isEmpty())
        print(follower.states().last() + QLatin1Char('\n'));
    return status;
}

int runCommand(const Command &command, const Options &options, const QStringList &words)
{
    QVariantList arguments;
    QString complaint;
    if (!parseArguments(command, words, readSecret, arguments, complaint) ||
        !complete(command, options, arguments, complaint)) {
        complain(QStringLiteral("%1: %2").arg(command.words, complaint));
        return BadUsage;
    }
    if (command.outcome.seconds > 0 || command.words == QLatin1String("wifi scan"))
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

/** Takes the options out of @p words; false, with a complaint, where one is wrong. */
bool takeOptions(QStringList &words, Options &options)
{
    QStringList rest;
    while (!words.isEmpty()) {
        const QString word = words.takeFirst();
        bool isNumber = true;
        if (word == QLatin1String("--json"))
            options.asJson = true;
        else if (word == QLatin1String("--open"))
            options.isOpen = true;
        else if (word == QLatin1String("--no-wait"))
            options.waits = false;
        else if (word == QLatin1String("--user") && !words.isEmpty())
            options.user = words.takeFirst();
        else if (word == QLatin1String("--timeout") && !words.isEmpty())
            options.seconds = words.takeFirst().toInt(&isNumber);
        else if (word == QLatin1String("--"))
            break;
        else if (word.startsWith(QLatin1String("--"))) {
            complain(QStringLiteral("unknown option ") + word);
            return false;
        } else
            rest << word;
        if (!isNumber || options.seconds < 0) {
            complain(QStringLiteral("--timeout wants a number of seconds"));
            return false;
        }
    }
    words = rest + words;
    return true;
}
} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kyboardctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KYBOARDMANAGER_VERSION));

    QStringList words = QCoreApplication::arguments().mid(1);
    if (words.value(0) == QLatin1String("complete")) {
        print(completions(words.mid(1)).join(QLatin1Char('\n')) + QLatin1Char('\n'));
        return Success;
    }
    if (words.isEmpty() || words.contains(QStringLiteral("--help")) ||
        words.first() == QLatin1String("help")) {
        words.removeAll(QStringLiteral("--help"));
        words.removeAll(QStringLiteral("help"));
        print(helpText(words));
        return argc > 1 ? Success : BadUsage;
    }
    if (words.first() == QLatin1String("--version")) {
        print(QStringLiteral("kyboardctl " KYBOARDMANAGER_VERSION "\n"));
        return Success;
    }

    Options options;
    if (!takeOptions(words, options))
        return BadUsage;
    if (words == QStringList{QStringLiteral("status")})
        return showStatus(options.asJson);
    if (words == QStringList{QStringLiteral("monitor")})
        return Monitor(options.asJson).run();
    int used = 0;
    const Command *command = findCommand(words, &used);
    if (!command) {
        complain(QStringLiteral("no command '%1'; 'kyboardctl help' lists them")
                     .arg(words.join(QLatin1Char(' '))));
        return BadUsage;
    }
    return runCommand(*command, options, words.mid(used));
}
