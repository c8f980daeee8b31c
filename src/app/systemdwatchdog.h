#ifndef SYSTEMDWATCHDOG_H
#define SYSTEMDWATCHDOG_H

#include <QObject>
#include <QTimer>

/**
 * Returns the interval of pings to systemd's watchdog in milliseconds, 0 for none.
 *
 * The interval is an eighth of the timeout, which is 30 s in the service unit. A call that ConnMan
 * does not answer blocks the main loop for 25 s; together with one interval before the call, this
 * is less than the timeout.
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
 * If systemd has set no watchdog, this class sends no question and starts no timer.
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
 * Pings once between two blocking calls. Call it after a call that took long: the next call may
 * take long, too, and the timer cannot ping before the main loop runs again. Waits for the bus for
 * at most 5 s.
 */
void pingSystemdMeanwhile();

#endif
