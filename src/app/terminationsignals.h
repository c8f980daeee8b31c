#ifndef TERMINATIONSIGNALS_H
#define TERMINATIONSIGNALS_H

#include <csignal>

/**
 * Makes the calling thread, the main one, receive every termination signal and end the process, as
 * the default disposition would. Ignored signals stay ignored. Child processes get the default
 * dispositions, because exec() resets handlers.
 *
 * Otherwise the kernel may deliver a signal that the main thread blocks to any other thread.
 */
void catchTerminationSignals();

/**
 * Blocks termination signals during its lifetime, so that an operation can be undone first. A
 * signal that arrived meanwhile ends the process in the destructor.
 *
 * Use it on the main thread only, for as long as a hardware call takes. SIGKILL is not blocked.
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
