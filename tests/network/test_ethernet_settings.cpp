#include "deadline.h"
#include "ethernettest.h"

/** Settings, address and hardware of the wired interface, on the running daemon. */
class TestEthernetSettings : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void setIPv4AsksForTheTechnologyAndSendsNothing();
    void setIPv4RepairsManualSettings_data();
    void setIPv4RepairsManualSettings();
    void setIPv4KeepsOtherSettingsAsTheyAre_data();
    void setIPv4KeepsOtherSettingsAsTheyAre();
    void setIPv4KeepsKeysThatAreNotGivenAgain();
    void setIPv4RepairsValuesThatWereGivenEarlier();
    void setIPv4AddsNameServers();
    void setIPv4KeepsTheLast64NameServers();
    void setIPv4FailsWithoutTheTechnology_data();
    void setIPv4FailsWithoutTheTechnology();
    void setIPv4FailsWithoutConnMan();
    void nothingIsCalledWithoutConnMan();
    void setIPv4RefusesAnythingButAMap();
    void getIPv4IsEmptyWithoutAService();
    void getIPv4ShowsTheServicesAddress();
    void getIPv4OfAMalformedPropertyIsEmpty_data();
    void getIPv4OfAMalformedPropertyIsEmpty();
    void getIPv4OmitsUnreadableValues();
    void getHardwareInfosShowsTheServicesInterface();
    void getHardwareInfosWithoutAServiceShowsTheNetworkInterface();
    void getHardwareInfosWithoutAnythingIsEmpty();

private:
    QString pushedSettings();
};

/** The value of "IPv4.Configuration" that the next connection sends to its service. */
QString TestEthernetSettings::pushedSettings()
{
    ethernet.call("connect");
    if (!connman.waitForCall(poweredOn))
        return QString();
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Powered", true);
    const QString start = setConfiguration(cable, "%").section('%', 0, 0);
    return calls().filter(start).join('\n').mid(start.size()).chopped(2);
}

void TestEthernetSettings::setIPv4AsksForTheTechnologyAndSendsNothing()
{
    startDaemon();
    connectUntil("ready");
    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "dhcp"}, {"DNS1", "10.0.0.53"}}}),
             QString("()"));
    QCOMPARE(calls(), QStringList{getTechnologies});
    QCOMPARE(recorder.take(), QStringList());
}

void TestEthernetSettings::setIPv4RepairsManualSettings_data()
{
    QTest::addColumn<QVariantMap>("given");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("netmask");
    QTest::addColumn<QString>("gateway");
    const QString address = "Address";
    QTest::newRow("no address") << QVariantMap() << "192.168.2.3"
                                << "255.255.255.0"
                                << "192.168.2.1";
    QTest::newRow("class A") << QVariantMap{{address, "10.1.2.3"}} << "10.1.2.3"
                             << "255.0.0.0"
                             << "10.0.0.1";
    QTest::newRow("class B") << QVariantMap{{address, "172.16.5.4"}} << "172.16.5.4"
                             << "255.255.0.0"
                             << "172.16.0.1";
    QTest::newRow("above class C") << QVariantMap{{address, "230.1.2.3"}} << "230.1.2.3"
                                   << "255.255.255.255"
                                   << "230.1.2.3";
    QTest::newRow("any address") << QVariantMap{{address, "0.0.0.0"}} << "192.168.2.3"
                                 << "255.255.255.0"
                                 << "192.168.2.1";
    QTest::newRow("leading zeros") << QVariantMap{{address, "192.168.002.003"}} << "192.168.2.3"
                                   << "255.255.255.0"
                                   << "192.168.2.1";
    QTest::newRow("bytes") << QVariantMap{{address, QByteArray("10.1.2.3")}} << "10.1.2.3"
                           << "255.0.0.0"
                           << "10.0.0.1";
    QTest::newRow("number") << QVariantMap{{address, 10}, {"Netmask", true}, {"Gateway", 0.5}}
                            << "192.168.2.3"
                            << "255.255.255.0"
                            << "192.168.2.1";
    QTest::newRow("map") << QVariantMap{{address, lease}, {"Netmask", lease}} << "192.168.2.3"
                         << "255.255.255.0"
                         << "192.168.2.1";
    QTest::newRow("structure") << QVariantMap{{address, QVariant::fromValue(wired())}}
                               << "192.168.2.3"
                               << "255.255.255.0"
                               << "192.168.2.1";
    QTest::newRow("text dictionary")
        << QVariantMap{{address, QVariant::fromValue(Texts{{"a", "b"}})}} << "192.168.2.3"
        << "255.255.255.0"
        << "192.168.2.1";
    QTest::newRow("long text") << QVariantMap{{address, QString(100000, '1')}} << "192.168.2.3"
                               << "255.255.255.0"
                               << "192.168.2.1";
}

