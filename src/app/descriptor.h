#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

/** Owns a file descriptor, or remembers why there is none. */
class Descriptor
{
public:
    /** None, as when nothing has been opened. */
    Descriptor() = default;
    /** Takes over @p descriptor, the result of a system call; errno counts where it is negative. */
    explicit Descriptor(int descriptor);
    Descriptor(Descriptor &&other) noexcept;
    Descriptor &operator=(Descriptor &&other) noexcept;
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor();

    bool isOpen() const { return m_descriptor >= 0; }
    /** The descriptor; -1 where there is none. */
    int get() const { return m_descriptor; }
    /** The errno of the call that gave no descriptor; 0 where there is one. */
    int error() const { return m_error; }
    /** Whether there is none because nothing, or nothing of the kind asked for, has the name. */
    bool isAbsent() const;

    /** Gives the descriptor away: it is the caller's to close. */
    int release();

private:
    int m_descriptor = -1;
    int m_error = 0;
};

#endif
