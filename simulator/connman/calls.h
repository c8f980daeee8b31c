#ifndef CALLS_H
#define CALLS_H

#include "callrules.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

class Connman;

/**
 * The calls to ConnMan. Writes each call to the journal when it arrives. The rules decide when to
 * reply, and whether ConnMan replies or a rule's error or reply is sent.
 */
class Calls : public QObject
{
    Q_OBJECT

public:
    Calls(Connman &connman, QObject *parent);

    void receive(const QDBusMessage &call);

    CallRules &rules() { return m_rules; }

    /** Ends the rule that holds the calls beginning with @p call, and continues the held calls. */
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
