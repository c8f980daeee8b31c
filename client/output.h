#ifndef OUTPUT_H
#define OUTPUT_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QJsonValue>

/*
 * What a command ends with, told to people and machines.
 */

/** Prints a value for machines: an object on several lines, anything else on one. */
void printJson(const QJsonValue &value);

/** Complains of @p command; gives @p status. */
ExitStatus fail(const Command &command, ExitStatus status, const QString &complaint);

/** Complains of what went wrong with a call for @p command; gives its status. */
ExitStatus fail(const Command &command, const Answer &answer);

/** Prints the one entry of @p map that --field names. */
ExitStatus printField(const Command &command, const Invocation &invocation, const QVariantMap &map);

/** Tells, for machines by null, that there is nothing to tell. */
ExitStatus tellOfNothing(const Command &command, const Invocation &invocation);

/**
 * Whether @p command may be sent: it destroys nothing, --yes is given, or a person at the terminal
 * confirms it. NotConfirmed, with a complaint, otherwise.
 */
ExitStatus confirm(const Command &command, const Invocation &invocation);

#endif
