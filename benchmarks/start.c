/*
 * Starts a service and prints the microseconds until it owns its bus name.
 *
 * usage: start NAME PROGRAM [ARGUMENT...]
 *
 * Ends the service afterwards.
 */

#include "connection.h"

#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

static double named = 0;

static DBusHandlerResult notice(DBusConnection *connection, DBusMessage *message, void *name)
{
    const char *owned;
    const char *before;
    const char *after;
    (void)connection;
    if (dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged") &&
        dbus_message_get_args(message, NULL, DBUS_TYPE_STRING, &owned, DBUS_TYPE_STRING, &before,
                              DBUS_TYPE_STRING, &after, DBUS_TYPE_INVALID) &&
        strcmp(owned, name) == 0 && *after != '\0')
        named = now();
    return DBUS_HANDLER_RESULT_HANDLED;
}

int main(int argc, char **argv)
{
    if (argc < 3)
        fail("usage", "start NAME PROGRAM [ARGUMENT...]");
    DBusError error = DBUS_ERROR_INIT;
    DBusConnection *connection = connectToBus();
    char rule[300];
    const int length =
        snprintf(rule, sizeof rule, "type='signal',member='NameOwnerChanged',arg0='%s'", argv[1]);
    if (length < 0 || (size_t)length >= sizeof rule)
        fail("not a name of the bus", argv[1]);
    dbus_connection_add_filter(connection, notice, argv[1], NULL);
    dbus_bus_add_match(connection, rule, &error);
    if (dbus_error_is_set(&error))
        fail(error.name, error.message);

    const double start = now();
    const pid_t child = fork();
    if (child == 0) {
        execvp(argv[2], argv + 2);
        fail("cannot start", argv[2]);
    }
    while (named == 0 && waitpid(child, NULL, WNOHANG) == 0 && now() - start < 20e6)
        dbus_connection_read_write_dispatch(connection, 100);
    kill(child, SIGTERM);
    waitpid(child, NULL, 0);
    if (named == 0)
        fail("has no name", argv[2]);
    printf("%.1f\n", named - start);
    return 0;
}
