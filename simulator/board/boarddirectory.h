#ifndef BOARDDIRECTORY_H
#define BOARDDIRECTORY_H

#include <cstddef>
#include <optional>
#include <string>

/**
 * The directory that is the simulated board: small text files, one for each value.
 *
 * The environment variable STRANDEL_BOARD names the directory; the default is /run/strandel-board.
 * Files have relative paths, for example "als/lux". Any number of processes and threads may use the
 * directory at the same time.
 */
namespace board
{
/** Returns the path of @p file in the file system; the directory itself for an empty name. */
std::string pathOf(const std::string &file);

/** Creates the directory and its missing files; existing files stay unchanged. */
void create();

/** Calls create() if the directory does not exist; checks only once in a process. */
void createOnce();

/**
 * Returns the content of @p file. Creates a missing file with its default first.
 *
 * @return nothing if it cannot be read, is not a regular file or is longer than @p limit bytes
 */
std::optional<std::string> readFile(const std::string &file, std::size_t limit);

/** Replaces the content of @p file atomically: readers see the old content or the new one. */
bool writeFile(const std::string &file, const std::string &content);

/** Excludes other writers of the board, in any process, during its lifetime. Can be nested. */
class Lock
{
public:
    Lock();
    ~Lock();
    Lock(const Lock &) = delete;
    Lock &operator=(const Lock &) = delete;

private:
    int m_directory = -1;
};
} // namespace board

#endif
