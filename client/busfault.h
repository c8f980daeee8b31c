#ifndef BUSFAULT_H
#define BUSFAULT_H

#include <QString>

/** The circumstances of a call that failed, or of a bus that could not be reached. */
struct BusFault {
    /** The bus's name in messages, for example "the system bus". */
    QString bus;
    /** The bus's address; empty for another machine's bus, which is reached through ssh. */
    QString address;
    /** True if the connection to the bus succeeded. */
    bool isJoined;
    /** The user of the program; empty for another machine's bus. */
    QString user;
    /** True if the user is root or a member of the group that may call the daemon. */
    bool isMember;
    QString errorName;
    QString errorText;
};

/** Describes the fault in one sentence without a full stop. Pure. */
QString sentence(const BusFault &fault);

#endif
