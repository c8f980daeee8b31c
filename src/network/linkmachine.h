#ifndef LINKMACHINE_H
#define LINKMACHINE_H

#include "tcpipstate.h"

#include <optional>

/**
 * The operation that a client requested of the Wi-Fi station. The other interfaces stay at None.
 */
enum class LinkOperation { None, Scan, Connect };

/** The complete state of a network interface. */
struct Link {
    KyTcpIpState::State state = KyTcpIpState::Idle;
    LinkOperation operation = LinkOperation::None;
    /** The Wi-Fi module is in the requested mode. */
    bool isFirmwareLoaded = false;
    /** The timer of a connection attempt or of a scan runs. */
    bool isTimed = false;
    /** There is a current ConnMan service. */
    bool hasService = false;
    /** The last disconnect left the network, but ConnMan refused to forget it. */
    bool isNetworkKept = false;
    /** The requested service was "ready" when its state was last read; see LinkAction::Judge. */
    bool isRequestedReady = false;
};

/** The inputs of a state machine; see LinkMachine. */
enum class LinkEvent {
    None,
    /** The daemon starts. */
    Started,

    // Calls of clients.
    ScanCalled,
    ConnectCalled,
    DisconnectCalled,

    // The mode script and the module.
    ScriptEnded,
    /** The delay after the end of the script is over. */
    ModuleReady,

    // Timers.
    /** The attempt or the scan has timed out. */
    TimeIsOver,
    /** A disconnect has timed out: the technology should be off by now. */
    LeavingIsOver,
    /** The next check of the access point's interface is due. */
    CheckIsDue,

    // Signals of ConnMan about the technology, its services and the current service.
    TechnologyOn,
    TechnologyOff,
    TechnologyConnected,
    TechnologyOther,
    ServicesChanged,
    ServiceStrength,
    ServiceError,
    /**
     * The service's "IPv4" changed and contains an address. For Ethernet it must also contain a
     * netmask.
     */
    ServiceAddress,
    /**
     * The service's "IPv4" changed, and has no address or no netmask. Only Ethernet has this event.
     */
    ServiceIPv4,
    ServiceOther,
    /** ConnMan's reply to Connect is an error that fails the attempt; see failsConnect(). */
    ConnectFailed,

    // Results of actions; LinkAction lists which results an action has.
    ScriptStarted,
    ScriptRefused,
    ConnmanRuns,
    ConnmanAbsent,
    NetworksListed,
    NoNetworkListed,
    NetworksFound,
    NoNetworkFound,
    PowerOnAccepted,
    AlreadyOn,
    PowerOffAccepted,
    PowerOffRefused,
    RequestedMissing,
    RequestedIdle,
    RequestedFailed,
    RequestedReady,
    RequestedOnline,
    RequestedOther,
    ServiceListed,
    NoServiceListed,
    TechnologyIsUp,
    TechnologyIsDown,
    AddressThere,
    AddressMissing,
    NetworkForgotten,
    NetworkKept,
    Left,
    TimeJudged,
    ConfigurationWritten,
    ConfigurationRefused,
    AccessPointRuns,
    AccessPointMissing,
    InterfaceRunning,
    InterfaceDown,
    InterfaceMissing,
    Count
};

/**
 * The outputs of a state machine. An action with a result raises one of the events in its comment.
 */
enum class LinkAction {
    None,
    /** Announces the state to clients. */
    Announce,
    /** Announces a changed property of the current service to clients. */
    PassOn,
    /** Sends clients the list of networks. */
    GiveList,
    /** Stores the name of the network and the credentials of a connect. */
    TakeRequest,

    StartScanTime,
    StartConnectTime,
    StopTime,
    StartLeavingTime,
    StartModuleDelay,
    StartCheckDelay,
    /** Records that the module is in the requested mode. */
    NoteModule,

    // Starts the mode script: ScriptStarted, ScriptRefused.
    SwitchToEthernet,
    SwitchToStation,
    SwitchToAccessPoint,

    /** Is ConnMan's program running? ConnmanRuns, ConnmanAbsent. */
    AskConnman,
    /** Does ConnMan list a network before power on? NetworksListed, NoNetworkListed. */
    AskListed,
    /** Does ConnMan list a network after power on? NetworksFound, NoNetworkFound. */
    AskFound,
    /**
     * Switches the technology on: AlreadyOn if ConnMan replies AlreadyEnabled, otherwise
     * PowerOnAccepted, even after another error.
     */
    PowerOn,
    /** Switches the technology off: PowerOffAccepted, PowerOffRefused. */
    PowerOff,
    RequestScan,
    /** Evaluates the services as if ConnMan had signalled a change: ServicesChanged. */
    Evaluate,
    /** What is the state of the requested service? RequestedMissing ... RequestedOther. */
    Judge,
    /** Is there a service to use? ServiceListed, NoServiceListed. */
    AskService,
    /** Is the technology connected? TechnologyIsUp, TechnologyIsDown. */
    AskTechnology,
    /** Registers the agent and calls Connect without blocking; ConnectFailed may follow later. */
    RequestConnect,
    /** Makes the service that was found the current one. */
    WatchService,
    ForgetService,
    /**
     * Sends the name servers and the IPv4 settings to the service: AddressThere if the service
     * already has its final address, otherwise AddressMissing.
     */
    HandOver,
    /** Does the service have an address? AddressThere, AddressMissing. */
    AskAddress,
    /** Raises TimeJudged: the state table then decides whether the timeout fails the attempt. */
    JudgeTime,

