#include "calls.h"

#include "connman.h"
#include "journal.h"
#include "reply.h"

#include <QTimer>
#include <utility>

Calls::Calls(Connman &connman, QObject *parent) : QObject(parent), m_connman(connman) {}

void Calls::receive(const QDBusMessage &call)
{
    const QString line = journalLine(call);
    m_journal << line;
    if (m_rules.find(CallRule::Hold, line))
        m_held << call;
    else if (const CallRule *delay = m_rules.find(CallRule::Delay, line))
        QTimer::singleShot(delay->milliseconds, this, [this, call] { proceed(call); });
    else
        proceed(call);
}

void Calls::proceed(const QDBusMessage &call)
{
    const CallRule *rule = m_rules.findAnswer(journalLine(call));
    if (!rule)
        m_connman.serve(call);
    else if (rule->kind == CallRule::Fail)
        refuse(call, rule->errorName, rule->errorText);
    else
        answer(call, rule->values);
}

void Calls::release(const QString &call)
{
    m_rules.remove(CallRule::Hold, call);
    QList<QDBusMessage> stillHeld;
    QList<QDBusMessage> released;
    for (const QDBusMessage &held : std::as_const(m_held))
        (m_rules.find(CallRule::Hold, journalLine(held)) ? stillHeld : released) << held;
    m_held = stillHeld;
    for (const QDBusMessage &held : released)
        proceed(held);
}

void Calls::clearJournal()
{
    m_journal.clear();
}
