#ifndef URGENTLINE_H
#define URGENTLINE_H

#include "descriptor.h"

namespace board
{
/**
 * A line whose file descriptor has urgent data (POLLPRI) after an interrupt, as the value file of a
 * GPIO has after an edge. The descriptor is one end of a TCP connection over the loopback
 * interface, because only TCP sockets have urgent data on every kernel.
 */
class UrgentLine
{
public:
    /** Establishes the connection unless it exists. Returns false on failure. */
    bool open();

    /**
     * Returns the non-blocking file descriptor at which the signal arrives; -1 if there is no
     * connection.
     */
    int descriptor() const { return m_receiver.get(); }

    /** Signals urgent data until a reader consumes it. */
    void raise();

    /** Withdraws a signal that has not been read. */
    void clear();

private:
    Descriptor m_sender;
    Descriptor m_receiver;
};
} // namespace board

#endif
