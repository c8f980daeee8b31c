// Linked into the instrumented daemon: writes the coverage counters before a signal ends it. The
// daemon catches termination signals and then calls raise().

#include <csignal>
#include <pthread.h>

extern "C" void dumpCounts() asm("__gcov_dump");

// Replaces the function of the C library.
extern "C" int raise(int number) noexcept
{
    dumpCounts();
    return pthread_kill(pthread_self(), number);
}
