#ifndef KERNELEVENTS_H
#define KERNELEVENTS_H

/** Who listens to the kernel's device events in the network of the test. */
namespace KernelEvents
{
/** How many sockets listen. */
int listeners();

/** The groups of events that they listen to, one bit each. */
unsigned int groups();

/** Waits until so many sockets listen; false after 20 s. */
bool waitForListeners(int count);

/** How many events the kernel could not deliver to those who listen now. */
int undelivered();

/** Waits until those who listen have taken all events that wait for them; false after 20 s. */
bool waitForEmptyQueues();

/** Whether programs of ours may make the room for undelivered events as large as they want. */
bool isRoomUnlimited();
} // namespace KernelEvents

#endif
