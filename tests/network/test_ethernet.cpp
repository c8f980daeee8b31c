#include "busmonitor.h"
#include "deadline.h"
#include "ethernettest.h"
#include "processes.h"

#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QRegularExpression>

/** The wired interface: connecting and disconnecting, on the running daemon. */
class TestEthernet : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void clientsSeeOnlyTheMembersOfEthernet();
    void theTechnologyIsPoweredOffAtStart();
    void aRefusalToPowerOffAtStartIsIgnored();
    void theDaemonServesWithoutConnMan();
    void connectRunsTheScriptInModeZeroAndNothingElse();
    void theScriptStartsWithItsOutputDiscarded();
    void connectContinuesWhenTheScriptHasEnded();
    void associationIsAnnouncedBeforeTheTechnologyIsPoweredOn();
    void statesAreLoggedWithTheirService();
    void theScriptMayEndInAnyWay_data();
    void theScriptMayEndInAnyWay();
    void theScriptsOutputDoesNotReachTheDaemonsOutput();
    void connectFailsWithoutConnMan();
    void connectFailsIfPidofDoesNotAnswer_data();
    void connectFailsIfPidofDoesNotAnswer();
    void aRefusalToPowerOnIsIgnored();
    void aTechnologyThatIsOnAlreadyIsUsedAtOnce();
    void aTechnologyThatIsOnAlreadyWaitsForItsService();
    void connectIsIgnoredUnlessIdleOrFailed_data();
    void connectIsIgnoredUnlessIdleOrFailed();
    void aScriptThatCannotBeStartedFailsTheConnect_data();
    void aScriptThatCannotBeStartedFailsTheConnect();
    void aFailedConnectSendsErrorThenSignalThenReturn();
    void connectWorksAgainOnceTheScriptCanBeStarted();
    void aSecondConnectWhileTheScriptRunsFails();
    void theEndOfTheScriptIsHandledOnceAfterSeveralConnects();
    void connectSucceedsAfterEachDisconnect();
    void associationWaitsForTheServiceAfterPoweredIsTrue();
    void associationIgnoresEveryOtherSignal_data();
    void associationIgnoresEveryOtherSignal();
    void servicesChangedTriggersWithAnyArguments_data();
    void servicesChangedTriggersWithAnyArguments();
    void theFirstWiredServiceIsUsed();
    void malformedServiceListsCountAsEmpty_data();
    void malformedServiceListsCountAsEmpty();
    void readySendsTheSettingsToTheService();
    void readyIsAnnouncedBeforeTheSettingsAreSent();
    void onlineWhenTheTechnologyIsConnected();
    void readyStaysWithoutAValidAddressAndNetmask_data();
    void readyStaysWithoutAValidAddressAndNetmask();
    void readyIgnoresEveryOtherTechnologySignal_data();
    void readyIgnoresEveryOtherTechnologySignal();
    void onlineWhenTheServiceGetsAnAddressAndANetmask();
    void anIncompleteIPv4ChangeIsAnnouncedAlone();
    void aMalformedIPv4ChangeIsAnnouncedAlone_data();
    void aMalformedIPv4ChangeIsAnnouncedAlone();
    void descriptorsInAnIPv4ChangeAreNotKeptOpen();
    void otherPropertiesOfTheServiceAreNotAnnounced();
    void anIPv4ChangeCountsOnlyWhileReady();
    void signalsOfAnEarlierServiceAreIgnored();
    void aServiceWithAnAddressIsOnlineAtOnce();
    void theDaemonWaitsForSettingsThatAreNotYetInForce();
    void theDaemonDoesNotWaitForSettingsInForce();
    void theDaemonDoesNotWaitForRefusedSettings();
    void disconnectPowersTheTechnologyOff();
    void disconnectIsAnnouncedBeforeTheTechnologyIsPoweredOff();
    void disconnectEndsIdleWhenConnManRefuses();
    void disconnectEndsIdleWithoutConnMan();
    void disconnectWhileIdlePowersTheTechnologyOffToo();
    void disconnectDoesNotStopTheScript();
    void surplusArgumentsAreRefused();
    void connManMayEndInEveryState_data();
    void connManMayEndInEveryState();

