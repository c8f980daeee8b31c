#include <ctime>
#include <dlfcn.h>

/*
 * Preloaded before a program's libraries: pauses after each function that runs at exit, such as the
 * destructors of static objects, so that the behaviour of other threads meanwhile becomes visible.
 */

namespace
{
using Function = void (*)(void *);

struct Handler {
    Function function;
    void *argument;
};

void runSlowly(void *argument)
{
    auto *handler = static_cast<Handler *>(argument);
    handler->function(handler->argument);
    delete handler;
    const timespec pause{0, 20'000'000};
    nanosleep(&pause, nullptr);
}
} // namespace

/** Replaces the C library's function of the name in asm(), which C++ reserves. */
extern "C" int registerSlowly(Function function, void *argument, void *library) asm("__cxa_atexit");

extern "C" int registerSlowly(Function function, void *argument, void *library)
{
    using Register = int (*)(Function, void *, void *);
    static const auto next = reinterpret_cast<Register>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    return next(runSlowly, new Handler{function, argument}, library);
}
