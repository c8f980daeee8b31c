// Linked into instrumented programs: writes the coverage counters when a signal ends the program.

#include <csignal>

extern "C" void dumpCounts() asm("__gcov_dump");

namespace
{
void dumpAndEnd(int number)
{
    dumpCounts();
    // The handler is already reset, so this ends the program.
    static_cast<void>(std::raise(number));
}

[[gnu::constructor]] void dumpAtEnd()
{
    struct sigaction action = {};
    action.sa_handler = dumpAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGTERM, &action, nullptr);
}
} // namespace