private:
    const QString scriptFile = QStringLiteral("/usr/share/redpine/switch_coex_mode.sh");
};

void TestEthernet::clientsSeeOnlyTheMembersOfEthernet()
{
    startDaemon();
    const QString document =
        Remote("com.orvendis.Strandel.BoardManager", "/KyComMgr",
               "org.freedesktop.DBus.Introspectable")
            .call("Introspect")
            .section("<interface name=\"com.orvendis.Strandel.BoardManager.Ethernet\">", 1)
            .section("</interface>", 0, 0);
    QStringList members;
    const QRegularExpression tag("<(method|signal) name=\"(\\w+)\"|<arg [^>]*type=\"([^\"]+)\"");
    QRegularExpressionMatchIterator found = tag.globalMatch(document);
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        if (match.captured(3).isEmpty())
            members << match.captured(1) + ' ' + match.captured(2);
        else
            members.last() += ' ' + match.captured(3);
    }
    members.sort();
    QCOMPARE(members, (QStringList{"method connect", "method disconnect",
                                   "method getHardwareInfos a{sv}", "method getIPv4 a{sv}",
                                   "method setIPv4 a{sv}", "signal propertyChanged s s v"}));
}

void TestEthernet::theTechnologyIsPoweredOffAtStart()
{
    connman.storeProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    QVERIFY(daemon.start());
    QCOMPARE(calls(), QStringList{poweredOff});
    QCOMPARE(recorder.take(), QStringList());
}

void TestEthernet::aRefusalToPowerOffAtStartIsIgnored()
{
    connman.failMethod(poweredOff, "net.connman.Error.Failed", "no");
    startDaemon();
    connectUntil("association");
}

void TestEthernet::theDaemonServesWithoutConnMan()
{
    connman.stop();
    QVERIFY(daemon.start());
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    connman.start();
    connectUntil("association");
}

void TestEthernet::connectRunsTheScriptInModeZeroAndNothingElse()
{
    startDaemon();
    script.hold();

    QCOMPARE(ethernet.call("connect"), QString("()"));

    QVERIFY(script.waitFor("start 0"));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
    QCOMPARE(script.log(), QStringList{"start 0"});
}

void TestEthernet::theScriptStartsWithItsOutputDiscarded()
{
    startDaemon();
    script.hold();
    ethernet.call("connect");
    QVERIFY(script.waitFor("start 0"));

    const QList<int> children = childrenOf(daemon.processId());

    QCOMPARE(children.size(), 1);
    // While the script writes its own log, its stdout is the log for a moment.
    for (const char *stream : {"1", "2"})
        QTRY_COMPARE_WITH_TIMEOUT(
            QFile::symLinkTarget(QString("/proc/%1/fd/%2").arg(children.first()).arg(stream)),
            QString("/dev/null"), deadlineMs);
}

void TestEthernet::connectContinuesWhenTheScriptHasEnded()
{
    startDaemon();
    QCOMPARE(ethernet.call("connect"), QString("()"));
    QVERIFY(connman.waitForCall(poweredOn));
    QCOMPARE(recorder.take(), QStringList{state("association")});
    QCOMPARE(calls(), QStringList{poweredOn});
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0"}));
}

void TestEthernet::associationIsAnnouncedBeforeTheTechnologyIsPoweredOn()
{
    startDaemon();
    connman.holdMethod(poweredOn);
    QCOMPARE(ethernet.call("connect"), QString("()"));
    QVERIFY(connman.waitForCall(poweredOn));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.recorded(), QStringList{state("association")}, deadlineMs);
    connman.releaseMethod(poweredOn);
}

void TestEthernet::statesAreLoggedWithTheirService()
{
    startDaemon();
    connectUntil("ready");
    ethernet.call("disconnect");
    QCOMPARE(daemon.log(), QString("\"\" TCPIP_STATE: \"association\"\n"
                                   "\"\" TCPIP_STATE: \"ready\"\n"
                                   "\"%1\" TCPIP_STATE: \"disconnect\"\n"
                                   "\"%1\" TCPIP_STATE: \"idle\"\n")
                               .arg(cable));
}

