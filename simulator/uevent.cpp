/**
 * Sends a kernel event with any content to every listener in this network namespace.
 *
 * usage: uevent [--count N] TEXT...    terminates each text with a zero byte, as the kernel does
 *        uevent [--count N] -          sends standard input unchanged
 */

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <linux/netlink.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace
{
constexpr unsigned int kernelEvents = 1;

[[noreturn]] void fail(const char *what)
{
    std::perror(what);
    std::exit(1);
}

[[noreturn]] void usage()
{
    std::cerr << "usage: uevent [--count N] TEXT...|-\n";
    std::exit(2);
}

std::string messageOf(int count, char *texts[])
{
    if (count == 1 && std::strcmp(texts[0], "-") == 0)
        return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    std::string message;
    for (int index = 0; index < count; ++index)
        message.append(texts[index]).push_back('\0');
    return message;
}

int openSocket()
{
    const int channel = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT);
    if (channel < 0)
        fail("socket");
    return channel;
}

void sendMessage(int channel, const std::string &message)
{
    sockaddr_nl everybody = {};
    everybody.nl_family = AF_NETLINK;
    everybody.nl_groups = kernelEvents;
    const ssize_t sent = sendto(channel, message.data(), message.size(), 0,
                                reinterpret_cast<sockaddr *>(&everybody), sizeof everybody);
    if (sent != static_cast<ssize_t>(message.size()))
        fail("sendto");
}
} // namespace

int main(int argc, char *argv[])
{
    int first = 1;
    long count = 1;
    if (argc > 2 && std::strcmp(argv[1], "--count") == 0) {
        char *end = nullptr;
        count = std::strtol(argv[2], &end, 10);
        if (end == argv[2] || *end != '\0' || count < 0)
            usage();
        first = 3;
    }
    if (first >= argc)
        usage();
    const std::string message = messageOf(argc - first, argv + first);
    const int channel = openSocket();
    for (long index = 0; index < count; ++index)
        sendMessage(channel, message);
    return 0;
}
