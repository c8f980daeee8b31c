#include "station.h"

#include "air.h"
#include "association.h"

#include <QDBusArgument>
#include <QDBusConnection>

namespace
{
const QString interface = QStringLiteral("fi.w1.wpa_supplicant1.Interface");
const QString completed = QStringLiteral("completed");
const QString disconnected = QStringLiteral("disconnected");

/**
 * The duration of a scan in milliseconds: shorter than with a radio, but long enough to be
 * observed.
 */
constexpr int scanTimeMs = 50;
constexpr int stepTimeMs = 10;
constexpr int retryTimeMs = 500;

QDBusMessage error(const QDBusMessage &call, const char *name, const char *text)
{
    return call.createErrorReply(QStringLiteral("fi.w1.wpa_supplicant1.") + QLatin1String(name),
                                 QString::fromLatin1(text));
}

QDBusMessage invalidArguments(const QDBusMessage &call)
{
    return error(call, "InvalidArgs", "Did not receive correct message arguments.");
}

QVariantMap mapOf(const QDBusMessage &call)
{
    return qdbus_cast<QVariantMap>(call.arguments().at(0).value<QDBusArgument>());
}

QList<QByteArray> ssidsOf(const QVariantMap &scan)
{
    const QDBusArgument ssids = scan.value(QStringLiteral("SSIDs")).value<QDBusArgument>();
    if (ssids.currentSignature() != QLatin1String("aay"))
        return {};
    return qdbus_cast<QList<QByteArray>>(ssids);
}

QVariantMap capabilities()
{
    return {
        {QStringLiteral("KeyMgmt"), QStringList{QStringLiteral("none"), QStringLiteral("wpa-psk")}},
        {QStringLiteral("Protocol"), QStringList{QStringLiteral("rsn")}},
        {QStringLiteral("AuthAlg"), QStringList{QStringLiteral("open")}},
        {QStringLiteral("Pairwise"), QStringList{QStringLiteral("ccmp")}},
        {QStringLiteral("Group"), QStringList{QStringLiteral("ccmp")}},
        {QStringLiteral("Scan"),
         QStringList{QStringLiteral("active"), QStringLiteral("passive"), QStringLiteral("ssid")}},
        {QStringLiteral("Modes"), QStringList{QStringLiteral("infrastructure")}},
        {QStringLiteral("MaxScanSSID"), 4},
    };
}
} // namespace

Station::Station(Air &air, const QString &interfaceName, const QString &path)
    : m_air(air),
      m_interfaceName(interfaceName),
      m_path(path),
      m_results(path),
      m_state(QStringLiteral("inactive"))
{
    for (QTimer *timer : {&m_scan, &m_step, &m_retry})
        timer->setSingleShot(true);
    QObject::connect(&m_scan, &QTimer::timeout, this, &Station::finishScan);
    QObject::connect(&m_step, &QTimer::timeout, this, &Station::proceed);
    QObject::connect(&m_retry, &QTimer::timeout, this, &Station::associate);
    QObject::connect(&air, &Air::changed, this, &Station::observeAir);
}

QVariantMap Station::properties() const
{
    const QString none = QStringLiteral("/");
    return {
        {QStringLiteral("Ifname"), m_interfaceName},
        {QStringLiteral("Driver"), QStringLiteral("nl80211")},
        {QStringLiteral("State"), m_state},
        {QStringLiteral("Scanning"), m_scan.isActive()},
        {QStringLiteral("Capabilities"), capabilities()},
        {QStringLiteral("BSSs"), QVariant::fromValue(m_results.paths())},
        {QStringLiteral("CurrentBSS"), QVariant::fromValue(m_results.pathOf(m_accessPoint))},
        {QStringLiteral("CurrentNetwork"),
         QVariant::fromValue(QDBusObjectPath(m_selected.isEmpty() ? none : m_selected))},
    };
}

void Station::receive(const QDBusMessage &call)
{
    struct Method {
        const char *name;
        const char *signature;
        QDBusMessage (Station::*serve)(const QDBusMessage &);
    };
    static const Method methods[] = {
        {"Scan", "a{sv}", &Station::scan},
        {"AddNetwork", "a{sv}", &Station::addNetwork},
        {"RemoveNetwork", "o", &Station::removeNetwork},
        {"SelectNetwork", "o", &Station::selectNetwork},
        {"Disconnect", "", &Station::disconnect},
    };
    QDBusMessage reply = call.createErrorReply(QDBusError::UnknownMethod, QString());
    for (const Method &method : methods) {
        if (call.member() != QLatin1String(method.name))
            continue;
        reply = call.signature() == QLatin1String(method.signature) ? (this->*method.serve)(call)
                                                                    : invalidArguments(call);
    }
    QDBusConnection::systemBus().send(reply);
}