void TestEthernet::theScriptMayEndInAnyWay_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("failing") << QByteArray("#!/bin/sh\nexit 3\n");
    QTest::newRow("crashing") << QByteArray("#!/bin/sh\nkill -SEGV $$\n");
    QTest::newRow("leaving a program behind") << QByteArray("#!/bin/sh\nsleep 60 &\n");
}

void TestEthernet::theScriptMayEndInAnyWay()
{
    QFETCH(QByteArray, content);
    writeFile(scriptFile, content);
    startDaemon();
    connectUntil("association");
}

void TestEthernet::theScriptsOutputDoesNotReachTheDaemonsOutput()
{
    writeFile(scriptFile, "#!/bin/sh\nreadlink /proc/$$/fd/1 /proc/$$/fd/2 | cat >/tmp/outputs\n"
                          "echo one; echo two >&2\n");
    startDaemon();
    connectUntil("association");
    QVERIFY(!daemon.log().contains("two"));
    QVERIFY(!daemon.output().contains("one"));
    QCOMPARE(readFile("/tmp/outputs"), QByteArray("/dev/null\n/dev/null\n"));
}

void TestEthernet::connectFailsWithoutConnMan()
{
    startDaemon();
    connman.stop();

    QCOMPARE(ethernet.call("connect"), QString("()"));

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    connman.start();
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::connectFailsIfPidofDoesNotAnswer_data()
{
    QTest::addColumn<QByteArray>("pidof");
    QTest::newRow("pidof crashes") << QByteArray("kill -SEGV $$");
    QTest::newRow("pidof hangs") << QByteArray("exec sleep 60");
}

void TestEthernet::connectFailsIfPidofDoesNotAnswer()
{
    QFETCH(QByteArray, pidof);
    writeFile("/tmp/programs/pidof", "#!/bin/sh\n" + pidof + '\n');
    QFile::setPermissions("/tmp/programs/pidof", QFile::ReadOwner | QFile::ExeOwner);
    daemon.setEnvironment("PATH", "/tmp/programs:" + qEnvironmentVariable("PATH"));
    startDaemon();

    QCOMPARE(ethernet.call("connect"), QString("()"));

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::aRefusalToPowerOnIsIgnored()
{
    connman.failMethod(poweredOn, "net.connman.Error.Failed", "Input/output error");
    startDaemon();
    connectUntil("association");
    QCOMPARE(calls(), QStringList());
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList{state("ready")});
}

void TestEthernet::aTechnologyThatIsOnAlreadyIsUsedAtOnce()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    connman.storeProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);

    QCOMPARE(ethernet.call("connect"), QString("()"));

    QCOMPARE(recorder.waitFor(3),
             (QStringList{state("association"), state("ready"), state("online", cable)}));
    QCOMPARE(calls(), (QStringList{poweredOn, getServices, setNameservers(cable, "[]"),
                                   setConfiguration(cable, "{}"), getServices}));
}

void TestEthernet::aTechnologyThatIsOnAlreadyWaitsForItsService()
{
    startDaemon();
    connman.setServices({});
    connman.storeProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    ethernet.call("connect");
    QVERIFY(connman.waitForCall(getServices));
    QCOMPARE(recorder.take(), QStringList{state("association")});
    QCOMPARE(calls(), (QStringList{poweredOn, getServices}));

    connman.setServices({wired()});
    connman.emitServicesChanged();

    QCOMPARE(recorder.take(), QStringList{state("ready")});
}

void TestEthernet::connectIsIgnoredUnlessIdleOrFailed_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"association", "ready", "online"})
        QTest::newRow(name) << name;
}

void TestEthernet::connectIsIgnoredUnlessIdleOrFailed()
{
    QFETCH(QString, name);
    startDaemon();
    connectUntil(name);

    QCOMPARE(ethernet.call("connect"), QString("()"));

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0"}));
}

