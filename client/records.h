#ifndef RECORDS_H
#define RECORDS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QStringList>

/**
 * Copies both identification records into a file that only its owner can read.
 *
 * Never replaces an existing file. Makes no call before the file is known to be writable; creates
 * the file only with both records in it.
 */
ExitStatus dumpRecords(const Command &command, const Invocation &invocation,
                       const QVariantList &arguments);

/** Writes both records from a file. Checks the whole file before it sends anything. */
ExitStatus restoreRecords(const Command &command, const Invocation &invocation,
                          const QVariantList &arguments);

#endif
