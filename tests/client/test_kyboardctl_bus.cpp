#include "board.h"
#include "client.h"
#include "daemontest.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

/** The bus that kyboardctl calls, its user, and its handling of replies. */
class TestKyboardctlBus : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void anAbsentDaemonHasItsOwnStatus();
    void aWrongAddressHasItsOwnMessage();
    void aUserOutsideTheGroupHasItsOwnMessage();
    void aRefusedLoginHasItsOwnMessage();
    void theTextOfTheBusIsAddedOnRequest();
    void anotherBusIsCalled();
    void anotherMachineIsCalledThroughSsh();
    void anUnreachableMachineIsReported();
    void oneValueIsPrinted();
    void aMissingFieldIsReported();
    void anEmptyFieldIsReported();
    void aSecretFieldIsNotMistakenForItsValue();
    void numbersHaveTheirUnits();
    void theVoltageComesInVoltsToo();
    void argumentsAreUtf8WithoutALocale();

private:
    static ClientResult runAs(const char *user, const QStringList &words);
    static void admitStrangers(bool are);
    static void replaceSsh();
};

void TestKyboardctlBus::cleanup()
{
    admitStrangers(true);
    DaemonTest::cleanup();
}

ClientResult TestKyboardctlBus::runAs(const char *user, const QStringList &words)
{
    // Run a copy: other users may have no access to the source tree. GCOV_PREFIX makes a program
    // that was built for coverage write its counters to /tmp, too.
    const QString copy = "/tmp/kyboardctl";
    QFile::remove(copy);
    QFile::copy(QStandardPaths::findExecutable("kyboardctl"), copy);
    QProcess client;
    client.start("setpriv", QStringList{QString("--reuid=") + user, "--regid=61186",
                                        "--init-groups", "env", "GCOV_PREFIX=/tmp", copy} +
                                words);
    return resultOf(client);
}

/** Sets whether the bus lets the user "stranger" connect. */
void TestKyboardctlBus::admitStrangers(bool are)
{
    if (are)
        QFile::remove("/run/dbus/extra.conf");
    else
        writeFile("/run/dbus/extra.conf", "<busconfig><policy context=\"mandatory\">"
                                          "<deny user=\"stranger\"/></policy></busconfig>");
    Remote("org.freedesktop.DBus", "/", "org.freedesktop.DBus").reply("ReloadConfig");
}

/** Replaces ssh with a program that runs the command locally and logs its arguments. */
void TestKyboardctlBus::replaceSsh()
{
    writeFile("/tmp/programs/ssh", "#!/bin/sh\n"
                                   "echo \"$@\" >/tmp/ssh.arguments\n"
                                   "[ \"$3\" != nowhere ] || exit 255\n"
                                   "shift 3\n"
                                   "exec \"$@\"\n");
    QFile("/tmp/programs/ssh").setPermissions(QFile::ReadOwner | QFile::ExeOwner);
}

void TestKyboardctlBus::anAbsentDaemonHasItsOwnStatus()
{
    for (const char *words : {"user get", "status", "ethernet connect", "battery status"}) {
        const ClientResult result = runClient(QString(words).split(' '));
        QCOMPARE(result.complaint,
                 QStringLiteral("kyboardctl: the board manager is not on the system bus\n"));
        QCOMPARE(result.status, 3);
    }
}

void TestKyboardctlBus::aWrongAddressHasItsOwnMessage()
{
    QVERIFY(daemon.start());
    const QStringList elsewhere = {"DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/dbus/missing"};
    for (const char *words : {"user get", "status", "ethernet connect", "monitor"}) {
        const ClientResult result = runClient(QString(words).split(' '), {}, elsewhere);
        QCOMPARE(result.complaint, QStringLiteral("kyboardctl: the system bus at "
                                                  "unix:path=/run/dbus/missing cannot be "
                                                  "reached\n"));
        QCOMPARE(result.status, 3);
    }
}

void TestKyboardctlBus::aUserOutsideTheGroupHasItsOwnMessage()
{
    QVERIFY(daemon.start());
    for (const char *words : {"user get", "status", "ethernet connect"}) {
        const ClientResult result = runAs("stranger", QString(words).split(' '));
        QCOMPARE(result.complaint, QStringLiteral("kyboardctl: user stranger is not in group "
                                                  "strandel, which may call the board manager\n"));
        QCOMPARE(result.output, QString());
        QCOMPARE(result.status, 1);
    }
    QCOMPARE(runAs("member", {"user", "get"}).output, QStringLiteral("user1\n"));
}

