#include "instrument.h"

#include <KyBoardManagerClient/boardmanager.h>

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QtQml>

namespace
{
/**
 * The interval of queries for changes without a signal: a mounted key, a charger, a backlight set
 * by a client.
 */
constexpr int askingIntervalMs = 5000;

const QString unknown = QStringLiteral("unknown");
const QString none = QStringLiteral("none");
const QString inserted = QStringLiteral("inserted");
const QString mounted = QStringLiteral("mounted");
const QString address = QStringLiteral("Address");

/** Reads the property asynchronously: the generated class's batteryStatus() would block. */
QDBusPendingCall readBatteryStatus(const QDBusConnection &bus)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        BoardManager::service(), BoardManager::alimentationPath(),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message << QString::fromLatin1(BoardManagerAlimentation::staticInterfaceName())
            << QStringLiteral("batteryStatus");
    return bus.asyncCall(message);
}
} // namespace

void Instrument::registerTypes()
{
    qmlRegisterType<Instrument>("Strandel", 1, 0, "Instrument");
    qmlRegisterUncreatableType<Link>("Strandel", 1, 0, "Link",
                                     QStringLiteral("a Link is a property of Instrument"));
}

Instrument::Instrument(QObject *parent)
    : QObject(parent),
      m_bus(QDBusConnection::systemBus()),
      m_supplyFace(BoardManager::service(), BoardManager::alimentationPath(), m_bus),
      m_backlightFace(BoardManager::service(), BoardManager::backlightPath(), m_bus),
      m_ethernetFace(BoardManager::service(), BoardManager::ethernetPath(), m_bus),
      m_storageFace(BoardManager::service(), BoardManager::storagePath(), m_bus),
      m_usersFace(BoardManager::service(), BoardManager::usersPath(), m_bus),
      m_wifiFace(BoardManager::service(), BoardManager::wifiPath(), m_bus),
      m_accessPointFace(BoardManager::service(), BoardManager::wifiapPath(), m_bus),
      m_sdCard(unknown),
      m_usbKey(unknown)
{
    // Subscribe first, query afterwards: no change in between is lost.
    followLinks();
    followDevices();
    followDaemon();
}

void Instrument::followDaemon()
{
    setProblem(tr("The board manager is away"));
    auto *watcher = new QDBusServiceWatcher(BoardManager::service(), m_bus,
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                forget();
                if (owner.isEmpty())
                    return;
                for (Link *link : {&m_ethernet, &m_wifi, &m_accessPoint})
                    link->beginIdle();
                begin();
            });
    connect(&m_asking, &QTimer::timeout, this, &Instrument::askAgain);
    if (!m_bus.isConnected()) {
        setProblem(tr("The system bus cannot be reached"));
        return;
    }
    whenAnswered<bool>(
        m_bus.interface()->asyncCall(QStringLiteral("NameHasOwner"), BoardManager::service()),
        [this](bool isThere) {
            if (isThere && !m_isAvailable)
                begin();
        });
}

void Instrument::followLinks()
{
    // The generated classes have methods called connect(), which hide QObject::connect().
    QObject::connect(&m_ethernetFace, &BoardManagerEthernet::propertyChanged, &m_ethernet,
                     [this](const QString &, const QString &name, const QDBusVariant &value) {
                         m_ethernet.takeProperty(name, value.variant());
                     });
    QObject::connect(&m_wifiFace, &BoardManagerWIFI::propertyChanged, &m_wifi,
                     [this](const QString &, const QString &name, const QDBusVariant &value) {
                         m_wifi.takeProperty(name, value.variant());
                     });
    QObject::connect(&m_accessPointFace, &BoardManagerWIFIAP::propertyChanged, &m_accessPoint,
                     [this](const QString &, const QString &name, const QDBusVariant &value) {
                         m_accessPoint.takeProperty(name, value.variant());
                     });
    for (Link *link : {&m_ethernet, &m_wifi})
        connect(link, &Link::addressWanted, this, [this, link] { askForAddress(*link); });
}

void Instrument::followDevices()
{
    // The signal also announces a reset, even of a profile that is not active.
    connect(&m_usersFace, &BoardManagerUsers::userChanged, this, &Instrument::askForProfile);
    // The cast selects the signal: the property's getter has the same name.
    connect(&m_supplyFace,
            static_cast<void (BoardManagerAlimentation::*)(const QString &)>(
                &BoardManagerAlimentation::batteryStatus),
            this, &Instrument::setBattery);
    connect(&m_backlightFace, &BoardManagerBacklight::backlightChanged, this,
            &Instrument::setBacklight);
    connect(&m_storageFace, &BoardManagerStorage::sdcardPresence, this,
            [this](bool isPresent) { takePresence(m_sdCard, isPresent); });
    connect(&m_storageFace, &BoardManagerStorage::usbKeyPresence, this,
            [this](bool isPresent) { takePresence(m_usbKey, isPresent); });
    connect(&m_storageFace, &BoardManagerStorage::deviceChangedMountState, this,
            [this](const QString &device, bool isMounted) {
                takeMounted(device == QLatin1String("SD") ? m_sdCard : m_usbKey, isMounted);
            });
}

