#ifndef KERNELEVENTS_H
#define KERNELEVENTS_H

/** The listeners to the kernel's device events in the test's network namespace. */
namespace KernelEvents
{
/** The number of listening sockets. */
int listeners();

/** The multicast groups that they listen to, one bit each. */
unsigned int groups();

/** Waits for this number of listening sockets; returns false at the deadline (deadline.h). */
bool waitForListeners(int count);

/** The number of events that the kernel could not deliver to the current listeners. */
int undelivered();

/** Waits until the listeners have read all pending events; returns false at the deadline. */
bool waitForEmptyQueues();

/** Returns true if our programs may set receive buffers of any size. */
bool isRoomUnlimited();
} // namespace KernelEvents

#endif
