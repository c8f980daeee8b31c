#ifndef CHILDSIGNAL_H
#define CHILDSIGNAL_H

/**
 * Writes the line "signal SIGCHLD received" to standard output when @p signalNumber is SIGCHLD.
 *
 * Safe in a signal handler: one unbuffered write that does not wait, errno kept. The child is not
 * reaped; the process object that started it does that.
 */
void sig_handler(int signalNumber);

#endif