void TestEthernetSettings::setIPv4RepairsManualSettings()
{
    QFETCH(QVariantMap, given);
    QFETCH(QString, address);
    QFETCH(QString, netmask);
    QFETCH(QString, gateway);
    startDaemon();
    given["Method"] = "manual";

    QCOMPARE(ethernet.call("setIPv4", {given}), QString("()"));

    QCOMPARE(pushedSettings(), QString("{\"Address\": <\"%1\">, \"Gateway\": <\"%2\">, "
                                       "\"Method\": <\"manual\">, \"Netmask\": <\"%3\">}")
                                   .arg(address, gateway, netmask));
}

void TestEthernetSettings::setIPv4KeepsOtherSettingsAsTheyAre_data()
{
    QTest::addColumn<QVariantMap>("given");
    QTest::addColumn<QString>("pushed");
    QTest::newRow("nothing") << QVariantMap() << "{}";
    QTest::newRow("dhcp") << QVariantMap{{"Method", "dhcp"}, {"Address", "01.2.3.4"}}
                          << "{\"Address\": <\"01.2.3.4\">, \"Method\": <\"dhcp\">}";
    QTest::newRow("other case") << QVariantMap{{"Method", "Manual"}}
                                << "{\"Method\": <\"Manual\">}";
    QTest::newRow("no method") << QVariantMap{{"Gateway", "nowhere"}}
                               << "{\"Gateway\": <\"nowhere\">}";
    QTest::newRow("number") << QVariantMap{{"Netmask", 24}} << "{\"Netmask\": <\"24\">}";
    QTest::newRow("map") << QVariantMap{{"Method", lease}} << "{\"Method\": <\"\">}";
    QTest::newRow("255 characters") << QVariantMap{{"Gateway", QString(255, '1')}}
                                    << "{\"Gateway\": <\"" + QString(255, '1') + "\">}";
    QTest::newRow("256 characters")
        << QVariantMap{{"Gateway", QString(256, '1')}} << "{\"Gateway\": <\"\">}";
    QTest::newRow("other keys") << QVariantMap{{"method", "manual"}, {"MTU", 5}} << "{}";
}

void TestEthernetSettings::setIPv4KeepsOtherSettingsAsTheyAre()
{
    QFETCH(QVariantMap, given);
    QFETCH(QString, pushed);
    startDaemon();
    QCOMPARE(ethernet.call("setIPv4", {given}), QString("()"));
    QCOMPARE(pushedSettings(), pushed);
}

void TestEthernetSettings::setIPv4KeepsKeysThatAreNotGivenAgain()
{
    startDaemon();
    ethernet.call("setIPv4", {QVariantMap{{"Address", "10.1.2.3"}, {"Netmask", "255.0.0.0"}}});
    ethernet.call("setIPv4", {QVariantMap{{"Method", "dhcp"}, {"Netmask", "255.255.0.0"}}});
    QCOMPARE(pushedSettings(), QString("{\"Address\": <\"10.1.2.3\">, \"Method\": <\"dhcp\">, "
                                       "\"Netmask\": <\"255.255.0.0\">}"));
}

void TestEthernetSettings::setIPv4RepairsValuesThatWereGivenEarlier()
{
    startDaemon();
    ethernet.call("setIPv4", {QVariantMap{{"Address", "10.01.2.3"}, {"Netmask", "255.0.0.0"}}});
    ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}}});
    QCOMPARE(pushedSettings(), QString("{\"Address\": <\"192.168.2.3\">, "
                                       "\"Gateway\": <\"192.168.2.1\">, \"Method\": <\"manual\">, "
                                       "\"Netmask\": <\"255.0.0.0\">}"));
}

