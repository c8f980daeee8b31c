#include "board.h"
#include "documentederrors.h"
#include "samplerecords.h"
#include "wifitest.h"

#include <QDBusObjectPath>

#include <functional>
#include <memory>

/** Every error that the introspection documents list as sent, provoked on the running daemon. */
class TestErrors : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyDocumentedErrorIsSent_data();
    void everyDocumentedErrorIsSent();
    void everyProvocationBelongsToADocumentedError();

private:
    using Provocation = std::function<QDBusMessage()>;

    /** Keys: the interface, the member, the error's name and its text, separated by blanks. */
    QMap<QString, Provocation> provocations();
    void addGeneral(QMap<QString, Provocation> &all);
    void addUsers(QMap<QString, Provocation> &all);
    void addDevices(QMap<QString, Provocation> &all);
    void addScreen(QMap<QString, Provocation> &all);
    void addRecords(QMap<QString, Provocation> &all);
    void addWatchdog(QMap<QString, Provocation> &all);
    void addNetwork(QMap<QString, Provocation> &all);
    void addAccessPoint(QMap<QString, Provocation> &all);

    static QString keyOf(const DocumentedError &error);
    static QDBusMessage call(const char *path, const char *interface, const char *method,
                             const QList<QVariant> &arguments = {});
    static QDBusMessage property(const char *method, const QList<QVariant> &arguments);

    /** Makes @p operation of the board fail, then calls a method of the device object. */
    Provocation faulty(const char *operation, const char *interface, const char *method,
                       const QList<QVariant> &arguments = {});
    /**
     * Calls the method twice, and provides the second reply. The mode script that the first call
     * started is still running then.
     */
    Provocation whileScriptRuns(const Remote &interface, const char *method,
                                const QList<QVariant> &arguments = {});
    Provocation withoutConnman(const Remote &interface);
};

namespace
{
const QVariantMap noSettings;

QString ofOwn(const char *place, const char *name, const char *text)
{
    return QStringLiteral("%1.%2 %1.Error.%3 %4")
        .arg(daemonName, QString(place).replace('.', ' '), name, text);
}

QString ofNetwork(const char *place, const char *text)
{
    return QStringLiteral("%1.%2 org.freedesktop.DBus.Error.Failed %3")
        .arg(daemonName, QString(place).replace('.', ' '), text);
}

QString ofAny(const char *name, const char *text)
{
    return QStringLiteral("* * org.freedesktop.DBus.Error.%1 %2").arg(name, text);
}

QString ofAgent(const char *member, const char *name)
{
    return QStringLiteral("net.connman.Agent %1 net.connman.Agent.Error.%2 ").arg(member, name);
}
} // namespace

QString TestErrors::keyOf(const DocumentedError &error)
{
    return QStringList{error.interface, error.member, error.name, error.text}.join(' ');
}

QDBusMessage TestErrors::call(const char *path, const char *interface, const char *method,
                              const QList<QVariant> &arguments)
{
    return Remote(path, interface).reply(method, arguments);
}

QDBusMessage TestErrors::property(const char *method, const QList<QVariant> &arguments)
{
    return Remote(daemonName, "/KyDeviceMgr", "org.freedesktop.DBus.Properties")
        .reply(method, arguments);
}

TestErrors::Provocation TestErrors::faulty(const char *operation, const char *interface,
                                           const char *method, const QList<QVariant> &arguments)
{
    return [=] {
        Board::fault(operation, "always");
        return call("/KyDeviceMgr", interface, method, arguments);
    };
}

TestErrors::Provocation TestErrors::whileScriptRuns(const Remote &interface, const char *method,
                                                    const QList<QVariant> &arguments)
{
    return [=] {
        script.hold();
        interface.reply(method, arguments);
        const QDBusMessage second = interface.reply(method, arguments);
        script.release();
        return second;
    };
}

TestErrors::Provocation TestErrors::withoutConnman(const Remote &interface)
{
    return [=] {
        connman.stop();
        return interface.reply("setIPv4", {noSettings});
    };
}

