#ifndef PASSPHRASE_H
#define PASSPHRASE_H

#include "commandline.h"
#include "invocation.h"

/**
 * Completes the arguments of the two operations that need a passphrase, "wifi connect" and "ap
 * start"; leaves other commands unchanged.
 *
 * @return false, with @p complaint, if the passphrase cannot be read or is invalid; the complaint
 *         does not contain the passphrase
 */
bool addPassphrase(const Command &command, const Invocation &invocation, const SecretReader &reader,
                   QVariantList &arguments, QString &complaint);

#endif
