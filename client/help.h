#ifndef HELP_H
#define HELP_H

#include "commands.h"

#include <QString>
#include <QStringList>

/** Help on all commands. */
QString helpText();

/** Help on the commands that begin with @p words; empty if there are none. */
QString helpText(const QStringList &words);

/** Describes an argument, or a key of settings: its help and its possible values. */
QString argumentText(const Argument &argument);

/** Possible completions of @p words, the last of which is an incomplete word. */
QStringList completions(const QStringList &words);

#endif
