/*
 * Calls a method repeatedly and prints the durations of the calls, in microseconds, as JSON.
 *
 * usage: call [OPTION...] SERVICE PATH INTERFACE.METHOD [TEXT...]
 *   --calls N     number of calls of all clients together (1000)
 *   --clients N   number of connections that call concurrently (1)
 *   --window N    number of pending calls of each connection (1)
 *   --every US    starts a call every US microseconds, even while other calls are pending (at most
 *                 a hundred), until standard input ends
 */

// For ppoll().
#define _GNU_SOURCE

#include "connection.h"

#include <poll.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

struct Client {
    DBusConnection *connection;
    int underWay;
};

/*
 * A factory reset waits until the whole file system is synchronised, including other programs'
 * data. On a busy disk this takes longer than libdbus's default timeout of 25 s.
 */
static const int timeoutMs = 600 * 1000;

/* The bus allows a client at most 128 pending replies. */
static const int mostUnderWay = 100;

static int calls = 1000;
static int clientCount = 1;
static int window = 1;
static int interval = 0;

static DBusMessage *template;
static struct Client *clients;
static double *durations;
static int begun = 0;
static int done = 0;

struct Call {
    struct Client *client;
    double start;
};

static void finish(DBusPendingCall *pending, void *data)
{
    struct Call *call = data;
    DBusMessage *reply = dbus_pending_call_steal_reply(pending);
    durations[done++] = now() - call->start;
    expectReply(reply);
    dbus_message_unref(reply);
    dbus_pending_call_unref(pending);
    --call->client->underWay;
}

static void begin(struct Client *client)
{
    DBusMessage *message = nextCall(template);
    DBusPendingCall *pending = NULL;
    struct Call *call = malloc(sizeof *call);
    call->client = client;
    call->start = now();
    if (!dbus_connection_send_with_reply(client->connection, message, &pending, timeoutMs) ||
        !pending)
        fail("call", "the connection is gone");
    dbus_pending_call_set_notify(pending, finish, call, free);
    dbus_message_unref(message);
    ++client->underWay;
    ++begun;
}

static void takeReplies(struct Client *client)
{
    if (!dbus_connection_read_write(client->connection, 0))
        fail("call", "the connection is gone");
    while (dbus_connection_dispatch(client->connection) == DBUS_DISPATCH_DATA_REMAINS) {
    }
}

/* One client that makes one call at a time, as most programs do. */
static void callOneByOne(void)
{
    DBusConnection *connection = clients[0].connection;
    for (; done < calls; ++done) {
        DBusError error = DBUS_ERROR_INIT;
        DBusMessage *message = nextCall(template);
        const double start = now();
        DBusMessage *reply =
            dbus_connection_send_with_reply_and_block(connection, message, timeoutMs, &error);
        durations[done] = now() - start;
        if (!reply)
            fail(error.name, error.message);
        dbus_message_unref(message);
        dbus_message_unref(reply);
    }
}

static void callAtOnce(void)
{
    struct pollfd *polled = calloc((size_t)clientCount, sizeof *polled);
    for (int index = 0; index < clientCount; ++index) {
        dbus_connection_get_unix_fd(clients[index].connection, &polled[index].fd);
        polled[index].events = POLLIN;
    }
    while (done < calls) {
        for (int index = 0; index < clientCount; ++index) {
            struct Client *client = &clients[index];
            while (begun < calls && client->underWay < window)
                begin(client);
            dbus_connection_flush(client->connection);
        }
        poll(polled, (nfds_t)clientCount, -1);
        for (int index = 0; index < clientCount; ++index) {
            if (polled[index].revents != 0)
                takeReplies(&clients[index]);
        }
    }
    free(polled);
}

static void callPeriodically(void)
{
    struct pollfd polled[2] = {{.events = POLLIN}, {.fd = STDIN_FILENO, .events = POLLIN}};
    dbus_connection_get_unix_fd(clients[0].connection, &polled[0].fd);
    double next = now();
    bool ending = false;
    while (!ending || done < begun) {
        const bool mayBegin = !ending && clients[0].underWay < mostUnderWay;
        const double wait = next - now();
        if (mayBegin && wait <= 0) {
            begin(&clients[0]);
            dbus_connection_flush(clients[0].connection);
            next = now() + interval;
            continue;
        }
        const struct timespec pause = {0, wait > 0 ? (long)(wait * 1e3) % 1000000000 : 0};
        ppoll(polled, ending ? 1 : 2, mayBegin ? &pause : NULL, NULL);
        takeReplies(&clients[0]);
        ending = ending || polled[1].revents != 0;
    }
}

static int compare(const void *one, const void *other)
{
    const double difference = *(const double *)one - *(const double *)other;
    return (difference > 0) - (difference < 0);
}

static void printResult(double elapsed)
{
    qsort(durations, (size_t)done, sizeof *durations, compare);
    printf(
        "{\"calls\": %d, \"seconds\": %.6f, \"median\": %.2f, \"p99\": %.2f, \"longest\": %.2f}\n",
        done, elapsed / 1e6, durations[done / 2], durations[done * 99 / 100], durations[done - 1]);
}

/* Returns the index of the first argument that is not an option. */
static int takeOptions(int argc, char **argv)
{
    int index = 1;
    for (; index + 1 < argc && strncmp(argv[index], "--", 2) == 0; index += 2) {
        const int value = positiveNumber(argv[index + 1]);
        if (strcmp(argv[index], "--calls") == 0)
            calls = value;
        else if (strcmp(argv[index], "--clients") == 0)
            clientCount = value;
        else if (strcmp(argv[index], "--window") == 0)
            window = value;
        else if (strcmp(argv[index], "--every") == 0)
            interval = value;
        else
            fail("unknown option", argv[index]);
    }
    return index;
}

int main(int argc, char **argv)
{
    const int first = takeOptions(argc, argv);
    template = callFromWords(argv + first, argc - first);
    if (interval > 0)
        calls = 10000000;
    durations = calloc((size_t)calls, sizeof *durations);
    clients = calloc((size_t)clientCount, sizeof *clients);
    for (int index = 0; index < clientCount; ++index)
        clients[index].connection = connectToBus();

    const double start = now();
    if (interval > 0)
        callPeriodically();
    else if (clientCount == 1 && window == 1)
        callOneByOne();
    else
        callAtOnce();
    printResult(now() - start);
    return 0;
}
