#ifndef STANDSTILL_H
#define STANDSTILL_H

#include <QtGlobal>

/**
 * Stops @p process (SIGSTOP) and waits until none of its threads runs any more, which is some time
 * after the signal was sent.
 *
 * @return false when there is no such process, or when it has ended meanwhile
 */
bool stopProcess(qint64 process);

/** Lets a stopped process go on (SIGCONT). @return false when there is no such process */
bool resumeProcess(qint64 process);

#endif
