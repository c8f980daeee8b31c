#include "terminationsignals.h"

#include <pthread.h>

namespace
{
/** The signals by which people, systemd (SIGABRT for its watchdog) and timers end a process. */
constexpr int terminationSignals[] = {SIGHUP,    SIGINT,  SIGQUIT, SIGABRT, SIGUSR1,
                                      SIGUSR2,   SIGALRM, SIGTERM, SIGXCPU, SIGPWR,
                                      SIGVTALRM, SIGPROF, SIGIO};

pthread_t mainThread;

sigset_t terminationSignalSet()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : terminationSignals)
        sigaddset(&set, number);
    return set;
}

void endProcess(int number)
{
    if (!pthread_equal(pthread_self(), mainThread)) {
        pthread_kill(mainThread, number);
        return;
    }
    // The signal is blocked in its own handler, so raise() takes effect on return.
    static_cast<void>(signal(number, SIG_DFL));
    static_cast<void>(raise(number));
}
} // namespace

void catchTerminationSignals()
{
    mainThread = pthread_self();
    struct sigaction action = {};
    action.sa_handler = endProcess;
    action.sa_mask = terminationSignalSet();
    action.sa_flags = SA_RESTART;
    for (const int number : terminationSignals) {
        struct sigaction present = {};
        if (sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_DFL)
            sigaction(number, &action, nullptr);
    }
}

HeldTermination::HeldTermination() : m_before()
{
    const sigset_t set = terminationSignalSet();
    pthread_sigmask(SIG_BLOCK, &set, &m_before);
}

HeldTermination::~HeldTermination()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}
