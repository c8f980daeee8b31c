#include "choices.h"
#include "require.h"
#include "wifitrace.h"

/** Trace records with any network name. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    WifiTraceRecord record = {QStringLiteral("connect"), QStringLiteral("OP:connect"),
                              QStringLiteral("idle"), QString::fromStdString(choices.text())};
    record.requestedService.append(QString::fromUtf8(choices.rest().c_str()));
    const QByteArray lines = wifiTraceLines(record);
    require(lines.endsWith('\n'), "a record ends with a line feed");
    require(lines.count('\n') == 5 + record.requestedService.count(QLatin1Char('\n')),
            "a record has five lines");
    return 0;
}
