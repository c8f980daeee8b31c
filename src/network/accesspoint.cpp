#include "accesspoint.h"

#include "accesspointtable.h"
#include "busvalue.h"
#include "hostapdtemplate.h"
#include "networkinterface.h"
#include "programs.h"
#include "regularfile.h"
#include "settingtext.h"

#include <QFile>

#include <fcntl.h>

namespace
{
const QString templateDirectory = QStringLiteral("/usr/share/redpine/");
constexpr char configurationFile[] = "/tmp/User_part/hostapd.conf";

AccessPointParameters readParameters(const QVariantMap &settings)
{
    const int channel = basicValue(settings.value(QStringLiteral("Channel"))).toInt();
    return {static_cast<quint16>(channel), settingText(settings, "SSID"),
            settingText(settings, "Password"), settingText(settings, "IP")};
}

bool writeText(const QByteArray &text)
{
    // Other accounts can write to this directory: use openRegularFile().
    const Descriptor descriptor = openRegularFile(configurationFile, O_TRUNC, 0666);
    QFile file;
    return descriptor.isOpen() &&
           file.open(descriptor.get(),
                     QIODevice::WriteOnly | QIODevice::Text | QIODevice::Unbuffered) &&
           file.write(text) == text.size();
}
} // namespace

AccessPoint::AccessPoint(LinkParts &parts) : LinkDriver(accessPointTable, parts) {}

LinkEvent AccessPoint::perform(LinkAction action)
{
    switch (action) {
    case LinkAction::WriteConfiguration:
        return writeConfiguration() ? LinkEvent::ConfigurationWritten
                                    : LinkEvent::ConfigurationRefused;
    case LinkAction::CheckAccessPoint:
        return isServing() ? LinkEvent::AccessPointRuns : LinkEvent::AccessPointMissing;
    case LinkAction::CheckInterface:
        return checkInterface();
    default:
        return LinkDriver::perform(action);
    }
}

/** Writes hostapd's configuration from the template for the requested security. */
bool AccessPoint::writeConfiguration() const
{
    const AccessPointParameters parameters = readParameters(m_arguments);
    QFile file;
    return fitsHostapdLines(parameters) &&
           openForReading(
               file, templateDirectory + hostapdTemplateName(settingText(m_arguments, "Security")),
               QIODevice::ReadOnly | QIODevice::Text) &&
           writeText(hostapdConfiguration(file.readAll(), parameters));
}

bool AccessPoint::isServing() const
{
    return isUp(findNetworkInterface(m_parts.interfaceName)) &&
           isProgramRunning(QStringLiteral("hostapd")) && isProgramRunning(QStringLiteral("dhcpd"));
}

LinkEvent AccessPoint::checkInterface() const
{
    const QNetworkInterface interface = findNetworkInterface(m_parts.interfaceName);
    if (!interface.isValid())
        return LinkEvent::InterfaceMissing;
    return isRunning(interface) ? LinkEvent::InterfaceRunning : LinkEvent::InterfaceDown;
}
