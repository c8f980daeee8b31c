#include "deadline.h"
#include "wifitest.h"

#include <QDBusMetaType>
#include <QDBusVariant>

using Texts = QMap<QString, QString>;
Q_DECLARE_METATYPE(Texts)

/** Joining a Wi-Fi network, on the running daemon. */
class TestWifiConnect : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aNetworkIsJoined();
    void joiningMakesNoOtherCallsToConnMan();
    void theTraceRecordsEachStep();
    void theTraceRecordsEveryChangeOfTheTechnology();
    void aNetworkThatTheScanFindsIsJoined();
    void aTechnologyThatIsOnStartsItsScanAtOnce();
    void withTheTechnologyOnANetworkIsJoinedAtOnce();
    void aRefusalToPowerOnIsIgnored();
    void aTechnologyThatIsConnectedIsNotAskedToConnect();
    void aConnectionThatConnManMakesByItselfIsUsed();
    void aConnectionToAnUnlistedNetworkIsNotUsed();
    void aConnectionWithoutAConnectIsNotUsed();
    void connectAnnouncesNothingByItself();
    void missingKeysAreEmptyTexts();
    void valuesOfOtherTypesAreEmptyTexts();

    void anUnlistedNetworkCannotBeJoined_data();
    void anUnlistedNetworkCannotBeJoined();
    void aNetworkThatVanishesCannotBeJoined();
    void theServicesStateDecidesWhileTheStationIsIdle_data();
    void theServicesStateDecidesWhileTheStationIsIdle();
    void theServicesStateDecidesWhileTheStationIsAssociating_data();
    void theServicesStateDecidesWhileTheStationIsAssociating();
    void theServicesStateDecidesWhileTheStationIsConfiguring_data();
    void theServicesStateDecidesWhileTheStationIsConfiguring();
    void anEmptyListIsIgnoredOnceTheServiceIsOnline();
    void onlineIsAnnouncedOnceMoreWhenTheServiceIsOnline();

    void anAddressMakesTheStationOnline_data();
    void anAddressMakesTheStationOnline();
    void anExistingAddressMakesTheStationOnlineAtOnce();
    void theDaemonWaitsForSettingsThatItHasJustSent();
    void theDaemonDoesNotWaitForRefusedSettings();
    void settingsAreSentWhenTheNetworkIsConnected();

    void configurationIsAnnouncedBeforeTheSettingsAreSent();
    void anErrorOfTheServiceFailsTheConnection();
    void aFailureIsAnnouncedBeforeTheTechnologyIsPoweredOff();
    void aClearedErrorIsIgnored();
    void aChangedStrengthIsAnnounced();
    void aStrengthInANestedVariantIsPassedOnAsANumber();
    void aStrengthIsAnnouncedForTheCurrentServiceEvenIfUnlisted();
    void aMalformedStrengthIsNotAnnounced_data();
    void aMalformedStrengthIsNotAnnounced();
    void signalsOfThePreviousServiceAreIgnored();
    void theNetworkJoinedLastIsConfiguredAgain();
    void aFailedConnectForgetsThePreviousService();
    void aScanKeepsTheService();
    void otherPropertiesAreIgnored();
};

void TestWifiConnect::initTestCase()
{
    qDBusRegisterMetaType<Texts>();
}

void TestWifiConnect::aNetworkIsJoined()
{
    connman.setAsyncScan(true);
    begin();

    QCOMPARE(join(), QString("()"));
    letModuleSwitch();
    QVERIFY(connman.waitForCall(powerOn));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(connman.waitForCall(asyncScan));
    connman.setServices({network("Lab", "idle")});
    connman.emitServicesChanged();
    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{powerOn, asyncScan, registerAgent, connectLab}));

    announceService("ready");
    QCOMPARE(announced(), QStringList{configuration});
    QCOMPARE(orders(), (QStringList{nameservers, settings}));

    connman.setProperty(lab, "IPv4", address);
    QCOMPARE(announced(), QStringList{online});
    QCOMPARE(orders(), QStringList());
}

