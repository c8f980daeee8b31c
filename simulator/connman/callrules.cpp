#include "callrules.h"

#include <algorithm>

void CallRules::add(const CallRule &rule)
{
    m_rules.prepend(rule);
}

void CallRules::remove(CallRule::Kind kind, const QString &call)
{
    const auto isThatRule = [&](const CallRule &rule) {
        return rule.kind == kind && rule.call == call;
    };
    m_rules.erase(std::remove_if(m_rules.begin(), m_rules.end(), isThatRule), m_rules.end());
}

void CallRules::clear()
{
    m_rules.clear();
}

const CallRule *CallRules::find(CallRule::Kind kind, const QString &line) const
{
    for (const CallRule &rule : m_rules) {
        if (rule.kind == kind && line.startsWith(rule.call))
            return &rule;
    }
    return nullptr;
}

const CallRule *CallRules::findAnswer(const QString &line) const
{
    for (const CallRule &rule : m_rules) {
        if ((rule.kind == CallRule::Fail || rule.kind == CallRule::Reply) &&
            line.startsWith(rule.call))
            return &rule;
    }
    return nullptr;
}
