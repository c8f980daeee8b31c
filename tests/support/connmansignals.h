#ifndef CONNMANSIGNALS_H
#define CONNMANSIGNALS_H

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

/** Records every signal of ConnMan's manager, technologies and services. */
class ConnmanSignals : public QObject
{
    Q_OBJECT

public:
    ConnmanSignals();

    /**
     * Returns all signals since the last call, in order, including everything that ConnMan has sent
     * so far: "/net/connman/technology/ethernet PropertyChanged ("Powered", <true>)".
     */
    QStringList take();

    /** Waits until a signal with this beginning has arrived since the last take(). */
    bool waitFor(const QString &beginning);

    /** Waits until ConnMan has sent nothing for a second; discards its signals. */
    bool waitForQuiet();

private Q_SLOTS:
    void record(const QDBusMessage &message);

private:
    QStringList m_signals;
};

#endif
