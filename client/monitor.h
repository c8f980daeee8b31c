#ifndef MONITOR_H
#define MONITOR_H

#include "bus.h"

#include <QDBusMessage>
#include <QObject>

/** Prints every signal of the daemon, a line each with its time, until the program is ended. */
class Monitor : public QObject
{
    Q_OBJECT

public:
    /** @param asJson one JSON object on each line */
    explicit Monitor(bool asJson);

    /** Runs until the program is ended by a signal. */
    ExitStatus run();

private Q_SLOTS:
    void take(const QDBusMessage &message);

private:
    void printLine(const QString &interface, const QString &signal, const QVariantList &arguments);

    const bool m_asJson;
};

#endif
