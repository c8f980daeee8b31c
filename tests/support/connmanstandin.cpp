#include "connmanstandin.h"

#include "deadline.h"
#include "processes.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QTest>

namespace
{
const QString connman = QStringLiteral("net.connman");

/** The control object. */
Remote remote()
{
    return Remote(connman, QStringLiteral("/standin"),
                  QStringLiteral("com.orvendis.Strandel.ConnManStandIn"));
}

QVariant object(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

QVariant variant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

ListedObject technology(const QString &path, const QString &text, const QString &type)
{
    return {QDBusObjectPath(path),
            {{"Name", text},
             {"Type", type},
             {"Powered", false},
             {"Connected", false},
             {"Tethering", false}}};
}
} // namespace

const QString ConnmanStandIn::ethernetTechnology =
    QStringLiteral("/net/connman/technology/ethernet");
const QString ConnmanStandIn::wifiTechnology = QStringLiteral("/net/connman/technology/wifi");

ConnmanStandIn::~ConnmanStandIn()
{
    if (isRunning())
        kill();
}

void ConnmanStandIn::start(const QString &program)
{
    registerListedObjects();
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    QString path = QStringLiteral(CONNMAN_STAND_IN);
    if (program != QLatin1String("connmand")) {
        path = QStringLiteral("/tmp/") + program;
        QFile::copy(QStringLiteral(CONNMAN_STAND_IN), path);
    }
    m_process.start(path, QStringList());
    if (!m_process.waitForStarted() ||
        !QTest::qWaitFor([] { return isOnTheBus(connman); }, deadlineMs))
        qFatal("the ConnMan stand-in does not start");
    setTechnologies({technology(ethernetTechnology, "Wired", "ethernet"),
                     technology(wifiTechnology, "WiFi", "wifi")});
}

void ConnmanStandIn::stop()
{
    m_process.terminate();
    waitForEnd();
}

void ConnmanStandIn::kill()
{
    m_process.kill();
    waitForEnd();
}

bool ConnmanStandIn::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

void ConnmanStandIn::waitForEnd()
{
    if (!m_process.waitForFinished(deadlineMs) ||
        !QTest::qWaitFor([] { return !isOnTheBus(connman); }, deadlineMs))
        qFatal("the ConnMan stand-in does not end");
}

void ConnmanStandIn::freeze()
{
    if (!stopProcess(m_process.processId()))
        qFatal("there is no ConnMan to be stopped");
}

void ConnmanStandIn::thaw()
{
    resumeProcess(m_process.processId());
}

void ConnmanStandIn::setServices(const ListedObjects &services)
{
    drive("SetServices", {QVariant::fromValue(services)});
}

void ConnmanStandIn::setTechnologies(const ListedObjects &technologies)
{
    drive("SetTechnologies", {QVariant::fromValue(technologies)});
}

void ConnmanStandIn::setAsyncScan(bool exists)
{
    drive("SetAsyncScan", {exists});
}

void ConnmanStandIn::setProperty(const QString &path, const QString &property,
                                 const QVariant &value)
{
    drive("ChangeProperty", {object(path), property, variant(value)});
}

void ConnmanStandIn::storeProperty(const QString &path, const QString &property,
                                   const QVariant &value)
{
    drive("StoreProperty", {object(path), property, variant(value)});
}

void ConnmanStandIn::emitServicesChanged()
{
    drive("AnnounceServices");
}

void ConnmanStandIn::emitSignal(const QString &path, const QString &interface,
                                const QString &signal, const QList<QVariant> &values)
{
    drive("SendSignal", QList<QVariant>{object(path), interface, signal} + values);
}

void ConnmanStandIn::failMethod(const QString &call, const QString &errorName, const QString &text)
{
    drive("Fail", {call, errorName, text});
}

void ConnmanStandIn::replyToMethod(const QString &call, const QList<QVariant> &values)
{
    drive("Reply", QList<QVariant>{call} + values);
}

void ConnmanStandIn::delayMethod(const QString &call, uint milliseconds)
{
    drive("Delay", {call, milliseconds});
}

void ConnmanStandIn::holdMethod(const QString &call)
{
    drive("Hold", {call});
}

void ConnmanStandIn::releaseMethod(const QString &call)
{
    drive("Release", {call});
}

void ConnmanStandIn::clearRules()
{
    drive("ClearRules");
}

void ConnmanStandIn::askOnConnect(const QString &service, const QVariantMap &fields)
{
    drive("AskOnConnect", {object(service), fields});
}

QString ConnmanStandIn::requestInput(const QString &service, const QVariantMap &fields)
{
    return callAgent("RequestInput", {object(service), fields});
}

QString ConnmanStandIn::reportError(const QString &service, const QString &error)
{
    return callAgent("ReportError", {object(service), error});
}

QString ConnmanStandIn::callAgent(const QString &method, const QList<QVariant> &arguments)
{
    return remote().call("CallAgent", QList<QVariant>{method} + arguments);
}

QVariantMap ConnmanStandIn::field(const QString &requirement, const QString &type)
{
    QVariantMap map = {{"Requirement", requirement}};
    if (!type.isEmpty())
        map.insert("Type", type);
    return map;
}

void ConnmanStandIn::setLively(bool lively)
{
    drive("SetLively", {lively});
}

void ConnmanStandIn::addSurrounding(const ListedObject &service)
{
    drive("AddSurrounding", {QVariant::fromValue(service.path), service.properties});
}

void ConnmanStandIn::removeSurrounding(const QString &service)
{
    drive("RemoveSurrounding", {object(service)});
}

void ConnmanStandIn::setPassphrase(const QString &service, const QString &passphrase)
{
    drive("SetPassphrase", {object(service), passphrase});
}

QStringList ConnmanStandIn::journal()
{
    return drive("Journal").arguments().at(0).toStringList();
}

void ConnmanStandIn::clearJournal()
{
    drive("ClearJournal");
}

bool ConnmanStandIn::waitForCall(const QString &call, int count)
{
    return QTest::qWaitFor(
        [&] {
            int found = 0;
            for (const QString &line : journal())
                found += line.startsWith(call) ? 1 : 0;
            return found >= count;
        },
        deadlineMs);
}

QDBusMessage ConnmanStandIn::drive(const QString &method, const QList<QVariant> &arguments)
{
    const QDBusMessage reply = remote().reply(method, arguments);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qFatal("the ConnMan stand-in: %s: %s", qPrintable(method), qPrintable(renderReply(reply)));
    return reply;
}
