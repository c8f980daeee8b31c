#ifndef INVOCATION_H
#define INVOCATION_H

#include "commands.h"

#include <QMap>
#include <QString>
#include <QStringList>

/** A command line, split into the options and the other words. */
class Invocation
{
public:
    /** @param words the command line without the program's name */
    explicit Invocation(const QStringList &words);

    /** The first error in the options; empty if there is none. */
    QString complaint() const { return m_complaint; }

    /** The error if an option does not belong to @p command; empty if all belong to it. */
    QString misplaced(const Command &command) const;

    /** The command and its arguments. */
    QStringList words() const { return m_words; }

    /** Returns true if @p option, a name with its dashes, is given. */
    bool has(const char *option) const;

    /** The value of an option; empty if the option is missing. */
    QString value(const char *option) const;

    /** The integer value of an option; 0 if the option is missing. */
    int number(const char *option) const;

private:
    QString checkedHost() const;

    QString m_complaint;
    QStringList m_words;
    /** The values of the options by name, such as "--host". */
    QMap<QString, QString> m_values;
};

#endif
