#ifndef SYSTEMDWATCHDOG_H
#define SYSTEMDWATCHDOG_H

#include <QObject>
#include <QTimer>

/**
 * Returns the interval of pings to systemd's watchdog in milliseconds, 0 for none.
 *
 * The interval is an eighth of the timeout, which is 30 s in the service unit. A call that ConnMan
 * does not answer blocks the main loop for 25 s. These 25 s and one interval before them are
 * together shorter than the timeout.
 *
 * @param allowed the value of WATCHDOG_USEC, microseconds
 * @param process the value of WATCHDOG_PID; if set, the watchdog belongs to that process only
 * @param itself our own PID
 */
int watchdogInterval(const QByteArray &allowed, const QByteArray &process, qint64 itself);

/**
 * Pings systemd's watchdog as long as the main loop can call a method of dbus-daemon and receive
 * the answer.
 *
 * Does nothing if systemd has set no watchdog.
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
 * Pings systemd's watchdog once, if the bus answers within 5 s.
 *
 * Use it after a long blocking call: another blocking call may follow before the main loop can run
 * SystemdWatchdog's timer.
 */
void pingSystemdMeanwhile();

#endif