void TestEthernet::aScriptThatCannotBeStartedFailsTheConnect_data()
{
    QTest::addColumn<bool>("present");
    QTest::newRow("missing") << false;
    QTest::newRow("not executable") << true;
}

void TestEthernet::aScriptThatCannotBeStartedFailsTheConnect()
{
    QFETCH(bool, present);
    if (present)
        QFile::setPermissions(scriptFile, QFile::ReadOwner);
    else
        script.remove();
    startDaemon();

    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));

    QCOMPARE(recorder.take(), QStringList{state("failure")});
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::aFailedConnectSendsErrorThenSignalThenReturn()
{
    script.remove();
    startDaemon();
    BusMonitor monitor;

    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));

    QStringList kinds;
    for (const QString &line : monitor.takeFromDaemon())
        kinds << line.section(' ', 0, 0);
    QCOMPARE(kinds, (QStringList{"error", "signal", "return"}));
}

void TestEthernet::connectWorksAgainOnceTheScriptCanBeStarted()
{
    script.remove();
    startDaemon();
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(recorder.take(), (QStringList{state("failure"), state("failure")}));

    script.install();
    connectUntil("association");
}

void TestEthernet::aSecondConnectWhileTheScriptRunsFails()
{
    startDaemon();
    script.hold();
    QCOMPARE(ethernet.call("connect"), QString("()"));

    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));

    QCOMPARE(recorder.take(), QStringList{state("failure")});
    QVERIFY(script.waitFor("start 0"));
    script.release();
    QCOMPARE(recorder.waitFor(1), QStringList{state("association")});
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0"}));
}

void TestEthernet::theEndOfTheScriptIsHandledOnceAfterSeveralConnects()
{
    startDaemon();
    connman.stop();
    script.hold();
    QCOMPARE(ethernet.call("connect"), QString("()"));
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(ethernet.call("connect"), failed(cannotSwitch));
    QCOMPARE(recorder.take(), (QStringList{state("failure"), state("failure")}));

    script.release();

    QCOMPARE(recorder.waitFor(1), QStringList{state("failure")});
    QCOMPARE(recorder.take(), QStringList());
    connman.start();
}

void TestEthernet::connectSucceedsAfterEachDisconnect()
{
    startDaemon();
    QStringList expected;
    for (int times = 1; times <= 3; ++times) {
        connectUntil("association");
        ethernet.call("disconnect");
        QCOMPARE(recorder.take(), (QStringList{state("disconnect"), state("idle")}));
        expected << "start 0"
                 << "end 0";
        QCOMPARE(script.log(), expected);
    }
}

void TestEthernet::associationWaitsForTheServiceAfterPoweredIsTrue()
{
    startDaemon();
    connman.setServices({});
    connectUntil("association");

    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    QCOMPARE(calls(), QStringList{getServices});
    QCOMPARE(recorder.take(), QStringList());

    connman.setServices({wireless()});
    connman.emitServicesChanged();
    QCOMPARE(calls(), QStringList{getServices});
    QCOMPARE(recorder.take(), QStringList());

    connman.setServices({wireless(), wired()});
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList{state("ready")});
}

