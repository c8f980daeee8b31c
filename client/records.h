#ifndef RECORDS_H
#define RECORDS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QStringList>

/**
 * Copies both identification records into a file that only its owner can read.
 *
 * Never replaces an existing file. Checks that the file can be written before it makes a call.
 * Creates the file only after both records have been read.
 */
ExitStatus dumpRecords(const Command &command, const Invocation &invocation,
                       const QVariantList &arguments);

/** Writes both records from a file. Checks the whole file before it sends anything. */
ExitStatus restoreRecords(const Command &command, const Invocation &invocation,
                          const QVariantList &arguments);

#endif
