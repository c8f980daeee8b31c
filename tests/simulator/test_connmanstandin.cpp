#include "busmonitor.h"
#include "connmansignals.h"
#include "connmanstandin.h"
#include "daemontest.h"
#include "deadline.h"
#include "render.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusPendingReply>

/** An agent for ConnMan, in the process of the test. */
class TestAgent : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "net.connman.Agent")

public:
    TestAgent()
    {
        QDBusConnection::systemBus().registerObject("/agent", this,
                                                    QDBusConnection::ExportAllSlots);
    }

    /** The received calls, in order. */
    QStringList asked;
    /** The passphrases to reply with. If none is left, the reply is the error Canceled. */
    QStringList passphrases;

public Q_SLOTS:
    QVariantMap RequestInput(const QDBusMessage &message)
    {
        asked << render(message.arguments());
        if (!passphrases.isEmpty())
            return {{"Passphrase", passphrases.takeFirst()}};
        QDBusConnection::systemBus().send(
            message.createErrorReply("net.connman.Agent.Error.Canceled", QString()));
        return {};
    }

    void ReportError(const QDBusMessage &message)
    {
        asked << "error " + render(message.arguments());
        QDBusConnection::systemBus().send(
            message.createErrorReply("net.connman.Agent.Error.Retry", QString()));
    }

    void Cancel() { asked << "cancel"; }
};

/** The stand-in for ConnMan, on which other tests depend. */
class TestConnmanStandIn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pidofFindsTheStandInAndItOwnsConnMansName();
    void aKilledStandInLeavesTheBus();
    void aSuspendedStandInAnswersWhenResumed();

    void theListsHaveConnMansTypes();
    void aServiceMayHaveNoProperties();
    void poweringIsAnsweredAsConnManDoes();
    void callsAreRefusedAsConnManDoes_data();
    void callsAreRefusedAsConnManDoes();
    void settingsOfAServiceAreKept();
    void asyncScanExistsOnlyOnRequest();
    void scanIsForWifiOnly();

    void nothingIsAnnouncedUnprompted();
    void aChangedPropertyIsAnnounced();
    void servicesChangedContainsTheNewAndTheRemovedServices();
    void anySignalCanBeSent();

    void theJournalShowsEveryCallWithItsTypes();
    void aMethodCanFail();
    void aMethodCanFailForOneObjectAndOneValueOnly();
    void aMethodCanReplyWithAnyTypes();
    void aDelayedCallIsServedLater();
    void aHeldCallWaitsForItsRelease();

    void aCallerMayRegisterOnlyOneAgent();
    void connectAnswersAfterTheAgent();
    void connectIsAbortedWhenTheAgentCancels();
    void callAgentReturnsTheAgentsAnswer();
    void callAgentIsRefusedWithoutAnAgent();

    // A lively stand-in acts like the real ConnMan, see ConnmanStandIn::setLively().
    void aLivelyTechnologyBringsItsNetworks();
    void onlyWifiRepliesToAPowerOnBeforePropertyChanged_data();
    void onlyWifiRepliesToAPowerOnBeforePropertyChanged();
    void aLivelyNetworkIsJoined_data();
    void aLivelyNetworkIsJoined();
    void theWrongPassphraseFails();
    void aMalformedPassphraseIsAskedForAgain();
    void aLivelyNetworkIsForgotten();

private:
    void startLively();
    QString joinHome();
    QStringList stateOf(const QString &service, const QStringList &heard);

    QDBusPendingCall callLater(const QString &path, const char *interface, const char *method);

    ConnmanStandIn standIn;
    const Remote manager{"net.connman", "/", "net.connman.Manager"};
    const Remote ethernet{"net.connman", ConnmanStandIn::ethernetTechnology,
                          "net.connman.Technology"};
    const Remote wifi{"net.connman", ConnmanStandIn::wifiTechnology, "net.connman.Technology"};
    const QString home = "/net/connman/service/wifi_02aabbccdd04_686f6d65_managed_psk";
    const QString open = "/net/connman/service/wifi_02aabbccdd04_6f70656e_managed_none";
    const QString cable = "/net/connman/service/ethernet_02aabbccdd02_cable";
    const Remote wired{"net.connman", cable, "net.connman.Service"};
};

