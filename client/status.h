#ifndef STATUS_H
#define STATUS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/** Shows the whole instrument on one screen, or as one JSON object. */
ExitStatus showStatus(const Command &command, const Invocation &invocation);

#endif
