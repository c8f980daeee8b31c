#ifndef CALLS_H
#define CALLS_H

#include "callrules.h"

#include <QDBusMessage>
#include <QObject>
#include <QStringList>

class Connman;

/**
 * The calls to ConnMan: each is written into the journal as it comes; then the rules decide when
 * it is answered, and whether by ConnMan or with an error or a reply of the rules' own.
 */
class Calls : public QObject
{
    Q_OBJECT

public:
    Calls(Connman &connman, QObject *parent);

    void receive(const QDBusMessage &call);

    CallRules &rules() { return m_rules; }

    /** Ends the rule that holds the calls beginning like @p call, and lets those held go on. */
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