void TestConnmanStandIn::init()
{
    standIn.start();
}

void TestConnmanStandIn::cleanup()
{
    standIn.kill();
}

QDBusPendingCall TestConnmanStandIn::callLater(const QString &path, const char *interface,
                                               const char *method)
{
    return QDBusConnection::systemBus().asyncCall(
        QDBusMessage::createMethodCall("net.connman", path, interface, method));
}

void TestConnmanStandIn::pidofFindsTheStandInAndItOwnsConnMansName()
{
    QCOMPARE(QProcess::execute("pidof", {"connmand"}), 0);
    standIn.stop();
    QCOMPARE(QProcess::execute("pidof", {"connmand"}), 1);
    standIn.start();
    QCOMPARE(manager.call("GetServices"), QString("([])"));
}

void TestConnmanStandIn::aKilledStandInLeavesTheBus()
{
    standIn.kill();
    QVERIFY(manager.call("GetServices").startsWith("org.freedesktop.DBus.Error.ServiceUnknown: "));
    standIn.start();
}

void TestConnmanStandIn::aSuspendedStandInAnswersWhenResumed()
{
    standIn.freeze();
    const QDBusPendingCall call = callLater("/", "net.connman.Manager", "GetServices");
    // During this call to the bus, a stand-in that is not suspended has time to reply.
    QDBusConnection::systemBus().interface()->isServiceRegistered("net.connman");
    QVERIFY(!call.isFinished());
    standIn.thaw();
    QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), deadlineMs);
    QVERIFY(!call.isError());
}

void TestConnmanStandIn::theListsHaveConnMansTypes()
{
    standIn.setServices({{QDBusObjectPath(cable),
                          {{"Type", "ethernet"},
                           {"Security", QStringList()},
                           {"Strength", QVariant::fromValue(uchar(40))},
                           {"IPv4", QVariantMap{{"Method", "dhcp"}}}}}});

    QCOMPARE(manager.reply("GetServices").signature(), QString("a(oa{sv})"));
    QCOMPARE(manager.call("GetServices"),
             QString("([(o:\"%1\", {\"IPv4\": <{\"Method\": <\"dhcp\">}>, \"Security\": <[]>, "
                     "\"Strength\": <y:40>, \"Type\": <\"ethernet\">})])")
                 .arg(cable));
    QCOMPARE(manager.reply("GetTechnologies").signature(), QString("a(oa{sv})"));
    QVERIFY(manager.call("GetTechnologies")
                .startsWith("([(o:\"/net/connman/technology/ethernet\", {\"Connected\": <false>, "
                            "\"Name\": <\"Wired\">, \"Powered\": <false>, "));
}

void TestConnmanStandIn::aServiceMayHaveNoProperties()
{
    standIn.setServices({{QDBusObjectPath(cable), {}}});
    QCOMPARE(manager.call("GetServices"), QString("([(o:\"%1\", {})])").arg(cable));
}

void TestConnmanStandIn::poweringIsAnsweredAsConnManDoes()
{
    const QList<QVariant> on = {"Powered", QVariant::fromValue(QDBusVariant(true))};
    const QList<QVariant> off = {"Powered", QVariant::fromValue(QDBusVariant(false))};
    QCOMPARE(ethernet.call("SetProperty", off),
             QString("net.connman.Error.AlreadyDisabled: Already disabled"));
    QCOMPARE(ethernet.call("SetProperty", on), QString("()"));
    QCOMPARE(ethernet.call("SetProperty", on),
             QString("net.connman.Error.AlreadyEnabled: Already enabled"));
    QCOMPARE(ethernet.call("SetProperty", off), QString("()"));
}

