#ifndef LINKEXPLORER_H
#define LINKEXPLORER_H

#include "linkmachine.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <vector>

/**
 * A state of the exploration: the machine's link, the pending events, and the outcomes that clients
 * wait for.
 */
struct LinkWorld {
    Link link;
    /** The machine has started the mode script, and the script has not ended yet. */
    bool isScriptRunning = false;
    /** The number of scripts that ended less than 2 s ago; the count stops at two. */
    int moduleDelays = 0;
    /** The number of pending checks of the access point; the count stops at two. */
    int checks = 0;
    /** The timer of a disconnect runs. */
    bool isLeavingTimed = false;
    /** ConnMan has not replied to the last Connect. */
    bool isConnectAsked = false;

    /** A scan was accepted, and its list has not been sent yet. */
    bool isScanOwed = false;
    /** A connect was accepted, and its outcome has not been announced yet. */
    bool isConnectOwed = false;
    /** The last accepted call was a disconnect. */
    bool isLeft = false;
};

/** One action of a machine, and the link when the machine carries it out. */
struct LinkAct {
    LinkAction action;
    Link link;
};

/** The effects of an event, for one combination of the results of the machine's actions. */
struct LinkOutcome {
    LinkWorld before;
    LinkEvent event;
    /** True if a row of the table applied to the event. */
    bool isDecided = false;
    std::vector<LinkAct> acts;
    /** The results of these actions, in order. */
    std::vector<LinkEvent> answers;
    /** The states that the machine entered, but did not announce. */
    QStringList silentStates;
    LinkWorld after;

    bool has(LinkAction action) const;
    bool has(LinkEvent answer) const;
    /** The index of the first @p action in acts; -1 if there is none. */
    int indexOf(LinkAction action) const;
    /** Returns true if @p state is announced to clients. */
    bool announces(KyTcpIpState::State state) const;
};

/** The states and operations in which a row applied. */
struct LinkUse {
    LinkSet states = 0;
    LinkSet operations = 0;
};

/** The use of each row that applied at least once. */
using LinkUses = QHash<const LinkRow *, LinkUse>;

/** The kind of a machine; some rules apply to one kind only. */
enum class LinkKind { Ethernet, Station, AccessPoint };

/**
 * Explores a machine from its start through every event with every possible result, until there is
 * no new state, and checks each step against the rules that clients rely on.
 */
class LinkExplorer
{
public:
    /**
     * @param mostViolations the number of violations that ends the exploration
     */
    LinkExplorer(const LinkTable &table, LinkKind kind, int mostViolations);

    /** Explores everything. */
    void explore();

    /** The violated rules, one line each. */
    const QStringList &violations() const { return m_violations; }

    int states() const { return m_seen.size(); }
    int transitions() const { return m_transitions; }

    /** The rows that applied at least once. */
    const LinkUses &usedRows() const { return m_usedRows; }

    /** All possible outcomes of @p event. */
    std::vector<LinkOutcome> outcomes(const LinkWorld &world, LinkEvent event);

private:
    void visit(const LinkWorld &world);
    void require(bool holds, const char *rule, const LinkOutcome &outcome);

    const LinkTable &m_table;
    const LinkKind m_kind;
    const int m_mostViolations;
    QSet<quint32> m_seen;
    std::vector<LinkWorld> m_open;
    LinkUses m_usedRows;
    int m_transitions = 0;
    QStringList m_violations;
};

/** The events that can occur in @p world for a machine of @p kind. */
std::vector<LinkEvent> possibleEvents(const LinkWorld &world, LinkKind kind);

#endif
