#include "wifitrace.h"

#include "regularfile.h"

#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
/** Callers decide how many records there are and how long: they must not fill the disk. */
const off_t mostBytes = 4 << 20;

bool hasRoom(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && status.st_size < mostBytes;
}
} // namespace

QByteArray wifiTraceLines(const WifiTraceRecord &record)
{
    const QStringList lines = {QStringLiteral("----------------------------"), record.method,
                               record.operation, record.state, record.requestedService};
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

void appendWifiTrace(const WifiTraceRecord &record)
{
    const int descriptor = openRegularFile("/tmp/logkywifi", O_APPEND, 0777);
    if (descriptor < 0)
        return;
    // A standard stream that was closed must not become the trace.
    if (descriptor > 0 && hasRoom(descriptor)) {
        const QByteArray lines = wifiTraceLines(record);
        const ssize_t written = write(descriptor, lines.constData(), size_t(lines.size()));
        static_cast<void>(written);
    }
    close(descriptor);
}
