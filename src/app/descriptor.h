#ifndef DESCRIPTOR_H
#define DESCRIPTOR_H

/** Owns a file descriptor, or stores the errno that explains why there is none. */
class Descriptor
{
public:
    /** No descriptor and no error. */
    Descriptor() = default;
    /**
     * Takes ownership of @p descriptor, the result of a system call. Stores errno if the result is
     * negative.
     */
    explicit Descriptor(int descriptor);
    Descriptor(Descriptor &&other) noexcept;
    Descriptor &operator=(Descriptor &&other) noexcept;
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor();

    bool isOpen() const { return m_descriptor >= 0; }
    /** Returns the descriptor, -1 if there is none. */
    int get() const { return m_descriptor; }
    /** Returns the errno of the call that failed, 0 if there is a descriptor. */
    int error() const { return m_error; }
    /**
     * Returns true if the call failed because the path does not exist, or because one of its
     * components is not a directory (ENOENT, ENOTDIR).
     */
    bool isAbsent() const;

    /** Releases ownership: the caller closes the descriptor. */
    int release();

private:
    int m_descriptor = -1;
    int m_error = 0;
};

#endif
