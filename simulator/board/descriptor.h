#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

#include <unistd.h>

namespace board
{
/** Owns a file descriptor. In a namespace because the daemon, too, has a class Descriptor. */
class Descriptor
{
public:
    explicit Descriptor(int descriptor = -1) : m_descriptor(descriptor) {}
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_descriptor; }
    bool isOpen() const { return m_descriptor >= 0; }

    /** Closes the descriptor and replaces it with another one. */
    void reset(int descriptor = -1)
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
        m_descriptor = descriptor;
    }

private:
    int m_descriptor;
};
} // namespace board

#endif
