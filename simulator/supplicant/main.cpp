#include "busface.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    BusFace face;
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.registerVirtualObject(Supplicant::path, &face, QDBusConnection::SubPath) ||
        !bus.registerService(QStringLiteral("fi.w1.wpa_supplicant1"))) {
        static_cast<void>(
            std::fprintf(stderr, "wpa_supplicant: %s\n", qPrintable(bus.lastError().message())));
        return EXIT_FAILURE;
    }
    return QCoreApplication::exec();
}