void TestEthernet::associationIgnoresEveryOtherSignal_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QVariantList>("values");

    const QString technology = "net.connman.Technology";
    const QString path = ConnmanStandIn::ethernetTechnology;
    const QString signal = "PropertyChanged";
    QTest::newRow("powered off") << path << technology << signal
                                 << QVariantList{"Powered", variant(false)};
    QTest::newRow("number") << path << technology << signal << QVariantList{"Powered", variant(1)};
    QTest::newRow("text") << path << technology << signal
                          << QVariantList{"Powered", variant("true")};
    QTest::newRow("map") << path << technology << signal
                         << QVariantList{"Powered", variant(QVariantMap{{"Powered", true}})};
    QTest::newRow("structures") << path << technology << signal
                                << QVariantList{"Powered", variant(QVariant::fromValue(
                                                               ListedObjects{wired()}))};
    QTest::newRow("no variant") << path << technology << signal << QVariantList{"Powered", true};
    QTest::newRow("no value") << path << technology << signal << QVariantList{"Powered"};
    QTest::newRow("no arguments") << path << technology << signal << QVariantList();
    QTest::newRow("connected") << path << technology << signal
                               << QVariantList{"Connected", variant(true)};
    QTest::newRow("other technology") << ConnmanStandIn::wifiTechnology << technology << signal
                                      << QVariantList{"Powered", variant(true)};
    QTest::newRow("service") << cable << "net.connman.Service" << signal
                             << QVariantList{"IPv4", variant(lease)};
    QTest::newRow("technologies") << "/"
                                  << "net.connman.Manager"
                                  << "TechnologyAdded" << QVariantList{variant(true)};
}

void TestEthernet::associationIgnoresEveryOtherSignal()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, signal);
    QFETCH(QVariantList, values);
    startDaemon();
    connectUntil("association");

    connman.emitSignal(path, interface, signal, values);

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::servicesChangedTriggersWithAnyArguments_data()
{
    QTest::addColumn<QVariantList>("values");
    const QVariant noPaths = QVariant::fromValue(QList<QDBusObjectPath>());
    QTest::newRow("ConnMan's") << QVariantList{QVariant::fromValue(ListedObjects{wired()}),
                                               noPaths};
    QTest::newRow("none") << QVariantList();
    QTest::newRow("map and list") << QVariantList{QVariantMap(), QVariantList()};
    QTest::newRow("texts") << QVariantList{"a", "b", "c"};
}

void TestEthernet::servicesChangedTriggersWithAnyArguments()
{
    QFETCH(QVariantList, values);
    startDaemon();
    connectUntil("association");
    connman.emitSignal("/", "net.connman.Manager", "ServicesChanged", values);
    QCOMPARE(recorder.take(), QStringList{state("ready")});
}

void TestEthernet::theFirstWiredServiceIsUsed()
{
    startDaemon();
    connman.setServices({wireless(), wired(otherCable), wired(cable)});
    connectUntil("association");
    connman.emitServicesChanged();
    const QStringList settings = calls().filter("Service.SetProperty");
    QCOMPARE(settings.size(), 2);
    QCOMPARE(settings.filter(otherCable).size(), 2);
}

void TestEthernet::malformedServiceListsCountAsEmpty_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("text") << QVariantList{"services"};
    QTest::newRow("texts") << QVariantList{QStringList{cable}};
    QTest::newRow("variant") << QVariantList{variant(QVariant::fromValue(ListedObjects{wired()}))};
    QTest::newRow("map") << QVariantList{QVariantMap{{"Type", "ethernet"}}};
    QTest::newRow("text dictionary")
        << QVariantList{QVariant::fromValue(Texts{{"Type", "ethernet"}})};
    QTest::newRow("one object") << QVariantList{QVariant::fromValue(wired())};
    QTest::newRow("one value more") << QVariantList{QVariant::fromValue(ListedObjects{wired()}), 5};
    QTest::newRow("type of another type") << QVariantList{QVariant::fromValue(
        ListedObjects{{QDBusObjectPath(cable), {{"Type", QVariantMap{{"Type", "ethernet"}}}}}})};
    QTest::newRow("type of an unreadable type") << QVariantList{QVariant::fromValue(
        ListedObjects{{QDBusObjectPath(cable), {{"Type", QVariant::fromValue(wired())}}}})};
}

void TestEthernet::malformedServiceListsCountAsEmpty()
{
    QFETCH(QVariantList, values);
    startDaemon();
    connectUntil("association");
    connman.replyToMethod("Manager.GetServices", values);

    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList{getServices});

    connman.clearRules();
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList{state("ready")});
}

