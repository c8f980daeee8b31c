#ifndef DAEMON_H
#define DAEMON_H

#include "deadline.h"

#include <QProcess>
#include <QStringList>

#include <functional>

/** The running daemon: the same binary that ships, in the private world of the test. */
class Daemon
{
public:
    Daemon();
    ~Daemon();

    /** The version of its build, for example "2.06". */
    static QString version();

    /** Programs that start the daemon; each one executes the next. */
    void setWrapper(const QStringList &wrapper);
    /** Makes time pass @p factor times as fast for the daemon. */
    void speedUp(int factor);
    /**
     * Gives the daemon a clock that letTimePass() advances. Expiring timers then do not depend on
     * the speed of the machine.
     */
    void controlClock();
    void letTimePass(int seconds);
    /**
     * Like controlClock(), but the clock moves only in letTimePass() and letMillisecondsPass().
     * Timers then expire exactly to the millisecond.
     */
    void stopClock();
    void letMillisecondsPass(int milliseconds);
    /**
     * Repeatedly advances the clock by the timeout of a call to a peer until @p condition is true.
     *
     * @return false if the daemon has ended, or after twice the deadline (deadline.h)
     */
    [[nodiscard]] bool letTimePassUntil(const std::function<bool()> &condition);
    /** Sets a variable of the daemon's environment, in addition to the test's own. */
    void setEnvironment(const QString &name, const QString &value);
    void resetEnvironment();

    /** Starts it and waits for its bus name. Returns false if it ends first, or at the deadline. */
    bool start(const QStringList &arguments = {});

    /** Starts it without waiting for its bus name. */
    void launch(const QStringList &arguments = {});

    /** Waits for its end. Returns its exit status, or -1 if it was killed or is still running. */
    int waitForExit();

    /**
     * Stops it as a shutdown does. The test fails if it has already ended, unless waitForExit() has
     * reported that.
     */
    void stop();

    bool isRunning() const;
    qint64 processId() const;

    /** The number of its children that run or have not been reaped. */
    int children() const;

    /**
     * Returns the ID of a thread that blocks no signals and is not the main thread; 0 if there is
     * none. Searches the process @p process, or the daemon if @p process is 0.
     */
    int otherThread(qint64 process = 0) const;

    /** Its private memory in KB. */
    int privateMemory() const;

    /** The number of its open file descriptors. */
    int descriptors() const;

    /**
     * Waits until two threads have opened their descriptors, the listener to device events and the
     * light sensor. Then returns descriptors(). Needs an instrument with a screen.
     */
    int settledDescriptors();

    /** Its complete log, and its complete standard output. */
    QString log();
    QString output();

    /** Waits until the log, or the output, contains @p text. */
    bool waitForLog(const QString &text);
    bool waitForOutput(const QString &text);

private:
    void takeClock(bool isStopped);
    void writeClock() const;
    void drain();
    bool waitUntil(const std::function<bool()> &condition, int milliseconds = deadlineMs);

    QProcess m_process;
    QStringList m_wrapper;
    bool m_isMeantToRun = false;
    bool m_isClockStopped = false;
    int m_millisecondsPassed = 0;
    QByteArray m_log;
    QByteArray m_output;
};

#endif
