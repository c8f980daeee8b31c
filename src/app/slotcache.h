#ifndef SLOTCACHE_H
#define SLOTCACHE_H

class QObject;

/** How many methods Qt D-Bus may remember for an adaptor: a well-behaved client calls a
 *  handful. */
extern const int mostCachedSlots;

/**
 * Keeps Qt D-Bus from remembering, for each of the adaptors of @p root, every method that
 * somebody has ever tried to call.
 *
 * It remembers each name and each signature, the wrong ones too, for ever, and copies all of them
 * for each new one: any client could make the process bigger and slower until it is of no use.
 */
void limitSlotCaches(QObject *root);

#endif
