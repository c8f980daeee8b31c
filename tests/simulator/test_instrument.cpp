#include "daemon.h"
#include "deadline.h"
#include "terminalprogram.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

/** The virtual instrument as ./run starts it, from outside. */
class TestInstrument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCommandRunsInsideAndItsStatusIsKept();
    void theInstrumentHasItsFilesAndPrograms();
    void ethernetComesUpWithARealConnMan();
    void wifiComesUpWithoutARadio();
    void theDaemonGoesAwayAndComesBack();
    void aCrashedDaemonIsStartedAgain();
    void withSpeedTimePassesFaster();
    void theNetworkWorksWhenTimePassesFaster();
    void withoutSpeedTheClockIsThatOfTheMachine();
    void theShellInTheInstrumentCompletesKyboardctl();
    void inTheForegroundTheInstrumentShowsItsScreenUntilItIsEnded();

private:
    static QStringList arguments(const QStringList &command);
    static QString output(const QStringList &command, int *status = nullptr);
};

QStringList TestInstrument::arguments(const QStringList &command)
{
    return QString::fromLocal8Bit(qgetenv("WORLD_OPTIONS")).split(' ') + QStringList{INSTRUMENT} +
           command;
}

QString TestInstrument::output(const QStringList &command, int *status)
{
    QProcess world;
    world.setProcessChannelMode(QProcess::MergedChannels);
    world.start(WORLD, arguments(command));
    if (!world.waitForFinished(deadlineMs))
        return QStringLiteral("no end");
    if (status)
        *status = world.exitCode();
    return world.readAll();
}

void TestInstrument::aCommandRunsInsideAndItsStatusIsKept()
{
    int status = -1;
    QCOMPARE(output({"busctl", "--system", "call", "com.orvendis.Strandel.BoardManager",
                     "/KyConfigMgr", "com.orvendis.Strandel.BoardManager.Users", "getUser"},
                    &status),
             QStringLiteral("s \"user1\"\n"));
    QCOMPARE(status, 0);
    output({"sh", "-c", "exit 42"}, &status);
    QCOMPARE(status, 42);
}

void TestInstrument::theInstrumentHasItsFilesAndPrograms()
{
    QCOMPARE(output({"sh", "-c",
                     "ls /tmp/User_part; readlink /tmp/User_part/system;"
                     "cat /tmp/User_part/user3_profile/measure/units.conf | head -1;"
                     "kyboardctl version software"}),
             QStringLiteral("default_user_profile\nsystem\nuser1_profile\nuser2_profile\n"
                            "user3_profile\nuser4_profile\n/tmp/User_part/user1_profile\n"
                            "[Units]\n"
                            "BSP             Strandel BSP 3.2\nKyApp           4.1.0\n"
                            "KyBoardManager  %1\n")
                 .arg(Daemon::version()));
}

void TestInstrument::ethernetComesUpWithARealConnMan()
{
    const QString printed =
        output({"sh", "-c", "kyboardctl ethernet connect && kyboardctl ethernet ipv4"});
    QVERIFY2(printed.startsWith("online\nAddress  10.77.0."), qPrintable(printed));
}

void TestInstrument::wifiComesUpWithoutARadio()
{
    const QString printed = output({"sh", "-c",
                                    "echo seven seas | kyboardctl wifi connect Workshop && "
                                    "kyboardctl wifi ipv4"});
    QVERIFY2(printed.contains("online\nAddress  10.78.0."), qPrintable(printed));
}

void TestInstrument::theDaemonGoesAwayAndComesBack()
{
    const QString printed =
        output({"sh", "-c",
                "cd " TREE "/simulator; first=$(pidof KyBoardManager); kyboardctl led set WPS ON;"
                "./daemon start; ./daemon kill; pidof KyBoardManager;"
                "./daemon stop; kyboardctl user get; ./daemon start; kyboardctl user get;"
                "./daemon restart; test $(pidof KyBoardManager) != $first && kyboardctl user get;"
                "./daemon stop; pidof KyBoardManager; cat /run/strandel-board/leds/WPS;"
                "cat /run/KyBoardManager.log; ./daemon away"});
    QCOMPARE(printed.section("usage:", 0, 0),
             QStringLiteral("daemon: it runs already\ndaemon: it does not run\n"
                            "kyboardctl: the board manager is not on the system bus\n"
                            "user1\nuser1\nON\n"
                            "(The daemon ended with status 137; \"daemon start\" starts it "
                            "again.)\n"
                            "(The daemon ended with status 143; \"daemon start\" starts it "
                            "again.)\n"
                            "(The daemon ended with status 143; \"daemon start\" starts it "
                            "again.)\n"));
    QVERIFY(printed.contains("usage: daemon COMMAND"));
}

