#ifndef SLOTCACHE_H
#define SLOTCACHE_H

class QObject;

/**
 * How many methods Qt D-Bus may cache for an adaptor. A well-behaved client calls a handful of
 * methods.
 */
constexpr int mostCachedSlots = 100;

/**
 * Limits Qt D-Bus's method cache for each of the adaptors of @p root.
 *
 * Qt D-Bus caches the name and the signature of every method that a client calls, even if there is
 * no such method, and copies the whole cache for each new entry. Without a limit, any client could
 * make the daemon's memory and CPU time grow without end.
 */
void limitSlotCaches(QObject *root);

#endif