void TestEthernetSettings::setIPv4AddsNameServers()
{
    startDaemon();
    ethernet.call("setIPv4", {QVariantMap{{"DNS2", "10.0.0.2"}, {"DNS1", "10.0.0.1"}}});
    ethernet.call("setIPv4", {QVariantMap{{"DNS2", "10.0.0.4"}}});
    ethernet.call("setIPv4", {QVariantMap{{"DNS1", "10.0.0.1"}, {"DNS3", "10.0.0.5"}}});
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(calls().filter("Nameservers"),
             QStringList{setNameservers(
                 cable, "[\"10.0.0.1\", \"10.0.0.2\", \"10.0.0.4\", \"10.0.0.1\"]")});
}

void TestEthernetSettings::setIPv4KeepsTheLast64NameServers()
{
    startDaemon();
    QStringList kept;
    for (int last = 1; last <= 66; last += 2) {
        const QString first = QStringLiteral("10.0.0.%1").arg(last);
        const QString second = QStringLiteral("10.0.0.%1").arg(last + 1);
        QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"DNS1", first}, {"DNS2", second}}}),
                 QString("()"));
        kept << '"' + first + '"' << '"' + second + '"';
    }
    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(calls().filter("Nameservers"),
             QStringList{setNameservers(cable, '[' + kept.mid(2).join(", ") + ']')});
}

void TestEthernetSettings::setIPv4FailsWithoutTheTechnology_data()
{
    QTest::addColumn<QVariantList>("technologies");
    const auto list = [](const QVariantMap &properties) {
        return QVariantList{QVariant::fromValue(
            ListedObjects{{QDBusObjectPath(ConnmanStandIn::ethernetTechnology), properties}})};
    };
    QTest::newRow("no technologies") << QVariantList{QVariant::fromValue(ListedObjects())};
    QTest::newRow("other technology") << list({{"Type", "wifi"}, {"Connected", true}});
    QTest::newRow("no Connected") << list({{"Type", "ethernet"}});
    QTest::newRow("Connected that is a text")
        << list({{"Type", "ethernet"}, {"Connected", "true"}});
    QTest::newRow("Connected of an unreadable type")
        << list({{"Type", "ethernet"}, {"Connected", QVariant::fromValue(wired())}});
    QTest::newRow("no list") << QVariantList{"technologies"};
    QTest::newRow("nothing") << QVariantList();
}

void TestEthernetSettings::setIPv4FailsWithoutTheTechnology()
{
    QFETCH(QVariantList, technologies);
    startDaemon();
    connman.replyToMethod("Manager.GetTechnologies", technologies);

    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}, {"DNS1", "10.0.0.1"}}}),
             failed("Cannot get property Connected"));

    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(calls().filter("Service.SetProperty"),
             (QStringList{setNameservers(cable, "[]"), setConfiguration(cable, "{}")}));
}

void TestEthernetSettings::setIPv4FailsWithoutConnMan()
{
    startDaemon();
    connman.kill();
    QCOMPARE(ethernet.call("setIPv4", {QVariantMap{{"Method", "manual"}}}),
             failed("Cannot get property Connected"));
    connman.start();
    connman.setServices({wired()});
    QCOMPARE(pushedSettings(), QString("{}"));
}

void TestEthernetSettings::nothingIsCalledWithoutConnMan()
{
    startDaemon();
    connman.kill();
    QProcess monitor;
    monitor.start("dbus-monitor", {"--system", "--monitor", "destination='net.connman'"});
    const Remote manager("net.connman", "/", "net.connman.Manager");
    QByteArray seen;
    const auto sees = [&](const char *member) {
        manager.reply(QLatin1String(member));
        monitor.waitForReadyRead(100);
        seen += monitor.readAllStandardOutput();
        return seen.contains(member);
    };
    QVERIFY(QTest::qWaitFor([&] { return sees("Before"); }, deadlineMs));

    QCOMPARE(ethernet.call("setIPv4", {QVariantMap()}), failed("Cannot get property Connected"));
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));

    QVERIFY(QTest::qWaitFor([&] { return sees("After"); }, deadlineMs));
    QVERIFY(!seen.contains("GetTechnologies"));
    QVERIFY(!seen.contains("GetServices"));
    monitor.kill();
    monitor.waitForFinished();
    connman.start();
}

