#ifndef WIREVALUE_H
#define WIREVALUE_H

#include "choices.h"

#include <dbus/dbus.h>

#include <cstdint>
#include <string>

/* Message values of every D-Bus type. */

/** Returns the signature of one type with containers of at most @p depth levels. */
std::string anyType(Choices &choices, int depth);

/** Returns the signature of one type of the maximum depth, without variants. */
std::string deepType(Choices &choices);

/** Appends values to one message, up to the limits of a message. */
class ValueWriter
{
public:
    ValueWriter(DBusMessage *message, Choices &choices);

    /**
     * Appends a value for each type of @p signature; variants get any content. Appends nothing if
     * the message's signature would become too long.
     *
     * @param around the number of container levels to leave unused
     */
    void append(const std::string &signature, int around = 0);

    /** Appends up to five values of any types. */
    void appendAnything();

    /** The end of the message, for code that appends containers and values itself. */
    DBusMessageIter &end() { return m_end; }

    /** Appends one value to @p end, with at most @p room more levels of containers. */
    void appendValue(DBusMessageIter &end, const std::string &signature, int room);

    /** Returns false if the message has more file descriptors than the bus allows. */
    bool isSendable() const;

private:
    void appendBasic(DBusMessageIter &end, int type);
    std::string longText();
    void appendDescriptor(DBusMessageIter &end);
    void appendArray(DBusMessageIter &end, const std::string &element, int room);
    void appendMembers(DBusMessageIter &end, int type, const std::string &members, int room);
    void appendVariant(DBusMessageIter &end, int room);

    Choices &m_choices;
    DBusMessageIter m_end;
    /** How many list elements may still be appended, in all containers of the message together. */
    int m_elementsLeft = 4000;
    /**
     * How many characters long texts may still have together. The bus ends the connection of a
     * sender of a message of more than 1 MiB.
     */
    std::uint32_t m_longTextLeft = 600'000;
    int m_descriptors = 0;
    std::size_t m_signatureSize = 0;
};

/** Splits @p signature into its types. */
std::vector<std::string> typesOf(const std::string &signature);

/** Returns an object path: usually one of the daemon or of ConnMan, sometimes an unknown path. */
std::string anyPath(Choices &choices);

#endif
