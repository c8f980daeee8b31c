#ifndef FORGET_H
#define FORGET_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

/**
 * Makes ConnMan forget a Wi-Fi network, including its passphrase.
 *
 * ConnMan forgets only listed networks. The connected network is left through the daemon. While the
 * radio is off ConnMan lists nothing: a scan by the daemon fills the list.
 */
ExitStatus forgetNetwork(const Command &command, const Invocation &invocation,
                         const QVariantList &arguments);

#endif
