#ifndef CONNECTION_H
#define CONNECTION_H

#include <dbus/dbus.h>

/*
 * Code that the benchmark's programs share. A failure ends the program with a line on standard
 * error: a partial measurement is useless.
 */

/** Returns a private connection to the system bus that never blocks by itself. */
DBusConnection *connectToBus(void);

/**
 * Returns the call that @p words describe: a service, an object path, a method with its interface
 * and any number of text arguments. Exits if words are missing.
 */
DBusMessage *callFromWords(char **words, int count);

/** Returns a copy of @p call; a message can be sent only once. */
DBusMessage *nextCall(DBusMessage *call);

/** Exits unless @p reply is an ordinary reply. */
void expectReply(DBusMessage *reply);

/** Exits with a message. */
void fail(const char *what, const char *why);

/** Microseconds of a monotonic clock. */
double now(void);

/** Returns the integer above 0 in @p text, or exits. */
int positiveNumber(const char *text);

#endif