void TestWifiConnect::joiningMakesNoOtherCallsToConnMan()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    announceService("ready");
    settle();
    connman.setProperty(lab, "IPv4", address);
    QCOMPARE(announced(), (QStringList{association, configuration, online}));

    QCOMPARE(connman.journal(),
             (QStringList{getServices, getServices, getTechnologies, registerAgent, connectLab,
                          getServices, nameservers, settings, getServices}));
}

void TestWifiConnect::theTraceRecordsEachStep()
{
    reach("online");
    announceService("online");
    settle();

    QByteArray expected;
    for (const char *record :
         {"connect\nOP:connect\nidle", "slotLoadFirmwareFinished\nOP:connect\nidle",
          "registerAgent\nOP:connect\nassociation", "sendRequestConnect\nOP:connect\nassociation",
          "servicesChangedSlot\nOP:connect\nassociation",
          "slotLoadFirmwareFinishedDelayed\nOP:connect\nassociation",
          "servicesChangedSlot\nOP:connect\nconfiguration",
          "servicePropertyChangedSlot\nOP:connect\nonline", "servicesChangedSlot\nOP:none\nonline"})
        expected += QByteArray("----------------------------\n") + record + "\nLab\n";
    QCOMPARE(readFile("/tmp/logkywifi"), expected);
}

void TestWifiConnect::theTraceRecordsEveryChangeOfTheTechnology()
{
    begin();

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Tethering", true);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", false);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", "on");
    settle();

    const QString record = "technologyPropertyChangedSlot OP:none idle ";
    QCOMPARE(trace(), (QStringList{record, record, record}));
    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::aNetworkThatTheScanFindsIsJoined()
{
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(powerOn));
    connman.setServices({network("Office", "idle"), network("Lab", "idle")});

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{powerOn, registerAgent, connectLab}));
}

void TestWifiConnect::aTechnologyThatIsOnStartsItsScanAtOnce()
{
    connman.setAsyncScan(true);
    begin();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    join();
    letModuleSwitch();

    QCOMPARE(connman.journal(), (QStringList{getServices, powerOn, getServices, asyncScan}));
    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::withTheTechnologyOnANetworkIsJoinedAtOnce()
{
    begin();
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    connman.holdMethod(powerOn);
    join();
    passModuleDelay();
    QVERIFY(connman.waitForCall(powerOn));

    connman.setServices({network("Lab", "idle")});
    connman.releaseMethod(powerOn);

    QVERIFY(connman.waitForCall(connectLab));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{powerOn, registerAgent, connectLab}));
}

void TestWifiConnect::aRefusalToPowerOnIsIgnored()
{
    connman.failMethod(powerOn, "net.connman.Error.Failed", "Input/output error");
    begin();

    join();
    letModuleSwitch();

    QCOMPARE(connman.journal(), (QStringList{getServices, powerOn}));
    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::aTechnologyThatIsConnectedIsNotAskedToConnect()
{
    connman.setServices({network("Lab", "idle")});
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Connected", true);
    begin();

    join();
    letModuleSwitch();

    QCOMPARE(announced(), (QStringList{association, configuration}));
    settle();
    QCOMPARE(orders(), (QStringList{nameservers, settings}));
}

void TestWifiConnect::aConnectionThatConnManMakesByItselfIsUsed()
{
    connman.setServices({network("Lab", "association")});
    begin();
    join();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList());

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);

    QCOMPARE(announced(), QStringList{configuration});
    QCOMPARE(orders(), (QStringList{nameservers, settings}));
}

void TestWifiConnect::aConnectionToAnUnlistedNetworkIsNotUsed()
{
    begin();
    join();
    letModuleSwitch();
    QVERIFY(connman.waitForCall(powerOn));
    orders();

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(connman.journal(), QStringList{getServices});
}

