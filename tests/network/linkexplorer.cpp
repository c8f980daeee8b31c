#include "linkexplorer.h"

#include "linknames.h"
#include "linkrules.h"

#include <algorithm>

namespace
{
using namespace KyTcpIpState;
using Event = LinkEvent;
using Do = LinkAction;

constexpr int mostPending = 2;
/** More actions than this after one event mean that the table loops. */
constexpr size_t mostActs = 40;

const struct {
    LinkAction action;
    std::vector<LinkEvent> answers;
} questions[] = {
    {Do::SwitchToEthernet, {Event::ScriptStarted, Event::ScriptRefused}},
    {Do::SwitchToStation, {Event::ScriptStarted, Event::ScriptRefused}},
    {Do::SwitchToAccessPoint, {Event::ScriptStarted, Event::ScriptRefused}},
    {Do::AskConnman, {Event::ConnmanRuns, Event::ConnmanAbsent}},
    {Do::AskListed, {Event::NetworksListed, Event::NoNetworkListed}},
    {Do::AskFound, {Event::NetworksFound, Event::NoNetworkFound}},
    {Do::PowerOn, {Event::PowerOnAccepted, Event::AlreadyOn}},
    {Do::PowerOff, {Event::PowerOffAccepted, Event::PowerOffRefused}},
    {Do::Evaluate, {Event::ServicesChanged}},
    {Do::Judge,
     {Event::RequestedMissing, Event::RequestedIdle, Event::RequestedFailed, Event::RequestedReady,
      Event::RequestedOnline, Event::RequestedOther}},
    {Do::AskService, {Event::ServiceListed, Event::NoServiceListed}},
    {Do::AskTechnology, {Event::TechnologyIsUp, Event::TechnologyIsDown}},
    {Do::HandOver, {Event::AddressThere, Event::AddressMissing}},
    {Do::AskAddress, {Event::AddressThere, Event::AddressMissing}},
    {Do::JudgeTime, {Event::TimeJudged}},
    {Do::ForgetNetwork, {Event::NetworkForgotten, Event::NetworkKept}},
    {Do::Leave, {Event::Left}},
    {Do::WriteConfiguration, {Event::ConfigurationWritten, Event::ConfigurationRefused}},
    {Do::CheckAccessPoint, {Event::AccessPointRuns, Event::AccessPointMissing}},
    {Do::CheckInterface, {Event::InterfaceRunning, Event::InterfaceDown, Event::InterfaceMissing}},
};

bool isSwitch(LinkAction action)
{
    return action == Do::SwitchToEthernet || action == Do::SwitchToStation ||
           action == Do::SwitchToAccessPoint;
}

/** Enumerates all combinations of results. */
class Choices
{
public:
    std::size_t choose(std::size_t count)
    {
        if (count < 2)
            return 0;
        if (m_position == m_choices.size())
            m_choices.push_back({0, count});
        return m_choices[m_position++].chosen;
    }

    /**
     * Advances to the next combination. @return false after the last one
     */
    bool advance()
    {
        m_position = 0;
        while (!m_choices.empty() && m_choices.back().chosen + 1 == m_choices.back().count)
            m_choices.pop_back();
        if (m_choices.empty())
            return false;
        ++m_choices.back().chosen;
        return true;
    }

private:
    struct Choice {
        std::size_t chosen;
        std::size_t count;
    };
    std::vector<Choice> m_choices;
    size_t m_position = 0;
};

/** A machine whose actions have the results that @p choices selects. */
class ExploringMachine : public LinkMachine
{
public:
    ExploringMachine(const LinkTable &table, LinkOutcome &outcome, Choices &choices,
                     LinkUses &usedRows)
        : LinkMachine(table),
          m_outcome(outcome),
          m_choices(choices),
          m_usedRows(usedRows),
          m_state(outcome.before.link.state)
    {
        m_link = outcome.before.link;
        m_outcome.after = outcome.before;
    }

    void run()
    {
        const LinkEvent event = m_outcome.event;
        happen(event);
        useRow(event);
        handle(event);
        noteState();
        noteSilence();
        m_outcome.after.link = m_link;
    }

protected:
    LinkEvent perform(LinkAction action) override
    {
        if (action == Do::None || m_outcome.acts.size() == mostActs)
            return Event::None;
        noteState();
        if (action == Do::Announce)
            m_isSilent = false;
        m_outcome.acts.push_back({action, m_link});
        follow(action);
        const LinkEvent answer = answerTo(action);
        if (answer == Event::None)
            return answer;
        if (answer == Event::ScriptStarted)
            m_outcome.after.isScriptRunning = true;
        m_outcome.answers.push_back(answer);
        useRow(answer);
        return answer;
    }

