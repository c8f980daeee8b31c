#include "wifitrace.h"

#include "regularfile.h"

#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
/** Limits the size of the trace file: clients determine the number and length of its records. */
constexpr off_t mostBytes = 4 << 20;

const struct {
    LinkEvent event;
    WifiTraceMethod method;
} methods[] = {
    {LinkEvent::ScanCalled, {"scan", true}},
    {LinkEvent::ConnectCalled, {"connect", true}},
    {LinkEvent::DisconnectCalled, {"disconnect", true}},
    {LinkEvent::ScriptEnded, {"slotLoadFirmwareFinished", true}},
    {LinkEvent::ModuleReady, {"slotLoadFirmwareFinishedDelayed", true}},
    {LinkEvent::TechnologyOn, {"technologyPropertyChangedSlot", true}},
    {LinkEvent::TechnologyOff, {"technologyPropertyChangedSlot", true}},
    {LinkEvent::TechnologyConnected, {"technologyPropertyChangedSlot", true}},
    {LinkEvent::TechnologyOther, {"technologyPropertyChangedSlot", true}},
    {LinkEvent::ServicesChanged, {"servicesChangedSlot", true}},
    {LinkEvent::ServiceStrength, {"servicePropertyChangedSlot", true}},
    {LinkEvent::ServiceError, {"servicePropertyChangedSlot", true}},
    {LinkEvent::ServiceAddress, {"servicePropertyChangedSlot", true}},
    {LinkEvent::ServiceOther, {"servicePropertyChangedSlot", true}},
    {LinkEvent::TimeIsOver, {"timeoutMonitoring", true}},
    {LinkEvent::LeavingIsOver, {"timeoutMonitoring", false}},
    {LinkEvent::ConnectFailed, {"sendRequestConnect", false}},
};

bool hasRoom(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 && status.st_size < mostBytes;
}
} // namespace

WifiTraceMethod wifiTraceMethod(LinkEvent event)
{
    for (const auto &row : methods) {
        if (row.event == event)
            return row.method;
    }
    return {nullptr, false};
}

QString wifiTraceOperation(LinkOperation operation)
{
    switch (operation) {
    case LinkOperation::Scan:
        return QStringLiteral("OP:scan");
    case LinkOperation::Connect:
        return QStringLiteral("OP:connect");
    case LinkOperation::None:
        break;
    }
    return QStringLiteral("OP:none");
}

QByteArray wifiTraceLines(const WifiTraceRecord &record)
{
    const QStringList lines = {QStringLiteral("----------------------------"), record.method,
                               record.operation, record.state, record.requestedService};
    return (lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8();
}

void appendWifiTrace(const WifiTraceRecord &record)
{
    const Descriptor descriptor = openRegularFile("/tmp/logkywifi", O_APPEND, 0777);
    // File descriptor 0 means that stdin was closed: a standard stream must not become the trace.
    if (descriptor.get() <= 0 || !hasRoom(descriptor.get()))
        return;
    const QByteArray lines = wifiTraceLines(record);
    const ssize_t written = write(descriptor.get(), lines.constData(), size_t(lines.size()));
    static_cast<void>(written);
}
