#include "boarddirectory.h"

#include "defaults.h"
#include "descriptor.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace board
{
namespace
{
// Never destroyed: the light sensor's thread may still run while the process exits.
const std::string &root()
{
    static const std::string &location = *[] {
        const char *chosen = std::getenv("STRANDEL_BOARD");
        return new std::string(chosen && *chosen ? chosen : "/run/strandel-board");
    }();
    return location;
}

std::string directoryOf(const std::string &file)
{
    return file.substr(0, file.find('/'));
}

/** Creates @p path and its parents; returns true if @p path itself is new. */
bool makeDirectory(const std::string &path)
{
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1))
        mkdir(path.substr(0, slash).c_str(), 0755);
    return mkdir(path.c_str(), 0755) == 0;
}

bool writeAll(int descriptor, const std::string &content)
{
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = write(descriptor, content.data() + done, content.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
}

/** Creates a hidden file beside @p file with @p content; returns its path, empty on failure. */
std::string writeBeside(const std::string &file, const std::string &content)
{
    std::string path = pathOf(file);
    path.insert(path.rfind('/') + 1, 1, '.');
    path += ".XXXXXX";
    const Descriptor descriptor(mkostemp(path.data(), O_CLOEXEC));
    if (!descriptor.isOpen())
        return {};
    if (fchmod(descriptor.get(), 0644) == 0 && writeAll(descriptor.get(), content))
        return path;
    unlink(path.c_str());
    return {};
}

/** Creates @p file unless it exists. */
void createFile(const std::string &file, const std::string &content)
{
    const std::string path = pathOf(file);
    if (access(path.c_str(), F_OK) == 0)
        return;
    makeDirectory(pathOf(file.substr(0, file.rfind('/'))));
    const std::string fresh = writeBeside(file, content);
    if (fresh.empty())
        return;
    // Unlike rename(), link() does not replace a file that another process created meanwhile.
    if (link(fresh.c_str(), path.c_str()) != 0 && errno != EEXIST)
        // Some file systems have no hard links.
        static_cast<void>(rename(fresh.c_str(), path.c_str()));
    unlink(fresh.c_str());
}

/**
 * Creates a missing file with its default. A missing register file means that the chip lacks this
 * register, so register files are created only together with their directory.
 */
void restore(const std::string &file)
{
    if (access(root().c_str(), F_OK) != 0) {
        create();
        return;
    }
    const Lock lock;
    const std::string directory = directoryOf(file);
    if (access(pathOf(directory).c_str(), F_OK) != 0) {
        for (const DefaultFile &entry : defaultFiles())
            if (directoryOf(entry.name) == directory)
                createFile(entry.name, entry.content);
    } else if (directory != "soc") {
        for (const DefaultFile &entry : defaultFiles())
            if (entry.name == file)
                createFile(entry.name, entry.content);
    }
}

int openForReading(const std::string &file)
{
    // Without O_NONBLOCK a FIFO would block us.
    return open(pathOf(file).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

thread_local int lockDepth = 0;
} // namespace

std::string pathOf(const std::string &file)
{
    return file.empty() ? root() : root() + '/' + file;
}

void create()
{
    makeDirectory(root());
    const Lock lock;
    makeDirectory(pathOf("faults"));
    for (const DefaultFile &entry : defaultFiles())
        createFile(entry.name, entry.content);
}

void createOnce()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (access(root().c_str(), F_OK) != 0)
            create();
    });
}

std::optional<std::string> readFile(const std::string &file, std::size_t limit)
{
    Descriptor descriptor(openForReading(file));
    if (!descriptor.isOpen() && errno == ENOENT) {
        restore(file);
        descriptor.reset(openForReading(file));
    }
    struct stat status = {};
    if (!descriptor.isOpen() || fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    std::string content(limit + 1, '\0');
    std::size_t length = 0;
    while (length < content.size()) {
        const ssize_t count = read(descriptor.get(), &content[length], content.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    if (length > limit)
        return {};
    content.resize(length);
    return content;
}

bool writeFile(const std::string &file, const std::string &content)
{
    std::string fresh = writeBeside(file, content);
    if (fresh.empty() && errno == ENOENT) {
        makeDirectory(pathOf(file.substr(0, file.rfind('/'))));
        fresh = writeBeside(file, content);
    }
    if (fresh.empty())
        return false;
    if (rename(fresh.c_str(), pathOf(file).c_str()) == 0)
        return true;
    unlink(fresh.c_str());
    return false;
}

Lock::Lock()
{
    if (lockDepth++ > 0)
        return;
    m_directory = open(root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (m_directory >= 0 && flock(m_directory, LOCK_EX) != 0 && errno == EINTR) {
    }
}

Lock::~Lock()
{
    --lockDepth;
    if (m_directory < 0)
        return;
    // Unlock explicitly: a forked child shares the lock, so closing the file descriptor may not
    // release it.
    flock(m_directory, LOCK_UN);
    close(m_directory);
}
} // namespace board