void TestWifiConnect::aConnectionWithoutAConnectIsNotUsed()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    wifi.call("scan");
    letModuleSwitch();
    announced();

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);

    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::connectAnnouncesNothingByItself()
{
    script.remove();
    begin();
    join();
    QCOMPARE(announced(), QStringList{failure});
    script.install();
    script.hold();

    QCOMPARE(join(), QString("()"));

    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace().last(), QString("connect OP:connect idle Lab"));
}

void TestWifiConnect::missingKeysAreEmptyTexts()
{
    connman.setServices({network("", "idle")});
    begin();

    QCOMPARE(wifi.call("connect", {QVariantMap()}), QString("()"));
    letModuleSwitch();

    QVERIFY(connman.waitForCall("Service.Connect"));
    QCOMPARE(connman.requestInput(lab, {{"Passphrase", ConnmanStandIn::field("mandatory")},
                                        {"Identity", ConnmanStandIn::field("mandatory")}}),
             QString("({\"Identity\": <\"\">, \"Passphrase\": <\"\">})"));
}

void TestWifiConnect::valuesOfOtherTypesAreEmptyTexts()
{
    connman.setServices({network("", "idle")});
    begin();

    QCOMPARE(
        wifi.call("connect", {QVariantMap{{"Service", QVariant::fromValue(Texts{{"Lab", "Lab"}})},
                                          {"User", QVariantMap{{"User", "me"}}},
                                          {"Password", QVariantList{1, "secret"}},
                                          {"Other", QVariant::fromValue(Texts{{"a", "b"}})}}}),
        QString("()"));
    letModuleSwitch();

    QVERIFY(connman.waitForCall("Service.Connect"));
    QCOMPARE(connman.requestInput(lab, {{"Passphrase", ConnmanStandIn::field("mandatory")},
                                        {"Username", ConnmanStandIn::field("mandatory")}}),
             QString("({\"Passphrase\": <\"\">, \"Username\": <\"\">})"));
}

void TestWifiConnect::anUnlistedNetworkCannotBeJoined_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("other") << "Office";
    QTest::newRow("another case") << "lab";
    QTest::newRow("a cable's name") << "Wired";
    QTest::newRow("hidden, without a name") << "";
    QTest::newRow("100,000 characters") << QString(100000, QLatin1Char('a'));
}

void TestWifiConnect::anUnlistedNetworkCannotBeJoined()
{
    QFETCH(QString, name);
    connman.setServices({{QDBusObjectPath("/net/connman/service/ethernet_02_cable"),
                          {{"Type", "ethernet"}, {"Name", "Wired"}, {"State", "idle"}}},
                         {QDBusObjectPath("/net/connman/service/wifi_02_hidden_managed_psk"),
                          {{"Type", "wifi"}, {"State", "idle"}}},
                         network("Lab", "idle")});
    begin();

    QCOMPARE(join(name), QString("()"));
    letModuleSwitch();

    QCOMPARE(announced(), QStringList{failure});
    QCOMPARE(orders(), QStringList());
    QCOMPARE(trace().last(), "slotLoadFirmwareFinishedDelayed OP:none failure " + name.left(255));
}