void TestKyboardctlBus::aRefusedLoginHasItsOwnMessage()
{
    QVERIFY(daemon.start());
    admitStrangers(false);
    const ClientResult result = runAs("stranger", {"user", "get"});
    QCOMPARE(result.complaint, "kyboardctl: the system bus at " +
                                   QString::fromLocal8Bit(qgetenv("DBUS_SYSTEM_BUS_ADDRESS")) +
                                   " refuses user stranger\n");
    QCOMPARE(result.status, 3);
}

void TestKyboardctlBus::theTextOfTheBusIsAddedOnRequest()
{
    QVERIFY(daemon.start());
    const ClientResult refused = runAs("stranger", {"user", "get", "--verbose"});
    QCOMPARE(refused.complaint.count('\n'), 2);
    QVERIFY2(refused.complaint.section('\n', 1).startsWith(
                 "kyboardctl: org.freedesktop.DBus.Error.AccessDenied: "),
             qPrintable(refused.complaint));
    const ClientResult missing = runClient({"--verbose", "user", "get"}, {},
                                           {"DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/missing"});
    QVERIFY2(missing.complaint.section('\n', 1).startsWith(
                 "kyboardctl: org.freedesktop.DBus.Error.FileNotFound: "),
             qPrintable(missing.complaint));
}

void TestKyboardctlBus::anotherBusIsCalled()
{
    QVERIFY(daemon.start());
    const QString address = QString::fromLocal8Bit(qgetenv("DBUS_SYSTEM_BUS_ADDRESS"));
    const QStringList elsewhere = {"DBUS_SYSTEM_BUS_ADDRESS=unix:path=/run/dbus/missing"};
    const ClientResult result = runClient({"user", "get", "--address", address}, {}, elsewhere);
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.output, QStringLiteral("user1\n"));
    const ClientResult wrong = runClient({"--address=unix:path=/run/nowhere", "status"});
    QCOMPARE(wrong.complaint,
             QStringLiteral("kyboardctl: the bus at unix:path=/run/nowhere cannot be reached\n"));
    QCOMPARE(wrong.status, 3);
}

void TestKyboardctlBus::anotherMachineIsCalledThroughSsh()
{
    QVERIFY(daemon.start());
    replaceSsh();
    const QStringList path = {"PATH=/tmp/programs:" + QString::fromLocal8Bit(qgetenv("PATH"))};
    const ClientResult get = runClient({"--host", "me@strandel-12", "user", "get"}, {}, path);
    QCOMPARE(get.complaint, QString());
    QCOMPARE(get.output, QStringLiteral("user1\n"));
    QCOMPARE(readFile("/tmp/ssh.arguments"),
             QByteArray("-xT -- me@strandel-12 systemd-stdio-bridge\n"));
    QCOMPARE(runClient({"--host=strandel-12", "user", "set", "user2"}, {}, path).status, 0);
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user2"));
}

void TestKyboardctlBus::anUnreachableMachineIsReported()
{
    replaceSsh();
    const QStringList path = {"PATH=/tmp/programs:" + QString::fromLocal8Bit(qgetenv("PATH"))};
    const ClientResult result = runClient({"--host", "nowhere", "user", "get"}, {}, path);
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: the system bus of nowhere cannot be "
                                              "reached through ssh\n"));
    QCOMPARE(result.status, 3);
    QFile::remove("/tmp/ssh.arguments");
    const ClientResult option = runClient({"--host=-oProxyCommand=x", "user", "get"}, {}, path);
    QCOMPARE(option.complaint, QStringLiteral("kyboardctl: --host: '-oProxyCommand=x' is not the "
                                              "name of a machine\n"));
    QCOMPARE(option.status, 2);
    QCOMPARE(runClient({"--host=h", "--address=unix:path=/x", "status"}, {}, path).status, 2);
    QVERIFY(!QFile::exists("/tmp/ssh.arguments"));
}

void TestKyboardctlBus::oneValueIsPrinted()
{
    QVERIFY(daemon.start());
    QCOMPARE(runClient({"temperature", "list", "--field", "SOM"}).output, QStringLiteral("42\n"));
    QCOMPARE(runClient({"--field=SOM", "--json", "temperature", "list"}).output,
             QStringLiteral("42\n"));
    QCOMPARE(runClient({"led", "list", "--field", "WIFI"}).output, QStringLiteral("OFF\n"));
    QCOMPARE(runClient({"status", "--field", "backlight"}).output, QStringLiteral("55\n"));
    QCOMPARE(runClient({"status", "--field", "profile", "--json"}).output,
             QStringLiteral("\"user1\"\n"));
    QCOMPARE(runClient({"user", "get", "--field", "name"}).complaint,
             QStringLiteral("kyboardctl: user get: --field does not belong here\n"));
}

