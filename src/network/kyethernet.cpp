#include "kyethernet.h"

#include "arguments.h"
#include "connman.h"
#include "ipv4repair.h"
#include "programs.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace
{
const int attemptTimeout = 60000;
}

KyEthernet::KyEthernet(QObject *parent)
    : KyTcpIp(QStringLiteral("ethernet"), QStringLiteral("eth0"), parent)
{
    m_monitoringTimer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_monitoringTimer, &QTimer::timeout, this, &KyEthernet::timeoutMonitoring);

    connman::watchProperties(connman::technologyPath(m_technology), connman::technologyInterface,
                             this, SLOT(technologyPropertyChangedSlot(QString, QDBusVariant)));
    QDBusConnection::systemBus().connect(
        connman::serviceName, connman::managerPath, connman::managerInterface,
        QStringLiteral("ServicesChanged"), this, SLOT(servicesChangedSlot(QDBusMessage)));
    setTechnologyPowered(false);
}

void KyEthernet::connect(const QDBusMessage &message)
{
    if (!hasNoArguments(message) || !acceptsConnect())
        return;
    m_monitoringTimer.start(attemptTimeout);
    if (switchMode(QStringLiteral("0")) == 0)
        return;
    // The text names the Wi-Fi station's mode, with which it is shared; clients rely on it.
    sendFailure(QStringLiteral("Cannot switch in mode '1' (WLAN STATION)"), message);
    setState(KyTcpIpState::Failure);
}

void KyEthernet::disconnect(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    setState(KyTcpIpState::Disconnect);
    const QDBusError error = setTechnologyPowered(false);
    if (error.isValid())
        sendFailure(QStringLiteral("Cannot set property Powered: ") + error.message(), message);
    setState(KyTcpIpState::Idle);
}

void KyEthernet::slotLoadFirmwareFinished(int, QProcess::ExitStatus)
{
    forgetScript();
    if (!acceptsConnect())
        return;
    if (!isProgramRunning(QStringLiteral("connmand"))) {
        setState(KyTcpIpState::Failure);
        return;
    }
    setState(KyTcpIpState::Association);
    const bool isOnAlready = powerOn();
    m_firmwareLoaded = 1;
    if (isOnAlready)
        useService();
}

void KyEthernet::technologyPropertyChangedSlot(const QString &name, const QDBusVariant &value)
{
    const bool isTrue = value.variant().type() == QVariant::Bool && value.variant().toBool();
    if (!isTrue)
        return;
    if (m_state == KyTcpIpState::Association && name == QStringLiteral("Powered"))
        useService();
    else if (m_state == KyTcpIpState::Ready && name == QStringLiteral("Connected"))
        checkOnline(getIPv4());
}

// Takes the message alone, so that a signal with other arguments triggers it as well.
void KyEthernet::servicesChangedSlot(const QDBusMessage &)
{
    if (m_state == KyTcpIpState::Association)
        useService();
}

void KyEthernet::timeoutMonitoring()
{
    setState(KyTcpIpState::Failure);
    setTechnologyPowered(false);
}

/** Takes the wired service, where ConnMan has one by now, and hands it the IPv4 settings. */
void KyEthernet::useService()
{
    const ConnmanObject service =
        connman::findObject(connman::services(), QStringLiteral("Type"), m_technology);
    const QString path = service.path.path();
    if (path.isEmpty())
        return;
    setState(KyTcpIpState::Ready);
    watchService(path);
    const QDBusError refusal = applyIPv4();
    // The signals of a fast lease are over by now. Settings that ConnMan took and that say
    // otherwise are still to come into force, and then it sends signals.
    const QVariantMap present = getIPv4();
    if (refusal.isValid() || isInForce(m_ipv4Configuration, present))
        checkOnline(present);
}

/** Enters "online" where the service's @p ipv4 holds a valid address and netmask. */
void KyEthernet::checkOnline(const QVariantMap &ipv4)
{
    if (!isValidIPv4(ipv4.value(QStringLiteral("Address")).toString()) ||
        !isValidIPv4(ipv4.value(QStringLiteral("Netmask")).toString()))
        return;
    m_monitoringTimer.stop();
    setState(KyTcpIpState::Online);
}
