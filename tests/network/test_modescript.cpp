#include "daemontest.h"
#include "deadline.h"
#include "simulatedmodescript.h"

#include <QNetworkInterface>

/** The simulated module's mode script, on which tests of the daemon depend. */
class TestModeScript : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theScriptLogsItsStartAndItsEnd();
    void aHeldScriptWaitsAfterItsStart();
    void aReleasedScriptDoesNotWaitAgain();
    void theScriptCanBeSlow();
    void theScriptCanFail();
    void theScriptCanBeMissing();
    void clearKillsAWaitingScript();

    void modeTwoStartsTheAccessPointsInterfaceAndPrograms();
    void modeTwoStartsTheProgramsOfAnOpenAccessPoint();
    void anyOtherModeStopsTheAccessPoint();
    void partsOfTheAccessPointCanBeLeftOut_data();
    void partsOfTheAccessPointCanBeLeftOut();
    void theCarrierCanBeRemovedAndRestored();

private:
    int switchMode(const QString &mode);
    static bool runs(const char *program);
    static bool isInterfaceRunning();

    SimulatedModeScript script;
    const QString path = "/usr/share/redpine/switch_coex_mode.sh";
};

void TestModeScript::init()
{
    script.install();
    QDir().mkpath("/tmp/User_part");
    QFile::remove("/tmp/User_part/hostapd.conf");
    QFile::copy("/usr/share/redpine/hostapd_ccmp.conf", "/tmp/User_part/hostapd.conf");
}

int TestModeScript::switchMode(const QString &mode)
{
    return QProcess::execute(path, {mode});
}

bool TestModeScript::runs(const char *program)
{
    QProcess pidof;
    pidof.start("pidof", {program});
    return pidof.waitForFinished() && pidof.exitCode() == 0;
}

bool TestModeScript::isInterfaceRunning()
{
    return QNetworkInterface::interfaceFromName("wifi_ap").flags() & QNetworkInterface::IsRunning;
}

void TestModeScript::theScriptLogsItsStartAndItsEnd()
{
    QCOMPARE(script.log(), QStringList());
    QCOMPARE(switchMode("0"), 0);
    QCOMPARE(switchMode("1"), 0);
    QCOMPARE(script.log(), (QStringList{"start 0", "end 0", "start 1", "end 1"}));
}

void TestModeScript::aHeldScriptWaitsAfterItsStart()
{
    script.hold();
    QProcess process;
    process.start(path, {"1"});
    QVERIFY(script.waitFor("start 1"));
    QCOMPARE(script.log(), QStringList{"start 1"});

    script.release();
    QVERIFY(process.waitForFinished());
    QCOMPARE(script.log(), (QStringList{"start 1", "end 1"}));
}

void TestModeScript::aReleasedScriptDoesNotWaitAgain()
{
    script.hold();
    QProcess process;
    process.start(path, {"1"});
    script.release();
    QVERIFY(process.waitForFinished());
    QCOMPARE(switchMode("0"), 0);
}

void TestModeScript::theScriptCanBeSlow()
{
    script.setDelay(0.1);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(switchMode("0"), 0);
    QVERIFY(timer.elapsed() >= 100);
}

void TestModeScript::theScriptCanFail()
{
    script.setFailure(3);
    QCOMPARE(switchMode("2"), 3);
    QCOMPARE(script.log(), (QStringList{"start 2", "end 2"}));
    QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));
}

void TestModeScript::theScriptCanBeMissing()
{
    script.remove();
    QCOMPARE(switchMode("0"), -2);
    QVERIFY(QFile::exists("/usr/share/redpine/hostapd_open.conf"));
}

void TestModeScript::clearKillsAWaitingScript()
{
    script.hold();
    QProcess process;
    process.start(path, {"1"});
    QVERIFY(script.waitFor("start 1"));
    script.clear();
    QTRY_COMPARE_WITH_TIMEOUT(process.state(), QProcess::NotRunning, deadlineMs);
    QCOMPARE(process.exitStatus(), QProcess::CrashExit);
}

void TestModeScript::modeTwoStartsTheAccessPointsInterfaceAndPrograms()
{
    QCOMPARE(switchMode("2"), 0);
    QVERIFY(runs("hostapd"));
    QVERIFY(runs("dhcpd"));
    QTRY_VERIFY_WITH_TIMEOUT(isInterfaceRunning(), deadlineMs);
    QCOMPARE(QNetworkInterface::interfaceFromName("wifi_ap").addressEntries().value(0).ip(),
             QHostAddress("192.168.2.1"));
}

void TestModeScript::modeTwoStartsTheProgramsOfAnOpenAccessPoint()
{
    QFile::remove("/tmp/User_part/hostapd.conf");
    QFile::copy("/usr/share/redpine/hostapd_open.conf", "/tmp/User_part/hostapd.conf");
    QCOMPARE(switchMode("2"), 0);
    QVERIFY(runs("hostapd"));
    QVERIFY(runs("dhcpd"));
}

void TestModeScript::anyOtherModeStopsTheAccessPoint()
{
    for (const char *mode : {"0", "1"}) {
        QCOMPARE(switchMode("2"), 0);
        QCOMPARE(switchMode(mode), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!runs("hostapd"), deadlineMs);
        QTRY_VERIFY_WITH_TIMEOUT(!runs("dhcpd"), deadlineMs);
        QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));
    }
}

void TestModeScript::partsOfTheAccessPointCanBeLeftOut_data()
{
    QTest::addColumn<bool>("interface");
    QTest::addColumn<bool>("hostapd");
    QTest::addColumn<bool>("dhcpd");
    QTest::newRow("interface") << false << true << false;
    QTest::newRow("hostapd") << true << false << true;
    QTest::newRow("dhcpd") << true << true << false;
    QTest::newRow("carrier") << true << true << true;
}

void TestModeScript::partsOfTheAccessPointCanBeLeftOut()
{
    QFETCH(bool, interface);
    QFETCH(bool, hostapd);
    QFETCH(bool, dhcpd);
    script.leaveOut(QTest::currentDataTag());

    QCOMPARE(switchMode("2"), 0);

    QCOMPARE(QFile::exists("/sys/class/net/wifi_ap"), interface);
    QCOMPARE(runs("hostapd"), hostapd);
    QCOMPARE(runs("dhcpd"), dhcpd);
}

void TestModeScript::theCarrierCanBeRemovedAndRestored()
{
    QCOMPARE(switchMode("2"), 0);
    QTRY_VERIFY_WITH_TIMEOUT(isInterfaceRunning(), deadlineMs);
    script.setCarrier(false);
    QTRY_VERIFY_WITH_TIMEOUT(!isInterfaceRunning(), deadlineMs);
    script.setCarrier(true);
    QTRY_VERIFY_WITH_TIMEOUT(isInterfaceRunning(), deadlineMs);
    script.removeInterface();
    QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));
}

WORLD_TEST_MAIN(TestModeScript)
#include "test_modescript.moc"
