#include "deadline.h"
#include "wifitest.h"
#include "wifitrace.h"

#include <QDBusConnection>
#include <QDBusMetaType>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using Texts = QMap<QString, QString>;
Q_DECLARE_METATYPE(Texts)

/** Scanning for Wi-Fi networks, on the running daemon. */
class TestWifiScan : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void startPowersTheCableOffThenTheWirelessAndNothingElse();
    void startSucceedsWithoutConnMan();

    void aScanSwitchesAndPowersTheModuleAndListsTheNetworks();
    void aScanMakesNoOtherCallsToConnMan();
    void knownNetworksAreListedWithoutPoweringOn();
    void networksFoundAtPowerOnAreListedWithoutAScanCall();
    void aTechnologyThatRefusesTheScanMayFindNetworks();
    void aCableDoesNotDisturbAScan();
    void theListLeavesHiddenNetworksOutAndNamesEachOnce();
    void theListIsSentBeforeTheTechnologyIsPoweredOff();
    void aScanSendsItsListOnce();
    void aScanMayFollowAScan();
    void aScanAfterAFailureAnnouncesIdle();

    void connManIsNotCalledInTheModulesFirstTwoSeconds();
    void changesWhileTheScriptRunsLeaveOnlyATrace();
    void afterFifteenSecondsTheCurrentListIsSent();
    void aScriptThatTakesLongerThanTheScanDoesNotEndIt();
    void onlyTheEndOfTheScriptCounts();

    void aScanWhileTheScriptRunsFails();
    void aScanWithoutAScriptFails();
    void aScanWithoutConnmandFailsAndCallsNothing();

    void servicesChangedTriggersWithAnyArguments_data();
    void servicesChangedTriggersWithAnyArguments();
    void aReplyThatIsNoListCountsAsAnEmptyList_data();
    void aReplyThatIsNoListCountsAsAnEmptyList();
    void signalsOfOtherSendersAreIgnored();

    void theTraceRecordsEachStep();
    void theTracesModeAllowsEverythingTheUmaskAllows();
    void theTraceIsAppendedTo();
    void aStandardStreamThatWasClosedDoesNotBecomeTheTrace();
    void aTraceOfFourMebibytesGrowsNoMore_data();
    void aTraceOfFourMebibytesGrowsNoMore();
    void aPlantedTraceIsNotWrittenTo_data();
    void aPlantedTraceIsNotWrittenTo();

private:
    void startScan();
    void announceServices(const ListedObjects &services);
    static QString list(const QString &entries);

    const QString idle = state("WIFI", "", "idle");
    const QString labEntry = "\"Lab\": <[\"" + lab + "\", \"70\", \"psk\"]>";
};

void TestWifiScan::initTestCase()
{
    qDBusRegisterMetaType<Texts>();
}

/** Starts a scan and waits until the daemon powers the technology on. */
void TestWifiScan::startScan()
{
    scan();
    QVERIFY(connman.waitForCall(powerOn));
}

void TestWifiScan::announceServices(const ListedObjects &services)
{
    connman.setServices(services);
    connman.emitServicesChanged();
}

QString TestWifiScan::list(const QString &entries)
{
    return "WIFI.servicesListChanged({" + entries + "})";
}

void TestWifiScan::startPowersTheCableOffThenTheWirelessAndNothingElse()
{
    QVERIFY(daemon.start());
    settle();
    QString cableOff = powerOff;
    cableOff.replace(ConnmanStandIn::wifiTechnology, ConnmanStandIn::ethernetTechnology);
    QCOMPARE(connman.journal(), (QStringList{cableOff, powerOff}));
    QVERIFY(!QFile::exists("/tmp/logkywifi"));
}

void TestWifiScan::startSucceedsWithoutConnMan()
{
    connman.kill();
    QVERIFY(daemon.start());
    QCOMPARE(wifi.call("getStrength"), QString("({})"));
}

void TestWifiScan::aScanSwitchesAndPowersTheModuleAndListsTheNetworks()
{
    connman.setAsyncScan(true);
    begin();

    QCOMPARE(wifi.call("scan"), QString("()"));
    waitForScripts();
    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(orders(), QStringList());
    letModuleSwitch();
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
    QCOMPARE(orders(), QStringList{powerOn});

    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(connman.waitForCall(asyncScan));
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList{asyncScan});

    announceServices({network("Lab", "idle")});
    QCOMPARE(announced(), QStringList{list(labEntry)});
    QCOMPARE(orders(), QStringList{powerOff});
}

