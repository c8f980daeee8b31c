#ifndef URGENTLINE_H
#define URGENTLINE_H

#include "descriptor.h"

/**
 * A line whose one end can be made to signal urgent data, as the value file of a GPIO does at an
 * edge: a connection over the loopback interface, because only TCP has urgent data everywhere.
 */
class UrgentLine
{
public:
    /** Makes the connection; true when it stands, then or before. */
    bool open();

    /** The end that signals, and does not block; -1 while there is none. */
    int descriptor() const { return m_receiver.get(); }

    /** Makes the other end signal until somebody reads it. */
    void raise();

    /** Takes back what was raised and not read yet. */
    void clear();

private:
    Descriptor m_sender;
    Descriptor m_receiver;
};

#endif
