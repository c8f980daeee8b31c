#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "commands.h"

#include <QVariant>

#include <functional>

/** Gives the secret that @p prompt asks for; false where it cannot be had. */
using SecretReader = std::function<bool(const QString &prompt, QString &secret)>;

/**
 * Turns the words of a command line into the arguments of the call, or says what is wrong.
 *
 * Nothing is sent before this has succeeded.
 *
 * @param complaint set where the function returns false
 */
bool parseArguments(const Command &command, const QStringList &words, const SecretReader &reader,
                    QVariantList &arguments, QString &complaint);

/** One value of the kind that @p argument wants, as it goes onto the bus. */
bool parseValue(const Argument &argument, const QString &word, QVariant &value, QString &complaint);

#endif
