#ifndef REGULARFILE_H
#define REGULARFILE_H

#include <QIODevice>

#include <sys/types.h>

class QFile;
class QString;

/**
 * Opens the regular file @p path for writing; creates it if it is missing.
 *
 * For files in directories that others can write to. Does not follow a symbolic link in the last
 * component, nor an untrusted one before it (see trustedpath.h), and neither writes to nor waits
 * for a planted FIFO or device.
 *
 * @param flags open flags besides those for writing and creating; O_TRUNC takes effect only if the
 *         file is a regular one
 * @param mode permission bits of a new file, before the umask
 * @return the descriptor, close-on-exec; -1 on failure
 */
int openRegularFile(const char *path, int flags, mode_t mode);

/**
 * Opens the regular file @p path, or the one that it links to, for reading. Returns false for
 * anything else: a FIFO could block the reader, and a device may have no end.
 */
bool openForReading(QFile &file, const QString &path, QIODevice::OpenMode mode);

#endif
