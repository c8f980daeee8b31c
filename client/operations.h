#ifndef OPERATIONS_H
#define OPERATIONS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/** Starts what takes time, and waits for its outcome unless told otherwise. */
ExitStatus runOperation(const Command &command, const Invocation &invocation,
                        const QVariantList &arguments);

#endif