void TestWifiScan::aScanMakesNoOtherCallsToConnMan()
{
    connman.setAsyncScan(true);
    begin();
    startScan();
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(connman.waitForCall(asyncScan));
    announceServices({network("Lab", "idle")});
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    settle();

    QCOMPARE(connman.journal(),
             (QStringList{getServices, powerOn, getServices, asyncScan, getServices, powerOff}));
}

void TestWifiScan::knownNetworksAreListedWithoutPoweringOn()
{
    connman.setServices({network("Lab", "idle")});
    begin();

    scan();

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
    QVERIFY(connman.waitForCall(powerOff));
    QCOMPARE(orders(), QStringList{powerOff});
}

void TestWifiScan::networksFoundAtPowerOnAreListedWithoutAScanCall()
{
    begin();
    startScan();
    connman.setServices({network("Lab", "idle")});
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
    QCOMPARE(orders(), (QStringList{powerOn, powerOff}));
}

void TestWifiScan::aTechnologyThatRefusesTheScanMayFindNetworks()
{
    begin();
    startScan();
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(waitForTrace("sendRequestScan"));
    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(orders(), (QStringList{powerOn, asyncScan}));

    announceServices({network("Lab", "idle")});

    QCOMPARE(announced(), QStringList{list(labEntry)});
    QCOMPARE(orders(), QStringList{powerOff});
}

void TestWifiScan::aCableDoesNotDisturbAScan()
{
    const ListedObject cable = {QDBusObjectPath("/net/connman/service/ethernet_02_cable"),
                                {{"Type", "ethernet"}, {"Name", "Wired"}, {"State", "online"}}};
    connman.setServices({cable});
    connman.setAsyncScan(true);
    begin();
    startScan();
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(connman.waitForCall(asyncScan));

    announceServices({cable, network("Lab", "idle")});

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
}

void TestWifiScan::theListLeavesHiddenNetworksOutAndNamesEachOnce()
{
    ListedObject weak = network("Lab", "idle");
    weak.path = QDBusObjectPath(networkPath("Lab") + "2");
    ListedObject wps = network("Caf\u00e9", "idle");
    wps.properties["Security"] = QStringList{"psk", "wps"};
    ListedObject open = network("Open", "idle");
    open.properties["Security"] = QStringList("none");
    open.properties["Strength"] = QVariant::fromValue(uchar(9));
    const ListedObject hidden = {
        QDBusObjectPath("/net/connman/service/wifi_02aabbccdd04_hidden_managed_psk"),
        {{"Type", "wifi"}, {"State", "idle"}, {"Strength", QVariant::fromValue(uchar(60))}}};
    connman.setServices({network("Lab", "idle"), hidden, wps, weak, open});
    begin();

    scan();

    const QString expected = QString("\"Caf\u00e9\": <[\"%1\", \"70\", \"psk,wps\"]>, %2, "
                                     "\"Open\": <[\"%3\", \"9\", \"none\"]>")
                                 .arg(networkPath("Caf\u00e9"), labEntry, networkPath("Open"));
    QCOMPARE(announced(), (QStringList{idle, list(expected)}));
}

void TestWifiScan::theListIsSentBeforeTheTechnologyIsPoweredOff()
{
    begin();
    startScan();
    connman.holdMethod(powerOff);

    announceServices({network("Lab", "idle")});

    QVERIFY(connman.waitForCall(powerOff));
    QTRY_COMPARE_WITH_TIMEOUT(recorder->recorded(), (QStringList{idle, list(labEntry)}),
                              deadlineMs);
    connman.releaseMethod(powerOff);
}

void TestWifiScan::aScanSendsItsListOnce()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    scan();
    announced();
    orders();

    announceServices({network("Office", "idle")});
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
}

void TestWifiScan::aScanMayFollowAScan()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    scan();
    announced();

    scan();

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1", "start 1", "end 1"}));
}

void TestWifiScan::aScanAfterAFailureAnnouncesIdle()
{
    connman.setServices({network("Lab", "idle")});
    script.remove();
    begin();
    wifi.call("scan");
    QCOMPARE(announced(), (QStringList{idle, failure}));
    script.install();

    scan();

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
}

void TestWifiScan::connManIsNotCalledInTheModulesFirstTwoSeconds()
{
    begin();
    script.hold();
    wifi.call("scan");
    daemon.letTimePass(5);
    settle();
    script.release();
    waitForScripts();
    daemon.letTimePass(1);
    settle();
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace().last(), QString("slotLoadFirmwareFinished OP:scan idle "));

    daemon.letTimePass(1);

    QVERIFY(connman.waitForCall(powerOn));
}