void TestWifiConnect::aNetworkThatVanishesCannotBeJoined()
{
    reach("association");

    connman.setServices({network("Office", "idle")});
    connman.emitServicesChanged();
    QCOMPARE(announced(), QStringList{failure});

    connman.setServices({network("Lab", "ready")});
    connman.emitServicesChanged();
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsIdle_data()
{
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("idle") << "idle" << QStringList{association};
    for (const char *name : {"failure", "association", "configuration", "ready", "disconnect"})
        QTest::newRow(name) << name << QStringList();
    QTest::newRow("online") << "online" << QStringList{state("WIFI", "", "online")};
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsIdle()
{
    QFETCH(QString, serviceState);
    QFETCH(QStringList, expected);
    connman.setServices({network("Lab", serviceState)});
    begin();

    join();
    letModuleSwitch();

    QCOMPARE(announced(), expected);
    QCOMPARE(orders(),
             serviceState == "idle" ? (QStringList{registerAgent, connectLab}) : QStringList());
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsAssociating_data()
{
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<QStringList>("expected");
    for (const char *name : {"idle", "association", "configuration", "disconnect"})
        QTest::newRow(name) << name << QStringList();
    QTest::newRow("failure") << "failure" << QStringList{failure};
    QTest::newRow("ready") << "ready" << QStringList{configuration};
    QTest::newRow("online") << "online" << QStringList{state("WIFI", "", "online")};
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsAssociating()
{
    QFETCH(QString, serviceState);
    QFETCH(QStringList, expected);
    reach("association");

    announceService(serviceState);

    QCOMPARE(announced(), expected);
    QCOMPARE(orders(),
             serviceState == "ready" ? (QStringList{nameservers, settings}) : QStringList());
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsConfiguring_data()
{
    QTest::addColumn<QString>("serviceState");
    QTest::addColumn<QStringList>("expected");
    for (const char *name :
         {"idle", "failure", "association", "configuration", "ready", "disconnect"})
        QTest::newRow(name) << name << QStringList();
    QTest::newRow("online") << "online" << QStringList{online};
}

void TestWifiConnect::theServicesStateDecidesWhileTheStationIsConfiguring()
{
    QFETCH(QString, serviceState);
    QFETCH(QStringList, expected);
    reach("configuration");

    announceService(serviceState);

    QCOMPARE(announced(), expected);
    QCOMPARE(orders(), QStringList());
}

void TestWifiConnect::anEmptyListIsIgnoredOnceTheServiceIsOnline()
{
    reach("configuration");
    announceService("online");
    QCOMPARE(announced(), QStringList{online});

    connman.setServices({});
    connman.emitServicesChanged();

    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace().last(), QString("servicesChangedSlot OP:none online Lab"));
}

void TestWifiConnect::onlineIsAnnouncedOnceMoreWhenTheServiceIsOnline()
{
    reach("online");

    announceService("online");
    announceService("online");

    QCOMPARE(announced(), QStringList{online});
}

void TestWifiConnect::anAddressMakesTheStationOnline_data()
{
    QTest::addColumn<QVariant>("ipv4");
    QTest::addColumn<bool>("isAddress");
    QTest::newRow("address") << QVariant(address) << true;
    QTest::newRow("none yet") << QVariant(QVariantMap{{"Method", "dhcp"}}) << false;
    QTest::newRow("empty") << QVariant(QVariantMap()) << false;
    QTest::newRow("text") << QVariant("Address") << false;
    QTest::newRow("number") << QVariant(1) << false;
    QTest::newRow("list") << QVariant(QStringList("Address")) << false;
    QTest::newRow("map of texts") << QVariant::fromValue(Texts{{"Address", "10.0.0.7"}}) << false;
}

void TestWifiConnect::anAddressMakesTheStationOnline()
{
    QFETCH(QVariant, ipv4);
    QFETCH(bool, isAddress);
    reach("configuration");

    connman.setProperty(lab, "IPv4", ipv4);

    QCOMPARE(announced(), isAddress ? QStringList{online} : QStringList());
}

void TestWifiConnect::anExistingAddressMakesTheStationOnlineAtOnce()
{
    reach("association");
    connman.storeProperty(lab, "IPv4", address);

    announceService("ready");

    QCOMPARE(announced(), (QStringList{configuration, online}));
    QCOMPARE(orders(), (QStringList{nameservers, settings}));
}

void TestWifiConnect::theDaemonWaitsForSettingsThatItHasJustSent()
{
    reach("association");
    wifi.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"Address", "10.0.0.8"}}});
    connman.storeProperty(lab, "IPv4", address);

    announceService("ready");

    QCOMPARE(announced(), QStringList{configuration});
    connman.setProperty(lab, "IPv4", QVariantMap{{"Method", "manual"}, {"Address", "10.0.0.8"}});
    QCOMPARE(announced(), QStringList{online});
}

