#ifndef COMMANDS_H
#define COMMANDS_H

#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

/* The commands of kyboardctl as tables, which parsing, help, completion and the tests read. */

/** The kind of an argument, or of the value in a KEY=VALUE argument. */
enum class Kind {
    Text,
    Choice,      ///< one of Argument::choices
    Integer,     ///< a whole number between Argument::minimum and Argument::maximum
    Switch,      ///< "on" or "off"; a boolean on the bus
    Hex16,       ///< up to four hexadecimal digits; sent as text
    Bytes,       ///< at most Argument::maximum printable ASCII characters; sent as bytes
    Numbers,     ///< exactly Argument::maximum integers: N,N,... or @FILE; sent as an array (au)
    SecretBytes, ///< like Bytes, but read from a prompt or stdin, never from the command line
    Settings,    ///< KEY=VALUE arguments, see Argument::keys
    Choices,     ///< any number of words from Argument::choices; sent as a list of texts
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
    /**
     * Text: returns true if @p word is valid. If this pointer is null, every word is valid.
     * @ref wanted describes the valid words.
     */
    bool (*accepts)(const QString &word);
    QString wanted;
    /**
     * Settings: checks a combination of valid values; returns the error, or an empty text if there
     * is none. If this pointer is null, every combination is valid.
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
    /** The option's short form, for example "h"; empty if there is none. */
    QString letter;
    /** The name of the option's value; empty for an option without a value. */
    QString value;
    QString help;
    Scope scope;
    /** The possible values; empty if they are unlimited. */
    QStringList choices = {};

    /** Returns true if the option's value is an integer of at least 1. */
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
 * For a command that only starts an operation: the states that end the operation, and how long to
 * wait for them. Signals announce the states. If @ref success is empty (a scan), the operation
 * succeeds with a list of networks.
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
    /** Empty if the command starts no operation. A scan ends with a list: success is empty. */
    Outcome outcome;
    /** The action to confirm before the call is sent; empty if the command destroys nothing. */
    QString question = {};
    /** The text to print for an empty answer; empty if the daemon sends no empty answers. */
    QString nothing = {};
    /** True if the answer is a map. --field selects one entry. */
    bool hasFields = false;
    /** The unit of the numbers in the answer. */
    QString unit = {};
    /** True if the answer counts as empty while the network interface has no IPv4 address. */
    bool needsAddress = false;
    /**
     * The text of the error with which the daemon replies if nothing is left to do, for example to
     * the disconnect of a link that is not connected. kyboardctl counts this reply as success.
     * Empty if there is no such reply.
     */
    QString done = {};
    /** The keys of the answer whose values are shown only on request. */
    QStringList secrets = {};

    /** Returns true if the command only starts an operation; signals announce its outcome. */
    bool isOperation() const { return outcome.seconds > 0; }
};

/** Returns the commands that call one method, read one property or start one operation. */
const QVector<Command> &commands();

/** Returns the other commands, which make several calls or none. */
const QVector<Command> &ownCommands();

/** Returns the daemon's signals, each as "INTERFACE.SIGNAL". */
const QStringList &signalNames();

const QVector<Option> &options();

/** Returns the option with that name; nullptr if there is none. */
const Option *findOption(const QString &name);

const QVector<StatusMeaning> &exitStatuses();

/**
 * Returns the command that @p words begins with; nullptr if there is none. Sets @p used to the
 * number of the words that name the command.
 */
const Command *findCommand(const QStringList &words, int *used);

/** Returns true if @p option applies to @p command. */
bool belongsTo(const Option &option, const Command &command);

/** Returns the words of the only command that @p option belongs to; empty if there are several. */
QString onlyCommand(const Option &option);

/** Returns the synopsis of @p command: its words and the names of its arguments. */
QString synopsis(const Command &command);

#endif