void TestKyboardctlBus::aMissingFieldIsReported()
{
    QVERIFY(daemon.start());
    const ClientResult result = runClient({"temperature", "list", "--field", "som"});
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: temperature list: there is no field "
                                              "'som' among ANALOG_CHAIN, SOM\n"));
    QCOMPARE(result.output, QString());
    QCOMPARE(result.status, 8);
    QCOMPARE(runClient({"status", "--field", "x", "--json"}).output, QStringLiteral("null\n"));
}

void TestKyboardctlBus::anEmptyFieldIsReported()
{
    QVERIFY(daemon.start());
    const QStringList fields{"ethernet", "wifi", "wifiStrength", "accessPointHardware"};
    for (const QString &field : fields) {
        const ClientResult text = runClient({"status", "--field", field});
        QCOMPARE(text.complaint,
                 "kyboardctl: status: there is nothing to tell of '" + field + "'\n");
        QCOMPARE(text.output, QString());
        QCOMPARE(text.status, 8);
        const ClientResult json = runClient({"status", "--field", field, "--json"});
        QCOMPARE(json.output, QStringLiteral("null\n"));
        QCOMPARE(json.status, 8);
    }
}

void TestKyboardctlBus::aSecretFieldIsNotMistakenForItsValue()
{
    QVERIFY(daemon.start());
    const QStringList words = {"eeprom", "instrument", "--field", "IrdSessionPassword"};
    for (const char *option : {"--field=IrdSessionPassword", "--json"}) {
        const ClientResult hidden = runClient(words + QStringList{option});
        QCOMPARE(hidden.complaint, QStringLiteral("kyboardctl: eeprom instrument: "
                                                  "IrdSessionPassword is shown with "
                                                  "--show-secrets only\n"));
        QCOMPARE(hidden.output, QString());
        QCOMPARE(hidden.status, 2);
    }
    QCOMPARE(runClient(words + QStringList{"--show-secrets"}).output, QStringLiteral("session\n"));
}

void TestKyboardctlBus::numbersHaveTheirUnits()
{
    QVERIFY(daemon.start());
    QCOMPARE(runClient({"battery", "voltage"}).output, QStringLiteral("7600 mV\n"));
    QCOMPARE(runClient({"backlight", "get"}).output, QStringLiteral("55 %\n"));
    QCOMPARE(runClient({"brightness", "get"}).output, QStringLiteral("120 lux\n"));
    QCOMPARE(runClient({"temperature", "list"}).output,
             QString("ANALOG_CHAIN  38 \u00b0C\nSOM           42 \u00b0C\n"));
    QCOMPARE(runClient({"battery", "voltage", "--json"}).output, QStringLiteral("7600\n"));
    QCOMPARE(runClient({"brightness", "get", "--json"}).output, QStringLiteral("120\n"));
    const QJsonObject status =
        QJsonDocument::fromJson(runClient({"status", "--json"}).output.toUtf8()).object();
    QCOMPARE(status.value("batteryVoltage"), QJsonValue(7600));
    QCOMPARE(status.value("temperatures").toObject().value("SOM"), QJsonValue(42));
}

void TestKyboardctlBus::theVoltageComesInVoltsToo()
{
    QVERIFY(daemon.start());
    QCOMPARE(runClient({"battery", "voltage", "--unit", "mV"}).output, QStringLiteral("7600 mV\n"));
    QCOMPARE(runClient({"battery", "voltage", "--unit", "V"}).output, QStringLiteral("7.600 V\n"));
    QCOMPARE(runClient({"battery", "voltage", "--unit=V", "--json"}).output,
             QStringLiteral("7.6\n"));
    const ClientResult wrong = runClient({"battery", "voltage", "--unit", "kV"});
    QCOMPARE(wrong.complaint, QStringLiteral("kyboardctl: --unit: 'kV' is not one of mV, V\n"));
    QCOMPARE(wrong.status, 2);
}

void TestKyboardctlBus::argumentsAreUtf8WithoutALocale()
{
    const ClientResult result = runClient({"user", "set", "caf\u00e9"}, {}, {"LC_ALL=C"});
    QCOMPARE(result.complaint, QString("kyboardctl: user set: USER: 'caf\u00e9' is not one of "
                                       "user1, user2, user3, user4\n"));
    QProcess client;
    client.start("sh", {"-c", "exec kyboardctl user set \"$(printf 'caf\\351')\""});
    const ClientResult latin1 = resultOf(client);
    QCOMPARE(latin1.complaint, QStringLiteral("kyboardctl: an argument is not UTF-8\n"));
    QCOMPARE(latin1.status, 2);
}

WORLD_TEST_MAIN(TestKyboardctlBus)
#include "test_kyboardctl_bus.moc"
