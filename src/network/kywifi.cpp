#include "kywifi.h"

#include "arguments.h"
#include "busvalue.h"
#include "connman.h"
#include "ipv4repair.h"
#include "kyconnmanagent.h"
#include "programs.h"
#include "slotcache.h"
#include "wifijoin.h"
#include "wifiservices.h"
#include "wifitrace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDebug>

namespace
{
const int scanTimeout = 15000;
const int connectTimeout = 60000;
const int disconnectTimeout = 15000;
/** What the module takes after its script has ended. */
const int moduleDelay = 2000;
/** No network's name is longer, and the trace holds the name again and again. */
const int longestName = 255;

const QString agentPath = QStringLiteral("/KyComMgr/Agent");

/** As the trace names them, by KyWifi::Operation. */
const char *const operationNames[] = {"OP:none", "OP:scan", "OP:connect"};

const QString strengthProperty = QStringLiteral("Strength");

/** ConnMan's number for a service's strength, as it can be sent on; invalid for anything else. */
QVariant strengthOf(const QVariant &value)
{
    const QVariant basic = basicValue(value);
    return basic.canConvert(QMetaType::UInt) ? basic : QVariant();
}

/** Whether @p value is this one; a value of another type is neither true nor false. */
bool isFlag(const QVariant &value, bool flag)
{
    return value.type() == QVariant::Bool && value.toBool() == flag;
}

QString settingText(const QVariantMap &settings, const char *key)
{
    return basicValue(settings.value(QLatin1String(key))).toString();
}
} // namespace

/** Writes the trace record of a method when the method ends. */
class KyWifi::Step
{
public:
    Step(const KyWifi &wifi, const char *method) : m_wifi(wifi), m_method(method) {}
    ~Step()
    {
        appendWifiTrace({QLatin1String(m_method), QLatin1String(operationNames[m_wifi.m_operation]),
                         QLatin1String(KyTcpIpState::tpc_i_tcpIpState[m_wifi.m_state]),
                         m_wifi.m_requestedService});
    }

private:
    Q_DISABLE_COPY(Step)

    const KyWifi &m_wifi;
    const char *const m_method;
};

KyWifi::KyWifi(QObject *parent)
    : KyTcpIp(QStringLiteral("wifi"), QStringLiteral("wifi_sta"), parent)
{
    m_monitoringTimer.setTimerType(Qt::PreciseTimer);
    m_monitoringTimer.setSingleShot(true);
    QObject::connect(&m_monitoringTimer, &QTimer::timeout, this, &KyWifi::timeoutMonitoring);
    m_disconnectTimer.setTimerType(Qt::PreciseTimer);
    m_disconnectTimer.setSingleShot(true);
    QObject::connect(&m_disconnectTimer, &QTimer::timeout, this, [this] {
        if (m_state != KyTcpIpState::Disconnect)
            return;
        const Step step(*this, "timeoutMonitoring");
        setState(KyTcpIpState::Idle);
    });

    connman::watchProperties(connman::technologyPath(m_technology), connman::technologyInterface,
                             this, SLOT(technologyPropertyChangedSlot(QString, QDBusVariant)));
    QDBusConnection::systemBus().connect(
        connman::serviceName, connman::managerPath, connman::managerInterface,
        QStringLiteral("ServicesChanged"), this, SLOT(servicesChangedSlot()));
    setTechnologyPowered(false);
    offerAgent();
}

void KyWifi::offerAgent()
{
    auto *host = new QObject(this);
    m_agent = new KyConnmanAgent(host);
    limitSlotCaches(host);
    QDBusConnection::systemBus().registerObject(agentPath, host, QDBusConnection::ExportAdaptors);
}

void KyWifi::connect(const QVariantMap &settings, const QDBusMessage &message)
{
    const Step step(*this, "connect");
    if (!acceptsConnect())
        return;
    // Only the service of this attempt decides about it, also where ConnMan gives it the same path.
    forgetService();
    m_monitoringTimer.start(connectTimeout);
    // Not announced: clients take "idle" for the end of an attempt.
    m_state = KyTcpIpState::Idle;
    m_operation = Connect;
    m_requestedService = settingText(settings, "Service").left(longestName);
    m_agent->setCredentials(settingText(settings, "User"), settingText(settings, "Password"));
    switchToStation(message);
}

