#ifndef OPERATIONS_H
#define OPERATIONS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/**
 * Starts an operation of a network interface and waits for its outcome, unless --no-wait is given.
 */
ExitStatus runOperation(const Command &command, const Invocation &invocation,
                        const QVariantList &arguments);

#endif
