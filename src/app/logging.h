#ifndef LOGGING_H
#define LOGGING_H

#include <cstddef>

/**
 * Writes as much of @p text to @p descriptor as it accepts at once and drops the rest. Safe in a
 * signal handler.
 */
void writeWithoutWaiting(int descriptor, const char *text, size_t size);

/**
 * Logs messages to stderr in Qt's format without ever blocking on a full pipe, and prevents SIGPIPE
 * from ending the process when the pipe has no reader. Child processes have SIGPIPE's default
 * disposition.
 */
void logWithoutWaiting();

#endif
