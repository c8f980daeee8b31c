#include "descriptor.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

Descriptor::Descriptor(int descriptor)
    : m_descriptor(descriptor), m_error(descriptor < 0 ? errno : 0)
{
}

Descriptor::Descriptor(Descriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)), m_error(other.m_error)
{
}

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_error, other.m_error);
    return *this;
}

Descriptor::~Descriptor()
{
    if (isOpen())
        close(m_descriptor);
}

bool Descriptor::isAbsent() const
{
    return m_error == ENOENT || m_error == ENOTDIR;
}

int Descriptor::release()
{
    return std::exchange(m_descriptor, -1);
}
