#ifndef BOARDDIRECTORY_H
#define BOARDDIRECTORY_H

#include <cstddef>
#include <optional>
#include <string>

/**
 * The directory that is the simulated board: small text files, one per value.
 *
 * It lies where STRANDEL_BOARD says, else at /run/strandel-board. Files are named by their place in
 * the directory, as in "als/lux". Every process and every thread may use the directory at the same
 * time.
 */
namespace board
{
/** Where @p file is in the file system; the directory itself for an empty name. */
std::string pathOf(const std::string &file);

/** Makes the directory and every file that it lacks; what is there already stays as it is. */
void create();

/** Does create() where there is no directory yet; asks for that only once in a process. */
void createOnce();

/**
 * The content of @p file, which is first made with its default where it is missing.
 *
 * @return nothing when it cannot be read, is no ordinary file or is longer than @p limit bytes
 */
std::optional<std::string> readFile(const std::string &file, std::size_t limit);

/** Gives @p file a new content in one step, so that readers see the old one or the new one. */
bool writeFile(const std::string &file, const std::string &content);

/** Keeps other writers of the board, in any process, waiting as long as it lives. May be nested. */
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
