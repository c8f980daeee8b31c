#ifndef MONITOR_H
#define MONITOR_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Prints every signal of the daemon, a line each with its time, until the program is ended. */
class Monitor : public QObject
{
    Q_OBJECT

public:
    /** What is wanted of it. */
    struct Wish {
        /** One JSON object on each line. */
        bool asJson;
        /** As in signalNames(); all where there is none. */
        QStringList signalNames;
        /** After how many signals it ends; 0: never. */
        int count;
        /** After how many seconds it ends; 0: never. */
        int seconds;
    };

    explicit Monitor(const Wish &wish);

    /**
     * Runs until it has printed as many signals as are wanted, its time is over, or the program is
     * ended by a signal. SignalsMissing when some are missing at the end of the time.
     */
    ExitStatus run();

private Q_SLOTS:
    void take(const QDBusMessage &message);
    void leave();

private:
    void printLine(const QString &interface, const QString &signal, const QVariantList &arguments);

    const Wish m_wish;
    int m_printed;
};

#endif
