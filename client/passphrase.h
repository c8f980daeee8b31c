#ifndef PASSPHRASE_H
#define PASSPHRASE_H

#include "commandline.h"
#include "invocation.h"

/**
 * Completes the arguments of the two operations that need a passphrase, "wifi connect" and
 * "ap start"; those of every other command stay as they are.
 *
 * @return false, with @p complaint, which does not hold the passphrase, where it cannot be had or
 *         is none
 */
bool addPassphrase(const Command &command, const Invocation &invocation, const SecretReader &reader,
                   QVariantList &arguments, QString &complaint);

#endif
