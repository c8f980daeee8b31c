#ifndef CALLRULES_H
#define CALLRULES_H

#include <QDBusMessage>
#include <QList>
#include <QString>
#include <QVariant>

/** What is to be done with a call other than what ConnMan does with it. */
struct CallRule {
    enum Kind { Fail, Reply, Delay, Hold };

    Kind kind;
    /** The rule is for every call whose line in the journal begins like this. */
    QString call;
    /** Fail: name and text of the error. */
    QString errorName;
    QString errorText;
    /** Reply: the values of the reply, of whatever types. */
    QList<QVariant> values;
    /** Delay: for how many milliseconds. */
    int milliseconds = 0;
};

/** The rules in force. Of several rules of one kind for a call, the one added last holds. */
class CallRules
{
public:
    void add(const CallRule &rule);

    /** Takes away the rules of @p kind that were added for exactly @p call. */
    void remove(CallRule::Kind kind, const QString &call);
    void clear();

    /** The rule of @p kind for the call with this line in the journal; null where there is none. */
    const CallRule *find(CallRule::Kind kind, const QString &line) const;

    /** The rule that replaces ConnMan's own answer to the call, an error or a reply. */
    const CallRule *findAnswer(const QString &line) const;

private:
    QList<CallRule> m_rules;
};

#endif
