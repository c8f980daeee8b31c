/*
 * Subscribes many clients to a signal.
 *
 * usage: listen CLIENTS SIGNALS RULE
 *
 * Prints "ready" when every client has subscribed. Waits until each client has received SIGNALS
 * signals, or until standard input ends. Then prints, as JSON, the smallest number of signals that
 * a client has received, and the seconds from "ready" until the last signal.
 */

#include "connection.h"

#include <poll.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

struct Client {
    DBusConnection *connection;
    int received;
};

static int wanted;
static int complete = 0;
static double last = 0;

static DBusHandlerResult count(DBusConnection *connection, DBusMessage *message, void *data)
{
    (void)connection;
    struct Client *client = data;
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_SIGNAL ||
        dbus_message_has_sender(message, DBUS_SERVICE_DBUS))
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    last = now();
    if (++client->received == wanted)
        ++complete;
    return DBUS_HANDLER_RESULT_HANDLED;
}

static void takeSignals(struct Client *client)
{
    dbus_connection_read_write(client->connection, 0);
    while (dbus_connection_dispatch(client->connection) == DBUS_DISPATCH_DATA_REMAINS) {
    }
}

static void subscribe(struct Client *client, const char *rule)
{
    DBusError error = DBUS_ERROR_INIT;
    client->connection = connectToBus();
    dbus_connection_add_filter(client->connection, count, client, NULL);
    dbus_bus_add_match(client->connection, rule, &error);
    if (dbus_error_is_set(&error))
        fail(error.name, error.message);
}

int main(int argc, char **argv)
{
    if (argc != 4)
        fail("usage", "listen CLIENTS SIGNALS RULE");
    const int clientCount = positiveNumber(argv[1]);
    wanted = positiveNumber(argv[2]);
    struct Client *clients = calloc((size_t)clientCount, sizeof *clients);
    struct pollfd *polled = calloc((size_t)clientCount + 1, sizeof *polled);
    for (int index = 0; index < clientCount; ++index) {
        subscribe(&clients[index], argv[3]);
        dbus_connection_get_unix_fd(clients[index].connection, &polled[index].fd);
        polled[index].events = POLLIN;
    }
    polled[clientCount].fd = STDIN_FILENO;
    polled[clientCount].events = POLLIN;

    if (puts("ready") == EOF || fflush(stdout) != 0)
        fail("standard output", "cannot be written");
    const double start = now();
    // Count the signals that were read while the last clients subscribed.
    for (int index = 0; index < clientCount; ++index)
        takeSignals(&clients[index]);
    while (complete < clientCount && polled[clientCount].revents == 0) {
        poll(polled, (nfds_t)clientCount + 1, -1);
        for (int index = 0; index < clientCount; ++index) {
            if (polled[index].revents != 0)
                takeSignals(&clients[index]);
        }
    }
    int fewest = clients[0].received;
    for (int index = 1; index < clientCount; ++index)
        fewest = clients[index].received < fewest ? clients[index].received : fewest;
    printf("{\"received\": %d, \"seconds\": %.6f}\n", fewest, last > 0 ? (last - start) / 1e6 : 0);
    free(polled);
    free(clients);
    return 0;
}