    void handled(LinkEvent, bool isDecided) override { m_outcome.isDecided = isDecided; }

private:
    /** Notes that @p event is no longer pending. */
    void happen(LinkEvent event)
    {
        LinkWorld &world = m_outcome.after;
        if (event == Event::ScriptEnded)
            world.isScriptRunning = false;
        else if (event == Event::ModuleReady)
            takeOne(world.moduleDelays);
        else if (event == Event::CheckIsDue)
            takeOne(world.checks);
        else if (event == Event::LeavingIsOver)
            world.isLeavingTimed = false;
        else if (event == Event::ConnectFailed)
            world.isConnectAsked = false;
    }

    void takeOne(int &pending)
    {
        // The counter saturates: at its maximum, more events may be pending than it counts, and
        // the end of one may leave it unchanged.
        if (pending < mostPending || m_choices.choose(2) == 0)
            --pending;
    }

    void follow(LinkAction action)
    {
        LinkWorld &world = m_outcome.after;
        if (action == Do::StartModuleDelay)
            world.moduleDelays = std::min(world.moduleDelays + 1, mostPending);
        else if (action == Do::StartCheckDelay)
            world.checks = std::min(world.checks + 1, mostPending);
        else if (action == Do::StartLeavingTime)
            world.isLeavingTimed = true;
        else if (action == Do::RequestConnect)
            world.isConnectAsked = true;
    }

    LinkEvent answerTo(LinkAction action)
    {
        for (const auto &question : questions) {
            if (question.action != action)
                continue;
            if (isSwitch(action) && m_outcome.after.isScriptRunning)
                return Event::ScriptRefused;
            return question.answers[m_choices.choose(question.answers.size())];
        }
        return Event::None;
    }

    void useRow(LinkEvent event)
    {
        const LinkRow *row = next(m_table, m_link, event).row;
        if (!row)
            return;
        LinkUse &use = m_usedRows[row];
        use.states |= setOf(m_link.state);
        use.operations |= setOf(m_link.operation);
    }

    void noteState()
    {
        if (m_link.state == m_state)
            return;
        noteSilence();
        m_state = m_link.state;
        m_isSilent = true;
    }

    void noteSilence()
    {
        if (m_isSilent)
            m_outcome.silentStates << nameOf(m_state);
        m_isSilent = false;
    }

    LinkOutcome &m_outcome;
    Choices &m_choices;
    LinkUses &m_usedRows;
    State m_state;
    bool m_isSilent = false;
};

quint32 keyOf(const LinkWorld &world)
{
    const struct {
        int value;
        int bits;
    } parts[] = {
        {world.link.state, 3},
        {int(world.link.operation), 2},
        {world.link.isFirmwareLoaded, 1},
        {world.link.isTimed, 1},
        {world.link.hasService, 1},
        {world.link.isNetworkKept, 1},
        {world.link.isRequestedReady, 1},
        {world.isScriptRunning, 1},
        {world.moduleDelays, 2},
        {world.checks, 2},
        {world.isLeavingTimed, 1},
        {world.isConnectAsked, 1},
        {world.isScanOwed, 1},
        {world.isConnectOwed, 1},
        {world.isLeft, 1},
    };
    quint32 key = 0;
    for (const auto &part : parts)
        key = key << part.bits | quint32(part.value);
    return key;
}

/** Notes whether, after @p outcome, clients wait for the list of a scan or the end of a connect. */
void owe(LinkOutcome &outcome)
{
    LinkWorld &world = outcome.after;
    const bool isStarted = outcome.has(Event::ScriptStarted);
    if (outcome.event == Event::DisconnectCalled && outcome.has(Do::Announce)) {
        world.isScanOwed = world.isConnectOwed = false;
        world.isLeft = true;
    } else if (outcome.event == Event::ScanCalled && isStarted) {
        world.isScanOwed = true;
        world.isConnectOwed = world.isLeft = false;
    } else if (outcome.event == Event::ConnectCalled && isStarted) {
        world.isConnectOwed = true;
        world.isScanOwed = world.isLeft = false;
    }
    if (outcome.has(Do::GiveList) || world.link.state != Idle)
        world.isScanOwed = false;
    if (outcome.announces(Failure) || outcome.announces(Online))
        world.isConnectOwed = false;
}

QString describe(const LinkOutcome &outcome)
{
    QStringList acts;
    for (const LinkAct &act : outcome.acts)
        acts << nameOf(act.action);
    QStringList answers;
    for (const LinkEvent answer : outcome.answers)
        answers << nameOf(answer);
    return QString("%1: %2 [%3] (%4) -> %5")
        .arg(describe(outcome.before.link), nameOf(outcome.event), acts.join(' '),
             answers.join(' '), describe(outcome.after.link));
}
} // namespace