void TestConnmanStandIn::callsAreRefusedAsConnManDoes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");

    const auto variant = [](const QVariant &value) {
        return QVariant::fromValue(QDBusVariant(value));
    };
    const QString technology = ConnmanStandIn::ethernetTechnology;
    const QVariantMap badMethod = {{"Method", "automatic"}};
    const QVariantMap badAddress = {{"Method", "manual"}, {"Address", "10.1.2.x"}};
    const QString invalid = "InvalidArguments: Invalid arguments";

    QTest::newRow("Powered that is text")
        << technology << "Technology"
        << "SetProperty" << QVariantList{"Powered", variant("true")} << invalid;
    QTest::newRow("unknown property of a technology")
        << technology << "Technology"
        << "SetProperty" << QVariantList{"Other", variant(true)}
        << "InvalidProperty: Invalid property";
    QTest::newRow("unknown property of a service")
        << cable << "Service"
        << "SetProperty" << QVariantList{"State", variant("ready")}
        << "InvalidProperty: Invalid property";
    QTest::newRow("no IPv4 settings")
        << cable << "Service"
        << "SetProperty" << QVariantList{"IPv4.Configuration", variant(QVariantMap())} << invalid;
    QTest::newRow("unknown IPv4 method")
        << cable << "Service"
        << "SetProperty" << QVariantList{"IPv4.Configuration", variant(badMethod)} << invalid;
    QTest::newRow("bad address") << cable << "Service"
                                 << "SetProperty"
                                 << QVariantList{"IPv4.Configuration", variant(badAddress)}
                                 << invalid;
    QTest::newRow("name servers as text")
        << cable << "Service"
        << "SetProperty" << QVariantList{"Nameservers.Configuration", variant("10.0.0.1")}
        << invalid;
    QTest::newRow("forgetting the cable")
        << cable << "Service"
        << "Remove" << QVariantList() << "NotSupported: Not supported";
}

void TestConnmanStandIn::callsAreRefusedAsConnManDoes()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);
    standIn.setServices({{QDBusObjectPath(cable), {{"Type", "ethernet"}}}});

    QCOMPARE(Remote("net.connman", path, "net.connman." + interface).call(method, arguments),
             "net.connman.Error." + error);
}

void TestConnmanStandIn::settingsOfAServiceAreKept()
{
    standIn.setServices({{QDBusObjectPath(cable), {{"Type", "ethernet"}}}});
    const QVariantMap settings = {{"Method", "manual"}, {"Address", "10.77.0.9"}};

    QCOMPARE(wired.call("SetProperty",
                        {"IPv4.Configuration", QVariant::fromValue(QDBusVariant(settings))}),
             QString("()"));

    QCOMPARE(wired.call("GetProperties"),
             QString("({\"IPv4.Configuration\": <{\"Address\": <\"10.77.0.9\">, "
                     "\"Method\": <\"manual\">}>, \"Type\": <\"ethernet\">})"));
}

void TestConnmanStandIn::asyncScanExistsOnlyOnRequest()
{
    QVERIFY(wifi.call("AsyncScan").startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    standIn.setAsyncScan(true);
    QCOMPARE(wifi.call("AsyncScan"), QString("()"));
}

void TestConnmanStandIn::scanIsForWifiOnly()
{
    QCOMPARE(wifi.call("Scan"), QString("()"));
    QCOMPARE(ethernet.call("Scan"), QString("net.connman.Error.NotSupported: Not supported"));
}

void TestConnmanStandIn::nothingIsAnnouncedUnprompted()
{
    ConnmanSignals heard;
    standIn.setServices({{QDBusObjectPath(cable), {}}});
    standIn.storeProperty(cable, "State", "ready");
    ethernet.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))});
    QCOMPARE(heard.take(), QStringList());
    QVERIFY(manager.call("GetServices").contains("\"State\": <\"ready\">"));
}

void TestConnmanStandIn::aChangedPropertyIsAnnounced()
{
    ConnmanSignals heard;
    standIn.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    QCOMPARE(heard.take(), QStringList{"/net/connman/technology/ethernet PropertyChanged "
                                       "(\"Powered\", <true>)"});
    QVERIFY(manager.call("GetTechnologies").contains("\"Powered\": <true>"));
}

