#ifndef OUTPUT_H
#define OUTPUT_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QJsonValue>

/* The results of commands, for people and machines. */

/** Prints a value for machines: an object on several lines, anything else on one. */
void printJson(const QJsonValue &value);

/** Complains about @p command; returns @p status. */
ExitStatus fail(const Command &command, ExitStatus status, const QString &complaint);

/** Complains about a failed call for @p command; returns its status. */
ExitStatus fail(const Command &command, const Answer &answer);

/** Prints the entry of @p map that --field names. */
ExitStatus printField(const Command &command, const Invocation &invocation, const QVariantMap &map);

/** Reports that there is no value; null for machines. */
ExitStatus tellOfNothing(const Command &command, const Invocation &invocation);

/**
 * Returns a good status if @p command may be sent: it destroys nothing, --yes is given, or a person
 * confirms it on the terminal. Otherwise complains and returns NotConfirmed.
 */
ExitStatus confirm(const Command &command, const Invocation &invocation);

#endif
