#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sanitizer/lsan_interface.h>
#include <unistd.h>

/*
 * Preloaded into a program with sanitizers, which then handles these signals:
 *   SIGUSR1  writes the number of allocated bytes to /run/allocated
 *   SIGUSR2  checks for leaks, reports them, and ends; the daemon ends by a signal, after which
 *            LeakSanitizer does not run
 */

// GCC's library exports it without a header.
extern "C" std::size_t allocatedBytes() asm("__sanitizer_get_current_allocated_bytes");

namespace
{
void tellAllocated(int)
{
    char text[32];
    const int length = std::snprintf(text, sizeof text, "%zu\n", allocatedBytes());
    const int descriptor = open("/run/allocated", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const ssize_t written = write(descriptor, text, static_cast<size_t>(length));
    static_cast<void>(written);
    close(descriptor);
}

void lookForLeaks(int)
{
    // Exits with a status of its own if it finds leaks.
    __lsan_do_leak_check();
    _exit(0);
}

[[gnu::constructor]] void listen()
{
    // Its child processes are not checked.
    unsetenv("LD_PRELOAD");
    if (signal(SIGUSR1, tellAllocated) == SIG_ERR || signal(SIGUSR2, lookForLeaks) == SIG_ERR)
        std::abort();
}
} // namespace