void TestWifiConnect::theDaemonDoesNotWaitForRefusedSettings()
{
    reach("association");
    wifi.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"Address", "10.0.0.8"}}});
    connman.storeProperty(lab, "IPv4", address);
    connman.failMethod("Service.SetProperty", "net.connman.Error.InvalidArguments", "no");

    announceService("ready");

    QCOMPARE(announced(), (QStringList{configuration, online}));
}

void TestWifiConnect::settingsAreSentWhenTheNetworkIsConnected()
{
    reach("association");
    QCOMPARE(wifi.call("setIPv4", {QVariantMap{{"Method", "manual"},
                                               {"Address", "10.0.0.8"},
                                               {"DNS1", "10.0.0.1"},
                                               {"DNS2", "10.0.0.2"}}}),
             QString("()"));
    QCOMPARE(orders(), QStringList());

    announceService("ready");

    QCOMPARE(announced(), QStringList{configuration});
    QCOMPARE(orders(),
             (QStringList{"Service.SetProperty " + lab +
                              " (\"Nameservers.Configuration\", <[\"10.0.0.1\", \"10.0.0.2\"]>)",
                          "Service.SetProperty " + lab +
                              " (\"IPv4.Configuration\", <{\"Address\": <\"10.0.0.8\">, "
                              "\"Gateway\": <\"10.0.0.1\">, \"Method\": <\"manual\">, "
                              "\"Netmask\": <\"255.0.0.0\">}>)"}));
}

void TestWifiConnect::configurationIsAnnouncedBeforeTheSettingsAreSent()
{
    reach("association");
    connman.holdMethod("Service.SetProperty");

    announceService("ready");

    QVERIFY(connman.waitForCall("Service.SetProperty"));
    QTRY_COMPARE_WITH_TIMEOUT(recorder->recorded(), QStringList{configuration}, deadlineMs);
    connman.releaseMethod("Service.SetProperty");
}

void TestWifiConnect::anErrorOfTheServiceFailsTheConnection()
{
    reach("configuration");

    connman.setProperty(lab, "Error", "invalid-key");

    QCOMPARE(announced(), QStringList{labFailure});
    QCOMPARE(orders(), QStringList{powerOff});
    QCOMPARE(trace().last(), QString("servicePropertyChangedSlot OP:none failure Lab"));
}

void TestWifiConnect::aFailureIsAnnouncedBeforeTheTechnologyIsPoweredOff()
{
    reach("configuration");
    connman.holdMethod(powerOff);

    connman.setProperty(lab, "Error", "invalid-key");

    QVERIFY(connman.waitForCall(powerOff));
    QTRY_COMPARE_WITH_TIMEOUT(recorder->recorded(), QStringList{labFailure}, deadlineMs);
    connman.releaseMethod(powerOff);
}

void TestWifiConnect::aClearedErrorIsIgnored()
{
    reach("configuration");

    connman.setProperty(lab, "Error", "");

    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiConnect::aChangedStrengthIsAnnounced()
{
    reach("online");

    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(41)));

    QCOMPARE(announced(),
             QStringList{"WIFI.propertyChanged(\"" + lab + "\", \"Strength\", <y:41>)"});
    QCOMPARE(wifi.call("getStrength"), QString("({\"Strength\": <y:41>})"));
}

void TestWifiConnect::aStrengthInANestedVariantIsPassedOnAsANumber()
{
    reach("online");
    const QVariant inner = QVariant::fromValue(QDBusVariant(QVariant::fromValue(uchar(41))));

    connman.emitSignal(lab, "net.connman.Service", "PropertyChanged",
                       {"Strength", QVariant::fromValue(QDBusVariant(inner))});

    QCOMPARE(announced(),
             QStringList{"WIFI.propertyChanged(\"" + lab + "\", \"Strength\", <y:41>)"});
}

