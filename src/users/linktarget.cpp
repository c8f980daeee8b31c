#include "linktarget.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <unistd.h>

namespace
{
/** Whether cleaning would leave an absolute path as it is; it may be said of too few. */
bool isClean(const QByteArray &path)
{
    return !path.contains("/.") && !path.contains("//") && !path.endsWith('/');
}
} // namespace

QString linkTarget(const QString &path)
{
    char target[PATH_MAX];
    const ssize_t length = readlink(QFile::encodeName(path).constData(), target, sizeof target);
    // What is relative, and what has to be seen in full, is the library's to put together.
    if (length <= 0 || length == sizeof target || target[0] != '/')
        return QFile::symLinkTarget(path);
    const QByteArray held = QByteArray::fromRawData(target, static_cast<int>(length));
    return isClean(held) ? QFile::decodeName(held) : QDir::cleanPath(QFile::decodeName(held));
}
