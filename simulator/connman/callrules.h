#ifndef CALLRULES_H
#define CALLRULES_H

#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariant>

/** Overrides how the stand-in handles a call. */
struct CallRule {
    enum Kind { Fail, Reply, Delay, Hold };

    Kind kind;
    /** The rule applies to every call whose journal line begins with this text. */
    QString call;
    /** Fail: name and text of the error. */
    QString errorName;
    QString errorText;
    /** Reply: the values of the reply, of any type. */
    QList<QVariant> values;
    /** Delay: how long the stand-in waits before it handles the call. */
    int milliseconds = 0;
};

/** The active rules. If several rules of one kind match a call, the last one applies. */
class CallRules
{
public:
    void add(const CallRule &rule);

    /** Removes the rules of @p kind that were added for exactly @p call. */
    void remove(CallRule::Kind kind, const QString &call);
    void clear();

    /** Returns the rule of @p kind for the call with this journal line; null if there is none. */
    const CallRule *find(CallRule::Kind kind, const QString &line) const;

    /** Returns the last Fail or Reply rule for the call with this journal line; null if none. */
    const CallRule *findAnswer(const QString &line) const;

private:
    QList<CallRule> m_rules;
};

#endif