void TestErrors::addGeneral(QMap<QString, Provocation> &all)
{
    all[ofAny("LimitsExceeded", "The map holds too many values")] = [this] {
        QVariantMap map;
        for (const char *key :
             {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"})
            map.insert(key, QVariant::fromValue(QList<int>::fromVector(QVector<int>(10000, 7))));
        return ethernet.reply("setIPv4", {map});
    };
    all[ofAny("UnknownMethod", "No such method '{method}' in interface '{interface}' at object "
                               "path '{path}' (signature '{signature}')")] = [] {
        return call("/KyConfigMgr", "Users", "setUser", {5});
    };
    all[ofAny("UnknownInterface", "No such interface '{interface}' at object path '{path}'")] = [] {
        return call("/KyConfigMgr", "Backlight", "getBacklight");
    };
    all[ofAny("UnknownObject", "No such object path '{path}'")] = [] {
        return call("/Nowhere", "Users", "getUser");
    };
    all[ofAny("UnknownInterface", "Interface {interface} was not found in object {path}")] = [] {
        return property("Get", {"net.nowhere", "batteryStatus"});
    };
    all[ofAny("UnknownProperty", "Property {property} was not found in object {path}")] = [] {
        return property("Get", {daemonName + ".Alimentation", "battery"});
    };
    all[ofAny("PropertyReadOnly", "Property {property} is read-only")] = [] {
        return property("Set", {daemonName + ".Alimentation", "batteryStatus",
                                QVariant::fromValue(QDBusVariant("x"))});
    };
}

void TestErrors::addUsers(QMap<QString, Provocation> &all)
{
    all[ofOwn("Users.getUser", "Read", "Not able to read the current user.")] = [] {
        QFile::remove("/tmp/User_part/system");
        return call("/KyConfigMgr", "Users", "getUser");
    };
    for (const char *method : {"setUser", "factoryReset"}) {
        const QByteArray place = QByteArray("Users.") + method;
        all[ofOwn(place.constData(), "InvalidArguments", "User name is invalid.")] = [method] {
            return call("/KyConfigMgr", "Users", method, {"user5"});
        };
    }
    all[ofOwn("Users.setUser", "Process",
              "Error while forcing a reload of the user configurations.")] = [] {
        removePath(profile("user2"));
        writeFile(profile("user2"), "no directory");
        return call("/KyConfigMgr", "Users", "setUser", {"user2"});
    };
    all[ofOwn("Users.setUser", "Write", "Not able to overwrite the current user symlink.")] = [] {
        QFile::remove("/tmp/User_part/system");
        QDir().mkpath("/tmp/User_part/system/in/the/way");
        return call("/KyConfigMgr", "Users", "setUser", {"user2"});
    };
    all[ofOwn("Users.factoryReset", "Process", "Was not able to erase previous configuration")] =
        [] {
            QDir().mkpath(profile("user2") + "/mounted");
            const QStringList disk = {"-t", "tmpfs", "none", profile("user2") + "/mounted"};
            QProcess::execute("mount", disk);
            const QDBusMessage reply = call("/KyConfigMgr", "Users", "factoryReset", {"user2"});
            QProcess::execute("umount", {profile("user2") + "/mounted"});
            return reply;
        };
    all[ofOwn("Users.factoryReset", "Write",
              "The copy of the default folder did not went as expected")] = [] {
        removePath(profile("default_user"));
        QFile::link(profile("user2"), profile("default_user"));
        return call("/KyConfigMgr", "Users", "factoryReset", {"user2"});
    };
}

void TestErrors::addDevices(QMap<QString, Provocation> &all)
{
    all[ofOwn("LED.setLEDStatus", "InvalidArguments", "The LED is unknown")] = [] {
        return call("/KyDeviceMgr", "LED", "setLEDStatus", {"wifi", "ON"});
    };
    all[ofOwn("LED.setLEDStatus", "InvalidArguments", "The status is unknown")] = [] {
        return call("/KyDeviceMgr", "LED", "setLEDStatus", {"WIFI", "on"});
    };
    all[ofOwn("LED.setLEDStatus", "Write", "Enable to set led {led} to status {status}")] =
        faulty("KyLeds.setLedState", "LED", "setLEDStatus", {"WIFI", "ON"});
    all[ofOwn("Network.redpinePower", "Write", "Fail to change redpine power state")] =
        faulty("KyPowerman.wifiPower", "Network", "redpinePower", {true});
    all[ofOwn("Network.redpineSoftReset", "Write", "Fail to soft reset redpine")] =
        faulty("KyPowerman.wifiSoftReset", "Network", "redpineSoftReset");
    all[ofOwn("Network.redpineHardReset", "Write", "Fail to hard reset redpine")] =
        faulty("KyPowerman.wifiHardReset", "Network", "redpineHardReset");
    all[ofOwn("Storage.umount", "Write", "Unknowned device")] = [] {
        return call("/KyDeviceMgr", "Storage", "umount", {"sd"});
    };
    all[ofOwn("Storage.umount", "Write", "Umount failed")] =
        faulty("KyFaccess.unmountDevice", "Storage", "umount", {"SD"});
    all[ofOwn("Temperature.setTemperatureThreshold", "InvalidArguments", "Unknown device")] = [] {
        return call("/KyDeviceMgr", "Temperature", "setTemperatureThreshold", {"som", 5});
    };
    all[ofOwn("Temperature.setInterval", "InvalidArguments",
              "Intervall is too short, should be > 1s (1000)")] = [] {
        return call("/KyDeviceMgr", "Temperature", "setInterval", {999});
    };
}

void TestErrors::addScreen(QMap<QString, Provocation> &all)
{
    const char *invalid = "One of the argument is invalid.";
    const char *notRead = "Could not get the current backlight value";
    const char *notSet = "Could not set the current backlight value";
    all[ofOwn("Backlight.getBacklight", "Read", notRead)] =
        faulty("KyBacklight.getBrightness", "Backlight", "getBacklight");
    all[ofOwn("Backlight.setBacklight", "InvalidArguments", invalid)] = [] {
        return call("/KyDeviceMgr", "Backlight", "setBacklight", {101});
    };
    all[ofOwn("Backlight.setBacklight", "Write", notSet)] =
        faulty("KyBacklight.setBrightness", "Backlight", "setBacklight", {50});
    all[ofOwn("Backlight.enableBacklight", "Write", notSet)] =
        faulty("KyBacklight.enableBacklight", "Backlight", "enableBacklight", {true});
    all[ofOwn("Backlight.getBacklightStep", "Read", notRead)] =
        faulty("KyBacklight.getBrightness", "Backlight", "getBacklightStep");
    all[ofOwn("Backlight.setBacklightStep", "InvalidArguments", invalid)] = [] {
        return call("/KyDeviceMgr", "Backlight", "setBacklightStep", {false, 14});
    };
    all[ofOwn("Backlight.setBacklightStep", "Read", "Could not get the current brightness value")] =
        faulty("KyAls.readLux", "Backlight", "setBacklightStep", {true, 3});
    all[ofOwn("Backlight.setBacklightStep", "Write", notSet)] =
        faulty("KyBacklight.setBrightness", "Backlight", "setBacklightStep", {false, 3});
    all[ofOwn("Brightness.getBrightness", "Read", "Could not get the current brightness value")] =
        faulty("KyAls.readLux", "Brightness", "getBrightness");
    all[ofOwn("Brightness.getBrightness", "Initialisation",
              "The initialisation of the ALS failed")] = [this] {
        daemon.stop();
        Board::fault("KyAls.init", "always");
        daemon.start();
        return call("/KyDeviceMgr", "Brightness", "getBrightness");
    };
}

void TestErrors::addRecords(QMap<QString, Provocation> &all)
{
    const struct {
        const char *method;
        QList<QVariant> arguments;
    } writers[] = {{"setEepromInstrument", {instrumentRecord()}},
                   {"setEepromMesure", {measureRecord()}},
                   {"invalidateEepromsContent", {}}};
    for (const auto &writer : writers) {
        const char *method = writer.method;
        const QList<QVariant> arguments = writer.arguments;
        const QByteArray place = QByteArray("Version.") + method;
        all[ofOwn(place.constData(), "Initialisation",
                  "Not able to enable write permission in eeprom")] =
            faulty("KyEeprom.setWriteEnable", "Version", method, arguments);
        all[ofOwn(place.constData(), "Write", "Not able to write in eeprom")] =
            faulty("KyEeprom.writeEeprom", "Version", method, arguments);
        all[ofOwn(place.constData(), "Write", "Not able to disable write permission in eeprom")] =
            [=] {
                Board::clearJournal();
                auto board = std::make_unique<HeldBoard>();
                QDBusPendingCall reply = Remote("/KyDeviceMgr", "Version").start(method, arguments);
                Board::waitForJournal("KyEeprom.setWriteEnable(true) = 0");
                Board::fault("KyEeprom.setWriteEnable", "always");
                board.reset();
                reply.waitForFinished();
                return reply.reply();
            };
        if (!arguments.isEmpty())
            all[ofOwn(place.constData(), "Write", "Data not valid")] = [method] {
                return call("/KyDeviceMgr", "Version", method, {noSettings});
            };
    }
}

void TestErrors::addWatchdog(QMap<QString, Provocation> &all)
{
    all[ofOwn("Watchdog.keepAlive", "Initialisation",
              "Fail to read the HPS initialisation state")] =
        faulty("KySocManager.getSoCRegister", "Watchdog", "keepAlive");
    all[ofOwn("Watchdog.keepAlive", "Initialisation", "The HPS is not initialised yet")] = [] {
        Board::set("soc/0x6b", "0");
        return call("/KyDeviceMgr", "Watchdog", "keepAlive");
    };
    all[ofOwn("Watchdog.keepAlive", "Initialisation",
              "Fail to prevent the MSP430 from rebooting the sysem")] =
        faulty("KyPowerman.setAckWatchdog", "Watchdog", "keepAlive");
    all[ofOwn("Watchdog.keepAlive", "Write",
              "Fail to transfert the keepalive signal to the FPGA")] = [] {
        Board::remove("soc/0x68");
        return call("/KyDeviceMgr", "Watchdog", "keepAlive");
    };
    all[ofAgent("RequestInput", "Canceled")] = [] {
        return Remote(daemonName, "/KyComMgr/Agent", "net.connman.Agent")
            .reply("RequestInput", {QVariant::fromValue(QDBusObjectPath("/s")), noSettings});
    };
    all[ofAgent("ReportError", "Retry")] = [] {
        return Remote(daemonName, "/KyComMgr/Agent", "net.connman.Agent")
            .reply("ReportError", {QVariant::fromValue(QDBusObjectPath("/s")), "x"});
    };
}

void TestErrors::addNetwork(QMap<QString, Provocation> &all)
{
    const char *noSwitch = "Cannot switch in mode '1' (WLAN STATION)";
    all[ofNetwork("Ethernet.connect", noSwitch)] = whileScriptRuns(ethernet, "connect");
    all[ofNetwork("WIFI.connect", noSwitch)] = whileScriptRuns(wifi, "connect", {noSettings});
    all[ofNetwork("WIFI.scan", noSwitch)] = whileScriptRuns(wifi, "scan");
    for (const char *interface : {"Ethernet", "WIFI"}) {
        const QByteArray place = QByteArray(interface) + ".disconnect";
        all[ofNetwork(place.constData(), "Cannot set property Powered: {text}")] = [=] {
            connman.failMethod("Technology.SetProperty", "net.connman.Error.Failed", "Busy");
            return call("/KyComMgr", interface, "disconnect");
        };
    }
    all[ofNetwork("WIFI.disconnect", "Cannot remove service")] = [this] {
        daemon.stop();
        reach("configuration");
        connman.failMethod(removeLab, "net.connman.Error.NotSupported", "Not supported");
        return wifi.reply("disconnect");
    };
    const char *notConnected = "Cannot get property Connected";
    all[ofNetwork("Ethernet.setIPv4", notConnected)] = withoutConnman(ethernet);
    all[ofNetwork("WIFI.setIPv4", notConnected)] = withoutConnman(wifi);
    all[ofNetwork("WIFIAP.setIPv4", notConnected)] = withoutConnman(wifiAp);
}

void TestErrors::addAccessPoint(QMap<QString, Provocation> &all)
{
    all[ofNetwork("WIFIAP.connect", "Cannot connect, wap busy")] =
        whileScriptRuns(wifiAp, "connect", {noSettings});
    all[ofNetwork("WIFIAP.connect", "Cannot create hostapd conf file")] = [this] {
        script.clear();
        return wifiAp.reply("connect", {noSettings});
    };
    all[ofNetwork("WIFIAP.connect", "Cannot switch in mode '2' (WLAN ACCESS POINT)")] = [this] {
        script.remove();
        return wifiAp.reply("connect", {noSettings});
    };
    all[ofNetwork("WIFIAP.disconnect", "Cannot disconnect WAP, already disconnected")] = [this] {
        return wifiAp.reply("disconnect");
    };
}

QMap<QString, TestErrors::Provocation> TestErrors::provocations()
{
    QMap<QString, Provocation> all;
    addGeneral(all);
    addUsers(all);
    addDevices(all);
    addScreen(all);
    addRecords(all);
    addWatchdog(all);
    addNetwork(all);
    addAccessPoint(all);
    return all;
}

void TestErrors::everyDocumentedErrorIsSent_data()
{
    QTest::addColumn<int>("index");
    const QList<DocumentedError> &errors = documentedErrors();
    for (int index = 0; index < errors.size(); ++index) {
        if (errors.at(index).isSent)
            QTest::newRow(qPrintable(keyOf(errors.at(index)))) << index;
    }
}

void TestErrors::everyDocumentedErrorIsSent()
{
    QFETCH(int, index);
    const DocumentedError &error = documentedErrors().at(index);
    const Provocation provoke = provocations().value(keyOf(error));
    QVERIFY2(provoke, "nobody knows how to provoke it");
    Board::setModel(0x8345);
    QVERIFY(daemon.start());

    const QDBusMessage reply = provoke();

    QVERIFY2(reply.type() == QDBusMessage::ErrorMessage &&
                 error.matches(reply.errorName(), reply.errorMessage()),
             qPrintable(renderReply(reply)));
}

void TestErrors::everyProvocationBelongsToADocumentedError()
{
    QStringList keys;
    for (const DocumentedError &error : documentedErrors())
        keys << keyOf(error);
    for (const QString &key : provocations().keys())
        QVERIFY2(keys.contains(key), qPrintable(key));
}

WORLD_TEST_MAIN(TestErrors)
#include "test_errors.moc"
