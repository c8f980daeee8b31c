#ifndef WIFITRACE_H
#define WIFITRACE_H

#include "linkmachine.h"

#include <QString>

/** One step of the Wi-Fi station in the trace file. */
struct WifiTraceRecord {
    /** The method whose end this record marks. */
    QString method;
    /** The operation in progress, for example "OP:scan". */
    QString operation;
    /** The name of the station's state. */
    QString state;
    /** The network of the last connect. */
    QString requestedService;
};

/** The name that the trace gives to an event of the station. */
struct WifiTraceMethod {
    /** Null if the trace does not record the event. */
    const char *name;
    /** True if the event is also recorded when the table ignores it. */
    bool isTracedWhenIgnored;
};

/** Returns how the trace names @p event; without a name, the trace does not record the event. */
WifiTraceMethod wifiTraceMethod(LinkEvent event);

/** Returns the trace's name of @p operation. */
QString wifiTraceOperation(LinkOperation operation);

/** Returns @p record as the lines of the trace file, in UTF-8. */
QByteArray wifiTraceLines(const WifiTraceRecord &record);

/**
 * Appends @p record to "/tmp/logkywifi" with one write; errors are ignored. A file of 4 MiB or more
 * gets no further records until it is rotated.
 */
void appendWifiTrace(const WifiTraceRecord &record);

#endif
