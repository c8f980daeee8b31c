#include "wifistation.h"

#include "busvalue.h"
#include "connman.h"
#include "kyconnmanagent.h"
#include "settingtext.h"
#include "slotcache.h"
#include "stationtable.h"
#include "wifiservices.h"
#include "wifitrace.h"

#include <QDBusConnection>
#include <QDebug>

namespace
{
constexpr int leavingTimeMs = 15000;
/** Limits the requested name, which every record of the trace repeats. Real names are shorter. */
constexpr int longestName = 255;

const QString agentPath = QStringLiteral("/KyComMgr/Agent");

std::optional<ConnmanObject> requested(const QString &name)
{
    return wifiServiceNamed(wifiServices(connman::services()), name);
}

bool isNetworkListed()
{
    return !wifiServices(connman::services()).isEmpty();
}

bool isConnected(const QString &technology)
{
    const std::optional<ConnmanObject> object =
        connman::findObject(connman::technologies(), QStringLiteral("Type"), technology);
    return object && connman::isFlag(object->properties.value(QStringLiteral("Connected")), true);
}
} // namespace

WifiStation::WifiStation(LinkParts &parts)
    : LinkDriver(stationTable, parts), m_watch(parts.technology)
{
    m_leavingTime.setTimerType(Qt::PreciseTimer);
    m_leavingTime.setSingleShot(true);
    connect(&m_leavingTime, &QTimer::timeout, this, [this] { handle(LinkEvent::LeavingIsOver); });
    connect(&m_watch, &TechnologyWatch::happened, this, [this](LinkEvent event) { handle(event); });
    connect(&parts.service, &ConnmanService::propertyChanged, this,
            &WifiStation::handleServiceProperty);
}

void WifiStation::start()
{
    handle(LinkEvent::Started);
    exportAgent();
}

void WifiStation::exportAgent()
{
    auto *host = new QObject(this);
    m_agent = new KyConnmanAgent(host);
    limitSlotCaches(host);
    QDBusConnection::systemBus().registerObject(agentPath, host, QDBusConnection::ExportAdaptors);
}

LinkEvent WifiStation::perform(LinkAction action)
{
    switch (action) {
    case LinkAction::TakeRequest:
        takeRequest();
        break;
    case LinkAction::GiveList:
        Q_EMIT servicesListChanged(wifiScanList(connman::services()));
        break;
    case LinkAction::StartLeavingTime:
        m_leavingTime.start(leavingTimeMs);
        break;
    case LinkAction::AskListed:
        return isNetworkListed() ? LinkEvent::NetworksListed : LinkEvent::NoNetworkListed;
    case LinkAction::AskFound:
        return isNetworkListed() ? LinkEvent::NetworksFound : LinkEvent::NoNetworkFound;
    case LinkAction::RequestScan:
        requestScan();
        break;
    case LinkAction::Evaluate:
        return LinkEvent::ServicesChanged;
    case LinkAction::Judge:
        return judge();
    case LinkAction::AskService:
        return found(requested(m_requestedService));
    case LinkAction::AskTechnology:
        return isConnected(m_parts.technology) ? LinkEvent::TechnologyIsUp
                                               : LinkEvent::TechnologyIsDown;
    case LinkAction::RequestConnect:
        requestConnect();
        break;
    case LinkAction::JudgeTime:
        return LinkEvent::TimeJudged;
    case LinkAction::ForgetNetwork:
        return forgetNetwork();
    case LinkAction::UnregisterAgent:
        unregisterAgent();
        break;
    case LinkAction::Leave:
        return LinkEvent::Left;
    default:
        return LinkDriver::perform(action);
    }
    return LinkEvent::None;
}

void WifiStation::handled(LinkEvent event, bool isDecided)
{
    const WifiTraceMethod method = wifiTraceMethod(event);
    if (method.name && (isDecided || method.isTracedWhenIgnored))
        trace(method.name);
}

void WifiStation::takeRequest()
{
    m_requestedService = settingText(m_arguments, "Service").left(longestName);
    m_agent->setCredentials(settingText(m_arguments, "User"), settingText(m_arguments, "Password"));
}

LinkEvent WifiStation::judge()
{
    const std::optional<ConnmanObject> service = requested(m_requestedService);
    found(service);
    if (!service)
        return LinkEvent::RequestedMissing;
    return requestedEvent(service->properties.value(QStringLiteral("State")).toString());
}

LinkEvent WifiStation::forgetNetwork()
{
    return connman::remove(m_parts.service.path()).isValid() ? LinkEvent::NetworkKept
                                                             : LinkEvent::NetworkForgotten;
}

void WifiStation::requestScan()
{
    connman::scan(m_parts.technology);
    trace("sendRequestScan");
}

void WifiStation::requestConnect()
{
    registerAgent();
    // ConnMan replies only after the agent has answered, and the agent runs on this thread: a
    // blocking call would time out, join no network and block all clients.
    // The new watcher replaces the watcher of an earlier Connect: a late reply to the earlier
    // Connect is ignored.
    m_connectReply =
        std::make_unique<QDBusPendingCallWatcher>(connman::connectService(m_foundPath));
    connect(m_connectReply.get(), &QDBusPendingCallWatcher::finished, this,
            &WifiStation::connectAnswered);
    trace("sendRequestConnect");
}

void WifiStation::connectAnswered()
{
    const QDBusError error = m_connectReply->error();
    if (m_connectReply->isError())
        qDebug() << "Connect:" << error.message();
    if (failsConnect(error.name()))
        handle(LinkEvent::ConnectFailed);
}

void WifiStation::registerAgent()
{
    connman::registerAgent(agentPath);
    trace("registerAgent");
}

void WifiStation::unregisterAgent()
{
    connman::unregisterAgent(agentPath);
    trace("unregisterAgent");
}

void WifiStation::handleServiceProperty(const QString &name, const QVariant &value)
{
    const WifiServiceChange change = wifiServiceChange(name, value);
    serviceChanged(change.event, name, change.value);
}

void WifiStation::trace(const char *method) const
{
    appendWifiTrace({QLatin1String(method), wifiTraceOperation(link().operation),
                     QLatin1String(KyTcpIpState::tpc_i_tcpIpState[link().state]),
                     m_requestedService});
}
