#ifndef MONITOR_H
#define MONITOR_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Prints the signals of the daemon as they arrive, each as a line with its time. */
class Monitor : public QObject
{
    Q_OBJECT

public:
    /** The options of the command. */
    struct Options {
        /** Prints one JSON object on each line. */
        bool asJson;
        /** The signals to print, with names as in ::signalNames(); empty for all. */
        QStringList signalNames;
        /** The number of signals after which the monitor ends; 0 for no limit. */
        int count;
        /** The number of seconds after which the monitor ends; 0 for no limit. */
        int seconds;
    };

    explicit Monitor(const Options &options);

    /**
     * Runs until it has printed the requested number of signals, its time is over, or the bus
     * connection ends. Returns SignalsMissing if its time is over before that number of signals,
     * and DaemonAway without a bus connection.
     */
    ExitStatus run();

private Q_SLOTS:
    void take(const QDBusMessage &message);
    void leave();

private:
    void printLine(const QString &interface, const QString &signal, const QVariantList &arguments);

    const Options m_options;
    int m_printed;
};

#endif
