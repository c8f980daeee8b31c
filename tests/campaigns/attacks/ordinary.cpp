// An ordinary client: calls a method ten times a second and waits for each reply.
// usage: ordinary SECONDS SERVICE PATH INTERFACE METHOD
// At the end, or at SIGTERM, it prints the number of calls that were answered, refused by the bus
// and lost, and the longest wait in milliseconds:
//   answered 300 refused 0 lost 0 longest 12
#include "bus.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <thread>

namespace
{
/** The timeout of a reply: the usual one of D-Bus clients. */
constexpr double timeoutSeconds = 25;

volatile std::sig_atomic_t hasToEnd = 0;

struct Tally {
    int answered = 0;
    int refused = 0;
    int lost = 0;
    double longest = 0;
};

/** Returns the reply to the call of @p serial; null at the end of the connection or the timeout. */
Message waitForReply(Bus &bus, dbus_uint32_t serial)
{
    const double deadline = now() + timeoutSeconds;
    while (now() < deadline && bus.isConnected()) {
        Message message = bus.next(100);
        if (message && dbus_message_get_reply_serial(message.get()) == serial)
            return message;
    }
    return nullptr;
}

void count(const Message &reply, Tally &tally)
{
    if (!reply || dbus_message_is_error(reply.get(), DBUS_ERROR_NO_REPLY))
        ++tally.lost;
    else if (dbus_message_get_type(reply.get()) == DBUS_MESSAGE_TYPE_ERROR)
        ++tally.refused;
    else
        ++tally.answered;
}

void callOnce(Bus &bus, const Method &method, Tally &tally)
{
    const double start = now();
    count(waitForReply(bus, bus.send(newCall(method))), tally);
    tally.longest = std::max(tally.longest, now() - start);
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc != 6)
        fail("usage: ordinary SECONDS SERVICE PATH INTERFACE METHOD");
    if (std::signal(SIGTERM, [](int) { hasToEnd = 1; }) == SIG_ERR)
        fail("SIGTERM cannot be caught");
    const Method method = {argv[2], argv[3], argv[4], argv[5]};
    const double end = now() + readSeconds(argv[1]);
    Tally tally;
    auto bus = std::make_unique<Bus>();
    while (hasToEnd == 0 && now() < end) {
        if (!bus->isConnected())
            bus = std::make_unique<Bus>();
        callOnce(*bus, method, tally);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    std::printf("answered %d refused %d lost %d longest %.0f\n", tally.answered, tally.refused,
                tally.lost, tally.longest * 1000);
}
