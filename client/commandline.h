#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "commands.h"

#include <QVariant>

#include <functional>

/** Reads the secret that @p prompt asks for; returns false on failure. */
using SecretReader = std::function<bool(const QString &prompt, QString &secret)>;

/**
 * Converts the words of a command line to the arguments of the call, or describes the error.
 *
 * Nothing is sent before this has succeeded.
 *
 * @param complaint set if the function returns false
 */
bool parseArguments(const Command &command, const QStringList &words, const SecretReader &reader,
                    QVariantList &arguments, QString &complaint);

/** Converts one word to a value of the kind of @p argument, as it is sent over the bus. */
bool parseValue(const Argument &argument, const QString &word, QVariant &value, QString &complaint);

#endif
