#ifndef REGULARFILE_H
#define REGULARFILE_H

#include "descriptor.h"

#include <QIODevice>

#include <sys/types.h>

class QFile;
class QString;

/**
 * Opens the regular file @p path for writing; creates it if it is missing.
 *
 * Safe in directories that other accounts can write to: fails for a symbolic link in the last
 * component, for an untrusted one before it (see trustedpath.h), for a file with several hard
 * links, and for a FIFO or device, without blocking.
 *
 * @param flags open flags besides those for writing and creating; O_TRUNC takes effect only if the
 *         file is a regular one
 * @param mode permission bits of a new file, before the umask
 * @return the descriptor, close-on-exec; none on failure
 */
Descriptor openRegularFile(const char *path, int flags, mode_t mode);

/**
 * Opens the regular file @p path for reading, and follows symbolic links. Returns false for any
 * other kind of file: a FIFO could block the reader, and a device may have no end.
 */
bool openForReading(QFile &file, const QString &path, QIODevice::OpenMode mode);

#endif
