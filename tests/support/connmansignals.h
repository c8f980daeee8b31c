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
     * Everything recorded since the last call, in order, including all that ConnMan sent before
     * now: "/net/connman/technology/ethernet PropertyChanged ("Powered", <true>)".
     */
    QStringList take();

    /** Waits until one that begins like this has come since the last take(). */
    bool waitFor(const QString &beginning);

    /** Waits until ConnMan has sent nothing for a second; forgets what it sent. */
    bool waitForQuiet();

private Q_SLOTS:
    void record(const QDBusMessage &message);

private:
    QStringList m_signals;
};

#endif
