#include "kysdcardthread.h"

#include "uevent.h"

#include <csignal>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{
// Netlink multicast groups of device events: the kernel's group and one that the platform adds.
constexpr unsigned int eventGroups = 0x11;

// Room for ten thousand of the kernel's largest events. The kernel doubles this size, for its own
// bookkeeping.
constexpr int receiveBufferBytes = 32 * 1024 * 1024;

using EventBuffer = char[4096];

/** Blocks all signals, so that they do not interrupt a receive; other threads handle them. */
void leaveSignalsToOthers()
{
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

/**
 * Enlarges the receive buffer, so that a burst loses no event. Turns off ENOBUFS, the error that a
 * lost event would cause.
 */
void prepareForBursts(int descriptor)
{
    const int size = receiveBufferBytes;
    // Without CAP_NET_ADMIN the system's limit applies.
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    const int on = 1;
    setsockopt(descriptor, SOL_NETLINK, NETLINK_NO_ENOBUFS, &on, sizeof on);
}

int bindToEvents(int descriptor)
{
    sockaddr_nl address = {};
    address.nl_family = AF_NETLINK;
    address.nl_groups = eventGroups;
    return bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address);
}

/**
 * Receives an event into @p buffer and terminates the buffer with a zero byte. Returns the event's
 * length; a negative number on failure.
 */
ssize_t receive(int descriptor, EventBuffer &buffer)
{
    sockaddr_nl sender = {};
    iovec part = {buffer, sizeof buffer};
    msghdr message = {};
    message.msg_name = &sender;
    message.msg_namelen = sizeof sender;
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    const ssize_t length = recvmsg(descriptor, &message, 0);
    buffer[sizeof buffer - 1] = '\0';
    return length;
}
} // namespace

KySdcardThread::KySdcardThread() : m_stopRequested(false) {}

void KySdcardThread::run()
{
    leaveSignalsToOthers();
    const int descriptor = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT);
    prepareForBursts(descriptor);
    // bindToEvents() also fails if there is no socket.
    if (bindToEvents(descriptor) == 0)
        listen(descriptor);
    close(descriptor);
}

void KySdcardThread::stop()
{
    m_stopRequested = true;
}

void KySdcardThread::listen(int descriptor)
{
    EventBuffer buffer;
    while (!m_stopRequested) {
        const ssize_t length = receive(descriptor, buffer);
        if (length < 0)
            return;
        switch (storageEvent({buffer, static_cast<size_t>(length)})) {
        case StorageEvent::SdCardInserted:
            Q_EMIT sdcardEvent(true);
            break;
        case StorageEvent::SdCardRemoved:
            Q_EMIT sdcardEvent(false);
            break;
        case StorageEvent::UsbKeyInserted:
            Q_EMIT usbKeyEvent(true);
            break;
        case StorageEvent::UsbKeyRemoved:
            Q_EMIT usbKeyEvent(false);
            break;
        case StorageEvent::None:
            break;
        }
    }
}
