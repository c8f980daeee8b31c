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
 * Qt D-Bus caches every name and signature that a client ever called, also unknown ones, and copies
 * the whole cache for each new one. Any client could let the daemon's memory and CPU time grow
 * without end.
 */
void limitSlotCaches(QObject *root);

#endif
