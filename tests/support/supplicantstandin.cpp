#include "supplicantstandin.h"

#include "files.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>

namespace
{
const QString network = QStringLiteral(SIMULATOR_DIRECTORY "/network/wifi");
const QString air = QStringLiteral("/run/strandel-air");

void change(const QString &what)
{
    if (QProcess::execute(network, {what}) != 0)
        qFatal("%s %s fails", qPrintable(network), qPrintable(what));
}

bool isOnTheBus()
{
    return QDBusConnection::systemBus().interface()->isServiceRegistered(
        QStringLiteral("fi.w1.wpa_supplicant1"));
}
} // namespace

SupplicantStandIn::~SupplicantStandIn()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

void SupplicantStandIn::start()
{
    change(QStringLiteral("build"));
    removePath(air);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.start(QStringLiteral(SUPPLICANT_STAND_IN), QStringList());
    if (!m_process.waitForStarted() || !QTest::qWaitFor(isOnTheBus, 10000))
        qFatal("the supplicant's stand-in does not start");
}

void SupplicantStandIn::kill()
{
    m_process.kill();
    if (!m_process.waitForFinished(10000) || !QTest::qWaitFor([] { return !isOnTheBus(); }, 10000))
        qFatal("the supplicant's stand-in does not end");
}

void SupplicantStandIn::set(const QString &property, const QByteArray &value)
{
    writeFile(air + '/' + property, value + '\n');
}

void SupplicantStandIn::setDhcpServerMute(bool mute)
{
    change(mute ? QStringLiteral("mute") : QStringLiteral("unmute"));
}