void TestEthernet::readySendsTheSettingsToTheService()
{
    startDaemon();
    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"},
                                                   {"Address", "10.1.2.3"},
                                                   {"Netmask", "255.255.0.0"},
                                                   {"Gateway", "10.1.0.1"},
                                                   {"DNS1", "10.1.0.53"},
                                                   {"DNS2", "10.1.0.54"}}}),
             QString("()"));
    connectUntil("association");

    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);

    QCOMPARE(recorder.take(), QStringList{state("ready")});
    QCOMPARE(calls(),
             (QStringList{getServices, setNameservers(cable, "[\"10.1.0.53\", \"10.1.0.54\"]"),
                          setConfiguration(cable, "{\"Address\": <\"10.1.2.3\">, "
                                                  "\"Gateway\": <\"10.1.0.1\">, "
                                                  "\"Method\": <\"manual\">, "
                                                  "\"Netmask\": <\"255.255.0.0\">}"),
                          getServices}));
}

void TestEthernet::readyIsAnnouncedBeforeTheSettingsAreSent()
{
    startDaemon();
    connectUntil("association");
    connman.holdMethod("Service.SetProperty");

    connman.emitServicesChanged();

    QVERIFY(connman.waitForCall("Service.SetProperty"));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.recorded(), QStringList{state("ready")}, deadlineMs);
    connman.releaseMethod("Service.SetProperty");
}

void TestEthernet::onlineWhenTheTechnologyIsConnected()
{
    startDaemon();
    connectUntil("ready");
    connman.storeProperty(cable, "IPv4", lease);

    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);

    QCOMPARE(recorder.take(), QStringList{state("online", cable)});
    QCOMPARE(calls(), QStringList{getServices});
}

void TestEthernet::readyStaysWithoutAValidAddressAndNetmask_data()
{
    QTest::addColumn<QVariantMap>("ipv4");
    const auto with = [](const char *key, const QVariant &value) {
        QVariantMap map = lease;
        map[key] = value;
        return map;
    };
    QTest::newRow("nothing") << QVariantMap();
    QTest::newRow("method alone") << QVariantMap{{"Method", "dhcp"}};
    QTest::newRow("no netmask") << QVariantMap{{"Address", "10.77.0.50"}};
    QTest::newRow("no address") << QVariantMap{{"Netmask", "255.255.255.0"}};
    QTest::newRow("any address") << with("Address", "0.0.0.0");
    QTest::newRow("leading zeros") << with("Address", "10.077.0.50");
    QTest::newRow("IPv6 address") << with("Address", "fe80::1");
    QTest::newRow("empty netmask") << with("Netmask", "");
    QTest::newRow("netmask of zeros") << with("Netmask", "0.0.0.0");
    QTest::newRow("address that is a number") << with("Address", 5);
    QTest::newRow("address that is a map") << with("Address", lease);
}

void TestEthernet::readyStaysWithoutAValidAddressAndNetmask()
{
    QFETCH(QVariantMap, ipv4);
    startDaemon();
    connman.storeProperty(cable, "IPv4", ipv4);
    connectUntil("ready");

    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);

    QCOMPARE(recorder.take(), QStringList());
}

void TestEthernet::readyIgnoresEveryOtherTechnologySignal_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("not connected") << "Connected" << QVariant(false);
    QTest::newRow("number") << "Connected" << QVariant(1);
    QTest::newRow("text") << "Connected" << QVariant("true");
    QTest::newRow("powered") << "Powered" << QVariant(true);
    QTest::newRow("tethering") << "Tethering" << QVariant(true);
}

