#ifndef PROCESSES_H
#define PROCESSES_H

#include <QByteArray>
#include <QList>
#include <QStringList>

/*
 * The processes of the test's world, from /proc. A thread has an ID like a process; the main
 * thread's is the PID.
 */

/** The PIDs of all processes. */
QList<int> processes();

/** The PIDs of the children of @p process, running or not yet reaped. */
QList<int> childrenOf(qint64 process);

/** The IDs of the threads of @p process. */
QList<int> threadsOf(qint64 process);

/**
 * The state of a process or thread: "R" runs, "S" sleeps, "T" is stopped, "Z" is a zombie; empty if
 * it does not exist.
 */
QByteArray stateOf(qint64 thread);

/** Returns true if @p thread has ended, reaped or not. */
bool hasEnded(qint64 thread);

/**
 * The value of @p field in the status of a process or thread, for example "VmHWM"; without its
 * unit.
 */
QByteArray statusOf(qint64 thread, const QByteArray &field);

/** The targets of the file descriptors of @p process, one element for each. */
QStringList descriptorsOf(qint64 process);

/**
 * Stops @p process (SIGSTOP) and waits until none of its threads runs, which takes some time after
 * the signal.
 *
 * @return false if there is no such process, or if it has ended meanwhile
 */
bool stopProcess(qint64 process);

/**
 * Resumes a stopped process (SIGCONT). @return false if there is no such process
 */
bool resumeProcess(qint64 process);

/** Kills every process with @p text in its command line, and its children; waits for their ends. */
void killCommand(const QByteArray &text);

/** Kills every process whose program has the name @p name; waits for their ends. */
void killProgram(const QByteArray &name);

#endif
