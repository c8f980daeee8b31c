#ifndef PROCESSES_H
#define PROCESSES_H

#include <QByteArray>
#include <QList>
#include <QStringList>

/*
 * The processes of the test's world, as /proc shows them. A thread has an ID like a process; that
 * of the main thread is the PID.
 */

/** The PIDs of all processes. */
QList<int> processes();

/** The PIDs of the children of @p process: those that run and those that it has not reaped yet. */
QList<int> childrenOf(qint64 process);

/** The IDs of the threads of @p process. */
QList<int> threadsOf(qint64 process);

/**
 * What a process or thread does: "R" runs, "S" sleeps, "T" is stopped, "Z" has ended and has not
 * been reaped; empty where there is none.
 */
QByteArray stateOf(qint64 thread);

/** Whether @p thread has ended, reaped or not. */
bool hasEnded(qint64 thread);

/** The value of @p field in the status of a process or thread, as in "VmHWM"; without its unit. */
QByteArray statusOf(qint64 thread, const QByteArray &field);

/** What the file descriptors of @p process lead to, one element for each. */
QStringList descriptorsOf(qint64 process);

/**
 * Stops @p process (SIGSTOP) and waits until none of its threads runs any more, which is some time
 * after the signal was sent.
 *
 * @return false when there is no such process, or when it has ended meanwhile
 */
bool stopProcess(qint64 process);

/** Lets a stopped process go on (SIGCONT). @return false when there is no such process */
bool resumeProcess(qint64 process);

/** Kills every process with @p text in its command line and their children; waits for their ends.
 */
void killCommand(const QByteArray &text);

/** Kills every process whose program is called @p name; waits for their ends. */
void killProgram(const QByteArray &name);

#endif
