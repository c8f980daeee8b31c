#include "linktarget.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <cstring>
#include <unistd.h>

namespace
{
/** Whether cleaning would leave an absolute path as it is; it may be said of too few. */
bool isClean(const char *path, size_t length)
{
    return !std::strstr(path, "/.") && !std::strstr(path, "//") && path[length - 1] != '/';
}
} // namespace

QString linkTarget(const QString &path)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(QFile::encodeName(path).constData(), target, sizeof target);
    // What is relative, and what has to be seen in full, is the library's to put together.
    if (length <= 0 || length == sizeof target || target[0] != '/')
        return QFile::symLinkTarget(path);
    target[length] = '\0';
    const QString held = QFile::decodeName(target);
    return isClean(target, static_cast<size_t>(length)) ? held : QDir::cleanPath(held);
}
