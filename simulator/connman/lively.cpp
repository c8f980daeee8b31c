#include "lively.h"

#include "reply.h"

#include <algorithm>
#include <utility>

namespace
{
/** How long ConnMan collects changes of the list of services before it announces them. */
constexpr int announcementDelayMs = 100;

const QString configurationKey = QStringLiteral("IPv4.Configuration");
const QString errorKey = QStringLiteral("Error");
const QString ipv4Key = QStringLiteral("IPv4");
const QString stateKey = QStringLiteral("State");
const QString invalidKey = QStringLiteral("invalid-key");
const QString typeKey = QStringLiteral("Type");
const QString wifi = QStringLiteral("wifi");

/** Returns the entries of @p map with these keys. */
QVariantMap part(const QVariantMap &map, std::initializer_list<const char *> keys)
{
    QVariantMap entries;
    for (const char *key : keys) {
        if (map.contains(QLatin1String(key)))
            entries.insert(QLatin1String(key), map.value(QLatin1String(key)));
    }
    return entries;
}

bool isMalformed(const QString &passphrase)
{
    return passphrase.size() < 8 || passphrase.size() > 63;
}
} // namespace

Lively::Lively(Connman &connman, QObject *parent) : QObject(parent), m_connman(connman)
{
    m_announcement.setSingleShot(true);
    QObject::connect(&m_announcement, &QTimer::timeout, this,
                     [this] { m_connman.announceServices(); });
}

void Lively::add(const ListedObject &service)
{
    m_surroundings.append(service);
    const QString technology = technologyOf(service.path.path());
    if (m_connman.property(technology, QStringLiteral("Powered")).toBool())
        appear(service);
}

void Lively::remove(const QString &service)
{
    vanish(service);
    const auto isIt = [&](const ListedObject &other) { return other.path.path() == service; };
    m_surroundings.erase(std::remove_if(m_surroundings.begin(), m_surroundings.end(), isIt),
                         m_surroundings.end());
}

void Lively::setPassphrase(const QString &service, const QString &passphrase)
{
    m_passphrases.insert(service, passphrase);
}

void Lively::setPowered(const QDBusMessage &call, bool powered)
{
    const bool answersFirst = m_connman.property(call.path(), typeKey) == wifi;
    if (powered && answersFirst)
        answer(call);
    if (!powered) {
        for (const ListedObject &service : std::as_const(m_surroundings)) {
            const QString path = service.path.path();
            if (technologyOf(path) == call.path() && isConnected(path)) {
                tearDown(path);
                change(path, ipv4Key, QVariantMap());
            }
        }
    }
    change(call.path(), QStringLiteral("Powered"), powered);
    if (!powered || !answersFirst)
        answer(call);
    for (const ListedObject &service : std::as_const(m_surroundings)) {
        if (technologyOf(service.path.path()) != call.path())
            continue;
        if (powered)
            appear(service);
        else
            vanish(service.path.path());
    }
}

void Lively::setServiceProperty(const QDBusMessage &call, const QString &name,
                                const QVariant &value)
{
    const QString service = call.path();
    const bool reconfigures = name == configurationKey && isConnected(service);
    if (reconfigures) {
        change(service, stateKey, QStringLiteral("configuration"));
        setConnected(service, false);
        change(service, ipv4Key, QVariantMap());
    }
    change(service, name, value);
    answer(call);
    if (!reconfigures)
        return;
    change(service, stateKey, QStringLiteral("ready"));
    setConnected(service, true);
    const QVariantMap ipv4 = address(service);
    change(service, ipv4Key, part(ipv4, {"Method"}));
    change(service, ipv4Key, part(ipv4, {"Method", "Address", "Netmask"}));
    change(service, ipv4Key, ipv4);
}

void Lively::connectService(const QDBusMessage &call)
{
    if (isConnected(call.path())) {
        refuse(call, "AlreadyConnected", "Already connected");
        return;
    }
    const QStringList security =
        m_connman.property(call.path(), QStringLiteral("Security")).toStringList();
    if (security.isEmpty() || security.contains(QStringLiteral("none")))
        join(call, QString());
    else if (m_connman.agents().has(call.service()))
        askForPassphrase(call);
    else
        refuse(call, "NotRegistered", "Not registered");
}

void Lively::disconnectService(const QDBusMessage &call)
{
    if (!isConnected(call.path())) {
        refuse(call, "NotConnected", "Not connected");
        return;
    }
    tearDown(call.path());
    answer(call);
}

void Lively::removeService(const QDBusMessage &call)
{
    if (isConnected(call.path()))
        tearDown(call.path());
    answer(call);
}

void Lively::scan(const QDBusMessage &call)
{
    answer(call);
    announceServicesSoon();
}

bool Lively::isConnected(const QString &service) const
{
    return m_connman.property(service, stateKey) == QLatin1String("ready");
}

QString Lively::technologyOf(const QString &service) const
{
    return QStringLiteral("/net/connman/technology/") +
           service.section(QLatin1Char('/'), -1).section(QLatin1Char('_'), 0, 0);
}

