#ifndef COMMANDS_H
#define COMMANDS_H

#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

/*
 * What kyboardctl can be told, as one table. Parsing, help, completion and the tests all read it.
 */

/** What an argument, or one value of a set of settings, may be. */
enum class Kind {
    Text,
    Choice,      ///< one of Argument::choices
    Integer,     ///< a whole number between Argument::minimum and Argument::maximum
    Switch,      ///< "on" or "off"; a boolean on the bus
    Hex16,       ///< up to four hexadecimal digits; sent as text
    Bytes,       ///< at most Argument::maximum printable ASCII characters; sent as bytes
    Numbers,     ///< Argument::maximum whole numbers separated by commas, or @FILE; an array of u
    SecretBytes, ///< as Bytes, but never on the command line: from a prompt or standard input
    Settings,    ///< KEY=VALUE arguments, see Argument::keys
    Choices,     ///< any number of Argument::choices; a list of texts
};

struct Argument {
    QString name;
    Kind kind;
    QString help;
    QStringList choices;
    qlonglong minimum;
    qlonglong maximum;
    /** Of Settings: the keys that may be given. */
    QVector<Argument> keys;
    /** Of one key of Settings: whether it must be given. */
    bool required;
    /** Of Text: whether a word is right, and what it has to be; null where any word is. */
    bool (*accepts)(const QString &word);
    QString wanted;
    /** Of Settings: what is wrong with values that are right one by one; null where nothing is. */
    QString (*disagreement)(const QVariantMap &settings);
};

/** What an option belongs to. */
enum class Scope {
    Every,       ///< every command
    Operation,   ///< commands that have an outcome to wait for
    WifiConnect, ///< wifi connect alone
    Destructive, ///< commands that ask before they destroy something
    Secret,      ///< commands whose answer holds secrets
    Fields,      ///< commands whose answer has fields
    Voltage,     ///< battery voltage alone
    Monitor,     ///< monitor alone
};

struct Option {
    /** With its dashes, as in "--json". */
    QString name;
    /** The letter that stands for it, as in "h"; empty where there is none. */
    QString letter;
    /** What its value is called; empty for an option without one. */
    QString value;
    QString help;
    Scope scope;
    /** The values that there are; empty where there is no end of them. */
    QStringList choices = {};

    /** Whether its value is a whole number from 1 on, of what it is called after. */
    bool isNumber() const
    {
        return value == QLatin1String("SECONDS") || value == QLatin1String("SIGNALS");
    }
};

/** What the program ends with, see ExitStatus. */
struct StatusMeaning {
    int status;
    QString meaning;
};

/** How the outcome of a command that only starts something is told: by the "State" signals. */
struct Outcome {
    QString success;
    QString failure;
    int seconds;
};

struct Command {
    /** The words that name it, as in "user set". */
    QString words;
    QString help;
    QString path;
    /** What follows the service's name in the name of the interface. */
    QString interface;
    /** The method; empty for a property. */
    QString method;
    QString property;
    QVector<Argument> arguments;
    /** Of a scan, which brings networks and no state: without the states. */
    Outcome outcome;
    /** What a person is asked before it is sent; empty where it destroys nothing. */
    QString question = {};
    /** What an empty answer means; empty where an answer is never empty. */
    QString nothing = {};
    /** Whether the answer is a map, of which one entry can be asked for. */
    bool hasFields = false;
    /** The unit of the numbers in the answer. */
    QString unit = {};
    /** Whether the answer counts as empty as long as the interface has no address. */
    bool needsAddress = false;
    /** The text of the error that means that what is wanted is the case already; empty for none. */
    QString done = {};
    /** The keys of the answer whose values are shown only on request. */
    QStringList secrets = {};

    /** Whether it only starts something, whose outcome signals tell. */
    bool isOperation() const { return outcome.seconds > 0; }
};

/** Every command that is one call of the daemon. */
const QVector<Command> &commands();

/** The other ones, by their words, or words and argument. */
const QVector<Command> &ownCommands();

/** The daemon's signals, each as "INTERFACE.SIGNAL". */
const QStringList &signalNames();

const QVector<Option> &options();

/** The option of that name; nullptr where there is none. */
const Option *findOption(const QString &name);

const QVector<StatusMeaning> &exitStatuses();

/** The command whose words begin @p words; nullptr where there is none. @p used: how many words. */
const Command *findCommand(const QStringList &words, int *used);

/** Whether @p option means anything to @p command. */
bool belongsTo(const Option &option, const Command &command);

/** The words of the one command that @p option belongs to; empty where there are several. */
QString onlyCommand(const Option &option);

/** The synopsis of @p command: its words and the names of its arguments. */
QString synopsis(const Command &command);

#endif
