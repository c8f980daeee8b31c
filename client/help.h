#ifndef HELP_H
#define HELP_H

#include <QString>
#include <QStringList>

/** Help on everything. */
QString helpText();

/** Help on the commands whose words begin with @p words; empty where there are none. */
QString helpText(const QStringList &words);

/** What may follow @p words, the last of which is the beginning of a word. */
QStringList completions(const QStringList &words);

#endif
