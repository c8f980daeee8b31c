#ifndef OUTPUT_H
#define OUTPUT_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QJsonValue>

/* The results of commands, for people and machines. */

/** Prints @p value as JSON: an object on several lines, any other value on one line. */
void printJson(const QJsonValue &value);

/** Prints @p complaint about @p command; returns @p status. */
ExitStatus fail(const Command &command, ExitStatus status, const QString &complaint);

/** Prints the error of a failed call for @p command; returns its status. */
ExitStatus fail(const Command &command, const Answer &answer);

/**
 * Prints the entry of @p map that --field names. Returns NothingThere if there is no such entry.
 */
ExitStatus printField(const Command &command, const Invocation &invocation, const QVariantMap &map);

/** Reports that there is no value, as null with --json. Returns NothingThere. */
ExitStatus tellOfNothing(const Command &command, const Invocation &invocation);

/**
 * Returns Success if @p command may be sent: the command destroys nothing, --yes is given, or a
 * person confirms it on the terminal. Otherwise prints a complaint and returns NotConfirmed.
 */
ExitStatus confirm(const Command &command, const Invocation &invocation);

#endif