void TestConnmanStandIn::servicesChangedContainsTheNewAndTheRemovedServices()
{
    const QString other = "/net/connman/service/wifi_02aabbccdd03_61_managed_psk";
    ConnmanSignals heard;
    standIn.setServices({{QDBusObjectPath(cable), {{"Type", "ethernet"}}}});
    standIn.emitServicesChanged();
    QCOMPARE(heard.take(), QStringList{QString("/ ServicesChanged ([(o:\"%1\", {\"Type\": "
                                               "<\"ethernet\">})], [])")
                                           .arg(cable)});

    standIn.setServices({{QDBusObjectPath(other), {{"Type", "wifi"}}},
                         {QDBusObjectPath(cable), {{"Type", "ethernet"}}}});
    standIn.emitServicesChanged();
    QCOMPARE(heard.take(), QStringList{QString("/ ServicesChanged ([(o:\"%1\", {\"Type\": "
                                               "<\"wifi\">}), (o:\"%2\", {})], [])")
                                           .arg(other, cable)});

    standIn.setServices({});
    standIn.emitServicesChanged();
    const QStringList gone = heard.take();
    QCOMPARE(gone.size(), 1);
    QVERIFY(gone.first().startsWith("/ ServicesChanged ([], ["));
    QVERIFY(gone.first().contains(other) && gone.first().contains(cable));
}

void TestConnmanStandIn::anySignalCanBeSent()
{
    ConnmanSignals heard;
    standIn.emitSignal("/a/b", "net.connman.Service", "Happened",
                       {7u, QVariant::fromValue(short(-1)), "x"});
    standIn.emitSignal("/", "net.connman.Manager", "ServicesChanged", {});
    QCOMPARE(heard.take(),
             (QStringList{"/a/b Happened (u:7, n:-1, \"x\")", "/ ServicesChanged ()"}));
}

void TestConnmanStandIn::theJournalShowsEveryCallWithItsTypes()
{
    manager.call("GetServices");
    ethernet.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))});
    ethernet.call("SetProperty", {"Other", QVariant::fromValue(QDBusVariant(QVariantMap()))});
    wired.call("Connect");
    QCOMPARE(standIn.journal(),
             (QStringList{
                 "Manager.GetServices / ()",
                 "Technology.SetProperty /net/connman/technology/ethernet (\"Powered\", <true>)",
                 "Technology.SetProperty /net/connman/technology/ethernet (\"Other\", <{}>)",
                 QString("Service.Connect %1 ()").arg(cable)}));

    standIn.clearJournal();
    QCOMPARE(standIn.journal(), QStringList());
}

void TestConnmanStandIn::aMethodCanFail()
{
    standIn.failMethod("Manager.GetServices", "net.connman.Error.Failed", "No luck");
    QCOMPARE(manager.call("GetServices"), QString("net.connman.Error.Failed: No luck"));
    standIn.clearRules();
    QCOMPARE(manager.call("GetServices"), QString("([])"));
}

void TestConnmanStandIn::aMethodCanFailForOneObjectAndOneValueOnly()
{
    standIn.failMethod("Technology.SetProperty /net/connman/technology/wifi (\"Powered\", <true>)",
                       "net.connman.Error.Failed", "No luck");
    const QList<QVariant> on = {"Powered", QVariant::fromValue(QDBusVariant(true))};
    QCOMPARE(ethernet.call("SetProperty", on), QString("()"));
    QCOMPARE(wifi.call("SetProperty", on), QString("net.connman.Error.Failed: No luck"));
    QVERIFY(manager.call("GetTechnologies")
                .endsWith("\"Name\": <\"WiFi\">, \"Powered\": <false>, "
                          "\"Tethering\": <false>, "
                          "\"Type\": <\"wifi\">})])"));
}

void TestConnmanStandIn::aMethodCanReplyWithAnyTypes()
{
    qDBusRegisterMetaType<QMap<QString, QString>>();
    const QMap<QString, QString> map = {{"a", "b"}};
    standIn.replyToMethod("Manager.GetServices", {QVariant::fromValue(map), 3});

    QCOMPARE(manager.reply("GetServices").signature(), QString("a{ss}i"));
    QCOMPARE(manager.call("GetServices"), QString("({\"a\": \"b\"}, 3)"));

    standIn.replyToMethod("Manager.GetServices", {});
    QCOMPARE(manager.call("GetServices"), QString("()"));
}

