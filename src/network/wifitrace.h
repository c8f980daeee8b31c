#ifndef WIFITRACE_H
#define WIFITRACE_H

#include "linkmachine.h"

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

/** The method that an event of the station ends with a record of. */
struct WifiTraceMethod {
    /** Null for an event that has no record of its own. */
    const char *name;
    /** Whether there is a record also where the event is ignored. */
    bool isTracedWhenIgnored;
};

WifiTraceMethod wifiTraceMethod(LinkEvent event);

/** How the trace names @p operation. */
QString wifiTraceOperation(LinkOperation operation);

/** @p record as the lines of the trace file, in UTF-8. */
QByteArray wifiTraceLines(const WifiTraceRecord &record);

/**
 * Appends @p record to "/tmp/logkywifi", in one write; a file that cannot be written is ignored.
 * A file that has 4 MiB stays as it is until it is rotated.
 */
void appendWifiTrace(const WifiTraceRecord &record);

#endif
