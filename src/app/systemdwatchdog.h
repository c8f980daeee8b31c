#ifndef SYSTEMDWATCHDOG_H
#define SYSTEMDWATCHDOG_H

#include <QObject>
#include <QTimer>

/**
 * How often systemd's watchdog is to be pinged, in milliseconds; 0 for never.
 *
 * An eighth of the time that systemd allows: while ConnMan does not answer a call, the main loop
 * stands still for 25 s, and of 30 s that leaves enough for the pings around it.
 *
 * @param allowed the value of WATCHDOG_USEC, microseconds
 * @param process the value of WATCHDOG_PID; where it is set the watchdog is that process's alone
 * @param itself our own process ID
 */
int watchdogInterval(const QByteArray &allowed, const QByteArray &process, qint64 itself);

/**
 * Tells systemd that the daemon works, for as long as it does: as long as its main loop asks the
 * bus a question and receives the answer over the connection.
 *
 * Where systemd has no watchdog, nothing is asked and no timer runs.
 */
class SystemdWatchdog : public QObject
{
    Q_OBJECT

public:
    /** Reads from the environment what systemd expects, and begins at once. */
    SystemdWatchdog();

private:
    void askBus();

    QTimer m_timer;
};

/**
 * The same once, for a main loop that has waited in vain for a peer's answer and may have to wait
 * for another one before it returns. Waits for the bus, for at most 5 s.
 */
void pingSystemdMeanwhile();

#endif
