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
 * Safe in directories that other accounts can write to. Fails if the last component is a symbolic
 * link, if an earlier component is an untrusted symbolic link (see trustedpath.h), or if the file
 * has several hard links. Fails without blocking for a FIFO or device.
 *
 * @param flags open flags besides those for writing and creating; O_TRUNC takes effect only if the
 *         file is a regular one
 * @param mode permission bits of a new file, before the umask
 * @return the descriptor, close-on-exec; none on failure
 */
Descriptor openRegularFile(const char *path, int flags, mode_t mode);

/**
 * Opens the regular file @p path for reading, and follows symbolic links.
 *
 * @return false on failure, and for any other kind of file: a FIFO could block the reader, and a
 *         device may have no end
 */
bool openForReading(QFile &file, const QString &path, QIODevice::OpenMode mode);

#endif
