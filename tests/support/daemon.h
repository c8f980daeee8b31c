#ifndef DAEMON_H
#define DAEMON_H

#include <QProcess>
#include <QStringList>

#include <functional>

/** The running daemon: the very program that ships, in the private world of the test. */
class Daemon
{
public:
    Daemon();
    ~Daemon();

    /** The version that it was built as, as in "2.06". */
    static QString version();

    /** Programs that start the daemon for us, each becoming the next one. */
    void setWrapper(const QStringList &wrapper);
    /** Makes time pass @p factor times as fast for the daemon. */
    void speedUp(int factor);
    /**
     * Gives the daemon a clock that letTimePass() sets forward. What becomes due then does not
     * depend on how fast the machine is.
     */
    void controlClock();
    void letTimePass(int seconds);
    /**
     * As controlClock(), but the clock stands still in between: what is due is known to the
     * millisecond.
     */
    void stopClock();
    void letMillisecondsPass(int milliseconds);
    /**
     * Lets the time of one call to a peer pass again and again, until @p condition holds.
     *
     * @return false when the daemon has ended, or at the deadline of two minutes
     */
    [[nodiscard]] bool letTimePassUntil(const std::function<bool()> &condition);
    /** A variable of the daemon's environment, on top of the test's own. */
    void setEnvironment(const QString &name, const QString &value);
    void resetEnvironment();

    /** Starts it and waits until it owns its name; false when it ended or the deadline passed. */
    bool start(const QStringList &arguments = {});

    /** Starts it without waiting for the name. */
    void launch(const QStringList &arguments = {});

    /** Waits for its own end; its exit status, or -1 when it was killed or is still running. */
    int waitForExit();

    /**
     * Ends it as the system does at shutdown. The test fails when it has already ended by itself,
     * unless waitForExit() has told the test.
     */
    void stop();

    bool isRunning() const;
    qint64 processId() const;

    /** The number of its children that run, or whose end it has not seen yet. */
    int children() const;

    /**
     * The ID of another thread than the main one that takes signals, of the process @p process, or
     * of the daemon that this started; 0 where there is none.
     */
    int otherThread(qint64 process = 0) const;

    /** The pages that it alone has, in KB. */
    int privateMemory() const;

    /** How many descriptors it has open. */
    int descriptors() const;

    /**
     * Waits until the threads have opened their own, that of device events and that of the light
     * sensor, which there is on an instrument with a screen; then as descriptors().
     */
    int settledDescriptors();

    /** Everything it has logged, and everything it has printed, since it was started. */
    QString log();
    QString output();

    /** Waits until the log, or the output, holds @p text. */
    bool waitForLog(const QString &text);
    bool waitForOutput(const QString &text);

private:
    void takeClock(bool isStopped);
    void writeClock() const;
    void drain();
    bool waitUntil(const std::function<bool()> &condition, int milliseconds = 20000);

    QProcess m_process;
    QStringList m_wrapper;
    bool m_isMeantToRun = false;
    bool m_isClockStopped = false;
    int m_millisecondsPassed = 0;
    QByteArray m_log;
    QByteArray m_output;
};

#endif
