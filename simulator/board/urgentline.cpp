#include "urgentline.h"

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>

namespace board
{
namespace
{
constexpr int connectTimeoutMs = 250;

/** Waits until the connection is established; fails if the loopback interface is down. */
bool waitForConnection(int sender)
{
    pollfd waited = {sender, POLLOUT, 0};
    int error = 0;
    socklen_t length = sizeof error;
    return poll(&waited, 1, connectTimeoutMs) == 1 &&
           getsockopt(sender, SOL_SOCKET, SO_ERROR, &error, &length) == 0 && error == 0;
}

bool connectOverLoopback(Descriptor &sender, Descriptor &receiver)
{
    const int type = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;
    sockaddr_in here = {};
    here.sin_family = AF_INET;
    here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof here;
    sockaddr *address = reinterpret_cast<sockaddr *>(&here);
    const Descriptor listener(socket(AF_INET, type, 0));
    sender.reset(socket(AF_INET, type, 0));
    if (bind(listener.get(), address, length) != 0 || listen(listener.get(), 1) != 0 ||
        getsockname(listener.get(), address, &length) != 0 ||
        (connect(sender.get(), address, length) != 0 && errno != EINPROGRESS) ||
        !waitForConnection(sender.get()))
        return false;

    sockaddr_in caller = {};
    length = sizeof caller;
    receiver.reset(accept4(listener.get(), reinterpret_cast<sockaddr *>(&caller), &length,
                           SOCK_CLOEXEC | SOCK_NONBLOCK));
    // Another program may have connected to the listener first.
    length = sizeof here;
    return receiver.isOpen() && getsockname(sender.get(), address, &length) == 0 &&
           caller.sin_port == here.sin_port;
}
} // namespace

bool UrgentLine::open()
{
    if (m_receiver.isOpen())
        return true;
    if (!connectOverLoopback(m_sender, m_receiver)) {
        m_sender.reset();
        m_receiver.reset();
        return false;
    }
    // Send each byte at once (TCP_NODELAY), without waiting for the acknowledgement of the previous
    // byte.
    const int on = 1;
    setsockopt(m_sender.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return true;
}

void UrgentLine::raise()
{
    if (m_sender.isOpen())
        send(m_sender.get(), "!", 1, MSG_OOB | MSG_DONTWAIT | MSG_NOSIGNAL);
}

void UrgentLine::clear()
{
    char rest[8];
    while (m_receiver.isOpen() && read(m_receiver.get(), rest, sizeof rest) > 0) {
    }
}
} // namespace board
