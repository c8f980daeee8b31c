#ifndef WIFITRACE_H
#define WIFITRACE_H

#include <QString>

/** One step of the Wi-Fi station, as the trace file tells it. */
struct WifiTraceRecord {
    /** The method that ends with this record. */
    QString method;
    /** What is under way, as in "OP:scan". */
    QString operation;
    /** The name of the station's state. */
    QString state;
    /** The network that the last connect named. */
    QString requestedService;
};

/** @p record as the lines of the trace file, in UTF-8. */
QByteArray wifiTraceLines(const WifiTraceRecord &record);

/**
 * Appends @p record to "/tmp/logkywifi", in one write; a file that cannot be written is ignored.
 * A file that has 4 MiB stays as it is until it is rotated.
 */
void appendWifiTrace(const WifiTraceRecord &record);

#endif
