#include "busface.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    registerListedObjects();
    BusFace face;
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.registerVirtualObject(QStringLiteral("/"), &face, QDBusConnection::SubPath) ||
        !bus.registerService(QStringLiteral("net.connman"))) {
        static_cast<void>(
            std::fprintf(stderr, "connmand: %s\n", qPrintable(bus.lastError().message())));
        return EXIT_FAILURE;
    }
    return QCoreApplication::exec();
}