/** The daemon has appeared: queries its whole state. */
void Instrument::begin()
{
    setAvailable(true);
    setProblem(QString());
    askForProfile();
    askForAddress(m_ethernet);
    askForAddress(m_wifi);
    // The access point's network interface exists only while the module is in access-point mode.
    whenAnswered<QVariantMap>(
        m_accessPointFace.getHardwareInfos(),
        [this](const QVariantMap &infos) { m_accessPoint.takeEvidence(!infos.isEmpty()); });
    askAgain();
    m_asking.start(askingIntervalMs);
}

void Instrument::forget()
{
    m_asking.stop();
    setAvailable(false);
    setProblem(tr("The board manager is away"));
    setProfile(QString());
    setBattery(QString());
    setStorage(m_sdCard, unknown);
    setStorage(m_usbKey, unknown);
    setBacklight(-1);
    for (Link *link : {&m_ethernet, &m_wifi, &m_accessPoint})
        link->forget();
}

void Instrument::askAgain()
{
    whenAnswered<QDBusVariant>(readBatteryStatus(m_bus), [this](const QDBusVariant &status) {
        setBattery(status.variant().toString());
    });
    whenAnswered<bool>(m_storageFace.isMounted(QStringLiteral("SD")),
                       [this](bool isMounted) { takeMounted(m_sdCard, isMounted); });
    whenAnswered<bool>(m_storageFace.isMounted(QStringLiteral("USB")),
                       [this](bool isMounted) { takeMounted(m_usbKey, isMounted); });
    whenAnswered<int>(m_backlightFace.getBacklight(),
                      [this](int percent) { setBacklight(percent); });
}

void Instrument::askForProfile()
{
    whenAnswered<QString>(m_usersFace.getUser(),
                          [this](const QString &profile) { setProfile(profile); });
}

void Instrument::askForAddress(Link &link)
{
    const bool isWifi = &link == &m_wifi;
    // An address shows that the link is up. Without an address, the link's state is unchanged.
    whenAnswered<QVariantMap>(isWifi ? m_wifiFace.getIPv4() : m_ethernetFace.getIPv4(),
                              [&link](const QVariantMap &ipv4) {
                                  link.takeEvidence(ipv4.contains(address));
                                  link.takeAddress(ipv4.value(address).toString());
                              });
    if (isWifi)
        whenAnswered<QVariantMap>(m_wifiFace.getStrength(), [this](const QVariantMap &strength) {
            m_wifi.takeStrength(strength.value(QStringLiteral("Strength"), -1).toInt());
        });
}

template <typename Answer, typename Receive>
void Instrument::whenAnswered(const QDBusPendingCall &call, Receive receive)
{
    auto *watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, receive](QDBusPendingCallWatcher *finished) {
                finished->deleteLater();
                const QDBusPendingReply<Answer> reply = *finished;
                if (reply.isValid())
                    receive(reply.value());
                // A property that cannot be read stays unknown: a model may have no screen.
                else if (reply.error().type() == QDBusError::AccessDenied)
                    setProblem(tr("This user is not in the group strandel"));
            });
}

void Instrument::setAvailable(bool isAvailable)
{
    if (m_isAvailable == isAvailable)
        return;
    m_isAvailable = isAvailable;
    Q_EMIT availableChanged();
}

void Instrument::setProblem(const QString &problem)
{
    if (m_problem == problem)
        return;
    m_problem = problem;
    Q_EMIT problemChanged();
}

void Instrument::setProfile(const QString &profile)
{
    if (m_profile == profile)
        return;
    m_profile = profile;
    Q_EMIT profileChanged();
}

void Instrument::setBattery(const QString &status)
{
    const Battery battery = batteryFrom(status);
    if (m_battery.level == battery.level && m_battery.isChargerThere == battery.isChargerThere)
        return;
    m_battery = battery;
    Q_EMIT batteryChanged();
}

void Instrument::setBacklight(int percent)
{
    if (m_backlight == percent)
        return;
    m_backlight = percent;
    Q_EMIT backlightChanged();
}

void Instrument::setStorage(QString &storage, const QString &state)
{
    if (storage == state)
        return;
    storage = state;
    Q_EMIT storageChanged();
}

void Instrument::takePresence(QString &storage, bool isPresent)
{
    // A mounted device is present.
    if (!isPresent || storage != mounted)
        setStorage(storage, isPresent ? inserted : none);
}

void Instrument::takeMounted(QString &storage, bool isMounted)
{
    // A device that is present but not mounted stays present.
    const bool isThere = storage == inserted || storage == mounted;
    setStorage(storage, isMounted ? mounted : isThere ? inserted : none);
}
