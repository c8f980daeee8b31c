#ifndef TERMINATIONSIGNALS_H
#define TERMINATIONSIGNALS_H

#include <csignal>

/**
 * Has every signal that asks the process to end be taken by the calling thread, the main one, and
 * end the process there, as without a handler. Ignored signals stay ignored. Child processes have
 * the default dispositions: a handler does not outlive exec().
 *
 * Without it the kernel may give a signal that the main thread holds back to any other thread.
 */
void catchTerminationSignals();

/**
 * Holds back the signals that ask the process to end, for as long as it lives: what has to be
 * undone is undone first. One that has come meanwhile ends the process in the destructor.
 *
 * For the main thread, and for no longer than hardware takes. SIGKILL ends the process all the
 * same.
 */
class HeldTermination
{
public:
    HeldTermination();
    ~HeldTermination();
    HeldTermination(const HeldTermination &) = delete;
    HeldTermination &operator=(const HeldTermination &) = delete;

private:
    sigset_t m_before;
};

#endif
