#include "childsignal.h"

#include "logging.h"

#include <cerrno>
#include <csignal>
#include <unistd.h>

void sig_handler(int signalNumber)
{
    if (signalNumber != SIGCHLD)
        return;
    static constexpr char line[] = "signal SIGCHLD received\n";
    const int callersErrno = errno;
    // Nothing depends on this line: it may be lost.
    writeWithoutWaiting(STDOUT_FILENO, line, sizeof line - 1);
    errno = callersErrno;
}
