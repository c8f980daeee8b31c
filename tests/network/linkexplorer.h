#ifndef LINKEXPLORER_H
#define LINKEXPLORER_H

#include "linkmachine.h"

#include <QSet>
#include <QStringList>

#include <vector>

/** What surrounds a machine: what may still come, and what clients have been promised. */
struct LinkWorld {
    Link link;
    bool isScriptRunning = false;
    /** How many ends of the script are younger than 2 s; more than two make no difference. */
    int moduleDelays = 0;
    /** How many checks of the access point are due; more than two make no difference. */
    int checks = 0;
    bool isLeavingTimed = false;
    /** ConnMan has not answered the last Connect. */
    bool isConnectAsked = false;

    /** A scan was accepted whose list has not come. */
    bool isScanOwed = false;
    /** A connect was accepted whose end has not come. */
    bool isConnectOwed = false;
    /** The last call that was accepted was a disconnect. */
    bool isLeft = false;
};

/** One action of a machine, and the link when it was carried out. */
struct LinkAct {
    LinkAction action;
    Link link;
};

/** What an event has led to, with one answer to each action that asks. */
struct LinkOutcome {
    LinkWorld before;
    LinkEvent event;
    /** Whether a row of the table held for the event. */
    bool isDecided = false;
    std::vector<LinkAct> acts;
    std::vector<LinkEvent> answers;
    QStringList silentStates;
    LinkWorld after;

    bool has(LinkAction action) const;
    bool has(LinkEvent answer) const;
    /** The place of the first such action; -1 where there is none. */
    int indexOf(LinkAction action) const;
    /** Whether clients are told of @p state. */
    bool announces(KyTcpIpState::State state) const;
};

/** Whose rules a machine has to keep. */
enum class LinkKind { Ethernet, Station, AccessPoint };

/**
 * Leads a machine from its start through every event with every answer that its surroundings can
 * give, until there is no new state, and judges each step by the rules that clients rely on.
 */
class LinkExplorer
{
public:
    /** @param mostViolations ends the exploration */
    LinkExplorer(const LinkTable &table, LinkKind kind, int mostViolations);

    /** Explores everything. */
    void explore();

    /** The broken rules, one line each. */
    const QStringList &violations() const { return m_violations; }

    int states() const { return m_seen.size(); }
    int transitions() const { return m_transitions; }

    /** The rows that held at least once. */
    const QSet<const LinkRow *> &usedRows() const { return m_usedRows; }

    /** Everything that @p event can lead to. */
    std::vector<LinkOutcome> outcomes(const LinkWorld &world, LinkEvent event);

private:
    void visit(const LinkWorld &world);
    void require(bool holds, const char *rule, const LinkOutcome &outcome);

    const LinkTable &m_table;
    const LinkKind m_kind;
    const int m_mostViolations;
    QSet<quint32> m_seen;
    std::vector<LinkWorld> m_open;
    QSet<const LinkRow *> m_usedRows;
    int m_transitions = 0;
    QStringList m_violations;
};

/** The events of the surroundings that can come in @p world to a machine of @p kind. */
std::vector<LinkEvent> possibleEvents(const LinkWorld &world, LinkKind kind);

#endif
