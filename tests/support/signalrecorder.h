#ifndef SIGNALRECORDER_H
#define SIGNALRECORDER_H

#include "deadline.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Records all signals of one of the daemon's objects. */
class SignalRecorder : public QObject
{
    Q_OBJECT

public:
    explicit SignalRecorder(const QString &path);

    /**
     * Returns all signals since the last call, in order, including everything that the daemon has
     * sent so far: "Users.userChanged("user2")".
     */
    QStringList take();

    /**
     * The signals that have arrived since the last take(); keeps them. Does not call the daemon,
     * which may be unable to answer.
     */
    QStringList recorded() const { return m_signals; }

    /** Waits for @p count signals or the deadline; then like take(). */
    QStringList waitFor(int count, int milliseconds = deadlineMs);

private Q_SLOTS:
    void record(const QDBusMessage &message);

private:
    QString m_path;
    QStringList m_signals;
};

#endif
