#include "rebuildmark.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
QByteArray markOf(const QString &folder)
{
    const QFileInfo info(folder);
    return QFile::encodeName(info.path() + QStringLiteral("/.") + info.fileName() +
                             QStringLiteral(".rebuild"));
}

void synchroniseFolderOf(const QString &path)
{
    const int descriptor = open(QFile::encodeName(QFileInfo(path).path()).constData(),
                                O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    fsync(descriptor);
    close(descriptor);
}
} // namespace

bool isRebuildMarked(const QString &folder)
{
    struct stat status = {};
    return lstat(markOf(folder).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

// Without room for a mark the folder is rebuilt all the same: erasing it makes room.
void setRebuildMark(const QString &folder)
{
    const int descriptor =
        open(markOf(folder).constData(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
             S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return;
    close(descriptor);
    synchroniseFolderOf(folder);
}

void clearRebuildMark(const QString &folder)
{
    unlink(markOf(folder).constData());
}
