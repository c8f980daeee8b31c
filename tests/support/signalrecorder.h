#ifndef SIGNALRECORDER_H
#define SIGNALRECORDER_H

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Records every signal that the daemon sends from one object. */
class SignalRecorder : public QObject
{
    Q_OBJECT

public:
    explicit SignalRecorder(const QString &path);

    /**
     * Everything recorded since the last call, in order, including all that the daemon sent before
     * now: "Users.userChanged("user2")".
     */
    QStringList take();

    /** The same without asking the daemon, as long as it is kept from answering. */
    QStringList recorded() const { return m_signals; }

    /** Waits until @p count signals are there, or the deadline has passed; then as take(). */
    QStringList waitFor(int count, int milliseconds = 10000);

private Q_SLOTS:
    void record(const QDBusMessage &message);

private:
    QString m_path;
    QStringList m_signals;
};

#endif