void KyWifi::disconnect(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    const Step step(*this, "disconnect");
    m_operation = NoOperation;
    setState(KyTcpIpState::Disconnect);

    QString failure;
    if (!m_servicePath.isEmpty() && connman::remove(m_servicePath).isValid())
        failure = QStringLiteral("Cannot remove service");
    const QDBusError refusal = setTechnologyPowered(false);
    if (refusal.isValid() && failure.isEmpty())
        failure = QStringLiteral("Cannot set property Powered: ") + refusal.message();
    unregisterAgent();
    if (!failure.isEmpty())
        sendFailure(failure, message);

    // The signal that it is off ends the disconnect, which a refusal rules out.
    if (refusal.isValid())
        setState(KyTcpIpState::Idle);
    else
        m_disconnectTimer.start(disconnectTimeout);
}

void KyWifi::scan(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    const Step step(*this, "scan");
    const bool isConnecting = m_operation == Connect && m_state == KyTcpIpState::Idle;
    if (!acceptsConnect() || isConnecting)
        return;
    m_monitoringTimer.start(scanTimeout);
    setState(KyTcpIpState::Idle);
    m_operation = Scan;
    switchToStation(message);
}

QVariantMap KyWifi::getStrength()
{
    const QVariant strength = strengthOf(serviceProperties().value(strengthProperty));
    return strength.isValid() ? QVariantMap{{strengthProperty, strength}} : QVariantMap();
}

void KyWifi::switchToStation(const QDBusMessage &message)
{
    if (switchMode(QStringLiteral("1")) == 0)
        return;
    sendFailure(QStringLiteral("Cannot switch in mode '1' (WLAN STATION)"), message);
    setState(KyTcpIpState::Failure);
}

void KyWifi::slotLoadFirmwareFinished(int, QProcess::ExitStatus)
{
    const Step step(*this, "slotLoadFirmwareFinished");
    forgetScript();
    QTimer::singleShot(moduleDelay, Qt::PreciseTimer, this,
                       SLOT(slotLoadFirmwareFinishedDelayed()));
}

void KyWifi::slotLoadFirmwareFinishedDelayed()
{
    const Step step(*this, "slotLoadFirmwareFinishedDelayed");
    m_firmwareLoaded = 1;
    // After a disconnect the module is evaluated for nobody.
    if (m_state != KyTcpIpState::Idle || m_operation == NoOperation)
        return;
    // A scan whose time was over before the module was ready still has to come to its end.
    if (m_operation == Scan && !m_monitoringTimer.isActive())
        m_monitoringTimer.start(scanTimeout);
    if (!isProgramRunning(QStringLiteral("connmand"))) {
        setState(KyTcpIpState::Failure);
    } else if (!wifiServices(connman::services()).isEmpty()) {
        servicesChangedSlot();
    } else if (powerOn()) {
        usePoweredTechnology();
    }
}

void KyWifi::technologyPropertyChangedSlot(const QString &name, const QDBusVariant &value)
{
    const Step step(*this, "technologyPropertyChangedSlot");
    const bool isPowered = name == QStringLiteral("Powered");
    if (m_state == KyTcpIpState::Disconnect) {
        // Also while the script runs: nothing else would end the disconnect.
        if (isPowered && isFlag(value.variant(), false))
            setState(KyTcpIpState::Idle);
        return;
    }
    if (!m_firmwareLoaded || m_state != KyTcpIpState::Idle || !isFlag(value.variant(), true))
        return;
    if (isPowered)
        usePoweredTechnology();
    else if (name == QStringLiteral("Connected") && m_operation == Connect)
        configure(
            wifiServiceNamed(wifiServices(connman::services()), m_requestedService).path.path());
}

void KyWifi::usePoweredTechnology()
{
    if (wifiServices(connman::services()).isEmpty())
        sendRequestScan();
    else
        servicesChangedSlot();
}

// Takes no argument, so that a signal with whatever arguments triggers it.
void KyWifi::servicesChangedSlot()
{
    evaluateServices();
}

/** Ends the scan or judges the connect. @return as judgeConnect(); empty without a connect */
QString KyWifi::evaluateServices()
{
    const Step step(*this, "servicesChangedSlot");
    if (!m_firmwareLoaded)
        return QString();
    if (m_operation == Scan && m_state == KyTcpIpState::Idle)
        finishScan();
    else if (m_operation == Connect)
        return judgeConnect();
    return QString();
}

void KyWifi::finishScan()
{
    const QVariantMap list = wifiScanList(connman::services());
    m_operation = NoOperation;
    Q_EMIT servicesListChanged(list);
    setTechnologyPowered(false);
}

