#ifndef RECORDS_H
#define RECORDS_H

#include "bus.h"
#include "commands.h"
#include "invocation.h"

#include <QStringList>

/**
 * Copies both identification records into a file that only its owner can read.
 *
 * An existing file is never replaced. Nothing is asked for before the file is known to be
 * writable, and no file appears before both records are in it.
 */
ExitStatus dumpRecords(const Command &command, const Invocation &invocation,
                       const QVariantList &arguments);

/** Writes both records from a file, which is checked as a whole before anything is sent. */
ExitStatus restoreRecords(const Command &command, const Invocation &invocation,
                          const QVariantList &arguments);

#endif
