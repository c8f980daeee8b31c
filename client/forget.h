#ifndef FORGET_H
#define FORGET_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/**
 * Makes ConnMan forget a Wi-Fi network, its passphrase included.
 *
 * ConnMan forgets only what it lists. The network that is joined is left through the daemon. While
 * the radio is off nothing is listed: a scan of the daemon's brings the list.
 */
ExitStatus forgetNetwork(const Command &command, const Invocation &invocation,
                         const QVariantList &arguments);

#endif
