#ifndef CONNECTION_H
#define CONNECTION_H

#include <dbus/dbus.h>

/*
 * Code that the benchmark's programs share. A failure ends the program with a line on standard
 * error: a partial measurement is useless.
 */

/** Returns a new, private connection to the system bus; exits on failure. */
DBusConnection *connectToBus(void);

/**
 * Returns the call that @p words describe: a service, an object path, a method with its interface
 * and any number of text arguments. Exits if words are missing.
 */
DBusMessage *callFromWords(char **words, int count);

/** Returns a copy of @p call; a message can be sent only once. */
DBusMessage *nextCall(DBusMessage *call);

/** Exits if @p reply is an error. */
void expectReply(DBusMessage *reply);

/** Prints @p what and @p why, and exits with an error status. */
void fail(const char *what, const char *why);

/** Microseconds of a monotonic clock. */
double now(void);

/** Returns the integer above 0 in @p text, or exits. */
int positiveNumber(const char *text);

#endif
