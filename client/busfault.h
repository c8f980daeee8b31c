#ifndef BUSFAULT_H
#define BUSFAULT_H

#include <QString>

/** The circumstances of a call that failed, or of a bus that could not be reached. */
struct BusFault {
    /** The bus's name in messages, for example "the system bus". */
    QString bus;
    /** Its address; empty for another machine's bus, which ssh reaches. */
    QString address;
    /** True if the connection succeeded. */
    bool isJoined;
    /** The user who called; empty on another machine. */
    QString user;
    /** True if that user is root or a member of the group that may call the daemon. */
    bool isMember;
    QString errorName;
    QString errorText;
};

/** Describes the fault in one sentence without its full stop. Pure. */
QString sentence(const BusFault &fault);

#endif
