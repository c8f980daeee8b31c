#ifndef LOGGING_H
#define LOGGING_H

#include <cstddef>

/**
 * Writes the part of @p text that @p descriptor accepts without blocking, and drops the rest.
 * Async-signal-safe.
 */
void writeWithoutWaiting(int descriptor, const char *text, size_t size);

/**
 * Makes Qt log to stderr, in its usual format, without ever blocking on a full pipe. Also prevents
 * SIGPIPE from ending the process when the pipe has no reader. Child processes have SIGPIPE's
 * default disposition.
 */
void logWithoutWaiting();

#endif