/**
 * After a crash, the function launch() of simulator/daemon still runs for a moment, and then
 * removes the PID file. It must not remove the PID file of the next daemon.
 */
void TestInstrument::aCrashedDaemonIsStartedAgain()
{
    QCOMPARE(
        output(
            {"sh", "-c",
             "cd " TREE
             "/simulator; for crash in 1 2 3; do crashed=$(cat /run/KyBoardManager.pid) || exit; "
             "kill -KILL $crashed; while [ -e /proc/$crashed ]; do :; done; ./daemon start; "
             "[ $(cat /run/KyBoardManager.pid) = $(pidof KyBoardManager) ] "
             "&& echo $crash; done; grep -c 'status 137' /run/KyBoardManager.log"}),
        QStringLiteral("1\n2\n3\n3\n"));
}

/** The daemon checks the charge every 10 s eleven times, and then every 300 s. */
void TestInstrument::withSpeedTimePassesFaster()
{
    QElapsedTimer timer;
    timer.start();
    const QString printed = output(
        {"--speed", "60", "bash", "-c",
         TREE "/simulator/speed; cd /run/strandel-board && : >journal;"
              "until [ $(grep -c getBatteryInfo journal) -ge 12 ]; do sleep 0.1; done;"
              "echo 15 >battery/charge; until [ $(cat leds/BAT_RS1) = ON ]; do sleep 0.1; done;"
              "kyboardctl battery status"});
    QCOMPARE(printed, QStringLiteral("60\nCHARGER_OFF_BAT_INF_20\n"));
    QVERIFY2(timer.elapsed() < 60000, qPrintable(QString::number(timer.elapsed())));
}

/**
 * A scan ends after 15 s of the daemon's time, which are 3.75 s at speed 4. A busy machine can take
 * longer: repeat the commands.
 */
void TestInstrument::theNetworkWorksWhenTimePassesFaster()
{
    QCOMPARE(output({"--speed", "4", "bash", "-c",
                     "until kyboardctl ethernet connect; do :; done;"
                     "until mapfile -t networks < <(kyboardctl wifi scan); [ ${#networks[*]} = 4 "
                     "]; do :; done;"
                     "printf '%s\\n' \"${networks[@]}\""}),
             QStringLiteral("online\nCafe       65 %  none\nGrumpy     50 %  psk\n"
                            "Hall       62 %  psk\nWorkshop   72 %  psk\n"));
}

void TestInstrument::withoutSpeedTheClockIsThatOfTheMachine()
{
    QCOMPARE(
        output({"sh", "-c",
                TREE "/simulator/speed; tr '\\0' '\\n' </proc/$(pidof KyBoardManager)/environ | "
                     "grep -e FAKETIME -e PRELOAD"}),
        QStringLiteral("1\n"));
}

void TestInstrument::theShellInTheInstrumentCompletesKyboardctl()
{
    qputenv("TERM", "dumb");
    TerminalProgram bash(WORLD, arguments({"bash", "-i"}));
    bash.type("PS1='rea''dy> '\n");
    QVERIFY2(bash.shows("ready> "), bash.shown().constData());
    bash.type("kyboardctl use\t");
    QVERIFY2(bash.shows("kyboardctl user "), bash.shown().constData());
    bash.type("get\n");
    QVERIFY2(bash.shows("\nuser1\r\n"), bash.shown().constData());
    bash.type("exit 3\n");
    QCOMPARE(bash.waitForEnd(), 3);
}

void TestInstrument::inTheForegroundTheInstrumentShowsItsScreenUntilItIsEnded()
{
    QProcess world;
    world.setProcessChannelMode(QProcess::MergedChannels);
    world.start(WORLD, arguments({}));
    QByteArray screen;
    QVERIFY(QTest::qWaitFor(
        [&] {
            screen += world.readAll();
            return screen.contains("Ctrl-C ends it. The daemon's log:\n");
        },
        deadlineMs));
    QVERIFY(screen.contains("KyBoardManager, process"));
    QVERIFY(screen.contains("active: user1\n"));
    QCOMPARE(screen.count("  ./run -- "), 3);
    QVERIFY(screen.count('\n') <= 24);

    world.terminate();

    QVERIFY(world.waitForFinished(deadlineMs));
    QCOMPARE(world.exitStatus(), QProcess::NormalExit);
    QCOMPARE(world.exitCode(), 0);
}

QTEST_GUILESS_MAIN(TestInstrument)
#include "test_instrument.moc"
