#ifndef RECEIVELIMITS_H
#define RECEIVELIMITS_H

class QDBusConnection;

/**
 * Lifts libdbus's limits on the size of unprocessed received messages, and on the file descriptors
 * in them, for @p bus.
 *
 * libdbus stops reading while more than 63 MB of messages are still referenced. Qt D-Bus cannot
 * resume reading: it enables the socket notifier in the thread that released the last message, but
 * the notifier belongs to another thread. So the connection never reads again. Without libdbus's
 * limits, MemoryMax in the systemd unit limits the memory.
 *
 * Does nothing if @p bus is not connected, or if libdbus is not loaded as a shared library.
 */
void liftReceiveLimits(const QDBusConnection &bus);

#endif
