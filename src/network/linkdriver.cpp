#include "linkdriver.h"

#include "busfailure.h"
#include "ipv4repair.h"
#include "programs.h"

#include <QDebug>

namespace
{
constexpr int scanTimeMs = 15000;
constexpr int connectTimeMs = 60000;
/** The time that the Wi-Fi module needs after the mode script has ended. */
constexpr int moduleDelayMs = 2000;
constexpr int checkDelayMs = 3000;

const struct {
    LinkAction action;
    const char *text;
} replies[] = {
    // Ethernet's error has this text, too, although Ethernet uses mode '0'; clients rely on it.
    {LinkAction::ReplyCannotSwitch, "Cannot switch in mode '1' (WLAN STATION)"},
    {LinkAction::ReplyCannotSwitchAccessPoint, "Cannot switch in mode '2' (WLAN ACCESS POINT)"},
    {LinkAction::ReplyNotForgotten, "Cannot remove service"},
    {LinkAction::ReplyNotPoweredOff, "Cannot set property Powered: "},
    {LinkAction::ReplyBusy, "Cannot connect, wap busy"},
    {LinkAction::ReplyNotConfigured, "Cannot create hostapd conf file"},
    {LinkAction::ReplyDisconnectedAlready, "Cannot disconnect WAP, already disconnected"},
};
} // namespace

LinkDriver::LinkDriver(const LinkTable &table, LinkParts &parts)
    : LinkMachine(table), m_parts(parts)
{
    m_time.setTimerType(Qt::PreciseTimer);
    m_time.setSingleShot(!table.isTimeRepeated);
    connect(&m_time, &QTimer::timeout, this, [this] { handle(LinkEvent::TimeIsOver); });
    connect(&parts.script, &ModeScript::ended, this, [this] { handle(LinkEvent::ScriptEnded); });
}

void LinkDriver::call(LinkEvent event, const QDBusMessage &message, const QVariantMap &arguments)
{
    m_message = message;
    m_arguments = arguments;
    handle(event);
    m_message = QDBusMessage();
    m_arguments.clear();
}

LinkEvent LinkDriver::perform(LinkAction action)
{
    switch (action) {
    case LinkAction::Announce:
        announce();
        break;
    case LinkAction::PassOn:
        Q_EMIT propertyChanged(m_parts.service.path(), m_changedName, QDBusVariant(m_changedValue));
        break;
    case LinkAction::StartScanTime:
        m_time.start(scanTimeMs);
        break;
    case LinkAction::StartConnectTime:
        m_time.start(connectTimeMs);
        break;
    case LinkAction::StopTime:
        m_time.stop();
        break;
    case LinkAction::StartModuleDelay:
        raiseAfter(moduleDelayMs, LinkEvent::ModuleReady);
        break;
    case LinkAction::StartCheckDelay:
        raiseAfter(checkDelayMs, LinkEvent::CheckIsDue);
        break;
    case LinkAction::SwitchToEthernet:
        return switchMode(QStringLiteral("0"));
    case LinkAction::SwitchToStation:
        return switchMode(QStringLiteral("1"));
    case LinkAction::SwitchToAccessPoint:
        return switchMode(QStringLiteral("2"));
    case LinkAction::AskConnman:
        return isProgramRunning(QStringLiteral("connmand")) ? LinkEvent::ConnmanRuns
                                                            : LinkEvent::ConnmanAbsent;
    case LinkAction::PowerOn:
        return powerOn();
    case LinkAction::PowerOff:
        return powerOff();
    case LinkAction::WatchService:
        m_parts.service.watch(m_foundPath);
        break;
    case LinkAction::ForgetService:
        m_parts.service.forget();
        break;
    case LinkAction::HandOver:
        return handOver();
    default:
        reply(action);
    }
    return LinkEvent::None;
}

void LinkDriver::handled(LinkEvent, bool) {}

bool LinkDriver::hasAddress(const QVariantMap &ipv4) const
{
    return ipv4.contains(QStringLiteral("Address"));
}

void LinkDriver::serviceChanged(LinkEvent event, const QString &name, const QVariant &value)
{
    m_changedName = name;
    m_changedValue = value;
    handle(event);
    m_changedValue.clear();
}

LinkEvent LinkDriver::found(const std::optional<ConnmanObject> &service)
{
    m_foundPath = service ? service->path.path() : QString();
    return service ? LinkEvent::ServiceListed : LinkEvent::NoServiceListed;
}

void LinkDriver::announce()
{
    const QString name = QString::fromLatin1(KyTcpIpState::tpc_i_tcpIpState[link().state]);
    qDebug() << m_parts.service.path() << "TCPIP_STATE:" << name;
    Q_EMIT propertyChanged(m_parts.service.path(), QStringLiteral("State"), QDBusVariant(name));
}

LinkEvent LinkDriver::switchMode(const QString &mode)
{
    return m_parts.script.start(mode) ? LinkEvent::ScriptStarted : LinkEvent::ScriptRefused;
}

LinkEvent LinkDriver::powerOn()
{
    const QDBusError error = connman::setTechnologyPowered(m_parts.technology, true);
    // ConnMan sends no signal for "Powered" if the technology is already on.
    return error.name() == QLatin1String("net.connman.Error.AlreadyEnabled")
               ? LinkEvent::AlreadyOn
               : LinkEvent::PowerOnAccepted;
}

LinkEvent LinkDriver::powerOff()
{
    const QDBusError refusal = connman::setTechnologyPowered(m_parts.technology, false);
    m_refusal = refusal.message();
    return refusal.isValid() ? LinkEvent::PowerOffRefused : LinkEvent::PowerOffAccepted;
}

/** Sends the stored name servers and IPv4 settings to the current service. */
LinkEvent LinkDriver::handOver()
{
    const QString &path = m_parts.service.path();
    const QVariantMap &settings = m_parts.settings.configuration();
    connman::setServiceProperty(path, QStringLiteral("Nameservers.Configuration"),
                                m_parts.settings.nameservers());
    const QDBusError refusal =
        connman::setServiceProperty(path, QStringLiteral("IPv4.Configuration"), settings);
    // ConnMan may have signalled the address before this call: read the address now. If ConnMan has
    // just accepted settings that are not yet in force, the address will change, and ConnMan will
    // signal the change.
    const QVariantMap present = m_parts.service.ipv4();
    const bool isSettled = refusal.isValid() || isInForce(settings, present);
    return isSettled && hasAddress(present) ? LinkEvent::AddressThere : LinkEvent::AddressMissing;
}

void LinkDriver::reply(LinkAction action)
{
    for (const auto &row : replies) {
        if (row.action != action)
            continue;
        const QString detail = action == LinkAction::ReplyNotPoweredOff ? m_refusal : QString();
        sendFailure(QLatin1String(row.text) + detail, m_message);
    }
}

void LinkDriver::raiseAfter(int delayMs, LinkEvent event)
{
    QTimer::singleShot(delayMs, Qt::PreciseTimer, this, [this, event] { handle(event); });
}
