#include "notifysocket.h"

#include <cstddef>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

NotifySocket::~NotifySocket()
{
    close();
}

bool NotifySocket::listen(const QString &name)
{
    close();
    const QByteArray encoded = name.toLocal8Bit();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, encoded.constData(), size_t(encoded.size()));
    if (encoded.startsWith('@'))
        address.sun_path[0] = '\0';
    else
        m_file = encoded;
    m_socket = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    return bind(m_socket, reinterpret_cast<const sockaddr *>(&address),
                socklen_t(offsetof(sockaddr_un, sun_path) + size_t(encoded.size()))) == 0;
}

void NotifySocket::close()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
    if (!m_file.isEmpty())
        unlink(m_file.constData());
    m_file.clear();
}

bool NotifySocket::takePing(int timeoutMs)
{
    pollfd ready = {m_socket, POLLIN, 0};
    if (poll(&ready, 1, timeoutMs) != 1)
        return false;
    char text[100];
    const ssize_t size = recv(m_socket, text, sizeof text, 0);
    return QByteArray(text, int(qMax<ssize_t>(size, 0))) == "WATCHDOG=1";
}
