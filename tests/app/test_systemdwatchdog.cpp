#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"
#include "deadline.h"
#include "notifysocket.h"
#include "processes.h"
#include "systemdwatchdog.h"

#include <QProcess>
#include <QTest>

#include <csignal>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/** Pings of systemd's watchdog, and their absence without a bus. */
class TestSystemdWatchdog : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theIntervalIsAnEighth_data();
    void theIntervalIsAnEighth();

    void systemdIsPingedPeriodically_data();
    void systemdIsPingedPeriodically();
    void aWatchdogOfThisProcessIsPinged();
    void aWatchdogOfAnotherProcessIsNotPinged();
    void withoutAWatchdogTheBusIsNotCalled();
    void aSystemdThatDoesNotReadDoesNotBlockTheDaemon();
    void aSuspendedBusStopsThePings();
    void aBusThatDoesNotAnswerIsAskedAgain();
    void aBusThatEndsStopsThePings();
    void aBusyMainThreadStopsThePings();

    void cleanup();

private:
    void supervise(const QString &socketName);
    bool isPinged(int timeoutMs = deadlineMs) { return m_systemd.takePing(timeoutMs); }
    bool isSilent();
    void fillSocket();
    void startSecondBus();

    NotifySocket m_systemd;
    QProcess m_bus;
};

namespace
{
const QString socketPath = QStringLiteral("/run/notify");
const char interval[] = "800000";
} // namespace

void TestSystemdWatchdog::cleanup()
{
    if (m_bus.state() != QProcess::NotRunning)
        resumeProcess(m_bus.processId());
    DaemonTest::cleanup();
    daemon.resetEnvironment();
    daemon.setWrapper({});
    m_bus.kill();
    m_bus.waitForFinished();
    m_systemd.close();
}

/** Listens like systemd, and sets the daemon's environment accordingly. */
void TestSystemdWatchdog::supervise(const QString &socketName)
{
    QVERIFY(m_systemd.listen(socketName));
    daemon.setEnvironment("NOTIFY_SOCKET", socketName);
    daemon.setEnvironment("WATCHDOG_USEC", interval);
}

/** Returns true if no ping arrives for several intervals. */
bool TestSystemdWatchdog::isSilent()
{
    return QTest::qWaitFor([this] { return !isPinged(500); }, deadlineMs) && !isPinged(500);
}

/** Fills the socket's buffer with messages that systemd does not read. */
void TestSystemdWatchdog::fillSocket()
{
    sockaddr_un address = {};
    socklen_t size = sizeof address;
    QCOMPARE(getsockname(m_systemd.descriptor(), reinterpret_cast<sockaddr *>(&address), &size), 0);
    const int client = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    while (sendto(client, "x", 1, MSG_DONTWAIT, reinterpret_cast<const sockaddr *>(&address),
                  size) == 1) {
    }
    QCOMPARE(errno, EAGAIN);
    close(client);
}

/** Starts a bus for the daemon only, so that the test can continue when that bus stops. */
void TestSystemdWatchdog::startSecondBus()
{
    const QString place = QStringLiteral("unix:path=/run/dbus/second");
    unlink("/run/dbus/second");
    m_bus.start("dbus-daemon", {"--config-file=/run/dbus/system.conf", "--address=" + place,
                                "--nofork", "--print-address"});
    QVERIFY(m_bus.waitForReadyRead(deadlineMs));
    daemon.setEnvironment("DBUS_SYSTEM_BUS_ADDRESS", place);
}

void TestSystemdWatchdog::theIntervalIsAnEighth_data()
{
    QTest::addColumn<QByteArray>("allowed");
    QTest::addColumn<QByteArray>("process");
    QTest::addColumn<int>("expected");
    const auto row = [](const char *allowed, const char *process, int expected) {
        QTest::addRow("%s for %s", allowed, process)
            << QByteArray(allowed) << QByteArray(process) << expected;
    };
    row("30000000", "", 3750);
    row("30000000", "77", 3750);
    row("30000000", "78", 0);
    row("30000000", "0", 0);
    row("30000000", "none", 0);
    row("1000000", "", 125);
    row("8000", "", 1);
    row("1000", "", 1);
    row("999", "", 0);
    row("0", "", 0);
    row("", "", 0);
    row("", "77", 0);
    row("-30000000", "", 0);
    row("30s", "", 0);
    row("9223372036854775807", "", 2147483647);
    row("9223372036854775808", "", 0);
}

void TestSystemdWatchdog::theIntervalIsAnEighth()
{
    QFETCH(QByteArray, allowed);
    QFETCH(QByteArray, process);
    QFETCH(int, expected);
    QCOMPARE(watchdogInterval(allowed, process, 77), expected);
}

