#ifndef RECEIVELIMITS_H
#define RECEIVELIMITS_H

class QDBusConnection;

/**
 * Lifts libdbus's limits on received messages, and on file descriptors in them, for @p bus.
 *
 * libdbus stops reading while more than 63 MB of messages are still referenced. Qt D-Bus cannot
 * resume it: it switches the socket notifier from the thread that released the last message, which
 * is not the notifier's thread, and the connection never reads again. MemoryMax in the unit limits
 * the memory instead.
 *
 * Does nothing if @p bus is not connected, or if libdbus is not loaded as a shared library.
 */
void liftReceiveLimits(const QDBusConnection &bus);

#endif
