#include "kywifiap.h"

#include "arguments.h"
#include "busvalue.h"
#include "hostapdtemplate.h"
#include "networkinterface.h"
#include "programs.h"
#include "regularfile.h"

#include <QDBusMessage>
#include <QFile>
#include <QTimer>

#include <fcntl.h>

namespace
{
/** What the module takes after its script has ended. */
const int moduleDelay = 2000;
const int onLineDelay = 3000;

const QString templateFolder = QStringLiteral("/usr/share/redpine/");
const char configurationFile[] = "/tmp/User_part/hostapd.conf";

QVariant parameter(const QVariantMap &parameters, const char *key)
{
    return basicValue(parameters.value(QLatin1String(key)));
}

AccessPointParameters readParameters(const QVariantMap &parameters)
{
    return {static_cast<quint16>(parameter(parameters, "Channel").toInt()),
            parameter(parameters, "SSID").toString(), parameter(parameters, "Password").toString(),
            parameter(parameters, "IP").toString()};
}

bool writeConfiguration(const QByteArray &text)
{
    // Other programs may write to the folder.
    const int descriptor = openRegularFile(configurationFile, O_TRUNC, 0666);
    QFile file;
    return descriptor >= 0 &&
           file.open(descriptor, QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered,
                     QFileDevice::AutoCloseHandle) &&
           file.write(text) == text.size();
}

/** Writes hostapd's configuration from the template that goes with @p security. */
bool createConfiguration(const QString &security, const AccessPointParameters &parameters)
{
    QFile file;
    return fitsHostapdLines(parameters) &&
           openForReading(file, templateFolder + hostapdTemplateName(security),
                          QIODevice::ReadOnly | QIODevice::Text) &&
           writeConfiguration(hostapdConfiguration(file.readAll(), parameters));
}
} // namespace

KyWifiAp::KyWifiAp(QObject *parent)
    : KyTcpIp(QStringLiteral("wifi"), QStringLiteral("wifi_ap"), parent)
{
    m_servicePath = QStringLiteral("/net/wap");
}

void KyWifiAp::connect(const QVariantMap &parameters, const QDBusMessage &message)
{
    if (!acceptsConnect()) {
        sendFailure(QStringLiteral("Cannot connect, wap busy"), message);
        return;
    }
    setState(KyTcpIpState::Configuration);
    if (!createConfiguration(parameter(parameters, "Security").toString(),
                             readParameters(parameters))) {
        sendFailure(QStringLiteral("Cannot create hostapd conf file"), message);
        setState(KyTcpIpState::Failure);
    } else if (switchMode(QStringLiteral("2")) != 0) {
        sendFailure(QStringLiteral("Cannot switch in mode '2' (WLAN ACCESS POINT)"), message);
        setState(KyTcpIpState::Failure);
    }
}

void KyWifiAp::disconnect(const QDBusMessage &message)
{
    if (!hasNoArguments(message))
        return;
    if (m_state == KyTcpIpState::Idle) {
        sendFailure(QStringLiteral("Cannot disconnect WAP, already disconnected"), message);
        return;
    }
    setState(KyTcpIpState::Disconnect);
    switchMode(QStringLiteral("0"));
    setState(KyTcpIpState::Idle);
}

void KyWifiAp::wpsEnable() {}

void KyWifiAp::slotLoadFirmwareFinished(int, QProcess::ExitStatus)
{
    forgetScript();
    QTimer::singleShot(moduleDelay, Qt::PreciseTimer, this,
                       SLOT(slotLoadFirmwareFinishedDelayed()));
}

void KyWifiAp::slotLoadFirmwareFinishedDelayed()
{
    if (m_state != KyTcpIpState::Configuration)
        return;
    if (!isUp(findNetworkInterface(m_interfaceName)) ||
        !isProgramRunning(QStringLiteral("hostapd")) ||
        !isProgramRunning(QStringLiteral("dhcpd"))) {
        setState(KyTcpIpState::Failure);
        return;
    }
    setState(KyTcpIpState::Ready);
    QTimer::singleShot(onLineDelay, Qt::PreciseTimer, this, SLOT(slotToSignalInterfaceIsOnLine()));
}

// Whatever the state is by now: clients know that a check may come after a disconnect.
void KyWifiAp::slotToSignalInterfaceIsOnLine()
{
    const QNetworkInterface interface = findNetworkInterface(m_interfaceName);
    if (!interface.isValid())
        setState(KyTcpIpState::Failure);
    else if (isRunning(interface))
        setState(KyTcpIpState::Online);
    else
        QTimer::singleShot(onLineDelay, Qt::PreciseTimer, this,
                           SLOT(slotToSignalInterfaceIsOnLine()));
}
