#include "journal.h"

#include "render.h"

QString journalLine(const QDBusMessage &call)
{
    const QString interface =
        call.interface().mid(call.interface().lastIndexOf(QLatin1Char('.')) + 1);
    return interface + QLatin1Char('.') + call.member() + QLatin1Char(' ') + call.path() +
           QLatin1Char(' ') + render(call.arguments());
}
