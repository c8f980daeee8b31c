#ifndef DEADLINE_H
#define DEADLINE_H

/**
 * How long a test waits for an event that must come, in milliseconds. Ends a test that would
 * otherwise wait forever. It is no bound on speed: a busy machine is slow.
 */
constexpr int deadlineMs = 180000;

#endif
