#include "journal.h"

#include "boarddirectory.h"
#include "descriptor.h"

#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace board
{
void writeJournal(const std::string &line)
{
    const Descriptor journal(
        open(pathOf("journal").c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC));
    if (!journal.isOpen())
        return;
    // Lock first, so that the lines are in the order of their times.
    flock(journal.get(), LOCK_EX);
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    char time[40];
    static_cast<void>(std::snprintf(time, sizeof time, "%lld.%06ld ",
                                    static_cast<long long>(now.tv_sec), now.tv_nsec / 1000));
    const std::string entry = time + line + '\n';
    if (write(journal.get(), entry.data(), entry.size()) < 0)
        std::perror("journal of the board");
    flock(journal.get(), LOCK_UN);
}
} // namespace board