void TestSystemdWatchdog::systemdIsPingedPeriodically_data()
{
    QTest::addColumn<QString>("socketName");
    QTest::newRow("path") << socketPath;
    QTest::newRow("abstract") << QStringLiteral("@notify");
}

void TestSystemdWatchdog::systemdIsPingedPeriodically()
{
    QFETCH(QString, socketName);
    supervise(socketName);
    QVERIFY(daemon.start());
    for (int ping = 0; ping < 5; ++ping)
        QVERIFY(isPinged());
}

void TestSystemdWatchdog::aWatchdogOfThisProcessIsPinged()
{
    supervise(socketPath);
    daemon.setWrapper({"sh", "-c", "WATCHDOG_PID=$$ exec \"$@\"", "sh"});
    QVERIFY(daemon.start());
    QVERIFY(isPinged());
}

void TestSystemdWatchdog::aWatchdogOfAnotherProcessIsNotPinged()
{
    BusMonitor monitor;
    supervise(socketPath);
    daemon.setEnvironment("WATCHDOG_PID", "1");
    QVERIFY(daemon.start());
    QVERIFY(monitor.takeFromDaemon().filter("GetId").isEmpty());
    QVERIFY(isSilent());
}

void TestSystemdWatchdog::withoutAWatchdogTheBusIsNotCalled()
{
    BusMonitor monitor;
    daemon.controlClock();
    daemon.setEnvironment("NOTIFY_SOCKET", socketPath);
    QVERIFY(daemon.start());
    daemon.letTimePass(60);
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
    for (const BusMessage &message : monitor.take())
        QVERIFY2(message.member != "GetId", qPrintable(message.line()));
}

void TestSystemdWatchdog::aSystemdThatDoesNotReadDoesNotBlockTheDaemon()
{
    supervise(socketPath);
    fillSocket();
    BusMonitor monitor;
    QVERIFY(daemon.start());

    int questions = 0;
    QTRY_VERIFY2_WITH_TIMEOUT(
        (questions += monitor.takeFromDaemon("org.freedesktop.DBus").filter("GetId").size()) > 3,
        "the main loop waits for systemd", deadlineMs);

    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
    char text[100];
    while (recv(m_systemd.descriptor(), text, sizeof text, MSG_DONTWAIT) >= 0) {
    }
    QVERIFY(isPinged());
}

void TestSystemdWatchdog::aSuspendedBusStopsThePings()
{
    supervise(socketPath);
    startSecondBus();
    daemon.launch();
    QVERIFY(isPinged());

    QVERIFY(stopProcess(m_bus.processId()));

    QVERIFY(isSilent());
    QVERIFY(daemon.isRunning());
    QVERIFY(resumeProcess(m_bus.processId()));
    QVERIFY(isPinged());
}

/** Each reply of the bus causes a ping. A resumed bus sends several replies in one interval. */
void TestSystemdWatchdog::aBusThatDoesNotAnswerIsAskedAgain()
{
    supervise(socketPath);
    // An interval of 2 s.
    daemon.setEnvironment("WATCHDOG_USEC", "16000000");
    startSecondBus();
    daemon.launch();
    QVERIFY(isPinged());
    QVERIFY(stopProcess(m_bus.processId()));

    // A ping can be on its way when the bus stops.
    QTRY_VERIFY_WITH_TIMEOUT(!isPinged(4000), deadlineMs);

    QVERIFY(resumeProcess(m_bus.processId()));
    QVERIFY(isPinged());
    for (int ping = 0; ping < 3; ++ping)
        QVERIFY(isPinged(1500));
}

void TestSystemdWatchdog::aBusThatEndsStopsThePings()
{
    supervise(socketPath);
    startSecondBus();
    daemon.launch();
    QVERIFY(isPinged());

    m_bus.kill();
    QVERIFY(m_bus.waitForFinished());

    QVERIFY(isSilent());
    QVERIFY(daemon.isRunning());
}

void TestSystemdWatchdog::aBusyMainThreadStopsThePings()
{
    supervise(socketPath);
    QVERIFY(daemon.start());
    QVERIFY(isPinged());
    Board::fault("KyLeds.setLedState", "hold");
    const QDBusPendingCall held =
        Remote("/KyDeviceMgr", "LED").start("setLEDStatus", {"WIFI", "ON"});
    QVERIFY(Board::waitFor("held", "KyLeds.setLedState"));

    QVERIFY(isSilent());
    Board::clearFaults();

    QVERIFY(isPinged());
}

WORLD_TEST_MAIN(TestSystemdWatchdog)
#include "test_systemdwatchdog.moc"