void TestEthernetSettings::setIPv4RefusesAnythingButAMap()
{
    startDaemon();
    const QVariantList wrong = {"manual", 5, QStringList{"Method", "manual"},
                                QVariant::fromValue(Texts{{"Method", "manual"}}),
                                QVariant::fromValue(wired())};
    for (const QVariant &value : wrong)
        QVERIFY(ethernet.call("setIPv4", {value})
                    .startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QVERIFY(ethernet.call("setIPv4").startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(pushedSettings(), QString("{}"));
}

void TestEthernetSettings::getIPv4IsEmptyWithoutAService()
{
    startDaemon();
    connman.setServices({wired(cable, lease)});
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));

    connectUntil("association");
    connman.emitServicesChanged();
    QCOMPARE(recorder.take().last(), state("online", cable));
    connman.setServices({wired(otherCable, lease)});
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
}

void TestEthernetSettings::getIPv4ShowsTheServicesAddress()
{
    startDaemon();
    connectUntil("online");
    QCOMPARE(ethernet.call("getIPv4"), '(' + renderedLease + ')');
    QCOMPARE(calls(), QStringList{getServices});
}

void TestEthernetSettings::getIPv4OfAMalformedPropertyIsEmpty_data()
{
    addMalformedValues();
}

void TestEthernetSettings::getIPv4OfAMalformedPropertyIsEmpty()
{
    QFETCH(QVariant, value);
    startDaemon();
    connectUntil("ready");
    connman.storeProperty(cable, "IPv4", value);
    connman.storeProperty(cable, "Ethernet", value);
    QCOMPARE(ethernet.call("getIPv4"), QString("({})"));
    QCOMPARE(ethernet.call("getHardwareInfos"), QString("({})"));
}

void TestEthernetSettings::getIPv4OmitsUnreadableValues()
{
    startDaemon();
    connectUntil("ready");
    QVariantMap ipv4 = {{"Address", "10.77.0.50"},
                        {"Structure", QVariant::fromValue(wired())},
                        {"List", QVariantList{QVariant::fromValue(wired()), 5}}};
    connman.storeProperty(cable, "IPv4", ipv4);
    connman.storeProperty(cable, "Ethernet", ipv4);
    for (const char *method : {"getIPv4", "getHardwareInfos"})
        QCOMPARE(ethernet.call(method),
                 QString("({\"Address\": <\"10.77.0.50\">, \"List\": <[<5>]>})"));
}

void TestEthernetSettings::getHardwareInfosShowsTheServicesInterface()
{
    startDaemon();
    connectUntil("ready");
    QCOMPARE(ethernet.call("getHardwareInfos"),
             QString("({\"Address\": <\"02:AA:BB:CC:DD:02\">, \"Interface\": <\"eth0\">, "
                     "\"MTU\": <q:1500>, \"Method\": <\"auto\">})"));
    connman.setServices({{QDBusObjectPath(cable), {{"Type", "ethernet"}}}});
    QCOMPARE(ethernet.call("getHardwareInfos"), QString("({})"));
}

void TestEthernetSettings::getHardwareInfosWithoutAServiceShowsTheNetworkInterface()
{
    startDaemon();
    QCOMPARE(QProcess::execute("ip", {"link", "add", "eth0", "address", "02:aa:bb:cc:dd:02", "mtu",
                                      "1400", "type", "veth", "peer", "name", "peer0"}),
             0);
    const QString expected = "({\"Address\": <\"02:AA:BB:CC:DD:02\">, \"Interface\": <\"eth0\">, "
                             "\"MTU\": <q:1400>, \"Method\": <\"\">})";
    QCOMPARE(ethernet.call("getHardwareInfos"), expected);

    connectUntil("ready");
    connman.setServices({});
    QCOMPARE(ethernet.call("getHardwareInfos"), expected);
    QCOMPARE(QProcess::execute("ip", {"link", "delete", "eth0"}), 0);
}

void TestEthernetSettings::getHardwareInfosWithoutAnythingIsEmpty()
{
    startDaemon();
    QCOMPARE(ethernet.call("getHardwareInfos"), QString("({})"));
}

WORLD_TEST_MAIN(TestEthernetSettings)
#include "test_ethernet_settings.moc"