void TestConnmanStandIn::aDelayedCallIsServedLater()
{
    standIn.delayMethod("Manager.GetServices", 100);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(manager.call("GetServices"), QString("([])"));
    QVERIFY(timer.elapsed() >= 100);
}

void TestConnmanStandIn::aHeldCallWaitsForItsRelease()
{
    standIn.setServices({{QDBusObjectPath(cable), {}}});
    standIn.holdMethod("Service.Connect");
    const QDBusPendingCall call = callLater(cable, "net.connman.Service", "Connect");
    QVERIFY(standIn.waitForCall("Service.Connect " + cable));
    QCOMPARE(wired.call("Disconnect"), QString("()"));
    QVERIFY(!call.isFinished());

    standIn.releaseMethod("Service.Connect");
    QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), deadlineMs);
    QVERIFY(!call.isError());
    QCOMPARE(wired.call("Connect"), QString("()"));
}

void TestConnmanStandIn::aCallerMayRegisterOnlyOneAgent()
{
    const QVariant path = QVariant::fromValue(QDBusObjectPath("/agent"));
    QCOMPARE(manager.call("UnregisterAgent", {path}),
             QString("net.connman.Error.NotRegistered: Not registered"));
    QCOMPARE(manager.call("RegisterAgent", {path}), QString("()"));
    QCOMPARE(manager.call("RegisterAgent", {path}),
             QString("net.connman.Error.AlreadyExists: Already exists"));
    QCOMPARE(manager.call("UnregisterAgent", {path}), QString("()"));
}

void TestConnmanStandIn::connectAnswersAfterTheAgent()
{
    TestAgent agent;
    agent.passphrases << "secret";
    manager.call("RegisterAgent", {QVariant::fromValue(QDBusObjectPath("/agent"))});
    standIn.setServices({{QDBusObjectPath(cable), {}}});
    standIn.askOnConnect(cable, {{"Passphrase", ConnmanStandIn::field("mandatory", "psk")}});

    const QDBusPendingCall call = callLater(cable, "net.connman.Service", "Connect");
    standIn.waitForCall("Service.Connect");
    QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), deadlineMs);

    QVERIFY(!call.isError());
    QCOMPARE(agent.asked, QStringList{QString("(o:\"%1\", {\"Passphrase\": <{\"Requirement\": "
                                              "<\"mandatory\">, \"Type\": <\"psk\">}>})")
                                          .arg(cable)});
}

void TestConnmanStandIn::connectIsAbortedWhenTheAgentCancels()
{
    TestAgent agent;
    manager.call("RegisterAgent", {QVariant::fromValue(QDBusObjectPath("/agent"))});
    standIn.setServices({{QDBusObjectPath(cable), {}}});
    standIn.askOnConnect(cable, {{"Passphrase", ConnmanStandIn::field("mandatory", "psk")}});

    const QDBusPendingCall call = callLater(cable, "net.connman.Service", "Connect");
    QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), deadlineMs);
    QCOMPARE(call.error().name(), QString("net.connman.Error.OperationAborted"));
}

void TestConnmanStandIn::callAgentReturnsTheAgentsAnswer()
{
    TestAgent agent;
    agent.passphrases << "secret";
    manager.call("RegisterAgent", {QVariant::fromValue(QDBusObjectPath("/agent"))});

    // The agent runs in this thread: during a blocking call it could not answer.
    QDBusMessage message = QDBusMessage::createMethodCall(
        "net.connman", "/standin", "com.orvendis.Strandel.ConnManStandIn", "CallAgent");
    message.setArguments({"RequestInput", QVariant::fromValue(QDBusObjectPath(cable)),
                          QVariantMap{{"Identity", 5}}});
    QDBusPendingReply<> answer = QDBusConnection::systemBus().asyncCall(message);
    QTRY_VERIFY_WITH_TIMEOUT(answer.isFinished(), deadlineMs);

    QCOMPARE(renderReply(answer.reply()), QString("({\"Passphrase\": <\"secret\">})"));
    QCOMPARE(agent.asked, QStringList{QString("(o:\"%1\", {\"Identity\": <5>})").arg(cable)});
}

