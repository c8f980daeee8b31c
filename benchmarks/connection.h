#ifndef CONNECTION_H
#define CONNECTION_H

#include <dbus/dbus.h>

/*
 * What the programs of the benchmark share. A failure ends the program with a line on standard
 * error: a figure that was measured in part is none.
 */

/** A connection of its own to the system bus, which waits for nothing by itself. */
DBusConnection *connectToBus(void);

/**
 * The call that @p words describe: a service, an object path, a method with its interface in front
 * and, as often as wanted, a text argument. Ends the program where words are missing.
 */
DBusMessage *callFromWords(char **words, int count);

/** A copy of @p call to be sent; a message can be sent only once. */
DBusMessage *nextCall(DBusMessage *call);

/** Ends the program unless @p reply is an ordinary reply. */
void expectReply(DBusMessage *reply);

/** Ends the program. */
void fail(const char *what, const char *why);

/** Microseconds on a clock that only runs forward. */
double now(void);

/** A whole number above 0 in @p text, or the end of the program. */
int positiveNumber(const char *text);

#endif