/** Returns the IPv4 settings of a connection: the client's own, or a lease. */
QVariantMap Lively::address(const QString &service) const
{
    const QVariantMap own = mapOf(m_connman.property(service, configurationKey));
    if (own.value(QStringLiteral("Method")) == QLatin1String("manual"))
        return own;
    return {{QStringLiteral("Method"), QStringLiteral("dhcp")},
            {QStringLiteral("Address"), QStringLiteral("10.77.0.72")},
            {QStringLiteral("Netmask"), QStringLiteral("255.255.255.0")},
            {QStringLiteral("Gateway"), QStringLiteral("10.77.0.1")}};
}

/** Stores the change, and announces it if clients know the object. */
void Lively::change(const QString &path, const QString &name, const QVariant &value)
{
    if (m_connman.storeProperty(path, name, value) && m_connman.isAnnounced(path))
        m_connman.announceProperty(path, name);
}

void Lively::setConnected(const QString &service, bool connected)
{
    change(technologyOf(service), QStringLiteral("Connected"), connected);
    m_connman.announceState();
}

void Lively::announceServicesSoon()
{
    if (!m_announcement.isActive())
        m_announcement.start(announcementDelayMs);
}

/** Adds a service. A cable is connected before the list that contains it is announced. */
void Lively::appear(const ListedObject &service)
{
    const QString path = service.path.path();
    const bool connectsItself = m_connman.property(technologyOf(path), typeKey) != wifi;
    m_connman.addService(service);
    m_connman.storeProperty(path, stateKey,
                            connectsItself ? QStringLiteral("ready") : QStringLiteral("idle"));
    if (connectsItself) {
        m_connman.storeProperty(path, ipv4Key, address(path));
        setConnected(path, true);
    }
    announceServicesSoon();
}

void Lively::vanish(const QString &service)
{
    if (isConnected(service))
        tearDown(service);
    m_connman.dropService(service);
    announceServicesSoon();
}

void Lively::tearDown(const QString &service)
{
    change(service, stateKey, QStringLiteral("configuration"));
    setConnected(service, false);
    change(service, stateKey, QStringLiteral("disconnect"));
    change(service, stateKey, QStringLiteral("idle"));
}

void Lively::askForPassphrase(const QDBusMessage &call)
{
    const QVariantMap field = {{QStringLiteral("Type"), QStringLiteral("psk")},
                               {QStringLiteral("Requirement"), QStringLiteral("mandatory")}};
    m_connman.agents().call(call.service(), QStringLiteral("RequestInput"),
                            {QVariant::fromValue(QDBusObjectPath(call.path())),
                             QVariantMap{{QStringLiteral("Passphrase"), field}}},
                            [this, call](const QDBusMessage &reply) {
                                if (reply.type() != QDBusMessage::ReplyMessage) {
                                    refuse(call, "OperationAborted", "Operation aborted");
                                    return;
                                }
                                const QVariantMap answers = mapOf(reply.arguments().value(0));
                                if (!answers.contains(QStringLiteral("Passphrase"))) {
                                    askForPassphrase(call);
                                    return;
                                }
                                join(call, answers.value(QStringLiteral("Passphrase")).toString());
                            });
}

void Lively::join(const QDBusMessage &call, const QString &passphrase)
{
    const QString service = call.path();
    const QString right = m_passphrases.value(service, passphrase);
    if (!passphrase.isNull() && isMalformed(passphrase)) {
        refuseMalformed(call);
        return;
    }
    change(service, stateKey, QStringLiteral("association"));
    if (passphrase != right) {
        rejectPassphrase(call);
        return;
    }
    change(service, stateKey, QStringLiteral("configuration"));
    change(service, stateKey, QStringLiteral("ready"));
    answer(call);
    setConnected(service, true);
    const QVariantMap ipv4 = address(service);
    change(service, ipv4Key, part(ipv4, {"Method", "Address", "Netmask"}));
    change(service, ipv4Key, ipv4);
}

/**
 * Reports a malformed passphrase to the agent, and asks again if the agent wants to retry. Like
 * ConnMan, never joins with such a passphrase.
 */
void Lively::refuseMalformed(const QDBusMessage &call)
{
    change(call.path(), errorKey, invalidKey);
    m_connman.agents().call(call.service(), QStringLiteral("ReportError"),
                            {QVariant::fromValue(QDBusObjectPath(call.path())), invalidKey},
                            [this, call](const QDBusMessage &reply) {
                                if (reply.errorName() ==
                                    QLatin1String("net.connman.Agent.Error.Retry"))
                                    askForPassphrase(call);
                                else
                                    refuse(call, "Failed", "Input/output error");
                            });
}

/** Fails the connection after a wrong passphrase, whatever the agent answers to the error. */
void Lively::rejectPassphrase(const QDBusMessage &call)
{
    change(call.path(), errorKey, invalidKey);
    change(call.path(), stateKey, QStringLiteral("failure"));
    change(call.path(), stateKey, QStringLiteral("idle"));
    m_connman.agents().call(call.service(), QStringLiteral("ReportError"),
                            {QVariant::fromValue(QDBusObjectPath(call.path())), invalidKey},
                            [](const QDBusMessage &) {});
    m_connman.agents().call(call.service(), QStringLiteral("Cancel"), {},
                            [](const QDBusMessage &) {});
    refuse(call, "Failed", "Input/output error");
}
