#ifndef CHILDSIGNAL_H
#define CHILDSIGNAL_H

/**
 * Writes the line "signal SIGCHLD received" to stdout when @p signalNumber is SIGCHLD.
 *
 * Async-signal-safe: one non-blocking write, errno preserved. Does not reap the child: QProcess,
 * which started the child, reaps it.
 */
void sig_handler(int signalNumber);

#endif