void TestEthernet::readyIgnoresEveryOtherTechnologySignal()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    startDaemon();
    connectUntil("ready");
    connman.storeProperty(cable, "IPv4", lease);

    connman.emitSignal(ConnmanStandIn::ethernetTechnology, "net.connman.Technology",
                       "PropertyChanged", {name, variant(value)});

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::onlineWhenTheServiceGetsAnAddressAndANetmask()
{
    startDaemon();
    connectUntil("ready");

    connman.setProperty(cable, "IPv4", lease);

    QCOMPARE(recorder.take(),
             (QStringList{state("online", cable),
                          QStringLiteral("Ethernet.propertyChanged(\"%1\", \"IPv4\", <%2>)")
                              .arg(cable, renderedLease)}));
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::anIncompleteIPv4ChangeIsAnnouncedAlone()
{
    startDaemon();
    connectUntil("ready");
    for (const char *key : {"Address", "Netmask"}) {
        connman.setProperty(cable, "IPv4", QVariantMap{{key, "10.77.0.50"}});
        QCOMPARE(recorder.take(),
                 QStringList{
                     QStringLiteral(
                         "Ethernet.propertyChanged(\"%1\", \"IPv4\", <{\"%2\": <\"10.77.0.50\">}>)")
                         .arg(cable, key)});
    }
}

void TestEthernet::aMalformedIPv4ChangeIsAnnouncedAlone_data()
{
    addMalformedValues();
}

void TestEthernet::aMalformedIPv4ChangeIsAnnouncedAlone()
{
    QFETCH(QVariant, value);
    startDaemon();
    connectUntil("ready");

    connman.emitSignal(cable, "net.connman.Service", "PropertyChanged", {"IPv4", variant(value)});

    const QStringList announced = recorder.take();
    QCOMPARE(announced.size(), 1);
    const QString start = QStringLiteral("Ethernet.propertyChanged(\"%1\", \"IPv4\", <").arg(cable);
    QVERIFY2(announced.first().startsWith(start), qPrintable(announced.first()));
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take().size(), 2);
}

void TestEthernet::descriptorsInAnIPv4ChangeAreNotKeptOpen()
{
    startDaemon();
    connectUntil("ready");
    const int before = daemon.descriptors();

    const QVariant file = QVariant::fromValue(QDBusUnixFileDescriptor(0));
    for (int times = 0; times < 20; ++times)
        connman.emitSignal(cable, "net.connman.Service", "PropertyChanged",
                           {"IPv4", variant(QVariantMap{{"Address", file}})});
    QCOMPARE(recorder.take(), QStringList());

    QTRY_COMPARE_WITH_TIMEOUT(daemon.descriptors(), before, deadlineMs);
}

void TestEthernet::otherPropertiesOfTheServiceAreNotAnnounced()
{
    startDaemon();
    connectUntil("ready");
    for (const char *name : {"State", "Strength", "IPv4.Configuration", "IPv6", "ipv4", ""})
        connman.emitSignal(cable, "net.connman.Service", "PropertyChanged", {name, variant(lease)});
    connman.emitSignal(cable, "net.connman.Service", "PropertyChanged", {"IPv4", lease});
    connman.emitSignal(cable, "net.connman.Service", "PropertyChanged", {});
    QCOMPARE(recorder.take(), QStringList());
}

void TestEthernet::anIPv4ChangeCountsOnlyWhileReady()
{
    startDaemon();
    connectUntil("online");
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take(), QStringList());

    ethernet.call("disconnect");
    recorder.take();
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take(), QStringList());

    connectUntil("association");
    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take(), QStringList());
}

void TestEthernet::signalsOfAnEarlierServiceAreIgnored()
{
    startDaemon();
    connectUntil("ready");
    ethernet.call("disconnect");
    connman.setServices({wired(otherCable), wired(cable)});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList{state("ready", cable)});

    connman.setProperty(cable, "IPv4", lease);
    QCOMPARE(recorder.take(), QStringList());

    connman.setProperty(otherCable, "IPv4", lease);
    QCOMPARE(recorder.take().value(0), state("online", otherCable));
}

void TestEthernet::aServiceWithAnAddressIsOnlineAtOnce()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), (QStringList{state("ready"), state("online", cable)}));
}

void TestEthernet::theDaemonWaitsForSettingsThatAreNotYetInForce()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"Address", "10.1.2.3"}}});
    connectUntil("association");

    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), QStringList{state("ready")});

    connman.storeProperty(cable, "IPv4",
                          QVariantMap{{"Address", "10.1.2.3"}, {"Netmask", "255.0.0.0"}});
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);
    QCOMPARE(recorder.take(), QStringList{state("online", cable)});
}

