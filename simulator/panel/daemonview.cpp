#include "daemonview.h"

#include "boardmanager.h"
#include "boardmanageralimentation.h"
#include "boardmanagerethernet.h"
#include "boardmanagerusers.h"
#include "boardmanagerwifi.h"
#include "boardmanagerwifiap.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace
{
const QString ethernetName = QStringLiteral("Ethernet");
const QString wifiName = QStringLiteral("WIFI");
const QString accessPointName = QStringLiteral("WIFIAP");

/** Returns the bus address. Reads the environment each time: libdbus would cache the first one. */
QString busAddress()
{
    return qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS",
                                QStringLiteral("unix:path=/run/dbus/system_bus_socket"));
}
} // namespace

/** The proxies for one connection to the bus. */
struct DaemonView::Proxies {
    explicit Proxies(const QDBusConnection &bus)
        : connection(bus),
          watcher(BoardManager::service(), bus, QDBusServiceWatcher::WatchForOwnerChange),
          users(BoardManager::service(), BoardManager::usersPath(), bus),
          alimentation(BoardManager::service(), BoardManager::alimentationPath(), bus),
          ethernet(BoardManager::service(), BoardManager::ethernetPath(), bus),
          wifi(BoardManager::service(), BoardManager::wifiPath(), bus),
          accessPoint(BoardManager::service(), BoardManager::wifiapPath(), bus)
    {
    }

    QDBusConnection connection;
    QDBusServiceWatcher watcher;
    BoardManagerUsers users;
    BoardManagerAlimentation alimentation;
    BoardManagerEthernet ethernet;
    BoardManagerWIFI wifi;
    BoardManagerWIFIAP accessPoint;
    /** The parent of the pending-call watchers. */
    QObject answers;
};

DaemonView::DaemonView()
{
    joinBus();
}

DaemonView::~DaemonView()
{
    leaveBus();
}

void DaemonView::leaveBus()
{
    if (!m_proxies)
        return;
    const QString name = m_proxies->connection.name();
    m_proxies.reset();
    QDBusConnection::disconnectFromBus(name);
}

void DaemonView::fill(Instrument &instrument) const
{
    instrument.isBusThere = m_known.isBusThere;
    instrument.isDaemonThere = m_known.isDaemonThere;
    instrument.profile = m_known.profile;
    instrument.isChangingProfile = m_known.isChangingProfile;
    instrument.batteryStatus = m_known.batteryStatus;
    instrument.links = m_known.links;
    instrument.strength = m_known.strength;
    instrument.joinedService = m_known.joinedService;
}

bool DaemonView::isComplete() const
{
    return m_known.isBusThere && m_unanswered == 0 && !m_isToAsk;
}

QString DaemonView::ownName() const
{
    return m_proxies ? m_proxies->connection.baseService() : QString();
}

void DaemonView::joinBus()
{
    if (m_proxies && m_proxies->connection.isConnected()) {
        if (m_isToAsk)
            ask();
        return;
    }
    if (m_proxies) {
        leaveBus();
        m_known.isBusThere = false;
        setDaemonThere(false);
    }
    // Use a new name: for a used one, Qt D-Bus returns the old connection.
    static int connections = 0;
    const QString name = QStringLiteral("panel-%1").arg(++connections);
    const QDBusConnection bus = QDBusConnection::connectToBus(busAddress(), name);
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(name);
        return;
    }
    m_known.isBusThere = true;
    m_proxies = std::make_unique<Proxies>(bus);
    QObject::connect(&m_proxies->watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
                     [this](const QString &, const QString &, const QString &owner) {
                         setDaemonThere(false);
                         setDaemonThere(!owner.isEmpty());
                         if (!owner.isEmpty())
                             beginIdle();
                     });
    QObject::connect(&m_proxies->users, &BoardManagerUsers::changingUser, this,
                     [this] { m_known.isChangingProfile = true; });
    QObject::connect(&m_proxies->users, &BoardManagerUsers::userChanged, this,
                     [this](const QString &) {
                         m_known.isChangingProfile = false;
                         // Query the active profile: after a factory reset, the signal names the
                         // reset profile, which may not be the active one.
                         follow(m_proxies->users.getUser(), [this](const QDBusPendingCall &call) {
                             m_known.profile = QDBusPendingReply<QString>(call).value();
                         });
                     });
    QObject::connect(&m_proxies->alimentation,
                     static_cast<void (BoardManagerAlimentation::*)(const QString &)>(
                         &BoardManagerAlimentation::batteryStatus),
                     this, [this](const QString &status) { m_known.batteryStatus = status; });
    const auto taking = [this](const QString &interface) {
        return [this, interface](const QString &path, const QString &property,
                                 const QDBusVariant &value) {
            takeProperty(interface, path, property, value.variant());
        };
    };
    QObject::connect(&m_proxies->ethernet, &BoardManagerEthernet::propertyChanged, this,
                     taking(ethernetName));
    QObject::connect(&m_proxies->wifi, &BoardManagerWIFI::propertyChanged, this, taking(wifiName));
    QObject::connect(&m_proxies->accessPoint, &BoardManagerWIFIAP::propertyChanged, this,
                     taking(accessPointName));
    setDaemonThere(bus.interface()->isServiceRegistered(BoardManager::service()));
    Q_EMIT busCame();
}

