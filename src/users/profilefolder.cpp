#include "profilefolder.h"

#include "trustedpath.h"

#include <QByteArray>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace
{
const mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;

// Every level of a copy holds two descriptors; a process has 1024 by default.
constexpr int deepest = 256;

constexpr int asDirectory = O_PATH | O_DIRECTORY;

struct Entry {
    QByteArray name;
    /** As in struct dirent: DT_UNKNOWN if the file system does not report types. */
    unsigned char type;
};

/**
 * Reopens a directory to list, change or synchronise it: an O_PATH descriptor permits none of
 * these.
 */
Descriptor openToRead(const Descriptor &directory)
{
    return Descriptor(openat(directory.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/** Lists all entries of a directory; returns false if it is not a directory or cannot be listed. */
bool readEntries(const Descriptor &directory, std::vector<Entry> &entries)
{
    Descriptor readable = openToRead(directory);
    DIR *const stream = fdopendir(readable.get());
    if (!stream)
        return false;
    readable.release();
    errno = 0;
    while (const dirent *entry = readdir(stream)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            entries.push_back({entry->d_name, entry->d_type});
        errno = 0;
    }
    const bool isWhole = errno == 0;
    closedir(stream);
    return isWhole;
}

/**
 * Determines the type of @p entry, or of its target if it is a link. The type is DT_UNKNOWN for a
 * dangling link. Returns false, and sets DT_UNKNOWN, on failure.
 */
bool findType(const Descriptor &directory, const Entry &entry, unsigned char &type)
{
    type = entry.type;
    if (type != DT_LNK && type != DT_UNKNOWN)
        return true;
    const Descriptor target = openTrusted(directory.get(), entry.name, O_PATH);
    struct stat status = {};
    type = DT_UNKNOWN;
    if (fstat(target.get(), &status) == 0)
        type = static_cast<unsigned char>(IFTODT(status.st_mode));
    return target.isOpen() || target.isAbsent() || target.error() == ELOOP;
}

/** The names of a directory's files and subdirectories. */
struct Listing {
    std::vector<QByteArray> files;
    std::vector<QByteArray> directories;
};

/** Lists @p directory; returns false if it cannot be listed completely. */
bool list(const Descriptor &directory, Listing &listing)
{
    std::vector<Entry> entries;
    bool isWhole = readEntries(directory, entries);
    for (const Entry &entry : entries) {
        unsigned char type = DT_UNKNOWN;
        isWhole = findType(directory, entry, type) && isWhole;
        if (type == DT_REG)
            listing.files.push_back(entry.name);
        else if (type == DT_DIR)
            listing.directories.push_back(entry.name);
    }
    return isWhole;
}

Descriptor openSubdirectory(const Descriptor &directory, const QByteArray &name)
{
    return openTrusted(directory.get(), name, asDirectory);
}

/** Opens the subdirectory @p name; rejects any link, whoever owns it. */
Descriptor openPlainSubdirectory(const Descriptor &directory, const QByteArray &name)
{
    return Descriptor(
        openat(directory.get(), name.constData(), asDirectory | O_NOFOLLOW | O_CLOEXEC));
}

/** Opens the regular file @p name of @p directory for reading. Does not block on a FIFO. */
Descriptor openFile(const Descriptor &directory, const QByteArray &name)
{
    Descriptor file = openTrusted(directory.get(), name, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status = {};
    return fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) ? std::move(file)
                                                                      : Descriptor();
}

/** A directory on the current recursion path; detects symbolic-link loops. */
class Level
{
public:
    Level(const Descriptor &directory, const Level *above)
        : m_above(above), m_depth(above ? above->m_depth + 1 : 0)
    {
        struct stat status = {};
        m_isKnown = fstat(directory.get(), &status) == 0;
        m_device = status.st_dev;
        m_inode = status.st_ino;
    }

    bool isSame(const Level &other) const
    {
        return m_isKnown && other.m_isKnown && m_device == other.m_device &&
               m_inode == other.m_inode;
    }

    bool isLoopOrTooDeep() const
    {
        for (const Level *level = m_above; level; level = level->m_above) {
            if (isSame(*level))
                return true;
        }
        return m_depth > deepest;
    }

private:
    const Level *m_above;
    int m_depth;
    bool m_isKnown;
    dev_t m_device;
    ino_t m_inode;
};

bool holdsFile(const Descriptor &directory, const QByteArray &name)
{
    struct stat status = {};
    if (fstatat(directory.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    if (!S_ISLNK(status.st_mode))
        return true;
    const Descriptor target = openTrusted(directory.get(), name, O_PATH);
    return target.isOpen() || target.error() == EPERM;
}

bool isComplete(const Descriptor &reference, const Descriptor &directory, const Level *above)
{
    const Level level(reference, above);
    if (level.isLoopOrTooDeep())
        return false;
    Listing expected;
    list(reference, expected);
    for (const QByteArray &file : expected.files) {
        if (!holdsFile(directory, file))
            return false;
    }
    for (const QByteArray &name : expected.directories) {
        const Descriptor subdirectory = openSubdirectory(directory, name);
        if (!subdirectory.isOpen() ||
            !isComplete(openSubdirectory(reference, name), subdirectory, &level))
            return false;
    }
    return true;
}

/** Returns true if all of @p source can be read and @p directory is not part of it. */
bool isReadable(const Descriptor &source, const Level &directory, const Level *above)
{
    const Level level(source, above);
    Listing listing;
    if (level.isLoopOrTooDeep() || level.isSame(directory) || !list(source, listing))
        return false;
    for (const QByteArray &file : listing.files) {
        if (!openFile(source, file).isOpen())
            return false;
    }
    for (const QByteArray &name : listing.directories) {
        if (!isReadable(openSubdirectory(source, name), directory, &level))
            return false;
    }
    return true;
}

/** Returns true if @p directory is inside @p other, at any depth. */
bool isBelow(const Descriptor &directory, const Level &other)
{
    Descriptor at(openat(directory.get(), "..", asDirectory | O_CLOEXEC));
    for (;;) {
        const Level level(at, nullptr);
        if (level.isSame(other))
            return true;
        Descriptor parent(openat(at.get(), "..", asDirectory | O_CLOEXEC));
        // The root directory is its own parent.
        if (!parent.isOpen() || Level(parent, nullptr).isSame(level))
            return false;
        at = std::move(parent);
    }
}

/** Returns true if a removal succeeded, or if the entry is already gone. */
bool isRemoved(int result)
{
    return result == 0 || errno == ENOENT;
}

/** Grants the owner of a directory all permissions, so that its content can be removed. */
void permitOwner(const Descriptor &directory)
{
    struct stat status = {};
    if (fstat(directory.get(), &status) == 0 && (status.st_mode & S_IRWXU) != S_IRWXU)
        fchmod(openToRead(directory).get(), (status.st_mode & permissions) | S_IRWXU);
}

bool eraseContents(const Descriptor &directory, int depth);

bool eraseSubdirectory(const Descriptor &directory, const QByteArray &name, int depth)
{
    const Descriptor subdirectory = openPlainSubdirectory(directory, name);
    permitOwner(subdirectory);
    return subdirectory.isOpen() && eraseContents(subdirectory, depth) &&
           isRemoved(unlinkat(directory.get(), name.constData(), AT_REMOVEDIR));
}

bool eraseContents(const Descriptor &directory, int depth)
{
    std::vector<Entry> entries;
    // After a power cut, a copy can remain in its staging directory, one level deeper than its
    // destination.
    if (depth > deepest + 1 || !readEntries(directory, entries))
        return false;
    std::vector<QByteArray> directories;
    for (const Entry &entry : entries) {
        if (entry.type != DT_DIR && isRemoved(unlinkat(directory.get(), entry.name.constData(), 0)))
            continue;
        if (entry.type != DT_DIR && errno != EISDIR)
            return false;
        directories.push_back(entry.name);
    }
    for (const QByteArray &name : directories) {
        if (!eraseSubdirectory(directory, name, depth + 1))
            return false;
    }
    return true;
}

bool copyBytes(const Descriptor &source, const Descriptor &destination)
{
    // sendfile() transfers at most this many bytes in a call. It copies large files a third faster
    // than read() and write() do.
    const size_t most = 0x7ffff000;
    ssize_t length;
    do
        length = sendfile(destination.get(), source.get(), nullptr, most);
    while (length > 0);
    return length == 0;
}

bool copyFile(const Descriptor &source, const Descriptor &destination, const QByteArray &name)
{
    const Descriptor from = openFile(source, name);
    struct stat status = {};
    if (fstat(from.get(), &status) != 0)
        return false;
    const Descriptor to(openat(destination.get(), name.constData(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                               S_IRUSR | S_IWUSR));
    return to.isOpen() && copyBytes(from, to) &&
           fchmod(to.get(), status.st_mode & permissions) == 0;
}

/** Removes from a copied subdirectory the owner's permissions that the original does not grant. */
bool restrictOwner(const Descriptor &source, const Descriptor &destination, const QByteArray &name)
{
    struct stat original = {};
    if (fstat(openSubdirectory(source, name).get(), &original) != 0)
        return false;
    if ((original.st_mode & S_IRWXU) == S_IRWXU)
        return true;
    const Descriptor copy = openToRead(openPlainSubdirectory(destination, name));
    struct stat status = {};
    return fstat(copy.get(), &status) == 0 &&
           fchmod(copy.get(), status.st_mode & original.st_mode & permissions) == 0;
}

bool copyContents(const Descriptor &source, const Descriptor &destination, const Level *above);

bool copySubdirectory(const Descriptor &source, const Descriptor &destination,
                      const QByteArray &name, const Level &level)
{
    const Descriptor from = openSubdirectory(source, name);
    struct stat status = {};
    if (fstat(from.get(), &status) != 0)
        return false;
    // Keep the mode of the original: private files stay private. Add the owner's permissions: the
    // daemon needs them to fill the copy.
    const mode_t mode = (status.st_mode & permissions) | S_IRWXU;
    if (mkdirat(destination.get(), name.constData(), mode) != 0)
        return false;
    return copyContents(from, openPlainSubdirectory(destination, name), &level);
}

bool copyContents(const Descriptor &source, const Descriptor &destination, const Level *above)
{
    const Level level(source, above);
    Listing listing;
    if (level.isLoopOrTooDeep() || !list(source, listing))
        return false;
    for (const QByteArray &file : listing.files) {
        if (!copyFile(source, destination, file))
            return false;
    }
    for (const QByteArray &name : listing.directories) {
        if (!copySubdirectory(source, destination, name, level))
            return false;
        // moveContents() restricts the subdirectories of the top level later, because moving a
        // directory requires write permission for it.
        if (above && !restrictOwner(source, destination, name))
            return false;
    }
    return true;
}

bool isNameFree(const Descriptor &directory, const QByteArray &name)
{
    struct stat status = {};
    return fstatat(directory.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0;
}

/** Returns a name that exists neither in @p directory nor in @p source. */
QByteArray freeName(const Descriptor &directory, const Descriptor &source)
{
    QByteArray name = QByteArrayLiteral(".rebuild");
    while (!isNameFree(directory, name) || !isNameFree(source, name))
        name += '+';
    return name;
}

/** Moves @p name to @p destination, which must not have an entry of that name. */
bool moveEntry(const Descriptor &source, const Descriptor &destination, const QByteArray &name)
{
    return isNameFree(destination, name) &&
           renameat(source.get(), name.constData(), destination.get(), name.constData()) == 0;
}

/** Moves the copy of @p source from @p staging to @p destination. */
bool moveContents(const Descriptor &source, const Descriptor &staging,
                  const Descriptor &destination)
{
    Listing listing;
    if (!list(staging, listing))
        return false;
    for (const QByteArray &file : listing.files) {
        if (!moveEntry(staging, destination, file))
            return false;
    }
    for (const QByteArray &name : listing.directories) {
        if (!moveEntry(staging, destination, name) || !restrictOwner(source, destination, name))
            return false;
    }
    return true;
}

/** Writes all pending data of the file system of @p directory to its disk. */
bool synchronise(const Descriptor &directory)
{
    return syncfs(openToRead(directory).get()) == 0;
}
} // namespace

bool isFolderComplete(const Descriptor &reference, const Descriptor &directory)
{
    return isComplete(reference, directory, nullptr);
}

bool canReplace(const Descriptor &directory, const Descriptor &source)
{
    if (!source.isOpen())
        return source.isAbsent();
    const Level erased(directory, nullptr);
    return isReadable(source, erased, nullptr) && !isBelow(source, erased);
}

bool eraseFolder(const Descriptor &directory)
{
    return directory.isOpen() ? eraseContents(directory, 0) : directory.isAbsent();
}

void makeIncomplete(const Descriptor &directory, const Descriptor &reference)
{
    Listing listing;
    list(reference, listing);
    const std::vector<QByteArray> &names =
        listing.files.empty() ? listing.directories : listing.files;
    if (!names.empty())
        renameat(directory.get(), names[0].constData(), directory.get(),
                 freeName(directory, reference).constData());
}

bool copyFolder(const Descriptor &source, const Descriptor &destination)
{
    if (!source.isOpen())
        return source.isAbsent() && destination.isOpen();
    const QByteArray name = freeName(destination, source);
    if (mkdirat(destination.get(), name.constData(), S_IRWXU) != 0)
        return false;
    const Descriptor staging = openPlainSubdirectory(destination, name);
    // Synchronise the file system once: synchronising each file takes many times as long as the
    // copy.
    const bool isCopied = copyContents(source, staging, nullptr) && synchronise(staging) &&
                          moveContents(source, staging, destination);
    eraseSubdirectory(destination, name, 0);
    return isCopied;
}
