#include "supplicantstandin.h"

#include "deadline.h"
#include "files.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>

namespace
{
const QString supplicant = QStringLiteral("fi.w1.wpa_supplicant1");
const QString wifiProgram = QStringLiteral(SIMULATOR_DIRECTORY "/network/wifi");
const QString air = QStringLiteral("/run/strandel-air");

void changeWifi(const QString &what)
{
    if (QProcess::execute(wifiProgram, {what}) != 0)
        qFatal("%s %s fails", qPrintable(wifiProgram), qPrintable(what));
}
} // namespace

SupplicantStandIn::~SupplicantStandIn()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

void SupplicantStandIn::start()
{
    changeWifi(QStringLiteral("build"));
    removePath(air);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(QStringLiteral(SUPPLICANT_STAND_IN), QStringList());
    if (!m_process.waitForStarted() ||
        !QTest::qWaitFor([] { return isOnTheBus(supplicant); }, deadlineMs))
        qFatal("the supplicant's stand-in does not start");
}

void SupplicantStandIn::kill()
{
    m_process.kill();
    if (!m_process.waitForFinished(deadlineMs) ||
        !QTest::qWaitFor([] { return !isOnTheBus(supplicant); }, deadlineMs))
        qFatal("the supplicant's stand-in does not end");
}

void SupplicantStandIn::set(const QString &property, const QByteArray &value)
{
    writeFile(air + '/' + property, value + '\n');
}

void SupplicantStandIn::setDhcpServerMute(bool mute)
{
    changeWifi(mute ? QStringLiteral("mute") : QStringLiteral("unmute"));
}
