#ifndef FORGET_H
#define FORGET_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/**
 * Makes ConnMan forget a Wi-Fi network, including its passphrase.
 *
 * If the network is in use, calls the daemon's disconnect, which also forgets the network.
 * Otherwise calls ConnMan. ConnMan forgets only networks that it lists, and lists none while the
 * radio is off: a scan by the daemon fills the list.
 */
ExitStatus forgetNetwork(const Command &command, const Invocation &invocation,
                         const QVariantList &arguments);

#endif