void TestEthernet::theDaemonDoesNotWaitForSettingsInForce()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    ethernet.call("setIPv4", {QVariantMap{{"Method", "dhcp"}}});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), (QStringList{state("ready"), state("online", cable)}));
}

void TestEthernet::theDaemonDoesNotWaitForRefusedSettings()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    ethernet.call("setIPv4", {QVariantMap{{"Method", "magic"}}});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take(), (QStringList{state("ready"), state("online", cable)}));
}

void TestEthernet::disconnectPowersTheTechnologyOff()
{
    startDaemon();
    connectUntil("online");
    QCOMPARE(ethernet.call("disconnect"), QString("()"));
    QCOMPARE(recorder.take(), (QStringList{state("disconnect", cable), state("idle", cable)}));
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernet::disconnectIsAnnouncedBeforeTheTechnologyIsPoweredOff()
{
    startDaemon();
    connectUntil("association");
    connman.holdMethod(poweredOff);

    const QDBusPendingCall reply = ethernet.start("disconnect");

    QVERIFY(connman.waitForCall(poweredOff));
    QTRY_COMPARE_WITH_TIMEOUT(recorder.recorded(), QStringList{state("disconnect")}, deadlineMs);
    QVERIFY(!reply.isFinished());
    connman.releaseMethod(poweredOff);
    QCOMPARE(recorder.waitFor(2), (QStringList{state("disconnect"), state("idle")}));
}

void TestEthernet::disconnectEndsIdleWhenConnManRefuses()
{
    startDaemon();
    connectUntil("association");
    connman.failMethod(poweredOff, "net.connman.Error.Failed", "Operation not possible");
    QCOMPARE(ethernet.call("disconnect"),
             failed("Cannot set property Powered: Operation not possible"));
    QCOMPARE(recorder.take(), (QStringList{state("disconnect"), state("idle")}));
}

void TestEthernet::disconnectEndsIdleWithoutConnMan()
{
    startDaemon();
    connectUntil("ready");
    connman.kill();
    const QString text =
        Remote("net.connman", "/", "net.connman.Manager").reply("GetServices").errorMessage();
    QVERIFY(!text.isEmpty());

    QCOMPARE(ethernet.call("disconnect"), failed("Cannot set property Powered: " + text));
    QCOMPARE(recorder.take(), (QStringList{state("disconnect", cable), state("idle", cable)}));
    connman.start();
}

void TestEthernet::disconnectWhileIdlePowersTheTechnologyOffToo()
{
    startDaemon();
    QCOMPARE(ethernet.call("disconnect"), failed("Cannot set property Powered: Already disabled"));
    QCOMPARE(recorder.take(), (QStringList{state("disconnect"), state("idle")}));
    QCOMPARE(calls(), QStringList{poweredOff});
}

void TestEthernet::disconnectDoesNotStopTheScript()
{
    startDaemon();
    script.hold();
    ethernet.call("connect");
    QVERIFY(script.waitFor("start 0"));
    ethernet.call("disconnect");
    QCOMPARE(recorder.take(), (QStringList{state("disconnect"), state("idle")}));

    script.release();

    QCOMPARE(recorder.waitFor(1), QStringList{state("association")});
}

void TestEthernet::surplusArgumentsAreRefused()
{
    startDaemon();
    for (const char *method : {"connect", "disconnect", "getIPv4", "getHardwareInfos"})
        QVERIFY(ethernet.call(method, {QVariantMap()})
                    .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(script.log(), QStringList());
    QCOMPARE(calls(), QStringList());
}

void TestEthernet::connManMayEndInEveryState_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"association", "ready", "online"})
        QTest::newRow(name) << name;
}

void TestEthernet::connManMayEndInEveryState()
{
    QFETCH(QString, name);
    startDaemon();
    connectUntil(name);

    connman.kill();
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));

    connman.start();
    connman.setServices({wired()});
    ethernet.call("disconnect");
    recorder.take();
    connectUntil("online");
}

WORLD_TEST_MAIN(TestEthernet)
#include "test_ethernet.moc"
