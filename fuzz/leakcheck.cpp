#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sanitizer/lsan_interface.h>
#include <unistd.h>

/*
 * A library to preload into a program that is built with sanitizers. The program then handles these
 * signals:
 *   SIGUSR1  writes the number of allocated bytes to /run/allocated
 *   SIGUSR2  checks for leaks, reports them, and exits
 *
 * LeakSanitizer runs when a program exits, but the daemon is ended by a signal: hence SIGUSR2.
 */

// GCC's sanitizer library exports this function, but no header declares it.
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
    // Does not return if it finds leaks: exits with LeakSanitizer's error status.
    __lsan_do_leak_check();
    _exit(0);
}

[[gnu::constructor]] void listen()
{
    // Do not preload this library into child processes.
    unsetenv("LD_PRELOAD");
    if (signal(SIGUSR1, tellAllocated) == SIG_ERR || signal(SIGUSR2, lookForLeaks) == SIG_ERR)
        std::abort();
}
} // namespace
