#ifndef FOLLOWER_H
#define FOLLOWER_H

#include "bus.h"
#include "commands.h"

#include <QObject>
#include <QStringList>

/**
 * Follows the signals of an operation of a network interface until the operation ends.
 *
 * Use one instance for each operation: construct it, start the operation, then call wait().
 */
class Follower : public QObject
{
    Q_OBJECT

public:
    explicit Follower(const Command &command);

    /**
     * Returns true if the daemon has announced a state since the construction, or if the operation
     * has ended, for example because the daemon left the bus. Call this function after the reply to
     * the call that starts the operation.
     */
    bool hasStarted();

    /** Waits for the outcome, at most @p seconds. Returns the exit status for kyboardctl. */
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
