#ifndef COMMANDS_H
#define COMMANDS_H

#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

/* The commands of kyboardctl as one table, which parsing, help, completion and the tests read. */

/** The kind of an argument, or of one value of a set of settings. */
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
    /** Settings: the possible keys. */
    QVector<Argument> keys;
    /** Key of Settings: true if the key is mandatory. */
    bool required;
    /** Text: checks a word, with a description of a valid one; null if any word is valid. */
    bool (*accepts)(const QString &word);
    QString wanted;
    /**
     * Settings: returns the error in a combination of valid values; null if there is no such check.
     */
    QString (*disagreement)(const QVariantMap &settings);
};

/** The commands that an option belongs to. */
enum class Scope {
    Every,       ///< every command
    Operation,   ///< commands with an outcome to wait for
    WifiConnect, ///< only wifi connect
    Destructive, ///< commands that need a confirmation
    Secret,      ///< commands whose answer has secrets
    Fields,      ///< commands whose answer has fields
    Voltage,     ///< only battery voltage
    Monitor,     ///< only monitor
};

struct Option {
    /** With its dashes, for example "--json". */
    QString name;
    /** Its short form, for example "h"; empty if there is none. */
    QString letter;
    /** The name of its value; empty for an option without one. */
    QString value;
    QString help;
    Scope scope;
    /** The possible values; empty if they are unlimited. */
    QStringList choices = {};

    /** Returns true if its value is an integer of at least 1, which its name says. */
    bool isNumber() const
    {
        return value == QLatin1String("SECONDS") || value == QLatin1String("SIGNALS");
    }
};

/** An exit status of the program, see ExitStatus. */
struct StatusMeaning {
    int status;
    QString meaning;
};

/**
 * How to wait for the outcome of a command that only starts an operation: by its "State" signals.
 */
struct Outcome {
    QString success;
    QString failure;
    int seconds;
};

struct Command {
    /** The words of the command, for example "user set". */
    QString words;
    QString help;
    QString path;
    /** The last part of the interface's name. */
    QString interface;
    /** The method; empty for a property. */
    QString method;
    QString property;
    QVector<Argument> arguments;
    /** A scan brings networks and no state: without states. */
    Outcome outcome;
    /** The question to confirm before it is sent; empty if the command destroys nothing. */
    QString question = {};
    /** The text for an empty answer; empty if an answer is never empty. */
    QString nothing = {};
    /** True if the answer is a map, of which one entry can be selected. */
    bool hasFields = false;
    /** The unit of the numbers in the answer. */
    QString unit = {};
    /** True if the answer counts as empty while the interface has no address. */
    bool needsAddress = false;
    /** The error text that means that the wanted state already exists; empty if there is none. */
    QString done = {};
    /** The keys of the answer whose values are shown only on request. */
    QStringList secrets = {};

    /** Returns true if the command only starts an operation, whose outcome comes in signals. */
    bool isOperation() const { return outcome.seconds > 0; }
};

/** Every command that is one call of the daemon. */
const QVector<Command> &commands();

/** The other commands, by their words, or words and argument. */
const QVector<Command> &ownCommands();

/** The daemon's signals, each as "INTERFACE.SIGNAL". */
const QStringList &signalNames();

const QVector<Option> &options();

/** Returns the option with that name; nullptr if there is none. */
const Option *findOption(const QString &name);

const QVector<StatusMeaning> &exitStatuses();

/**
 * Returns the command that begins @p words; nullptr if there is none. @p used: its number of words.
 */
const Command *findCommand(const QStringList &words, int *used);

/** Returns true if @p option applies to @p command. */
bool belongsTo(const Option &option, const Command &command);

/** The words of the only command that @p option belongs to; empty if there are several. */
QString onlyCommand(const Option &option);

/** The synopsis of @p command: its words and the names of its arguments. */
QString synopsis(const Command &command);

#endif