void TestWifiScan::changesWhileTheScriptRunsLeaveOnlyATrace()
{
    begin();
    script.hold();
    wifi.call("scan");
    QVERIFY(script.waitFor("start 1"));

    announceServices({network("Lab", "idle")});
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);

    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace(), (QStringList{"scan OP:scan idle ", "servicesChangedSlot OP:scan idle ",
                                   "technologyPropertyChangedSlot OP:scan idle "}));
}

void TestWifiScan::afterFifteenSecondsTheCurrentListIsSent()
{
    begin();
    startScan();
    daemon.letTimePass(11);
    QCOMPARE(announced(), QStringList{idle});
    orders();

    daemon.letTimePass(2);

    QCOMPARE(recorder->waitFor(1), QStringList{list("")});
    QCOMPARE(orders(), QStringList{powerOff});
    announceServices({network("Lab", "idle")});
    QCOMPARE(announced(), QStringList());
    QCOMPARE(trace().mid(3),
             (QStringList{"servicesChangedSlot OP:none idle ", "timeoutMonitoring OP:none idle ",
                          "servicesChangedSlot OP:none idle "}));
}

void TestWifiScan::aScriptThatTakesLongerThanTheScanDoesNotEndIt()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    script.hold();
    wifi.call("scan");
    daemon.letTimePass(15);
    QVERIFY(waitForTrace("timeoutMonitoring"));
    QCOMPARE(announced(), QStringList{idle});
    QCOMPARE(orders(), QStringList());

    script.release();
    letModuleSwitch();

    QCOMPARE(announced(), QStringList{list(labEntry)});
}

void TestWifiScan::onlyTheEndOfTheScriptCounts()
{
    connman.setServices({network("Lab", "idle")});
    script.setFailure(3);
    begin();

    scan();

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
}

void TestWifiScan::aScanWhileTheScriptRunsFails()
{
    connman.setServices({network("Lab", "idle")});
    begin();
    script.hold();
    wifi.call("scan");
    QVERIFY(script.waitFor("start 1"));

    QCOMPARE(wifi.call("scan"), cannotSwitch);

    QCOMPARE(announced(), (QStringList{idle, idle, failure}));
    script.release();
    letModuleSwitch();
    QCOMPARE(announced(), QStringList());
    QCOMPARE(orders(), QStringList());
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
}

void TestWifiScan::aScanWithoutAScriptFails()
{
    script.remove();
    begin();

    QCOMPARE(wifi.call("scan"), cannotSwitch);

    QCOMPARE(announced(), (QStringList{idle, failure}));
    QCOMPARE(connman.journal(), QStringList());
    QCOMPARE(trace(), QStringList{"scan OP:scan failure "});
}

void TestWifiScan::aScanWithoutConnmandFailsAndCallsNothing()
{
    // The stand-in is still on the bus, but its program has a name that pidof does not look for.
    connman.kill();
    connman.start("networkd");
    connman.setServices({network("Lab", "idle")});
    begin();

    scan();

    QCOMPARE(announced(), (QStringList{idle, failure}));
    QCOMPARE(connman.journal(), QStringList());
}

void TestWifiScan::servicesChangedTriggersWithAnyArguments_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::newRow("none") << QVariantList();
    QTest::newRow("text") << QVariantList{"any"};
    QTest::newRow("map and list") << QVariantList{QVariantMap{{"a", 1}}, QVariantList{1}};
    QTest::newRow("ConnMan's") << QVariantList{QVariant::fromValue(ListedObjects()),
                                               QVariant::fromValue(QList<QDBusObjectPath>())};
}

void TestWifiScan::servicesChangedTriggersWithAnyArguments()
{
    QFETCH(QVariantList, values);
    begin();
    startScan();
    connman.setServices({network("Lab", "idle")});

    connman.emitSignal("/", "net.connman.Manager", "ServicesChanged", values);

    QCOMPARE(announced(), (QStringList{idle, list(labEntry)}));
}

void TestWifiScan::aReplyThatIsNoListCountsAsAnEmptyList_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("text") << QVariantList{"any"};
    QTest::newRow("map") << QVariantList{QVariantMap{{"Lab", 1}}};
    QTest::newRow("list and more")
        << QVariantList{QVariant::fromValue(ListedObjects{network("Lab", "idle")}), 1};
}

