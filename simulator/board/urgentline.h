#ifndef URGENTLINE_H
#define URGENTLINE_H

#include "descriptor.h"

/**
 * A line that signals urgent data, as a GPIO's value file does at an edge: a connection over the
 * loopback interface, because only TCP sockets have urgent data on every kernel.
 */
class UrgentLine
{
public:
    /** Establishes the connection; returns true if it exists, new or old. */
    bool open();

    /** The end that signals; non-blocking. -1 if there is none. */
    int descriptor() const { return m_receiver.get(); }

    /** Signals urgent data until a reader consumes it. */
    void raise();

    /** Withdraws a signal that has not been read. */
    void clear();

private:
    Descriptor m_sender;
    Descriptor m_receiver;
};

#endif
