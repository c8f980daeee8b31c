#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sanitizer/lsan_interface.h>
#include <unistd.h>

/*
 * Put before the libraries of a checked program, whose signals then ask it for its memory:
 *   SIGUSR1  it writes how many bytes it has allocated into /run/allocated
 *   SIGUSR2  it looks for its leaks, tells of them, and ends; the daemon ends by a signal, and
 * would never look by itself
 */

// GCC's library has it, and no header for it.
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
    // Ends the program, with a status of its own, where it finds any.
    __lsan_do_leak_check();
    _exit(0);
}

[[gnu::constructor]] void listen()
{
    // The programs that it starts are not checked.
    unsetenv("LD_PRELOAD");
    if (signal(SIGUSR1, tellAllocated) == SIG_ERR || signal(SIGUSR2, lookForLeaks) == SIG_ERR)
        std::abort();
}
} // namespace
