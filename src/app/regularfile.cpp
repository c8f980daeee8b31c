#include "regularfile.h"

#include "trustedpath.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
/**
 * Returns true for a regular file with one hard link. Through a second hard link, another account
 * could make the daemon write to a file that the account itself must not change.
 */
bool isRegular(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1;
}
} // namespace

Descriptor openRegularFile(const char *path, int flags, mode_t mode)
{
    const QByteArray whole(path);
    const int end = whole.lastIndexOf('/') + 1;
    const Descriptor directory = openTrusted(AT_FDCWD, whole.left(end), O_PATH | O_DIRECTORY);
    const int how = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | (flags & ~O_TRUNC);
    Descriptor file(openat(directory.get(), whole.mid(end).constData(), how, mode));
    if (file.isOpen() && isRegular(file.get()) &&
        (!(flags & O_TRUNC) || ftruncate(file.get(), 0) == 0))
        return file;
    return Descriptor();
}

bool openForReading(QFile &file, const QString &path, QIODevice::OpenMode mode)
{
    Descriptor descriptor(
        open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        !file.open(descriptor.get(), mode, QFileDevice::AutoCloseHandle))
        return false;
    descriptor.release();
    return true;
}
