#include "kernelevents.h"

#include "deadline.h"
#include "files.h"

#include <QTest>

#include <algorithm>
#include <linux/netlink.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{
/** The kernel's table of netlink sockets for device events, split into columns. */
QList<QByteArrayList> listenerTable()
{
    const QByteArray protocol = QByteArray::number(NETLINK_KOBJECT_UEVENT);
    QList<QByteArrayList> table;
    for (const QByteArray &line : readFile(QStringLiteral("/proc/net/netlink")).split('\n')) {
        const QByteArrayList columns = line.simplified().split(' ');
        const bool isListener =
            columns.size() > 8 && columns[1] == protocol && columns[3].toUInt(nullptr, 16) != 0;
        if (isListener)
            table << columns;
    }
    return table;
}
} // namespace

int KernelEvents::listeners()
{
    return listenerTable().size();
}

unsigned int KernelEvents::groups()
{
    unsigned int groups = 0;
    for (const QByteArrayList &columns : listenerTable())
        groups |= columns[3].toUInt(nullptr, 16);
    return groups;
}

bool KernelEvents::waitForListeners(int count)
{
    return QTest::qWaitFor([count] { return listeners() == count; }, deadlineMs);
}

int KernelEvents::undelivered()
{
    int drops = 0;
    for (const QByteArrayList &columns : listenerTable())
        drops += columns[8].toInt();
    return drops;
}

bool KernelEvents::waitForEmptyQueues()
{
    const auto areEmpty = [] {
        const QList<QByteArrayList> table = listenerTable();
        return std::all_of(table.begin(), table.end(),
                           [](const QByteArrayList &columns) { return columns[4] == "0"; });
    };
    return QTest::qWaitFor(areEmpty, deadlineMs);
}

bool KernelEvents::isRoomUnlimited()
{
    const int descriptor = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT);
    const int size = 4096;
    const bool isUnlimited =
        setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) == 0;
    close(descriptor);
    return isUnlimited;
}
