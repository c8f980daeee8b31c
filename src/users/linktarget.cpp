#include "linktarget.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <unistd.h>

QString linkTarget(const QString &path)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(QFile::encodeName(path).constData(), target, sizeof target);
    // What is relative, and what has to be seen in full, is the library's to put together.
    if (length <= 0 || length == sizeof target || target[0] != '/')
        return QFile::symLinkTarget(path);
    return QDir::cleanPath(QFile::decodeName(QByteArray(target, static_cast<int>(length))));
}