bool LinkOutcome::has(LinkAction action) const
{
    return std::any_of(acts.begin(), acts.end(),
                       [action](const LinkAct &act) { return act.action == action; });
}

int LinkOutcome::indexOf(LinkAction action) const
{
    const auto found = std::find_if(acts.begin(), acts.end(),
                                    [action](const LinkAct &act) { return act.action == action; });
    return found == acts.end() ? -1 : int(found - acts.begin());
}

bool LinkOutcome::announces(KyTcpIpState::State state) const
{
    return std::any_of(acts.begin(), acts.end(), [state](const LinkAct &act) {
        return act.action == Do::Announce && act.link.state == state;
    });
}

bool LinkOutcome::has(LinkEvent answer) const
{
    return std::find(answers.begin(), answers.end(), answer) != answers.end();
}

std::vector<LinkEvent> possibleEvents(const LinkWorld &world, LinkKind kind)
{
    std::vector<LinkEvent> events = {Event::ConnectCalled, Event::DisconnectCalled};
    const auto add = [&events](bool isPossible, std::initializer_list<LinkEvent> more) {
        if (isPossible)
            events.insert(events.end(), more);
    };
    const bool isStation = kind == LinkKind::Station;
    add(isStation, {Event::ScanCalled});
    add(world.isScriptRunning, {Event::ScriptEnded});
    add(world.moduleDelays > 0, {Event::ModuleReady});
    add(world.checks > 0, {Event::CheckIsDue});
    add(world.link.isTimed, {Event::TimeIsOver});
    add(world.isLeavingTimed, {Event::LeavingIsOver});
    add(world.isConnectAsked, {Event::ConnectFailed});
    add(kind != LinkKind::AccessPoint,
        {Event::TechnologyOn, Event::TechnologyOff, Event::TechnologyConnected,
         Event::TechnologyOther, Event::ServicesChanged});
    add(world.link.hasService && isStation,
        {Event::ServiceStrength, Event::ServiceError, Event::ServiceAddress, Event::ServiceOther});
    add(world.link.hasService && !isStation, {Event::ServiceAddress, Event::ServiceIPv4});
    return events;
}

LinkExplorer::LinkExplorer(const LinkTable &table, LinkKind kind, int mostViolations)
    : m_table(table), m_kind(kind), m_mostViolations(mostViolations)
{
}

void LinkExplorer::explore()
{
    if (m_kind == LinkKind::AccessPoint) {
        visit(LinkWorld());
    } else {
        for (const LinkOutcome &outcome : outcomes(LinkWorld(), Event::Started)) {
            require(outcome.has(Do::PowerOff), "the start powers the technology off", outcome);
            visit(outcome.after);
        }
    }
    while (!m_open.empty() && m_violations.size() < m_mostViolations) {
        const LinkWorld world = m_open.back();
        m_open.pop_back();
        for (const LinkEvent event : possibleEvents(world, m_kind)) {
            for (const LinkOutcome &outcome : outcomes(world, event)) {
                ++m_transitions;
                for (const LinkRule &rule : linkRules)
                    require(rule.holds(outcome, m_kind), rule.text, outcome);
                visit(outcome.after);
            }
        }
    }
}

std::vector<LinkOutcome> LinkExplorer::outcomes(const LinkWorld &world, LinkEvent event)
{
    std::vector<LinkOutcome> all;
    Choices choices;
    do {
        LinkOutcome outcome;
        outcome.before = world;
        outcome.event = event;
        ExploringMachine(m_table, outcome, choices, m_usedRows).run();
        owe(outcome);
        all.push_back(outcome);
    } while (choices.advance());
    return all;
}

void LinkExplorer::visit(const LinkWorld &world)
{
    const quint32 key = keyOf(world);
    if (m_seen.contains(key))
        return;
    m_seen.insert(key);
    m_open.push_back(world);
}

void LinkExplorer::require(bool holds, const char *rule, const LinkOutcome &outcome)
{
    if (!holds && m_violations.size() < m_mostViolations)
        m_violations << QString("%1; %2").arg(rule, describe(outcome));
}