void TestConnmanStandIn::callAgentIsRefusedWithoutAnAgent()
{
    QCOMPARE(standIn.requestInput(cable, {}),
             QString("com.orvendis.Strandel.ConnManStandIn.NoAgent: no agent is registered"));
}

/**
 * Makes the stand-in lively: from then on it acts like the real ConnMan. Adds an open network and a
 * protected one, powers Wi-Fi on, and registers the agent.
 */
void TestConnmanStandIn::startLively()
{
    standIn.setLively(true);
    standIn.addSurrounding(
        {QDBusObjectPath(home),
         {{"Type", "wifi"}, {"Name", "home"}, {"Security", QStringList("psk")}}});
    standIn.addSurrounding(
        {QDBusObjectPath(open),
         {{"Type", "wifi"}, {"Name", "open"}, {"Security", QStringList("none")}}});
    standIn.setPassphrase(home, "long enough");
    ConnmanSignals heard;
    wifi.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))});
    QVERIFY(heard.waitFor("/ ServicesChanged"));
    manager.call("RegisterAgent", {QVariant::fromValue(QDBusObjectPath("/agent"))});
}

/**
 * Calls Connect of the network "home" and returns the reply. Runs the event loop while it
 * waits, so that the agent can answer.
 */
QString TestConnmanStandIn::joinHome()
{
    const QDBusPendingReply<> call = callLater(home, "net.connman.Service", "Connect");
    return QTest::qWaitFor([&] { return call.isFinished(); }, deadlineMs)
               ? renderReply(call.reply())
               : "no answer";
}

/** Returns the arguments of each PropertyChanged signal of @p service, in order. */
QStringList TestConnmanStandIn::stateOf(const QString &service, const QStringList &heard)
{
    QStringList states;
    for (const QString &signal : heard) {
        if (signal.startsWith(service))
            states << signal.mid(service.size() + int(qstrlen(" PropertyChanged ")));
    }
    return states;
}

void TestConnmanStandIn::aLivelyTechnologyBringsItsNetworks()
{
    ConnmanSignals heard;
    startLively();

    const QStringList all = heard.take();
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.at(0), QString("/net/connman/technology/wifi PropertyChanged "
                                "(\"Powered\", <true>)"));
    QVERIFY(all.at(1).startsWith(
        QString("/ ServicesChanged ([(o:\"%1\", {\"Name\": <\"home\">, ").arg(home)));
    QVERIFY(all.at(1).contains("\"State\": <\"idle\">"));

    wifi.call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(false))});
    QVERIFY(heard.waitFor("/ ServicesChanged ([], ["));
    QCOMPARE(manager.call("GetServices"), QString("([])"));
}

void TestConnmanStandIn::onlyWifiRepliesToAPowerOnBeforePropertyChanged_data()
{
    const QString answer = "return ()";
    const QString announcement = "signal net.connman.Technology.PropertyChanged(sv)";
    QTest::addColumn<QString>("technology");
    QTest::addColumn<QStringList>("order");
    QTest::newRow("wifi") << ConnmanStandIn::wifiTechnology << QStringList{answer, announcement};
    QTest::newRow("ethernet") << ConnmanStandIn::ethernetTechnology
                              << QStringList{announcement, answer};
}

void TestConnmanStandIn::onlyWifiRepliesToAPowerOnBeforePropertyChanged()
{
    QFETCH(QString, technology);
    QFETCH(QStringList, order);
    standIn.setLively(true);
    const QString sender =
        QDBusConnection::systemBus().interface()->serviceOwner("net.connman").value();
    ConnmanSignals heard;
    BusMonitor monitor;

    Remote("net.connman", technology, "net.connman.Technology")
        .call("SetProperty", {"Powered", QVariant::fromValue(QDBusVariant(true))});
    QVERIFY(heard.waitFor(technology));

    QStringList lines;
    for (const BusMessage &message : monitor.take()) {
        if (message.sender == sender)
            lines << message.line();
    }
    QCOMPARE(lines, order);
}