/** @return ConnMan's state of the service that is being joined; empty where it is not listed */
QString KyWifi::judgeConnect()
{
    const ConnmanObject service =
        wifiServiceNamed(wifiServices(connman::services()), m_requestedService);
    const QString path = service.path.path();
    if (path.isEmpty()) {
        m_operation = NoOperation;
        setState(KyTcpIpState::Failure);
        return QString();
    }
    QString serviceState = service.properties.value(QStringLiteral("State")).toString();
    switch (nextJoinStep(m_state, serviceState)) {
    case JoinStep::Wait:
        break;
    case JoinStep::Associate:
        associate(path);
        break;
    case JoinStep::Configure:
        configure(path);
        break;
    case JoinStep::Fail:
        setState(KyTcpIpState::Failure);
        break;
    case JoinStep::GoOnline:
        m_monitoringTimer.stop();
        m_operation = NoOperation;
        setState(KyTcpIpState::Online);
        break;
    }
    return serviceState;
}

void KyWifi::associate(const QString &path)
{
    setState(KyTcpIpState::Association);
    if (isTechnologyConnected())
        configure(path);
    else
        sendRequestConnect(path);
}

/** Takes the connected service at @p path, and hands it the IPv4 settings. */
void KyWifi::configure(const QString &path)
{
    if (path.isEmpty())
        return;
    watchService(path);
    setState(KyTcpIpState::Configuration);
    const QDBusError refusal = applyIPv4();
    // The signals of a fast lease are over by now. Settings that ConnMan took and that say
    // otherwise are still to come into force, and then it sends signals.
    const QVariantMap present = getIPv4();
    if (present.contains(QStringLiteral("Address")) &&
        (refusal.isValid() || isInForce(m_ipv4Configuration, present))) {
        m_monitoringTimer.stop();
        setState(KyTcpIpState::Online);
    }
}

bool KyWifi::isTechnologyConnected() const
{
    const ConnmanObject technology =
        connman::findObject(connman::technologies(), QStringLiteral("Type"), m_technology);
    return isFlag(technology.properties.value(QStringLiteral("Connected")), true);
}

void KyWifi::sendRequestScan()
{
    const Step step(*this, "sendRequestScan");
    connman::scan(m_technology);
}

void KyWifi::sendRequestConnect(const QString &path)
{
    const Step step(*this, "sendRequestConnect");
    registerAgent();
    // ConnMan replies only after it has had an answer from the agent, which this very thread
    // gives: waiting for the reply here would block until the call times out, with the network not
    // joined and no client served in the meantime.
    auto *reply = new QDBusPendingCallWatcher(connman::connectService(path), this);
    QObject::connect(reply, SIGNAL(finished(QDBusPendingCallWatcher *)), this,
                     SLOT(connectAnswered(QDBusPendingCallWatcher *)));
    m_connectReply = reply;
}

void KyWifi::connectAnswered(QDBusPendingCallWatcher *reply)
{
    const QString errorName = reply->error().name();
    if (reply->isError())
        qDebug() << "Connect:" << reply->error().message();
    reply->deleteLater();
    // A reply may come in a later attempt, about which it says nothing.
    if (reply != m_connectReply)
        return;
    m_connectReply = nullptr;
    if (!failsJoin(m_state, errorName))
        return;
    // The radio stays on: powered off, ConnMan would forget that the key was wrong, keep it and ask
    // for no other.
    const Step step(*this, "sendRequestConnect");
    m_operation = NoOperation;
    setState(KyTcpIpState::Failure);
}

void KyWifi::registerAgent()
{
    const Step step(*this, "registerAgent");
    connman::registerAgent(agentPath);
}

void KyWifi::unregisterAgent()
{
    const Step step(*this, "unregisterAgent");
    connman::unregisterAgent(agentPath);
}

void KyWifi::servicePropertyChangedSlot(const QString &name, const QDBusVariant &value)
{
    const Step step(*this, "servicePropertyChangedSlot");
    if (!m_firmwareLoaded)
        return;
    const QVariant strength = strengthOf(value.variant());
    if (name == strengthProperty && strength.isValid())
        Q_EMIT propertyChanged(m_servicePath, name, QDBusVariant(strength));
    // The service that is being left must not end the disconnect in another state.
    if (m_state == KyTcpIpState::Disconnect)
        return;
    // ConnMan announces an empty error when it forgets one.
    if (name == QStringLiteral("Error") && !basicValue(value.variant()).toString().isEmpty()) {
        m_operation = NoOperation;
        setState(KyTcpIpState::Failure);
        setTechnologyPowered(false);
    } else if (name == QStringLiteral("IPv4") &&
               toMap(value.variant()).contains(QStringLiteral("Address"))) {
        setState(KyTcpIpState::Online);
    }
}

void KyWifi::timeoutMonitoring()
{
    const Step step(*this, "timeoutMonitoring");
    const QString serviceState = evaluateServices();
    if (m_operation != Connect || !failsAtTimeout(m_state, serviceState))
        return;
    m_operation = NoOperation;
    setState(KyTcpIpState::Failure);
}
