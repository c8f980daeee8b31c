#ifndef LOGGING_H
#define LOGGING_H

#include <cstddef>

/**
 * Writes @p text to @p descriptor as far as it can be written at once, and drops the rest: nobody
 * may be reading. Safe in a signal handler.
 */
void writeWithoutWaiting(int descriptor, const char *text, size_t size);

/**
 * Has messages be logged to stderr, in the form that Qt gives them, without ever waiting for
 * whoever reads them, and keeps SIGPIPE from ending the process when nobody does any more. Child
 * processes have SIGPIPE's default.
 */
void logWithoutWaiting();

#endif
