#ifndef REGULARFILE_H
#define REGULARFILE_H

#include <QIODevice>

#include <sys/types.h>

class QFile;
class QString;

/**
 * Opens the regular file @p path for writing, making it where it is missing.
 *
 * For files in directories to which others may write: a link in the last place of the path is not
 * followed, nor one before it that must not be (see trustedpath.h), and nothing else that is
 * planted there (a FIFO, a device) is written to or waited for.
 *
 * @param flags open flags besides those for writing and making the file; O_TRUNC takes effect only
 *        where the file turns out to be a regular one
 * @param mode permission bits of a new file, before the process's mask
 * @return the descriptor, not inherited by child processes; -1 when it cannot be opened
 */
int openRegularFile(const char *path, int flags, mode_t mode);

/**
 * Opens the regular file @p path, or the one that it links to, for reading; false for anything
 * else, which could keep whoever reads it waiting, or have no end.
 */
bool openForReading(QFile &file, const QString &path, QIODevice::OpenMode mode);

#endif
