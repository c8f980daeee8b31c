#ifndef RECEIVELIMITS_H
#define RECEIVELIMITS_H

class QDBusConnection;

/**
 * Lifts libdbus's limits of received messages, and of file descriptors in them, for @p bus.
 *
 * Above 63 MB of messages that are still in use libdbus stops reading. Qt D-Bus cannot make it go
 * on: it switches the socket notifier from the thread that released the last message, which is not
 * the notifier's, and the connection stays deaf. How much memory messages may take is the business
 * of whoever starts the daemon (MemoryMax in the unit).
 *
 * Does nothing where @p bus is not connected, or where libdbus is not loaded as a library of its
 * own.
 */
void liftReceiveLimits(const QDBusConnection &bus);

#endif
