#include "networkinterface.h"

#include <QFile>

#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{
/** Returns the kernel's flags of an interface; 0 if there is no such interface. */
int kernelFlags(const QNetworkInterface &interface)
{
    ifreq request = {};
    const QByteArray name = interface.name().toLocal8Bit();
    const int descriptor = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return 0;
    qstrncpy(request.ifr_name, name.constData(), IFNAMSIZ);
    const bool known = ioctl(descriptor, SIOCGIFFLAGS, &request) == 0;
    close(descriptor);
    return known ? request.ifr_flags : 0;
}
} // namespace

QNetworkInterface findNetworkInterface(const QString &name)
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        if (interface.name() == name)
            return interface;
    }
    return QNetworkInterface();
}

bool isUp(const QNetworkInterface &interface)
{
    return kernelFlags(interface) & IFF_UP;
}

bool isRunning(const QNetworkInterface &interface)
{
    return kernelFlags(interface) & IFF_RUNNING;
}

std::optional<ushort> maximumTransmissionUnit(const QNetworkInterface &interface)
{
    QFile file(QStringLiteral("/sys/class/net/%1/mtu").arg(interface.name()));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    bool isNumber = false;
    const ushort size = file.readAll().trimmed().toUShort(&isNumber);
    return isNumber ? std::optional<ushort>(size) : std::nullopt;
}