    /** Removes the network from ConnMan: NetworkForgotten, NetworkKept. */
    ForgetNetwork,
    UnregisterAgent,
    /** Ends a disconnect immediately: Left. */
    Leave,

    /** Writes hostapd's configuration file: ConfigurationWritten, ConfigurationRefused. */
    WriteConfiguration,
    /** Is the interface up, and do hostapd and dhcpd run? AccessPointRuns, AccessPointMissing. */
    CheckAccessPoint,
    /** Does the interface have carrier? InterfaceRunning, InterfaceDown, InterfaceMissing. */
    CheckInterface,

    // Error replies to the current call.
    ReplyCannotSwitch,
    ReplyCannotSwitchAccessPoint,
    ReplyNotForgotten,
    ReplyNotPoweredOff,
    ReplyBusy,
    ReplyNotConfigured,
    ReplyDisconnectedAlready,
    Count
};

/** An additional condition of a row, on the flags of Link. */
enum class LinkCondition {
    Always,
    TimeRuns,
    TimeIsOver,
    HasService,
    HasNoService,
    NetworkIsKept,
    NetworkIsForgotten,
    RequestedIsReady,
    RequestedIsNotReady,
};

/** A set of KyTcpIpState::State or of LinkOperation; one bit each. */
using LinkSet = unsigned;

constexpr LinkSet setOf(KyTcpIpState::State state)
{
    return 1U << state;
}

constexpr LinkSet setOf(LinkOperation operation)
{
    return 1U << static_cast<unsigned>(operation);
}

/** The value of Link::isFirmwareLoaded that a row requires. */
enum class LinkFirmware { Any, Loaded };

constexpr int mostLinkActions = 5;

/** The links to which a row applies. */
struct LinkCase {
    LinkSet states;
    LinkSet operations = ~0U;
    LinkFirmware firmware = LinkFirmware::Any;
    LinkCondition condition = LinkCondition::Always;
};

/** The new state and operation of a link. No value means no change. */
struct LinkTarget {
    std::optional<KyTcpIpState::State> state = std::nullopt;
    std::optional<LinkOperation> operation = std::nullopt;
};

/** A row of a machine: the actions for an event, and the link's next state. */
struct LinkRow {
    LinkCase from;
    LinkEvent event;
    LinkTarget to;
    /** Carried out in this order; the unused elements are None. */
    LinkAction actions[mostLinkActions];
};

/** A machine. At most one row applies to any link and event; an event without a row is ignored. */
struct LinkTable {
    const LinkRow *rows;
    int size;
    /** True if the timer of an attempt restarts after each timeout. */
    bool isTimeRepeated;

    const LinkRow *begin() const { return rows; }
    const LinkRow *end() const { return rows + size; }
};

/** The result of an event. */
struct LinkStep {
    Link link;
    /** The row that applies; null if the event is ignored. */
    const LinkRow *row;
};

/** Returns true if @p row applies to @p event for @p link. */
bool holds(const LinkRow &row, const Link &link, LinkEvent event);

/** Returns the result of @p event in @p table for @p link. */
LinkStep next(const LinkTable &table, Link link, LinkEvent event);

/**
 * Runs the state machine that a LinkTable describes.
 *
 * The link first enters its next state. Then the row's actions are carried out in order. The result
 * of an action is handled completely before the next action.
 */
class LinkMachine
{
public:
    explicit LinkMachine(const LinkTable &table) : m_table(table) {}
    virtual ~LinkMachine() = default;
    LinkMachine(const LinkMachine &) = delete;
    LinkMachine &operator=(const LinkMachine &) = delete;

    const Link &link() const { return m_link; }

    /**
     * Looks the event up in the table, changes the link, and performs the actions of the row. The
     * event that answers an action is handled before the next action.
     */
    void handle(LinkEvent event);

protected:
    /**
     * Carries out @p action. @return its result; None if it has no result
     */
    virtual LinkEvent perform(LinkAction action) = 0;

    /**
     * Called when @p event and all events that it caused have been handled.
     *
     * @param isDecided true if a row applied to @p event
     */
    virtual void handled(LinkEvent event, bool isDecided) = 0;

    const LinkTable &m_table;
    Link m_link;
};

#endif
