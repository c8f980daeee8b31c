#ifndef INVOCATION_H
#define INVOCATION_H

#include "commands.h"

#include <QMap>
#include <QString>
#include <QStringList>

/** A command line, its options told from its words. */
class Invocation
{
public:
    /** @param words all behind the program's name */
    explicit Invocation(const QStringList &words);

    /** What is wrong with the options by themselves; empty where nothing is. */
    QString complaint() const { return m_complaint; }

    /** What is wrong with the options for @p command; empty where nothing is. */
    QString misplaced(const Command &command) const;

    /** The command and its arguments. */
    QStringList words() const { return m_words; }

    /** Whether the option of that name, with its dashes, is given. */
    bool has(const char *option) const;

    /** The value of an option; empty where it is not given. */
    QString value(const char *option) const;

    /** The whole number that is the value of an option; 0 where it is not given. */
    int number(const char *option) const;

private:
    QString checkedHost() const;

    QString m_complaint;
    QStringList m_words;
    /** By the option's name, with its dashes. */
    QMap<QString, QString> m_values;
};

#endif
