#ifndef BUSFAULT_H
#define BUSFAULT_H

#include <QString>

/** All that is known of a call that failed on the bus, or of a bus that could not be joined. */
struct BusFault {
    /** How the bus is called, as in "the system bus". */
    QString bus;
    /** Where it is; empty for another machine's, which ssh reaches. */
    QString address;
    /** Whether the bus was joined. */
    bool isJoined;
    /** The user who called; empty where that is another machine's. */
    QString user;
    /** Whether that user is root, or in the group that may call the daemon. */
    bool isMember;
    QString errorName;
    QString errorText;
};

/** What happened, in one sentence without its full stop. Pure. */
QString sentence(const BusFault &fault);

#endif
