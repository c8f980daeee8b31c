#ifndef WIREVALUE_H
#define WIREVALUE_H

#include "choices.h"

#include <dbus/dbus.h>

#include <string>

/*
 * Values for messages, of every type that the wire carries.
 */

/** The signature of one type, in which containers are nested at most @p depth deep. */
std::string anyType(Choices &choices, int depth);

/** The signature of one type that is nested as deep as a message may be, variants not counted. */
std::string deepType(Choices &choices);

/** Appends values to one message, as many as a message may hold. */
class ValueWriter
{
public:
    ValueWriter(DBusMessage *message, Choices &choices);

    /**
     * Appends a value for each type of @p signature; where it holds variants, any is in them.
     * Nothing is appended to a message whose signature would be too long.
     *
     * @param around how many levels of containers there may not be, for want of room
     */
    void append(const std::string &signature, int around = 0);

    /** Appends up to five values of any types. */
    void appendAnything();

    /** Appends the beginnings of containers, and values, where other code goes on by itself. */
    DBusMessageIter &end() { return m_end; }

    /** Appends one value to @p end, which may have @p room more levels of containers. */
    void appendValue(DBusMessageIter &end, const std::string &signature, int room);

    /** False when the message has more file descriptors than the bus passes on. */
    bool isSendable() const;

private:
    void appendBasic(DBusMessageIter &end, int type);
    void appendDescriptor(DBusMessageIter &end);
    void appendArray(DBusMessageIter &end, const std::string &element, int room);
    void appendMembers(DBusMessageIter &end, int type, const std::string &members, int room);
    void appendVariant(DBusMessageIter &end, int room);

    Choices &m_choices;
    DBusMessageIter m_end;
    /** How many more elements of lists there may be: containers in containers add up. */
    int m_elementsLeft = 4000;
    int m_descriptors = 0;
    std::size_t m_signatureSize = 0;
};

/** The types of @p signature, one by one. */
std::vector<std::string> typesOf(const std::string &signature);

/** An object path; one that the daemon or ConnMan uses more often than others. */
std::string anyPath(Choices &choices);

#endif
