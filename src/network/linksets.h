#ifndef LINKSETS_H
#define LINKSETS_H

#include "linkmachine.h"

/** Short names for the rows of the state tables. */
namespace linksets
{
using Event = LinkEvent;
using Do = LinkAction;
using When = LinkCondition;

constexpr LinkSet idle = setOf(KyTcpIpState::Idle);
constexpr LinkSet failure = setOf(KyTcpIpState::Failure);
constexpr LinkSet association = setOf(KyTcpIpState::Association);
constexpr LinkSet configuration = setOf(KyTcpIpState::Configuration);
constexpr LinkSet ready = setOf(KyTcpIpState::Ready);
constexpr LinkSet leaving = setOf(KyTcpIpState::Disconnect);
constexpr LinkSet online = setOf(KyTcpIpState::Online);
constexpr LinkSet all = ~0U;

constexpr LinkSet none = setOf(LinkOperation::None);
constexpr LinkSet scan = setOf(LinkOperation::Scan);
constexpr LinkSet connect = setOf(LinkOperation::Connect);

constexpr LinkFirmware loaded = LinkFirmware::Loaded;
constexpr LinkFirmware either = LinkFirmware::Any;

constexpr KyTcpIpState::State toIdle = KyTcpIpState::Idle;
constexpr KyTcpIpState::State toFailure = KyTcpIpState::Failure;
constexpr KyTcpIpState::State toAssociation = KyTcpIpState::Association;
constexpr KyTcpIpState::State toConfiguration = KyTcpIpState::Configuration;
constexpr KyTcpIpState::State toReady = KyTcpIpState::Ready;
constexpr KyTcpIpState::State toDisconnect = KyTcpIpState::Disconnect;
constexpr KyTcpIpState::State toOnline = KyTcpIpState::Online;

constexpr LinkOperation toNone = LinkOperation::None;
constexpr LinkOperation toScan = LinkOperation::Scan;
constexpr LinkOperation toConnect = LinkOperation::Connect;

/** In LinkTarget: only the operation changes, the state stays the same. */
constexpr std::nullopt_t stays = std::nullopt;

/** A row of a table: from, event, to, actions. */
template <typename... Actions>
constexpr LinkRow row(const LinkCase &from, LinkEvent event, const LinkTarget &to,
                      Actions... actions)
{
    return {from, event, to, {actions...}};
}
} // namespace linksets

#endif
