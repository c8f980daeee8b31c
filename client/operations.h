#ifndef OPERATIONS_H
#define OPERATIONS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/** Starts an operation that takes time and, unless told otherwise, waits for its outcome. */
ExitStatus runOperation(const Command &command, const Invocation &invocation,
                        const QVariantList &arguments);

#endif
