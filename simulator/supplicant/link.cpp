#include "link.h"

#include <QByteArray>

#include <cstring>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

bool setLinkUp(const QString &interfaceName, bool up)
{
    const QByteArray name = interfaceName.toUtf8();
    ifreq request = {};
    if (name.isEmpty() || name.size() >= int(sizeof request.ifr_name))
        return false;
    std::memcpy(request.ifr_name, name.constData(), std::size_t(name.size()));
    const int descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool done = ioctl(descriptor, SIOCGIFFLAGS, &request) == 0;
    if (done) {
        const int flags = up ? request.ifr_flags | IFF_UP : request.ifr_flags & ~IFF_UP;
        request.ifr_flags = static_cast<short>(flags);
        done = ioctl(descriptor, SIOCSIFFLAGS, &request) == 0;
    }
    close(descriptor);
    return done;
}
