#ifndef FOLLOWER_H
#define FOLLOWER_H

#include "bus.h"
#include "commands.h"

#include <QObject>
#include <QStringList>

/**
 * Starts an operation of a network interface and follows its "State" signals until its outcome.
 *
 * Use one instance for each operation: subscribe first, then start, then wait.
 */
class Follower : public QObject
{
    Q_OBJECT

public:
    explicit Follower(const Command &command);

    /** Returns true if a state was announced between the start and its reply. */
    bool hasStarted();

    /** Waits for the outcome; returns the program's exit status. */
    ExitStatus wait(int seconds);

    /** The announced states, in order. */
    QStringList states() const { return m_states; }

    /** The networks that a scan found. */
    QVariantMap networks() const { return m_networks; }

Q_SIGNALS:
    void ended();

private Q_SLOTS:
    void takeProperty(const QDBusMessage &message);
    void takeNetworks(const QDBusMessage &message);

private:
    void end(ExitStatus status);

    const Outcome m_outcome;
    const QString m_words;
    QStringList m_states;
    QVariantMap m_networks;
    bool m_hasEnded;
    ExitStatus m_status;
};

#endif