QDBusMessage Station::scan(const QDBusMessage &call)
{
    if (m_scan.isActive())
        return error(call, "Interface.ScanError", "Scan request rejected");
    m_askedFor = ssidsOf(mapOf(call));
    m_scan.start(scanTimeMs);
    emitChange({{QStringLiteral("Scanning"), true}});
    return call.createReply();
}

void Station::finishScan()
{
    const AccessPoints air = m_air.accessPoints();
    // Always find the access point that the station has joined, even a hidden one.
    m_askedFor << air.value(m_accessPoint).ssid;
    const ScanResults::Difference difference = m_results.update(air, m_askedFor);
    for (const ScanResults::Result &result : difference.added)
        emitSignal(QStringLiteral("BSSAdded"),
                   {QVariant::fromValue(result.path), result.properties});
    for (const ScanResults::Result &result : difference.changed) {
        QDBusMessage change = QDBusMessage::createSignal(
            result.path.path(), QStringLiteral("fi.w1.wpa_supplicant1.BSS"),
            QStringLiteral("PropertiesChanged"));
        const QString signal = QStringLiteral("Signal");
        change << QVariantMap{{signal, result.properties.value(signal)}};
        QDBusConnection::systemBus().send(change);
    }
    for (const QDBusObjectPath &path : difference.removed)
        emitSignal(QStringLiteral("BSSRemoved"), {QVariant::fromValue(path)});
    emitChange({{QStringLiteral("Scanning"), false},
                {QStringLiteral("BSSs"), QVariant::fromValue(m_results.paths())}});
    emitSignal(QStringLiteral("ScanDone"), {true});
}

QDBusMessage Station::addNetwork(const QDBusMessage &call)
{
    const QString network = QStringLiteral("%1/Networks/%2").arg(m_path).arg(++m_lastNetwork);
    m_networks.insert(network, mapOf(call));
    return call.createReply(QVariant::fromValue(QDBusObjectPath(network)));
}

QDBusMessage Station::removeNetwork(const QDBusMessage &call)
{
    const QString network = call.arguments().at(0).value<QDBusObjectPath>().path();
    if (m_networks.remove(network) == 0)
        return error(call, "NetworkUnknown", "There is no such a network in this interface.");
    if (m_selected == network)
        leave();
    return call.createReply();
}

QDBusMessage Station::selectNetwork(const QDBusMessage &call)
{
    const QString network = call.arguments().at(0).value<QDBusObjectPath>().path();
    if (!m_networks.contains(network))
        return error(call, "NetworkUnknown", "There is no such a network in this interface.");
    if (!m_selected.isEmpty())
        leave();
    m_selected = network;
    associate();
    return call.createReply();
}

QDBusMessage Station::disconnect(const QDBusMessage &call)
{
    if (m_selected.isEmpty())
        return error(call, "NotConnected", "This interface is not connected");
    leave();
    return call.createReply();
}

void Station::associate()
{
    const QVariantMap network = m_networks.value(m_selected);
    const AccessPoints air = m_air.accessPoints();
    m_accessPoint = chooseAccessPoint(air, network);
    m_steps = associationSteps(air, m_accessPoint, network);
    m_step.start(stepTimeMs);
}

void Station::proceed()
{
    setState(m_steps.takeFirst());
    if (!m_steps.isEmpty())
        m_step.start(stepTimeMs);
    else if (m_state == disconnected)
        m_retry.start(retryTimeMs);
}

void Station::leave()
{
    m_selected.clear();
    m_accessPoint.clear();
    m_step.stop();
    m_retry.stop();
    if (m_state != disconnected)
        setState(disconnected);
}

void Station::setState(const QString &state)
{
    m_state = state;
    if (state == disconnected)
        m_accessPoint.clear();
    const QDBusObjectPath current = m_results.pathOf(m_accessPoint);
    emitChange({{QStringLiteral("State"), state},
                {QStringLiteral("CurrentBSS"), QVariant::fromValue(current)}});
}

void Station::observeAir()
{
    const AccessPoints air = m_air.accessPoints();
    if (m_state != completed || chooseAccessPoint({{m_accessPoint, air.value(m_accessPoint)}},
                                                  m_networks.value(m_selected)) == m_accessPoint)
        return;
    setState(disconnected);
    m_retry.start(retryTimeMs);
}

void Station::emitSignal(const QString &name, const QList<QVariant> &values) const
{
    QDBusMessage message = QDBusMessage::createSignal(m_path, interface, name);
    message.setArguments(values);
    QDBusConnection::systemBus().send(message);
}

void Station::emitChange(const QVariantMap &properties) const
{
    emitSignal(QStringLiteral("PropertiesChanged"), {properties});
}
