/*
 * The bare Qt service: a service for comparison, without the daemon's logic. It has as many
 * adaptors and objects as the daemon, links the same libraries, and its methods return values of
 * the same types. The difference between its cost and the daemon's is the cost of the daemon's own
 * code.
 */

#include "bareqt.h"

#include "barerest.h"
#include "leds.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDebug>
#include <QNetworkInterface>

namespace
{
struct ListedService {
    QDBusObjectPath path;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const ListedService &service)
{
    argument.beginStructure();
    argument << service.path << service.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ListedService &service)
{
    argument.beginStructure();
    argument >> service.path >> service.properties;
    argument.endStructure();
    return argument;
}
} // namespace

Q_DECLARE_METATYPE(ListedService)

QString BareUsers::getUser(const QDBusMessage &)
{
    return QStringLiteral("user1");
}

QVariantMap BareLed::getLEDStatus()
{
    QVariantMap shown;
    for (const NamedValue &led : ledNames())
        shown.insert(led.name, QStringLiteral("OFF"));
    return shown;
}

QVariantMap BareTemperature::getTemperatures()
{
    return {{QStringLiteral("SOM"), 42}, {QStringLiteral("ANALOG_CHAIN"), 38}};
}

QString BareAlimentation::batteryStatus()
{
    return QStringLiteral("CHARGER_OFF_BAT_60_80");
}

BareVersion::BareVersion(QObject *parent)
    : Bare(parent),
      m_instrument{{QStringLiteral("Brand"), 1U},
                   {QStringLiteral("CRC"), true},
                   {QStringLiteral("Fabrication"), 1U},
                   {QStringLiteral("FirstPassTag"), 0U},
                   {QStringLiteral("IrdInstrumentPassword"), QByteArray(30, 'p')},
                   {QStringLiteral("IrdSessionPassword"), QByteArray(16, 'p')},
                   {QStringLiteral("Model"), QStringLiteral("8345")},
                   {QStringLiteral("RelaunchTag"), 0U},
                   {QStringLiteral("SerialNumber"), QByteArray(8, '1')},
                   {QStringLiteral("Subsidiary"), 1U},
                   {QStringLiteral("TroubleshootingTag"), 0U},
                   {QStringLiteral("Type"), 1U},
                   {QStringLiteral("WarrantyNumber"), QByteArray(9, '1')}}
{
}

QVariantMap BareVersion::getEepromInstrument()
{
    return m_instrument;
}

void BareWatchdog::keepAlive(const QDBusMessage &) {}

/**
 * Returns the address of ConnMan's wired service as the daemon does: with a call to the bus, a call
 * to ConnMan, and a search in ConnMan's list.
 */
QVariantMap BareEthernet::getIPv4()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    const QString connman = QStringLiteral("net.connman");
    if (!bus.interface()->isServiceRegistered(connman))
        return QVariantMap();
    const QDBusMessage reply = bus.call(QDBusMessage::createMethodCall(
        connman, QStringLiteral("/"), QStringLiteral("net.connman.Manager"),
        QStringLiteral("GetServices")));
    const auto services = qdbus_cast<QList<ListedService>>(reply.arguments().value(0));
    for (const ListedService &service : services) {
        if (service.properties.value(QStringLiteral("Type")).toString() ==
            QLatin1String("ethernet"))
            return qdbus_cast<QVariantMap>(service.properties.value(QStringLiteral("IPv4")));
    }
    return QVariantMap();
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<ListedService>();
    qDBusRegisterMetaType<QList<ListedService>>();
    // Use Qt Network, as the daemon does.
    static_cast<void>(QNetworkInterface().isValid());

    QObject configRoot;
    QObject deviceRoot;
    QObject comRoot;
    new BareUsers(&configRoot);
    new BareEthernet(&comRoot);
    new BareAlimentation(&deviceRoot);
    new BareLed(&deviceRoot);
    new BareTemperature(&deviceRoot);
    new BareVersion(&deviceRoot);
    new BareWatchdog(&deviceRoot);
    addRest(&configRoot, &comRoot, &deviceRoot);

    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.registerService(QStringLiteral("com.orvendis.Strandel.Bare"))) {
        qCritical() << bus.lastError().message();
        return EXIT_FAILURE;
    }
    bus.registerObject(QStringLiteral("/KyConfigMgr"), &configRoot,
                       QDBusConnection::ExportAdaptors);
    bus.registerObject(QStringLiteral("/KyComMgr"), &comRoot, QDBusConnection::ExportAdaptors);
    bus.registerObject(QStringLiteral("/KyDeviceMgr"), &deviceRoot,
                       QDBusConnection::ExportAdaptors);
    return QCoreApplication::exec();
}
