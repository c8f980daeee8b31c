#include "wifitrace.h"

#include "regularfile.h"

#include <QStringList>

#include <fcntl.h>
#include <unistd.h>

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
    if (descriptor > 0) {
        const QByteArray lines = wifiTraceLines(record);
        const ssize_t written = write(descriptor, lines.constData(), size_t(lines.size()));
        static_cast<void>(written);
    }
    close(descriptor);
}