void DaemonView::setDaemonThere(bool isThere)
{
    if (isThere == m_known.isDaemonThere)
        return;
    const bool isBusThere = m_known.isBusThere;
    m_known = Instrument();
    m_known.isBusThere = isBusThere;
    m_known.isDaemonThere = isThere;
    m_unanswered = 0;
    m_isToAsk = false;
    if (m_proxies)
        qDeleteAll(m_proxies->answers.children());
    if (isThere)
        ask();
}

/**
 * Sets all links to "idle", their state in a daemon that has just started. Not called if the
 * daemon started before the panel: then the links can have any state.
 */
void DaemonView::beginIdle()
{
    for (const QString &interface : {ethernetName, wifiName, accessPointName}) {
        Link &link = m_known.links[interface];
        link.state = QStringLiteral("idle");
        link.trail = QStringList{link.state};
    }
}

void DaemonView::follow(const QDBusPendingCall &call,
                        const std::function<void(const QDBusPendingCall &)> &take)
{
    ++m_unanswered;
    auto watcher = new QDBusPendingCallWatcher(call, &m_proxies->answers);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, take] {
        --m_unanswered;
        watcher->deleteLater();
        if (!watcher->isError())
            take(*watcher);
        // Ask again: the daemon owns its name shortly before it exports its objects, and may hang
        // in between.
        else if (watcher->error().type() == QDBusError::UnknownObject ||
                 watcher->error().type() == QDBusError::NoReply)
            m_isToAsk = true;
    });
}

void DaemonView::ask()
{
    m_isToAsk = false;
    follow(m_proxies->users.getUser(), [this](const QDBusPendingCall &call) {
        m_known.profile = QDBusPendingReply<QString>(call).value();
    });
    // The generated class would block while it reads the property.
    QDBusMessage read = QDBusMessage::createMethodCall(
        BoardManager::service(), BoardManager::alimentationPath(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    read << QString::fromLatin1(BoardManagerAlimentation::staticInterfaceName())
         << QStringLiteral("batteryStatus");
    follow(m_proxies->connection.asyncCall(read), [this](const QDBusPendingCall &call) {
        m_known.batteryStatus = QDBusPendingReply<QVariant>(call).value().toString();
    });
    for (const QString &interface : {ethernetName, wifiName, accessPointName})
        askAddress(interface);
    if (m_known.links.value(wifiName).state == QLatin1String("online"))
        askStrength();
}

void DaemonView::takeProperty(const QString &interface, const QString &path, const QString &name,
                              const QVariant &value)
{
    Link &link = m_known.links[interface];
    if (name == QLatin1String("Strength")) {
        m_known.strength = value.toInt();
    } else if (name == QLatin1String("IPv4")) {
        askAddress(interface);
    } else if (name == QLatin1String("State")) {
        link.state = value.toString();
        if (link.state != link.trail.value(link.trail.size() - 1))
            link.trail << link.state;
        link.trail = link.trail.mid(link.trail.size() - 5);
        if (link.state == QLatin1String("online"))
            askAddress(interface);
        else
            link.address.clear();
        if (interface == wifiName && link.state == QLatin1String("online")) {
            m_known.joinedService = path;
            askStrength();
        } else if (interface == wifiName) {
            m_known.joinedService.clear();
            m_known.strength = -1;
        }
    }
}

/**
 * Queries the address: an interface with an address is connected. No method returns the state
 * itself.
 */
void DaemonView::askAddress(const QString &interface)
{
    const QDBusPendingCall call = interface == ethernetName ? m_proxies->ethernet.getIPv4()
                                  : interface == wifiName   ? m_proxies->wifi.getIPv4()
                                                            : m_proxies->accessPoint.getIPv4();
    follow(call, [this, interface](const QDBusPendingCall &answer) {
        Link &link = m_known.links[interface];
        link.address = QDBusPendingReply<QVariantMap>(answer)
                           .value()
                           .value(QStringLiteral("Address"))
                           .toString();
        if (!link.state.isEmpty() || link.address.isEmpty())
            return;
        link.state = QStringLiteral("online");
        if (interface == wifiName)
            askStrength();
    });
}

void DaemonView::askStrength()
{
    follow(m_proxies->wifi.getStrength(), [this](const QDBusPendingCall &call) {
        const QVariantMap strength = QDBusPendingReply<QVariantMap>(call).value();
        m_known.strength = strength.value(QStringLiteral("Strength"), -1).toInt();
    });
}
