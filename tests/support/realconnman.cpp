#include "realconnman.h"

#include "deadline.h"
#include "listedobject.h"
#include "processes.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>

namespace
{
const QString ethernetProgram = QStringLiteral(SIMULATOR_DIRECTORY "/network/ethernet");

void changeEthernet(const QString &what)
{
    if (QProcess::execute(ethernetProgram, {what}) != 0)
        qFatal("%s %s fails", qPrintable(ethernetProgram), qPrintable(what));
}
} // namespace

const QString RealConnman::technologyPath = QStringLiteral("/net/connman/technology/ethernet");
const QString RealConnman::servicePath =
    QStringLiteral("/net/connman/service/ethernet_02aabbccdd02_cable");

RealConnman::~RealConnman()
{
    if (m_process.state() != QProcess::NotRunning)
        kill();
}

void RealConnman::start()
{
    changeEthernet(QStringLiteral("build"));
    restart();
    if (!QTest::qWaitFor([] { return service("State") == QLatin1String("ready"); }, deadlineMs))
        qFatal("ConnMan does not connect");
}

void RealConnman::restart()
{
    registerListedObjects();
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(ethernetProgram, {QStringLiteral("connmand")});
    if (!m_process.waitForStarted() ||
        !QTest::qWaitFor([] { return isOnTheBus(QStringLiteral("net.connman")); }, deadlineMs))
        qFatal("ConnMan does not start");
}

void RealConnman::stop()
{
    m_process.terminate();
    waitForEnd();
}

void RealConnman::kill()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    waitForEnd();
}

void RealConnman::waitForEnd()
{
    if (!m_process.waitForFinished(deadlineMs) ||
        !QTest::qWaitFor([] { return !isOnTheBus(QStringLiteral("net.connman")); }, deadlineMs))
        qFatal("ConnMan does not end");
}

void RealConnman::freeze()
{
    if (!stopProcess(m_process.processId()))
        qFatal("there is no ConnMan to be stopped");
}

void RealConnman::thaw()
{
    resumeProcess(m_process.processId());
}

void RealConnman::plugCable()
{
    changeEthernet(QStringLiteral("plug"));
}

void RealConnman::unplugCable()
{
    changeEthernet(QStringLiteral("unplug"));
}

void RealConnman::setDhcpServerMute(bool mute)
{
    changeEthernet(mute ? QStringLiteral("mute") : QStringLiteral("unmute"));
}

QVariantMap RealConnman::properties(const QString &path)
{
    const QString list = path.startsWith(QStringLiteral("/net/connman/technology/"))
                             ? QStringLiteral("GetTechnologies")
                             : QStringLiteral("GetServices");
    const QDBusMessage reply = Remote("net.connman", "/", "net.connman.Manager").reply(list);
    if (reply.signature() != QLatin1String("a(oa{sv})"))
        return QVariantMap();
    for (const ListedObject &object :
         qdbus_cast<ListedObjects>(reply.arguments().at(0).value<QDBusArgument>())) {
        if (object.path.path() == path)
            return object.properties;
    }
    return QVariantMap();
}

QVariant RealConnman::technology(const QString &name)
{
    return properties(technologyPath).value(name);
}

QVariant RealConnman::service(const QString &name)
{
    return properties(servicePath).value(name);
}
