#include "connection.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

void fail(const char *what, const char *why)
{
    (void)fprintf(stderr, "%s: %s\n", what, why);
    exit(1);
}

double now(void)
{
    struct timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return (double)time.tv_sec * 1e6 + (double)time.tv_nsec / 1e3;
}

int positiveNumber(const char *text)
{
    char *end = NULL;
    const long number = strtol(text, &end, 10);
    if (end == text || *end != '\0' || number < 1 || number > 100000000)
        fail("not a number above 0", text);
    return (int)number;
}

DBusConnection *connectToBus(void)
{
    DBusError error = DBUS_ERROR_INIT;
    DBusConnection *connection = dbus_bus_get_private(DBUS_BUS_SYSTEM, &error);
    if (!connection)
        fail("bus", error.message);
    return connection;
}

DBusMessage *callFromWords(char **words, int count)
{
    if (count < 3)
        fail("missing", "SERVICE PATH INTERFACE.METHOD [TEXT...]");
    char *dot = strrchr(words[2], '.');
    if (!dot)
        fail("no interface", words[2]);
    *dot = '\0';
    DBusMessage *call = dbus_message_new_method_call(words[0], words[1], words[2], dot + 1);
    *dot = '.';
    for (int index = 3; index < count; ++index)
        dbus_message_append_args(call, DBUS_TYPE_STRING, &words[index], DBUS_TYPE_INVALID);
    return call;
}

DBusMessage *nextCall(DBusMessage *call)
{
    DBusMessage *copy = dbus_message_copy(call);
    if (!copy)
        fail("call", "out of memory");
    return copy;
}

void expectReply(DBusMessage *reply)
{
    DBusError error = DBUS_ERROR_INIT;
    if (dbus_set_error_from_message(&error, reply))
        fail(error.name, error.message);
}
