#ifndef HELP_H
#define HELP_H

#include "commands.h"

#include <QString>
#include <QStringList>

/** Help on everything. */
QString helpText();

/** Help on the commands whose words begin with @p words; empty where there are none. */
QString helpText(const QStringList &words);

/** What help says of an argument, or a key of settings: its help and the values that it may be. */
QString argumentText(const Argument &argument);

/** What may follow @p words, the last of which is the beginning of a word. */
QStringList completions(const QStringList &words);

#endif
