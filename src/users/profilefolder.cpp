#include "profilefolder.h"

#include "error.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace
{
fs::path toPath(const QString &text)
{
    return fs::path(QFile::encodeName(text).toStdString());
}

/** The names of a folder's entries. */
struct Listing {
    std::vector<fs::path> files;
    std::vector<fs::path> folders;
};

bool isAbsence(const std::error_code &error)
{
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
}

/** A link to nowhere, or round in a circle, stands for nothing. */
bool isDangling(const std::error_code &error)
{
    return isAbsence(error) || error == std::errc::too_many_symbolic_link_levels;
}

/** Lists @p folder; false when it is there and cannot be listed. */
bool list(const fs::path &folder, Listing &listing)
{
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code statusError;
        const fs::file_status status = entry->status(statusError);
        if (statusError && !isDangling(statusError))
            return false;
        if (fs::is_regular_file(status))
            listing.files.push_back(entry->path().filename());
        else if (fs::is_directory(status))
            listing.folders.push_back(entry->path().filename());
    }
    return !error || isAbsence(error);
}

/** A folder on the way down, so that a link to a folder above it can be told. */
class Level
{
public:
    Level(const fs::path &folder, const Level *above) : m_above(above)
    {
        struct stat status = {};
        m_known = stat(folder.c_str(), &status) == 0;
        m_device = status.st_dev;
        m_inode = status.st_ino;
    }

    bool isBelowItself() const
    {
        for (const Level *level = m_above; m_known && level; level = level->m_above) {
            if (level->m_device == m_device && level->m_inode == m_inode)
                return true;
        }
        return false;
    }

private:
    const Level *m_above;
    bool m_known;
    dev_t m_device;
    ino_t m_inode;
};

bool isComplete(const fs::path &reference, const fs::path &folder, const Level *above)
{
    const Level level(reference, above);
    if (level.isBelowItself())
        return false;
    Listing expected;
    list(reference, expected);
    std::error_code error;
    for (const fs::path &file : expected.files) {
        if (!fs::exists(folder / file, error))
            return false;
    }
    for (const fs::path &subfolder : expected.folders) {
        if (!fs::is_directory(folder / subfolder, error) ||
            !isComplete(reference / subfolder, folder / subfolder, &level))
            return false;
    }
    return true;
}

bool isReadable(const fs::path &folder, const Level *above)
{
    const Level level(folder, above);
    Listing listing;
    if (level.isBelowItself() || !list(folder, listing))
        return false;
    for (const fs::path &file : listing.files) {
        if (faccessat(AT_FDCWD, (folder / file).c_str(), R_OK, AT_EACCESS) != 0)
            return false;
    }
    for (const fs::path &subfolder : listing.folders) {
        if (!isReadable(folder / subfolder, &level))
            return false;
    }
    return true;
}

bool copyContents(const fs::path &source, const fs::path &destination, const Level *above)
{
    const Level level(source, above);
    Listing listing;
    if (level.isBelowItself() || !list(source, listing))
        return false;
    std::error_code error;
    for (const fs::path &file : listing.files) {
        if (!fs::copy_file(source / file, destination / file, error))
            return false;
    }
    for (const fs::path &subfolder : listing.folders) {
        // With the mode of the original: what was kept from others stays so.
        fs::create_directory(destination / subfolder, source / subfolder, error);
        if (error || !copyContents(source / subfolder, destination / subfolder, &level))
            return false;
    }
    return true;
}

/** Writes all that is pending on the file system of @p folder to its disk. */
bool synchronise(const fs::path &folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return false;
    const bool synchronised = syncfs(descriptor) == 0;
    close(descriptor);
    return synchronised;
}
} // namespace

bool isFolderComplete(const QString &reference, const QString &folder)
{
    return isComplete(toPath(reference), toPath(folder), nullptr);
}

bool isInsideEachOther(const QString &first, const QString &second)
{
    const QString one = QFileInfo(first).canonicalFilePath() + QLatin1Char('/');
    const QString other = QFileInfo(second).canonicalFilePath() + QLatin1Char('/');
    return one.size() > 1 && other.size() > 1 && (one.startsWith(other) || other.startsWith(one));
}

bool isFolderReadable(const QString &folder)
{
    return isReadable(toPath(folder), nullptr);
}

int eraseFolder(const QString &folder)
{
    std::error_code error;
    std::vector<fs::path> folders;
    std::vector<fs::path> others;
    fs::directory_iterator entry(toPath(folder), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code statusError;
        const bool isFolder = fs::is_directory(entry->symlink_status(statusError));
        (isFolder ? folders : others).push_back(entry->path());
    }
    if (error)
        return isAbsence(error) ? Error::None : Error::Write;

    for (const fs::path &other : others) {
        fs::remove(other, error);
        if (error)
            return Error::Write;
    }
    for (const fs::path &subfolder : folders) {
        fs::remove_all(subfolder, error);
        if (error)
            return Error::Write;
    }
    return Error::None;
}

int copyFolder(const QString &source, const QString &destination)
{
    const fs::path target = toPath(destination);
    std::error_code error;
    if (!fs::is_directory(target, error)) {
        fs::create_directories(target, error);
        if (error)
            return Error::Write;
    }
    // One sync of the file system: a sync of each file costs many times the copy itself.
    return copyContents(toPath(source), target, nullptr) && synchronise(target) ? Error::None
                                                                                : Error::Write;
}