/** The daemon follows the signals of its service even when ConnMan no longer lists the service. */
void TestWifiConnect::aStrengthIsAnnouncedForTheCurrentServiceEvenIfUnlisted()
{
    reach("configuration");
    connman.setServices({network("Office", "idle")});
    connman.emitServicesChanged();
    QCOMPARE(announced(), QStringList{labFailure});

    connman.emitSignal(
        lab, "net.connman.Service", "PropertyChanged",
        {"Strength", QVariant::fromValue(QDBusVariant(QVariant::fromValue(uchar(41))))});

    QCOMPARE(announced(),
             QStringList{"WIFI.propertyChanged(\"" + lab + "\", \"Strength\", <y:41>)"});
}

void TestWifiConnect::aMalformedStrengthIsNotAnnounced_data()
{
    QTest::addColumn<QVariant>("strength");
    QTest::newRow("map") << QVariant(QVariantMap{{"Strength", 1}});
    QTest::newRow("map of texts") << QVariant::fromValue(Texts{{"Strength", "1"}});
    QTest::newRow("list") << QVariant(QStringList("1"));
}

void TestWifiConnect::aMalformedStrengthIsNotAnnounced()
{
    QFETCH(QVariant, strength);
    reach("online");

    connman.setProperty(lab, "Strength", strength);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(wifi.call("getStrength"), QString("({})"));
}

void TestWifiConnect::signalsOfThePreviousServiceAreIgnored()
{
    reach("configuration");
    connman.setProperty(lab, "Error", "connect-failed");
    connman.setServices({network("Lab", "idle"), network("Office", "idle")});
    join("Office");
    letModuleSwitch();
    QVERIFY(connman.waitForCall("Service.Connect " + networkPath("Office")));
    connman.storeProperty(networkPath("Office"), "State", "ready");
    connman.emitServicesChanged();
    QCOMPARE(announced(), (QStringList{labFailure, association,
                                       state("WIFI", networkPath("Office"), "configuration")}));

    connman.setProperty(lab, "Error", "connect-failed");
    connman.setProperty(lab, "IPv4", address);
    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(41)));

    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::theNetworkJoinedLastIsConfiguredAgain()
{
    reach("online");
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    wifi.call("disconnect");
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    connman.storeProperty(lab, "State", "idle");
    connman.storeProperty(lab, "IPv4", QVariantMap());
    announced();
    orders();

    join();
    QCOMPARE(wifi.call("getIPv4"), QString("({})"));
    letModuleSwitch();
    QVERIFY(connman.waitForCall(connectLab));
    connman.setProperty(lab, "IPv4", address);
    connman.setProperty(lab, "Error", "connect-failed");
    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(41)));
    QCOMPARE(announced(), QStringList{association});
    QCOMPARE(orders(), (QStringList{registerAgent, connectLab}));

    announceService("ready");
    QCOMPARE(announced(), (QStringList{configuration, online}));
    QCOMPARE(orders(), (QStringList{nameservers, settings}));
}

void TestWifiConnect::aFailedConnectForgetsThePreviousService()
{
    reach("configuration");
    connman.setProperty(lab, "Error", "connect-failed");
    QCOMPARE(announced(), QStringList{labFailure});
    script.remove();

    QCOMPARE(join(), cannotSwitch);

    QCOMPARE(announced(), QStringList{failure});
    connman.setProperty(lab, "Error", "connect-failed");
    QCOMPARE(announced(), QStringList());
}

void TestWifiConnect::aScanKeepsTheService()
{
    reach("configuration");
    connman.setProperty(lab, "Error", "connect-failed");
    wifi.call("scan");
    letModuleSwitch();
    announced();

    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(41)));

    QCOMPARE(announced(),
             QStringList{"WIFI.propertyChanged(\"" + lab + "\", \"Strength\", <y:41>)"});
    QCOMPARE(wifi.call("getStrength"), QString("({\"Strength\": <y:41>})"));
}

void TestWifiConnect::otherPropertiesAreIgnored()
{
    reach("configuration");

    connman.setProperty(lab, "State", "online");
    connman.setProperty(lab, "Name", "Office");
    connman.setProperty(lab, "Ethernet", address);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Connected", true);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

WORLD_TEST_MAIN(TestWifiConnect)
#include "test_wificonnect.moc"
