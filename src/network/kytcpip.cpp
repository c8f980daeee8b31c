#include "kytcpip.h"

#include "busvalue.h"
#include "connman.h"
#include "error.h"
#include "ipv4repair.h"
#include "networkinterface.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDebug>

namespace
{
const QString modeScript = QStringLiteral("/usr/share/redpine/switch_coex_mode.sh");
const int startTimeout = 1000;

// No address, name or method is longer; more would make messages too big for the bus.
const int longestSetting = 255;

// The name servers of every setIPv4() are kept; no resolver asks as many as this.
const int mostNameservers = 64;

const char *const servicePropertyChanged = SLOT(servicePropertyChangedSlot(QString, QDBusVariant));

const auto processFinished =
    static_cast<void (QProcess::*)(int, QProcess::ExitStatus)>(&QProcess::finished);

/** A client's value as text, which ConnMan wants every setting to be; empty where it is none. */
QString settingText(const QVariant &value)
{
    const QString text = basicValue(value).toString();
    return text.size() <= longestSetting ? text : QString();
}
} // namespace

KyTcpIp::KyTcpIp(const QString &technology, const QString &interfaceName, QObject *parent)
    : QDBusAbstractAdaptor(parent), m_technology(technology), m_interfaceName(interfaceName)
{
    // What the script prints is for nobody, and the programs it leaves behind keep a place to
    // write to.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
}

void KyTcpIp::setIPv4(const QVariantMap &settings, const QDBusMessage &message)
{
    const ConnmanObject technology =
        connman::findObject(connman::technologies(), QStringLiteral("Type"), m_technology);
    if (technology.properties.value(QStringLiteral("Connected")).type() != QVariant::Bool) {
        sendFailure(QStringLiteral("Cannot get property Connected"), message);
        return;
    }

    for (const char *name : {"Method", "Address", "Netmask", "Gateway"}) {
        const QString key = QString::fromLatin1(name);
        if (settings.contains(key))
            m_ipv4Configuration[key] = settingText(settings.value(key));
    }
    for (const char *name : {"DNS1", "DNS2"}) {
        const QString key = QString::fromLatin1(name);
        if (settings.contains(key))
            m_nameservers << settingText(settings.value(key));
        if (m_nameservers.size() > mostNameservers)
            m_nameservers.removeFirst();
    }
    if (m_ipv4Configuration.value(QStringLiteral("Method")) == QStringLiteral("manual"))
        m_ipv4Configuration = repairedIPv4(m_ipv4Configuration);
}

QVariantMap KyTcpIp::getIPv4()
{
    return sendableMap(toMap(serviceProperties().value(QStringLiteral("IPv4"))));
}

QVariantMap KyTcpIp::getHardwareInfos()
{
    const QVariantMap properties = serviceProperties();
    if (!properties.isEmpty())
        return sendableMap(toMap(properties.value(QStringLiteral("Ethernet"))));

    const QNetworkInterface interface = findNetworkInterface(m_interfaceName);
    if (!interface.isValid())
        return QVariantMap();
    return {{QStringLiteral("Method"), QString()},
            {QStringLiteral("Interface"), m_interfaceName},
            {QStringLiteral("Address"), interface.hardwareAddress()},
            {QStringLiteral("MTU"), QVariant::fromValue(maximumTransmissionUnit(interface))}};
}

void KyTcpIp::sendFailure(const QString &text, const QDBusMessage &message)
{
    sendErrorReply(QDBusError::errorString(QDBusError::Failed), text, message);
}

bool KyTcpIp::acceptsConnect() const
{
    return m_state == KyTcpIpState::Idle || m_state == KyTcpIpState::Failure;
}

void KyTcpIp::setState(int state)
{
    m_state = state;
    const QString name = QString::fromLatin1(KyTcpIpState::tpc_i_tcpIpState[state]);
    qDebug() << m_servicePath << "TCPIP_STATE:" << name;
    Q_EMIT propertyChanged(m_servicePath, QStringLiteral("State"), QDBusVariant(name));
}

QDBusError KyTcpIp::setTechnologyPowered(bool powered)
{
    return connman::setTechnologyPowered(m_technology, powered);
}

bool KyTcpIp::powerOn()
{
    return setTechnologyPowered(true).name() == QLatin1String("net.connman.Error.AlreadyEnabled");
}

void KyTcpIp::watchService(const QString &path)
{
    // The signals of a service that is no longer the current one are none of ours.
    if (path != m_servicePath)
        forgetService();
    m_servicePath = path;
    connman::watchProperties(path, connman::serviceInterface, this, servicePropertyChanged);
}

void KyTcpIp::forgetService()
{
    if (!m_servicePath.isEmpty())
        connman::unwatchProperties(m_servicePath, connman::serviceInterface, this,
                                   servicePropertyChanged);
    m_servicePath.clear();
}

QDBusError KyTcpIp::applyIPv4()
{
    connman::setServiceProperty(m_servicePath, QStringLiteral("Nameservers.Configuration"),
                                m_nameservers);
    return connman::setServiceProperty(m_servicePath, QStringLiteral("IPv4.Configuration"),
                                       m_ipv4Configuration);
}

int KyTcpIp::switchMode(const QString &mode)
{
    m_firmwareLoaded = 0;
    // Made anew for every call, not uniquely.
    QObject::connect(&m_process, processFinished, this, &KyTcpIp::slotLoadFirmwareFinished);
    if (m_process.state() != QProcess::NotRunning)
        return -1;
    m_process.start(modeScript, QStringList(mode), QIODevice::ReadWrite);
    return m_process.waitForStarted(startTimeout) ? 0 : -1;
}

void KyTcpIp::forgetScript()
{
    QObject::disconnect(&m_process, processFinished, this, &KyTcpIp::slotLoadFirmwareFinished);
}

QVariantMap KyTcpIp::serviceProperties() const
{
    if (m_servicePath.isEmpty())
        return QVariantMap();
    const QList<ConnmanObject> services = connman::services();
    for (const ConnmanObject &service : services) {
        if (service.path.path() == m_servicePath)
            return service.properties;
    }
    return QVariantMap();
}

void KyTcpIp::servicePropertyChangedSlot(const QString &name, const QDBusVariant &value)
{
    if (name != QStringLiteral("IPv4") || m_state != KyTcpIpState::Ready)
        return;
    // The bus library leaks each descriptor that it sends on.
    if (storableMap({{name, value.variant()}}).isEmpty())
        return;
    const QVariantMap ipv4 = toMap(value.variant());
    if (ipv4.contains(QStringLiteral("Address")) && ipv4.contains(QStringLiteral("Netmask")))
        setState(KyTcpIpState::Online);
    Q_EMIT propertyChanged(m_servicePath, name, value);
}
