#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"

/** The power of the Wi-Fi module, on the running daemon. */
class TestNetwork : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void startLeavesTheModuleAlone();
    void everyMethodCallsTheLibrary_data();
    void everyMethodCallsTheLibrary();
    void everyMethodReportsItsOwnFailure_data();
    void everyMethodReportsItsOwnFailure();
    void aFailedCallDoesNotAffectTheNext();
    void theStateOfTheModuleDoesNotMatter();
    void resetsRefuseArguments();

private:
    QStringList calls() const;

    const Remote network{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Network")};
    const QString done = QStringLiteral("()");
};

/** The daemon's calls to the module. */
QStringList TestNetwork::calls() const
{
    return Board::journal().filter(QStringLiteral("KyPowerman."));
}

void TestNetwork::startLeavesTheModuleAlone()
{
    QVERIFY(daemon.start());
    QCOMPARE(calls(), QStringList());
}

void TestNetwork::everyMethodCallsTheLibrary_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    QTest::newRow("supply on") << "redpinePower" << QVariantList{true} << "wifiPower(true)"
                               << "powerman/wifi_supply"
                               << "Fail to change redpine power state";
    QTest::newRow("supply off") << "redpinePower" << QVariantList{false} << "wifiPower(false)"
                                << "powerman/wifi_supply"
                                << "Fail to change redpine power state";
    QTest::newRow("soft reset") << "redpineSoftReset" << QVariantList{} << "wifiSoftReset()"
                                << "powerman/wifi_soft_resets"
                                << "Fail to soft reset redpine";
    QTest::newRow("hard reset") << "redpineHardReset" << QVariantList{} << "wifiHardReset()"
                                << "powerman/wifi_hard_resets"
                                << "Fail to hard reset redpine";
}

void TestNetwork::everyMethodCallsTheLibrary()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, operation);
    QFETCH(QString, file);
    QVERIFY(daemon.start());
    BusMonitor monitor;

    QCOMPARE(network.call(method, arguments), done);

    QCOMPARE(calls(), QStringList{"KyPowerman." + operation + " = 0"});
    QCOMPARE(Board::get(file), operation == "wifiPower(false)" ? QString("0") : QString("1"));
    QCOMPARE(monitor.takeFromDaemon(), QStringList{"return ()"});
}

void TestNetwork::everyMethodReportsItsOwnFailure_data()
{
    everyMethodCallsTheLibrary_data();
}

void TestNetwork::everyMethodReportsItsOwnFailure()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, operation);
    QFETCH(QString, text);
    QVERIFY(daemon.start());
    Board::fault("KyPowerman." + operation.left(operation.indexOf('(')), "always");
    BusMonitor monitor;

    const QString expected = failure("Write", text);
    QCOMPARE(network.call(method, arguments), expected);

    QCOMPARE(calls(), QStringList{"KyPowerman." + operation + " = 1"});
    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + expected, "return ()"}));
}

void TestNetwork::aFailedCallDoesNotAffectTheNext()
{
    QVERIFY(daemon.start());
    QCOMPARE(network.call("redpinePower", {false}), done);
    Board::fault("KyPowerman.wifiPower", "1");
    QCOMPARE(network.call("redpinePower", {false}),
             failure("Write", "Fail to change redpine power state"));
    QCOMPARE(network.call("redpinePower", {false}), done);
    QCOMPARE(calls(),
             (QStringList{"KyPowerman.wifiPower(false) = 0", "KyPowerman.wifiPower(false) = 1",
                          "KyPowerman.wifiPower(false) = 0"}));
}

void TestNetwork::theStateOfTheModuleDoesNotMatter()
{
    QVERIFY(daemon.start());
    QCOMPARE(network.call("redpinePower", {false}), done);
    QCOMPARE(network.call("redpineSoftReset"), done);
    QCOMPARE(network.call("redpineHardReset"), done);
    QCOMPARE(network.call("redpinePower", {true}), done);
    QCOMPARE(network.call("redpinePower", {true}), done);
    QCOMPARE(calls().size(), 5);
}

void TestNetwork::resetsRefuseArguments()
{
    QVERIFY(daemon.start());
    for (const char *method : {"redpineSoftReset", "redpineHardReset"})
        QVERIFY(
            network.call(method, {true}).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(calls(), QStringList());
}

WORLD_TEST_MAIN(TestNetwork)
#include "test_network.moc"
