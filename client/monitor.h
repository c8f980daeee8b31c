#ifndef MONITOR_H
#define MONITOR_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Prints every signal of the daemon as a line with its time, until the program ends. */
class Monitor : public QObject
{
    Q_OBJECT

public:
    /** The options of the command. */
    struct Wish {
        /** One JSON object on each line. */
        bool asJson;
        /** As in signalNames(); empty for all. */
        QStringList signalNames;
        /** The number of signals after which it ends; 0 for no limit. */
        int count;
        /** The number of seconds after which it ends; 0 for no limit. */
        int seconds;
    };

    explicit Monitor(const Wish &wish);

    /**
     * Runs until it has printed the requested number of signals, its time is over, or a signal ends
     * the program. Returns SignalsMissing if its time is over before that number.
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
