#ifndef CALLS_H
#define CALLS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/** Makes the single call of @p command and prints the answer or the error. */
ExitStatus runCall(const Command &command, const Invocation &invocation,
                   const QVariantList &arguments);

#endif
