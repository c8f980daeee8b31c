#ifndef TERMINATIONSIGNALS_H
#define TERMINATIONSIGNALS_H

#include <csignal>

/**
 * Makes the calling thread, which must be the main thread, receive every termination signal. The
 * signal then ends the process, as the default disposition would. Ignored signals stay ignored.
 * Child processes get the default dispositions, because exec() resets handlers.
 *
 * Without these handlers, the kernel could deliver a signal to another thread, and end the process
 * although the main thread blocks the signal (see HeldTermination).
 */
void catchTerminationSignals();

/**
 * Blocks termination signals during its lifetime, so that an operation can finish. The destructor
 * delivers a signal that has arrived meanwhile, and the process ends.
 *
 * Use it on the main thread only, and only for as long as hardware calls take. SIGKILL cannot be
 * blocked.
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
