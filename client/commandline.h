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
 * The program sends nothing before this function has succeeded.
 *
 * @param complaint the error, if the function returns false
 */
bool parseArguments(const Command &command, const QStringList &words, const SecretReader &reader,
                    QVariantList &arguments, QString &complaint);

/**
 * Converts @p word to the value that is sent for @p argument. Returns false, with @p complaint, if
 * the word is not valid.
 */
bool parseValue(const Argument &argument, const QString &word, QVariant &value, QString &complaint);

#endif
