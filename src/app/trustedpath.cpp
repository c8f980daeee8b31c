#include "trustedpath.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// The kernel's limit of symbolic links in one path.
constexpr int mostLinks = 40;

constexpr int asDirectory = O_PATH | O_DIRECTORY;

void removeLeadingSlashes(QByteArray &path)
{
    int count = 0;
    while (count < path.size() && path.at(count) == '/')
        ++count;
    path.remove(0, count);
}

/** Removes and returns the first component of @p path. */
QByteArray takeName(QByteArray &path)
{
    const int end = path.indexOf('/');
    const QByteArray name = path.mid(0, end);
    path = end < 0 ? QByteArray() : path.mid(end);
    removeLeadingSlashes(path);
    return name.isEmpty() ? QByteArrayLiteral(".") : name;
}

bool isLink(const Descriptor &descriptor, struct stat &status)
{
    return fstat(descriptor.get(), &status) == 0 && S_ISLNK(status.st_mode);
}

/**
 * Returns the target of the symbolic link @p name in @p directory. On failure returns nothing.
 * errno is then @p error if @p name is not a link, EPERM if neither root nor the daemon's user
 * owns the link, otherwise the error of readlinkat().
 */
std::optional<QByteArray> trustedTarget(int directory, const QByteArray &name, int error)
{
    // Open the link itself (O_PATH), so that its owner and its target are read from the same link.
    const Descriptor link(openat(directory, name.constData(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!isLink(link, status)) {
        errno = error;
        return std::nullopt;
    }
    if (status.st_uid != 0 && status.st_uid != geteuid()) {
        errno = EPERM;
        return std::nullopt;
    }
    char target[PATH_MAX];
    const ssize_t length = readlinkat(link.get(), "", target, sizeof target);
    // A damaged file system can hold an empty link.
    if (length <= 0)
        return std::nullopt;
    return QByteArray(target, static_cast<int>(length));
}
} // namespace

Descriptor openTrusted(int from, QByteArray path, int flags)
{
    Descriptor reached;
    int directory = from;
    for (int links = 0; links <= mostLinks;) {
        if (path.startsWith('/')) {
            reached = Descriptor(open("/", asDirectory | O_CLOEXEC));
            directory = reached.get();
            removeLeadingSlashes(path);
        }
        const QByteArray name = takeName(path);
        const bool isLast = path.isEmpty();
        const int how = (isLast ? flags : asDirectory) | O_NOFOLLOW | O_CLOEXEC;
        Descriptor next(openat(directory, name.constData(), how));
        struct stat status = {};
        // With O_PATH and O_NOFOLLOW, but without O_DIRECTORY, openat() opens a link itself.
        const bool mayBeLink = (how & asDirectory) == O_PATH;
        const bool isFound = next.isOpen() && !(mayBeLink && isLink(next, status));
        if (isFound && isLast)
            return next;
        if (isFound) {
            reached = std::move(next);
            directory = reached.get();
            continue;
        }
        if (!next.isOpen() && next.error() != ELOOP && next.error() != ENOTDIR)
            return next;
        const std::optional<QByteArray> target = trustedTarget(directory, name, next.error());
        if (!target)
            return Descriptor(-1);
        path = isLast ? *target : *target + '/' + path;
        ++links;
    }
    errno = ELOOP;
    return Descriptor(-1);
}

Descriptor openDirectory(const QString &path)
{
    return openDirectory(QFile::encodeName(path));
}

Descriptor openDirectory(const QByteArray &path)
{
    // A path of two components needs no walk: open() may follow a link in "/", because only root
    // can create one, and O_NOFOLLOW rejects a link in the last component.
    if (path.startsWith('/') && path.lastIndexOf('/') == path.indexOf('/', 1)) {
        Descriptor directory(open(path.constData(), asDirectory | O_NOFOLLOW | O_CLOEXEC));
        if (directory.isOpen())
            return directory;
    }
    return openTrusted(AT_FDCWD, path, asDirectory);
}

Descriptor makeDirectory(const QString &path)
{
    Descriptor directory = openDirectory(path);
    if (directory.error() != ENOENT)
        return directory;
    const QFileInfo info(path);
    const QByteArray name = QFile::encodeName(info.fileName());
    const Descriptor parent = makeDirectory(info.path());
    // mkdirat() does not follow a dangling link with this name: it fails.
    if (mkdirat(parent.get(), name.constData(), S_IRWXU | S_IRWXG | S_IRWXO) != 0)
        return Descriptor(-1);
    return Descriptor(openat(parent.get(), name.constData(), asDirectory | O_NOFOLLOW | O_CLOEXEC));
}
