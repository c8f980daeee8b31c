#include "receivelimits.h"

#include <QDBusConnection>

#include <climits>
#include <dlfcn.h>

void liftReceiveLimits(const QDBusConnection &bus)
{
    void *connection = bus.internalPointer();
    // RTLD_NOLOAD finds the copy of libdbus that Qt D-Bus uses. The connection is not valid in any
    // other copy.
    void *library = dlopen("libdbus-1.so.3", RTLD_LAZY | RTLD_NOLOAD);
    if (!connection || !library)
        return;
    for (const char *name :
         {"dbus_connection_set_max_received_size", "dbus_connection_set_max_received_unix_fds"}) {
        using SetLimit = void (*)(void *connection, long limit);
        if (const auto setLimit = reinterpret_cast<SetLimit>(dlsym(library, name)))
            setLimit(connection, LONG_MAX);
    }
    dlclose(library);
}
