#ifndef SYSTEMDWATCHDOG_H
#define SYSTEMDWATCHDOG_H

#include <QObject>
#include <QTimer>

/**
 * Returns the interval of pings to systemd's watchdog in milliseconds, 0 for none.
 *
 * An eighth of the timeout: a call that ConnMan does not answer blocks the main loop for 25 s, and
 * the remaining 5 of 30 s must suffice for the pings around it.
 *
 * @param allowed the value of WATCHDOG_USEC, microseconds
 * @param process the value of WATCHDOG_PID; if set, the watchdog belongs to that process only
 * @param itself our own PID
 */
int watchdogInterval(const QByteArray &allowed, const QByteArray &process, qint64 itself);

/**
 * Pings systemd's watchdog as long as the main loop can send the bus a question and receive the
 * answer.
 *
 * Without a watchdog in systemd, no question is sent and no timer runs.
 */
class SystemdWatchdog : public QObject
{
    Q_OBJECT

public:
    /** Reads systemd's settings from the environment and starts at once. */
    SystemdWatchdog();

private:
    void askBus();

    QTimer m_timer;
};

/**
 * Pings once, for a main loop that has just waited in vain for a peer and may have to wait for
 * another one before it returns. Waits for the bus for at most 5 s.
 */
void pingSystemdMeanwhile();

#endif
