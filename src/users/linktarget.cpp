#include "linktarget.h"

#include "trustedpath.h"

#include <QDir>
#include <QFile>

#include <climits>
#include <cstring>
#include <unistd.h>

namespace
{
/**
 * Returns true if @p path is absolute and QDir::cleanPath() would not change it. Conservative: may
 * return false for such a path.
 */
bool isClean(const char *path, size_t length)
{
    return path[0] == '/' && !std::strstr(path, "/.") && !std::strstr(path, "//") &&
           path[length - 1] != '/';
}
} // namespace

std::optional<QString> linkTarget(const QString &path)
{
    const QByteArray whole = QFile::encodeName(path);
    const int end = whole.lastIndexOf('/');
    const QByteArray directory = whole.left(end);
    char target[PATH_MAX + 1];
    const ssize_t length =
        readlinkat(openDirectory(directory).get(), whole.constData() + end + 1, target, PATH_MAX);
    if (length <= 0)
        return std::nullopt;
    target[length] = '\0';
    QString held = QFile::decodeName(target);
    if (isClean(target, static_cast<size_t>(length)))
        return held;
    return QDir::cleanPath(
        target[0] == '/' ? held : QFile::decodeName(directory) + QLatin1Char('/') + held);
}