void TestWifiScan::aReplyThatIsNoListCountsAsAnEmptyList()
{
    QFETCH(QVariantList, values);
    connman.replyToMethod("Manager.GetServices", values);
    begin();
    startScan();

    connman.emitServicesChanged();

    QCOMPARE(announced(), (QStringList{idle, list("")}));
}

void TestWifiScan::signalsOfOtherSendersAreIgnored()
{
    begin();
    startScan();
    connman.setServices({network("Lab", "idle")});

    QDBusConnection::systemBus().send(
        QDBusMessage::createSignal("/", "net.connman.Manager", "ServicesChanged"));

    QCOMPARE(announced(), QStringList{idle});
}

void TestWifiScan::theTraceRecordsEachStep()
{
    connman.setAsyncScan(true);
    begin();
    startScan();
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", true);
    QVERIFY(connman.waitForCall(asyncScan));
    announceServices({network("Lab", "idle")});
    connman.setProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    settle();

    const QByteArray line = "----------------------------\n";
    QByteArray expected;
    for (const char *record :
         {"scan\nOP:scan", "slotLoadFirmwareFinished\nOP:scan",
          "slotLoadFirmwareFinishedDelayed\nOP:scan", "sendRequestScan\nOP:scan",
          "technologyPropertyChangedSlot\nOP:scan", "servicesChangedSlot\nOP:none",
          "technologyPropertyChangedSlot\nOP:none"})
        expected += line + record + "\nidle\n\n";
    QCOMPARE(readFile("/tmp/logkywifi"), expected);
}

void TestWifiScan::theTracesModeAllowsEverythingTheUmaskAllows()
{
    begin();
    wifi.call("scan");

    struct stat status = {};
    QCOMPARE(stat("/tmp/logkywifi", &status), 0);
    const mode_t mask = umask(0);
    umask(mask);
    QCOMPARE(status.st_mode, mode_t(S_IFREG | (0777 & ~mask)));
}

void TestWifiScan::theTraceIsAppendedTo()
{
    writeFile("/tmp/logkywifi", "earlier\n");
    begin();
    wifi.call("scan");

    QVERIFY(readFile("/tmp/logkywifi").startsWith("earlier\n------"));
}

void TestWifiScan::aStandardStreamThatWasClosedDoesNotBecomeTheTrace()
{
    const int kept = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    appendWifiTrace({"scan", "OP:scan", "idle", "Lab"});
    const bool isOpen = fcntl(STDIN_FILENO, F_GETFD) >= 0;
    dup2(kept, STDIN_FILENO);
    close(kept);

    QVERIFY(!isOpen);
    QVERIFY(QFile::exists("/tmp/logkywifi"));
    QCOMPARE(readFile("/tmp/logkywifi"), QByteArray());
}

void TestWifiScan::aTraceOfFourMebibytesGrowsNoMore_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<bool>("grows");
    QTest::newRow("one byte less") << (4 << 20) - 1 << true;
    QTest::newRow("four mebibytes") << (4 << 20) << false;
}

void TestWifiScan::aTraceOfFourMebibytesGrowsNoMore()
{
    QFETCH(int, bytes);
    QFETCH(bool, grows);
    writeFile("/tmp/logkywifi", QByteArray(bytes, 'x'));
    begin();

    QCOMPARE(wifi.call("scan"), QString("()"));

    QCOMPARE(QFileInfo("/tmp/logkywifi").size() > bytes, grows);
    waitForScripts();
}

void TestWifiScan::aPlantedTraceIsNotWrittenTo_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"link", "link to nowhere", "fifo", "directory"})
        QTest::newRow(kind) << kind;
}

void TestWifiScan::aPlantedTraceIsNotWrittenTo()
{
    QFETCH(QString, kind);
    const QString precious = "/opt/precious";
    removePath(precious);
    if (kind == "link")
        writeFile(precious, "kept");
    if (kind.startsWith("link"))
        QVERIFY(QFile::link(precious, "/tmp/logkywifi"));
    else if (kind == "fifo")
        QCOMPARE(mkfifo("/tmp/logkywifi", 0666), 0);
    else
        QVERIFY(QDir().mkdir("/tmp/logkywifi"));
    connman.setServices({network("Lab", "idle")});
    begin();

    QCOMPARE(wifi.call("scan"), QString("()"));
    passModuleDelay();

    QCOMPARE(recorder->waitFor(2), (QStringList{idle, list(labEntry)}));
    QCOMPARE(readFile(precious), kind == "link" ? QByteArray("kept") : QByteArray());
    QVERIFY(daemon.isRunning());
}

WORLD_TEST_MAIN(TestWifiScan)
#include "test_wifiscan.moc"
