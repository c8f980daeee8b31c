#include "board.h"
#include "busmonitor.h"
#include "daemontest.h"

/** The application's keep-alive, on the running daemon. */
class TestWatchdog : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theStartAccessesNoRegister();
    void firstCallAcknowledgesTheStartAndFeeds();
    void laterCallsOnlyFeed();
    void anUnreadableHpsStateStopsTheCall();
    void anHpsThatIsNotInitialisedStopsTheCall();
    void anyOtherHpsStateIsInitialised();
    void aRefusedAcknowledgementStopsTheCall();
    void theStartIsAcknowledgedByTheFirstCallThatCan();
    void aFailedFeedingIsAWriteError();
    void aFailedFirstFeedingDoesNotRepeatTheAcknowledgement();
    void keepAliveRefusesArguments();

private:
    QStringList calls() const;

    const Remote watchdog{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Watchdog")};
    const QString done = QStringLiteral("()");
    const QString hpsUnreadable =
        failure("Initialisation", QStringLiteral("Fail to read the HPS initialisation state"));
    const QString hpsNotInitialised =
        failure("Initialisation", QStringLiteral("The HPS is not initialised yet"));
    const QString notAcknowledged = failure(
        "Initialisation", QStringLiteral("Fail to prevent the MSP430 from rebooting the sysem"));
    const QString notFed =
        failure("Write", QStringLiteral("Fail to transfert the keepalive signal to the FPGA"));

    const QString hpsRead = QStringLiteral("KySocManager.getSoCRegister(107) = 0 1");
    const QString acknowledged = QStringLiteral("KyPowerman.setAckWatchdog() = 0");
    const QString fed = QStringLiteral("KySocManager.getSoCRegister(104) = 0 0");
};

namespace
{
const QString keepAlive = QStringLiteral("keepAlive");
}

/** The daemon's calls to the watchdogs. */
QStringList TestWatchdog::calls() const
{
    QStringList lines;
    for (const QString &line : Board::journal()) {
        if (line.startsWith("KyPowerman.") || line.startsWith("KySocManager.getSoCRegister(104)") ||
            line.startsWith("KySocManager.getSoCRegister(107)"))
            lines << line;
    }
    return lines;
}

void TestWatchdog::theStartAccessesNoRegister()
{
    QVERIFY(daemon.start());
    QCOMPARE(calls(), QStringList());
}

void TestWatchdog::firstCallAcknowledgesTheStartAndFeeds()
{
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(calls(), (QStringList{hpsRead, acknowledged, fed}));
}

void TestWatchdog::laterCallsOnlyFeed()
{
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), done);
    Board::clearJournal();
    Board::set("soc/0x6b", "0");
    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(calls(), (QStringList{fed, fed}));
    QCOMPARE(Board::get("powerman/watchdog_acknowledgements"), QStringLiteral("1"));
}

void TestWatchdog::anUnreadableHpsStateStopsTheCall()
{
    Board::remove("soc/0x6b");
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), hpsUnreadable);
    QCOMPARE(watchdog.call(keepAlive), hpsUnreadable);
    QCOMPARE(calls(), (QStringList{"KySocManager.getSoCRegister(107) = 1",
                                   "KySocManager.getSoCRegister(107) = 1"}));
}

void TestWatchdog::anHpsThatIsNotInitialisedStopsTheCall()
{
    Board::set("soc/0x6b", "0");
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), hpsNotInitialised);
    QCOMPARE(watchdog.call(keepAlive), hpsNotInitialised);
    QCOMPARE(calls(), (QStringList{"KySocManager.getSoCRegister(107) = 0 0",
                                   "KySocManager.getSoCRegister(107) = 0 0"}));
}

void TestWatchdog::anyOtherHpsStateIsInitialised()
{
    Board::set("soc/0x6b", "0x80000000");
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(Board::get("powerman/watchdog_acknowledgements"), QStringLiteral("1"));
}

void TestWatchdog::aRefusedAcknowledgementStopsTheCall()
{
    QVERIFY(daemon.start());
    Board::fault("KyPowerman.setAckWatchdog", "always");
    BusMonitor monitor;
    QCOMPARE(watchdog.call(keepAlive), notAcknowledged);
    QCOMPARE(monitor.takeFromDaemon(), (QStringList{"error " + notAcknowledged, "return ()"}));
    QCOMPARE(calls(), (QStringList{hpsRead, "KyPowerman.setAckWatchdog() = 1"}));
}

void TestWatchdog::theStartIsAcknowledgedByTheFirstCallThatCan()
{
    Board::remove("soc/0x6b");
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), hpsUnreadable);
    Board::set("soc/0x6b", "0");
    QCOMPARE(watchdog.call(keepAlive), hpsNotInitialised);
    Board::set("soc/0x6b", "1");
    Board::fault("KyPowerman.setAckWatchdog", "1");
    QCOMPARE(watchdog.call(keepAlive), notAcknowledged);
    Board::clearJournal();

    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(calls(), (QStringList{hpsRead, acknowledged, fed}));
}

void TestWatchdog::aFailedFeedingIsAWriteError()
{
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), done);
    Board::remove("soc/0x68");
    Board::clearJournal();
    QCOMPARE(watchdog.call(keepAlive), notFed);
    QCOMPARE(calls(), QStringList{"KySocManager.getSoCRegister(104) = 1"});
    Board::set("soc/0x68", "0");
    QCOMPARE(watchdog.call(keepAlive), done);
}

void TestWatchdog::aFailedFirstFeedingDoesNotRepeatTheAcknowledgement()
{
    Board::remove("soc/0x68");
    QVERIFY(daemon.start());
    QCOMPARE(watchdog.call(keepAlive), notFed);
    QCOMPARE(calls(), (QStringList{hpsRead, acknowledged, "KySocManager.getSoCRegister(104) = 1"}));
    Board::set("soc/0x68", "0");
    Board::clearJournal();
    QCOMPARE(watchdog.call(keepAlive), done);
    QCOMPARE(calls(), QStringList{fed});
}

void TestWatchdog::keepAliveRefusesArguments()
{
    QVERIFY(daemon.start());
    QVERIFY(watchdog.call(keepAlive, {1}).startsWith("org.freedesktop.DBus.Error.UnknownMethod: "));
    QCOMPARE(calls(), QStringList());
}

WORLD_TEST_MAIN(TestWatchdog)
#include "test_watchdog.moc"
