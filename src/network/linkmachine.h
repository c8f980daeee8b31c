#ifndef LINKMACHINE_H
#define LINKMACHINE_H

#include "tcpipstate.h"

#include <optional>

/** What a client wants of the Wi-Fi station. The other interfaces stay at None. */
enum class LinkOperation { None, Scan, Connect };

/** All that decides what a network interface does next. */
struct Link {
    KyTcpIpState::State state = KyTcpIpState::Idle;
    LinkOperation operation = LinkOperation::None;
    /** The module is in the mode that was asked for. */
    bool isFirmwareLoaded = false;
    /** The time of the attempt or of the scan runs. */
    bool isTimed = false;
    /** A service of ConnMan is the current one. */
    bool hasService = false;
    /** ConnMan would not forget the network that is being left. */
    bool isNetworkKept = false;
    /** The requested service was "ready" when it was judged last. */
    bool isRequestedReady = false;
};

/** What a machine is told. */
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
    /** The module has had its time since the script ended. */
    ModuleReady,

    // Timers.
    /** The time of the attempt or of the scan is over. */
    TimeIsOver,
    /** The technology was to be off by now. */
    LeavingIsOver,
    /** The access point's interface is to be checked. */
    CheckIsDue,

    // Signals of ConnMan about the technology, its services and the current service.
    TechnologyOn,
    TechnologyOff,
    TechnologyConnected,
    TechnologyOther,
    ServicesChanged,
    ServiceStrength,
    ServiceError,
    /** The service's "IPv4" holds what the interface counts as an address. */
    ServiceAddress,
    /** The service's "IPv4" holds less than that. */
    ServiceIPv4,
    ServiceOther,
    /** ConnMan answers Connect with an error of its own. */
    ConnectFailed,

    // Answers to actions; LinkAction tells which to which.
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

/** What a machine has done. An action that asks is answered by one of the events behind it. */
enum class LinkAction {
    None,
    /** Tells clients the state. */
    Announce,
    /** Passes a changed property of the current service on to clients. */
    PassOn,
    /** Gives clients the list of networks. */
    GiveList,
    /** Takes the name and the credentials of a connect. */
    TakeRequest,

    StartScanTime,
    StartConnectTime,
    StopTime,
    StartLeavingTime,
    StartModuleDelay,
    StartCheckDelay,
    /** Notes that the module is in the mode that was asked for. */
    NoteModule,

    // Starts the mode script: ScriptStarted, ScriptRefused.
    SwitchToEthernet,
    SwitchToStation,
    SwitchToAccessPoint,

    /** Whether ConnMan's program runs: ConnmanRuns, ConnmanAbsent. */
    AskConnman,
    /** Whether ConnMan lists a network before it is powered: NetworksListed, NoNetworkListed. */
    AskListed,
    /** Whether ConnMan lists a network once it is powered: NetworksFound, NoNetworkFound. */
    AskFound,
    /** PowerOnAccepted (also after an error), AlreadyOn. */
    PowerOn,
    /** PowerOffAccepted, PowerOffRefused. */
    PowerOff,
    RequestScan,
    /** Does what ConnMan's signal does: ServicesChanged. */
    Evaluate,
    /** How the requested service is: RequestedMissing ... RequestedOther. */
    Judge,
    /** Whether there is a service to take: ServiceListed, NoServiceListed. */
    AskService,
    /** Whether the technology is connected: TechnologyIsUp, TechnologyIsDown. */
    AskTechnology,
    /** Offers the agent and asks for the connection, without waiting: later ConnectFailed. */
    RequestConnect,
    /** Makes the service that was found the current one. */
    WatchService,
    ForgetService,
    /** Hands the IPv4 settings over: AddressThere where the address is settled, AddressMissing. */
    HandOver,
    /** Whether the service has an address: AddressThere, AddressMissing. */
    AskAddress,
    /** What is still undecided at the end of the time: TimeJudged. */
    JudgeTime,

    /** NetworkForgotten, NetworkKept. */
    ForgetNetwork,
    UnregisterAgent,
    /** Ends a disconnect at once: Left. */
    Leave,

    /** ConfigurationWritten, ConfigurationRefused. */
    WriteConfiguration,
    /** Whether interface, hostapd and dhcpd are there: AccessPointRuns, AccessPointMissing. */
    CheckAccessPoint,
    /** InterfaceRunning, InterfaceDown, InterfaceMissing. */
    CheckInterface,

    // Error replies to the call that is being handled.
    ReplyCannotSwitch,
    ReplyCannotSwitchAccessPoint,
    ReplyNotForgotten,
    ReplyNotPoweredOff,
    ReplyBusy,
    ReplyNotConfigured,
    ReplyDisconnectedAlready,
    Count
};

/** What else has to hold for a row. */
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

/** What a row's firmware flag is compared with. */
enum class LinkFirmware { Any, Loaded };

constexpr int mostLinkActions = 5;

/** Links for which a row holds. */
struct LinkCase {
    LinkSet states;
    LinkSet operations = ~0U;
    LinkFirmware firmware = LinkFirmware::Any;
    LinkCondition condition = LinkCondition::Always;
};

/** What a row makes of a link; what is not given stays. */
struct LinkTarget {
    std::optional<KyTcpIpState::State> state = std::nullopt;
    std::optional<LinkOperation> operation = std::nullopt;
};

/** A row of a machine: what follows from an event, and what the link is afterwards. */
struct LinkRow {
    LinkCase from;
    LinkEvent event;
    LinkTarget to;
    /** In this order; the first None ends them. */
    LinkAction actions[mostLinkActions];
};

/** A machine. At most one row holds for any link and event; an event without a row is ignored. */
struct LinkTable {
    const LinkRow *rows;
    int size;
    /** Whether the time of an attempt begins anew each time that it is over. */
    bool isTimeRepeated;

    const LinkRow *begin() const { return rows; }
    const LinkRow *end() const { return rows + size; }
};

/** What follows from an event. */
struct LinkStep {
    Link link;
    /** The row that holds; null where the event is ignored. */
    const LinkRow *row;
};

/** Whether @p row holds for @p event while the link is @p link. */
bool holds(const LinkRow &row, const Link &link, LinkEvent event);

/** What follows from @p event in @p table while the link is @p link. */
LinkStep next(const LinkTable &table, Link link, LinkEvent event);

/**
 * A table at work.
 *
 * The link is in its next state before the row's actions are carried out, one after another; the
 * answer to an action is handled to its end before the next action.
 */
class LinkMachine
{
public:
    explicit LinkMachine(const LinkTable &table) : m_table(table) {}
    virtual ~LinkMachine() = default;
    LinkMachine(const LinkMachine &) = delete;
    LinkMachine &operator=(const LinkMachine &) = delete;

    const Link &link() const { return m_link; }

    void handle(LinkEvent event);

protected:
    /** Carries @p action out. @return the answer; None where the action does not ask */
    virtual LinkEvent perform(LinkAction action) = 0;

    /** @p event has been handled, with all that followed from it. */
    virtual void handled(LinkEvent event, bool isDecided) = 0;

    const LinkTable &m_table;
    Link m_link;
};

#endif
