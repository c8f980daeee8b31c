#ifndef CALLS_H
#define CALLS_H

#include "callrules.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

class Connman;

/**
 * Receives the calls to ConnMan, and writes each to the journal when it arrives. Rules can delay or
 * hold a call, and can send a reply or an error in place of ConnMan's reply.
 */
class Calls : public QObject
{
    Q_OBJECT

public:
    Calls(Connman &connman, QObject *parent);

    void receive(const QDBusMessage &call);

    CallRules &rules() { return m_rules; }

    /**
     * Removes the rule that was added to hold @p call, and carries out the held calls that no other
     * rule holds.
     */
    void release(const QString &call);

    const QStringList &journal() const { return m_journal; }
    void clearJournal();

private:
    void proceed(const QDBusMessage &call);

    Connman &m_connman;
    CallRules m_rules;
    QStringList m_journal;
    QList<QDBusMessage> m_held;
};

#endif