void TestConnmanStandIn::aLivelyNetworkIsJoined_data()
{
    QTest::addColumn<QString>("network");
    QTest::addColumn<int>("questions");
    QTest::newRow("with a passphrase") << home << 1;
    QTest::newRow("open") << open << 0;
}

void TestConnmanStandIn::aLivelyNetworkIsJoined()
{
    QFETCH(QString, network);
    QFETCH(int, questions);
    TestAgent agent;
    agent.passphrases << "long enough";
    startLively();
    ConnmanSignals heard;

    const QDBusPendingReply<> call = callLater(network, "net.connman.Service", "Connect");
    QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), deadlineMs);

    QCOMPARE(renderReply(call.reply()), QString("()"));
    QCOMPARE(agent.asked.size(), questions);
    const QStringList all = heard.take();
    const QString withoutGateway = "(\"IPv4\", <{\"Address\": <\"10.77.0.72\">, "
                                   "\"Method\": <\"dhcp\">, \"Netmask\": <\"255.255.255.0\">}>)";
    const QString withGateway = "(\"IPv4\", <{\"Address\": <\"10.77.0.72\">, "
                                "\"Gateway\": <\"10.77.0.1\">, \"Method\": <\"dhcp\">, "
                                "\"Netmask\": <\"255.255.255.0\">}>)";
    QCOMPARE(stateOf(network, all),
             (QStringList{"(\"State\", <\"association\">)", "(\"State\", <\"configuration\">)",
                          "(\"State\", <\"ready\">)", withoutGateway, withGateway}));
    QVERIFY(all.contains("/net/connman/technology/wifi PropertyChanged (\"Connected\", <true>)"));
}

void TestConnmanStandIn::theWrongPassphraseFails()
{
    TestAgent agent;
    agent.passphrases << "wrong but long";
    startLively();
    ConnmanSignals heard;

    QVERIFY(joinHome().startsWith("net.connman.Error.Failed: "));

    QCOMPARE(stateOf(home, heard.take()),
             (QStringList{"(\"State\", <\"association\">)", "(\"Error\", <\"invalid-key\">)",
                          "(\"State\", <\"failure\">)", "(\"State\", <\"idle\">)"}));
    QTRY_COMPARE_WITH_TIMEOUT(agent.asked.size(), 3, deadlineMs);
    QCOMPARE(agent.asked.mid(1),
             (QStringList{QString("error (o:\"%1\", \"invalid-key\")").arg(home), "cancel"}));
}

void TestConnmanStandIn::aMalformedPassphraseIsAskedForAgain()
{
    TestAgent agent;
    agent.passphrases << "short" << QString(64, 'x') << "long enough";
    startLively();
    ConnmanSignals heard;

    QCOMPARE(joinHome(), QString("()"));

    const QString error = QString("error (o:\"%1\", \"invalid-key\")").arg(home);
    QCOMPARE(agent.asked.size(), 5);
    QCOMPARE(agent.asked.at(1), error);
    QCOMPARE(agent.asked.at(3), error);
    QCOMPARE(stateOf(home, heard.take()).mid(0, 3),
             (QStringList{"(\"Error\", <\"invalid-key\">)", "(\"Error\", <\"invalid-key\">)",
                          "(\"State\", <\"association\">)"}));
}

void TestConnmanStandIn::aLivelyNetworkIsForgotten()
{
    TestAgent agent;
    agent.passphrases << "long enough";
    startLively();
    QCOMPARE(joinHome(), QString("()"));
    ConnmanSignals heard;

    QCOMPARE(Remote("net.connman", home, "net.connman.Service").call("Remove"), QString("()"));

    const QStringList all = heard.take();
    QCOMPARE(stateOf(home, all).last(), QString("(\"State\", <\"idle\">)"));
    QVERIFY(all.contains("/net/connman/technology/wifi PropertyChanged (\"Connected\", <false>)"));
}

WORLD_TEST_MAIN(TestConnmanStandIn)
#include "test_connmanstandin.moc"
