#ifndef HELP_H
#define HELP_H

#include "commands.h"

#include <QString>
#include <QStringList>

/** Returns the help on all commands. */
QString helpText();

/** Returns the help on the commands that begin with @p words; empty if there are none. */
QString helpText(const QStringList &words);

/** Returns the help and the possible values of an argument, or of a key of settings. */
QString argumentText(const Argument &argument);

/** Returns the possible completions of the last of @p words. */
QStringList completions(const QStringList &words);

#endif
