#include "busaddress.h"
#include "busfault.h"
#include "choices.h"
#include "commandline.h"
#include "commands.h"
#include "failurereason.h"
#include "help.h"
#include "invocation.h"
#include "ipv4rules.h"
#include "passphrase.h"
#include "require.h"
#include "textrules.h"

#include <utility>

namespace
{
QString word(Choices &choices, const Command &command)
{
    QString made = QString::fromStdString(choices.text());
    for (const Argument &argument : command.arguments) {
        if (choices.oneIn(3) && !argument.keys.isEmpty())
            made = argument.keys[int(choices.below(quint32(argument.keys.size())))].name +
                   QLatin1Char('=') + made;
        if (choices.oneIn(8))
            made = options()[int(choices.below(quint32(options().size())))].name;
        if (choices.oneIn(3) && !argument.choices.isEmpty())
            made = argument.choices[int(choices.below(quint32(argument.choices.size())))];
    }
    // Drop words with "@": kyboardctl would read the file whose name follows.
    return made.contains(QLatin1Char('@')) ? QString() : made;
}

/** Checks arguments that would go to hostapd, ConnMan or the identification records. */
void requireSound(const QVariantList &arguments)
{
    const QVariantMap map = arguments.value(0).toMap();
    for (const QVariant &value : map)
        require(value.userType() != QMetaType::QString || isFreeOfControls(value.toString()),
                "no value has a line feed");
    require(!map.contains(QStringLiteral("Method")) || ipv4Disagreement(map).isEmpty(),
            "settings agree");
    require(!map.contains(QStringLiteral("AdjustementCoefficients")) ||
                map.value(QStringLiteral("AdjustementCoefficients")).toList().size() == 296,
            "the record is whole");
}

/** Checks the handling of host names, and of error texts from other processes. */
void tryBus(Choices &choices)
{
    const QString host = QString::fromStdString(choices.text());
    const QString address = addressOfHost(host);
    require(address.count(QLatin1Char(',')) == 4 && address.count(QLatin1Char('=')) == 5 &&
                !address.contains(QLatin1Char(';')),
            "a host name adds no part to the address");
    require(!isHostName(host) || !host.startsWith(QLatin1Char('-')), "a host name is no option");
    const BusFault fault = {QStringLiteral("the bus"),
                            host,
                            choices.oneIn(2),
                            host,
                            choices.oneIn(2),
                            QString::fromStdString(choices.text()),
                            host};
    require(!sentence(fault).isEmpty(), "every fault has a sentence");
    require(!isServiceOf(host, QStringLiteral("Cafe")) || host.contains(QLatin1String("43616665")),
            "a service belongs only to the network of its name");
    require(!failureReason({QStringLiteral("wifi"), {host}, QString(), false, true}).isEmpty(),
            "an absent network has a reason");
}

bool readSecret(const QString &prompt, QString &secret)
{
    secret = prompt;
    return true;
}
} // namespace

/** The words after "kyboardctl" on a command line. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const QVector<Command> &all = commands();
    const Command &command = all[int(choices.below(quint32(all.size())))];
    QStringList words;
    for (quint32 left = choices.below(8); left > 0; --left)
        words << word(choices, command);

    int used = 0;
    require(findCommand(command.words.split(QLatin1Char(' ')) + words, &used) != nullptr,
            "a command is found, whatever follows it");

    const QStringList begun = command.words.split(QLatin1Char(' ')).mid(0, 1) + words;
    const QStringList completed = completions(begun);
    for (const QString &completion : completed)
        require(completion.startsWith(begun.last()), "a completion begins with the typed text");
    // The help is long: print it only rarely.
    if (choices.oneIn(20))
        helpText(words);

    if (choices.oneIn(10))
        tryBus(choices);

    const Invocation invocation(command.words.split(QLatin1Char(' ')) + words);
    require(isFreeOfControls(invocation.complaint()), "a complaint is one line");
    const QStringList left = invocation.words();
    for (const QString &rest : left)
        require(words.contains(rest) || command.words.contains(rest), "the words are unchanged");
    invocation.misplaced(command);

    QVariantList arguments;
    QString complaint;
    if (parseArguments(command, words, readSecret, arguments, complaint) &&
        addPassphrase(command, invocation, readSecret, arguments, complaint)) {
        require(complaint.isEmpty(), "valid arguments have no complaint");
        require(arguments.size() == command.arguments.size(), "every argument has a value");
        requireSound(arguments);
        for (const QVariant &argument : std::as_const(arguments))
            require(argument.isValid(), "every value can be sent");
    } else {
        require(!complaint.isEmpty(), "invalid arguments have a complaint");
        require(isFreeOfControls(complaint), "a complaint is one line");
    }
    return 0;
}
