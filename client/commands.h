#ifndef COMMANDS_H
#define COMMANDS_H

#include <QString>
#include <QStringList>
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
    Bytes,       ///< text that is sent as bytes
    Numbers,     ///< whole numbers separated by commas, or @FILE; an array of u on the bus
    Secret,      ///< never on the command line: from a prompt or from standard input
    SecretBytes, ///< a Secret that is sent as bytes
    Settings,    ///< KEY=VALUE arguments, see Argument::keys
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
    /** Without a success state there is nothing to wait for. */
    Outcome outcome;
};

/** Every command that is one call of the daemon. */
const QVector<Command> &commands();

/** The command whose words begin @p words; nullptr where there is none. @p used: how many words. */
const Command *findCommand(const QStringList &words, int *used);

/** The synopsis of @p command: its words and the names of its arguments. */
QString synopsis(const Command &command);

#endif
