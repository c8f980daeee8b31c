#include "board.h"
#include "deadline.h"
#include "files.h"
#include "processes.h"

#include "kyals.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSocketNotifier>
#include <QTest>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
bool isUrgent(int descriptor, int milliseconds)
{
    pollfd waited = {descriptor, POLLPRI, 0};
    return poll(&waited, 1, milliseconds) > 0 && (waited.revents & POLLPRI);
}

/** Reads the interrupt from the descriptor, as the daemon does. */
void drain(int descriptor)
{
    char bytes[8];
    const ssize_t count = read(descriptor, bytes, sizeof bytes);
    static_cast<void>(count);
}

/** Runs in another process; exits while its sensor is active. @return the exit status */
int leaveWithASensor()
{
    KyAls &sensor = *new KyAls;
    if (sensor.init() != 0 || sensor.interruptEnable(true) != 0)
        return 2;
    std::exit(3);
}

/** Returns true if one of our inotify descriptors has unread events. */
bool areChangesUnread()
{
    const QDir descriptors(QStringLiteral("/proc/self/fd"));
    for (const QFileInfo &entry :
         descriptors.entryInfoList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)) {
        int bytes = 0;
        if (entry.symLinkTarget().endsWith(QLatin1String("anon_inode:inotify")) &&
            (ioctl(entry.fileName().toInt(), FIONREAD, &bytes) != 0 || bytes > 0))
            return true;
    }
    return false;
}

bool doOtherThreadsSleep()
{
    const QList<int> threads = threadsOf(getpid());
    return std::all_of(threads.begin(), threads.end(),
                       [](int thread) { return thread == getpid() || stateOf(thread) == "S"; });
}

/** Returns true if the sensor has noticed all changes of the board and raises no interrupt. */
bool staysQuiet(int descriptor)
{
    // The sensor's thread sleeps only between its evaluations.
    return QTest::qWaitFor([] { return !areChangesUnread() && doOtherThreadsSleep(); },
                           deadlineMs) &&
           !isUrgent(descriptor, 0);
}
} // namespace

/** The interrupt of the simulated light sensor. */
class TestBoardSensor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void lightBeyondTheBandInterrupts_data();
    void lightBeyondTheBandInterrupts();
    void lightInsideTheBandDoesNotInterrupt_data();
    void lightInsideTheBandDoesNotInterrupt();
    void lightThatComesBackInterrupts();
    void lightThatChangesOutsideTheBandInterrupts();
    void rewritingTheSameLightDoesNotInterrupt();
    void aNotifierFiresOnce();
    void everyWayOfWritingTheFileInterrupts_data();
    void everyWayOfWritingTheFileInterrupts();

    void oneInterruptIsPendingUntilAcknowledged();
    void aChangeBeforeTheAcknowledgementIsNotLost();
    void aChangeThatWasReadDoesNotInterruptAgain();
    void readingTheLightDoesNotWithdrawTheInterrupt();
    void lightThatStaysOutsideInterruptsAgain();
    void lightThatIsBackInsideDoesNotInterruptAgain();

    void disabledInterruptsDoNotOccur();
    void lightThatWasReadBeforeEnablingDoesNotInterruptAtOnce();
    void lightThatChangedBeforeEnablingInterrupts();
    void disablingWithdrawsTheInterrupt();
    void initialisingTurnsInterruptsOff();
    void newThresholdsAreCompared();
    void anInterruptCanBeRaisedByHand();

    void nonsenseDoesNotInterruptAndLaterValuesDo();
    void aRecreatedDirectoryIsWatchedAgain();
    void theDescriptorDoesNotBlockAndIsNotInherited();
    void withoutALoopbackInterfaceThereIsNoDescriptor();
    void twoSensorsBothInterrupt();

    void aProcessCanExitWithAnActiveSensor();
    void destroyingTheSensorInAForkedChildDoesNotAffectTheParent();
    void theSensorsThreadBlocksAllSignals();

private:
    float lux() const;
    bool acknowledge() const;
    void leaveBand() const;

    std::unique_ptr<KyAls> m_sensor;
    int m_line = -1;
};

/** Sets up a sensor at 120 lux, with a band of 100 to 175 lux and a persistence time of 25.5 s. */
void TestBoardSensor::init()
{
    Board::reset();
    m_sensor.reset(new KyAls);
    QCOMPARE(m_sensor->init(), 0);
    QCOMPARE(lux(), 120.0F);
    QCOMPARE(m_sensor->setThresholds(m_sensor->convLuxInExponentMantissaByte(175),
                                     m_sensor->convLuxInExponentMantissaByte(100)),
             0);
    QCOMPARE(m_sensor->setThresholdsTimer(255), 0);
    QCOMPARE(m_sensor->interruptEnable(true), 0);
    m_line = m_sensor->getinterruptHandler();
    QVERIFY(m_line >= 0);
}

void TestBoardSensor::cleanup()
{
    m_sensor.reset();
}

float TestBoardSensor::lux() const
{
    float value = -1;
    return m_sensor->readLux(&value) == 0 ? value : -1;
}

/** Returns true if there was an interrupt to acknowledge. */
bool TestBoardSensor::acknowledge() const
{
    bool raised = false;
    return m_sensor->interruptRead(&raised) == 0 && raised;
}

void TestBoardSensor::leaveBand() const
{
    Board::set("als/lux", "500");
    QVERIFY(isUrgent(m_line, deadlineMs));
    drain(m_line);
}

void TestBoardSensor::lightBeyondTheBandInterrupts_data()
{
    QTest::addColumn<QString>("light");

    for (const char *light : {"176", "1000", "0", "99.9"})
        QTest::newRow(light) << QString::fromLatin1(light);
}

void TestBoardSensor::lightBeyondTheBandInterrupts()
{
    QFETCH(QString, light);

    Board::set("als/lux", light);

    QVERIFY(isUrgent(m_line, deadlineMs));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("1"));
    QCOMPARE(lux(), light.toFloat());
    drain(m_line);
    QVERIFY(acknowledge());
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
    QVERIFY(staysQuiet(m_line));
    QVERIFY(!acknowledge());
}

void TestBoardSensor::lightInsideTheBandDoesNotInterrupt_data()
{
    QTest::addColumn<QString>("light");

    for (const char *light : {"100", "121", "175", "175.9"})
        QTest::newRow(light) << QString::fromLatin1(light);
}

void TestBoardSensor::lightInsideTheBandDoesNotInterrupt()
{
    QFETCH(QString, light);

    Board::set("als/lux", light);

    QVERIFY(staysQuiet(m_line));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
}

void TestBoardSensor::lightThatComesBackInterrupts()
{
    leaveBand();
    QVERIFY(acknowledge());

    Board::set("als/lux", "120");

    QVERIFY(isUrgent(m_line, deadlineMs));
    QVERIFY(acknowledge());
}

void TestBoardSensor::lightThatChangesOutsideTheBandInterrupts()
{
    leaveBand();
    QVERIFY(acknowledge());

    Board::set("als/lux", "501");

    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::rewritingTheSameLightDoesNotInterrupt()
{
    leaveBand();
    QVERIFY(acknowledge());

    Board::set("als/lux", "500.0");

    QVERIFY(staysQuiet(m_line));
}

void TestBoardSensor::aNotifierFiresOnce()
{
    QList<float> activations;
    QSocketNotifier notifier(m_line, QSocketNotifier::Exception);
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        activations << lux();
        drain(m_line);
        acknowledge();
    });

    Board::set("als/lux", "500");

    QTRY_VERIFY_WITH_TIMEOUT(!activations.isEmpty(), deadlineMs);
    QVERIFY(staysQuiet(m_line));
    QCoreApplication::processEvents();
    QCOMPARE(activations, QList<float>{500.0F});
}

void TestBoardSensor::everyWayOfWritingTheFileInterrupts_data()
{
    QTest::addColumn<QString>("command");

    QTest::newRow("echo") << "echo 500 >lux";
    QTest::newRow("dd in place") << "printf 500 | dd of=lux conv=notrunc status=none";
    QTest::newRow("mv") << "echo 500 >new && mv new lux";
    QTest::newRow("away and back") << "mv lux aside; sed -i s/120/500/ aside; mv aside lux";
}

void TestBoardSensor::everyWayOfWritingTheFileInterrupts()
{
    QFETCH(QString, command);

    QCOMPARE(QProcess::execute("sh", {"-c", "cd " + Board::pathOf("als") + " && " + command}), 0);

    QVERIFY(isUrgent(m_line, deadlineMs));
    QCOMPARE(lux(), 500.0F);
}

void TestBoardSensor::oneInterruptIsPendingUntilAcknowledged()
{
    leaveBand();

    for (const char *light : {"600", "120", "5", "700"})
        Board::set("als/lux", light);

    QVERIFY(staysQuiet(m_line));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("1"));
}

void TestBoardSensor::aChangeBeforeTheAcknowledgementIsNotLost()
{
    leaveBand();
    QCOMPARE(lux(), 500.0F);
    Board::set("als/lux", "5");

    QVERIFY(acknowledge());

    QVERIFY(isUrgent(m_line, deadlineMs));
    QCOMPARE(lux(), 5.0F);
}

void TestBoardSensor::aChangeThatWasReadDoesNotInterruptAgain()
{
    leaveBand();
    Board::set("als/lux", "5");
    QCOMPARE(lux(), 5.0F);

    QVERIFY(acknowledge());

    QVERIFY(staysQuiet(m_line));
}

void TestBoardSensor::readingTheLightDoesNotWithdrawTheInterrupt()
{
    for (int round = 0; round < 100; ++round) {
        const float light = 500.0F + static_cast<float>(round);
        Board::set("als/lux", QString::number(double(light)));
        // This read races with the sensor, which notices the change before or after it.
        QCOMPARE(lux(), light);
        QVERIFY(isUrgent(m_line, deadlineMs));
        drain(m_line);
        QVERIFY(acknowledge());
    }
}

void TestBoardSensor::lightThatStaysOutsideInterruptsAgain()
{
    QCOMPARE(m_sensor->setThresholdsTimer(1), 0);
    leaveBand();
    QCOMPARE(lux(), 500.0F);

    for (int round = 0; round < 2; ++round) {
        QElapsedTimer timer;
        timer.start();
        QVERIFY(acknowledge());
        QVERIFY(isUrgent(m_line, deadlineMs));
        QVERIFY(timer.elapsed() >= 100);
        drain(m_line);
    }
}

void TestBoardSensor::lightThatIsBackInsideDoesNotInterruptAgain()
{
    QCOMPARE(m_sensor->setThresholdsTimer(1), 0);
    leaveBand();
    Board::set("als/lux", "120");
    QCOMPARE(lux(), 120.0F);
    QVERIFY(acknowledge());

    // Twice the persistence time that the test set.
    QVERIFY(!isUrgent(m_line, 200));
}

void TestBoardSensor::disabledInterruptsDoNotOccur()
{
    QCOMPARE(m_sensor->interruptEnable(false), 0);

    Board::set("als/lux", "500");

    QVERIFY(staysQuiet(m_line));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
    QVERIFY(!acknowledge());
}

void TestBoardSensor::lightThatWasReadBeforeEnablingDoesNotInterruptAtOnce()
{
    QCOMPARE(m_sensor->setThresholdsTimer(2), 0);
    QCOMPARE(m_sensor->interruptEnable(false), 0);
    Board::set("als/lux", "20000");
    QCOMPARE(lux(), 20000.0F);
    QElapsedTimer timer;
    timer.start();

    QCOMPARE(m_sensor->interruptEnable(true), 0);

    QVERIFY(isUrgent(m_line, deadlineMs));
    QVERIFY(timer.elapsed() >= 200);
}

void TestBoardSensor::lightThatChangedBeforeEnablingInterrupts()
{
    QCOMPARE(m_sensor->interruptEnable(false), 0);
    Board::set("als/lux", "500");

    QCOMPARE(m_sensor->interruptEnable(true), 0);

    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::disablingWithdrawsTheInterrupt()
{
    Board::set("als/lux", "500");
    QVERIFY(isUrgent(m_line, deadlineMs));

    QCOMPARE(m_sensor->interruptEnable(false), 0);

    QVERIFY(!isUrgent(m_line, 0));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
}

void TestBoardSensor::initialisingTurnsInterruptsOff()
{
    leaveBand();

    QCOMPARE(m_sensor->init(), 0);

    QCOMPARE(Board::get("als/interrupt_enabled"), QStringLiteral("0"));
    QCOMPARE(Board::get("als/interrupt"), QStringLiteral("0"));
    Board::set("als/lux", "5");
    QVERIFY(staysQuiet(m_line));
}

void TestBoardSensor::newThresholdsAreCompared()
{
    leaveBand();
    QCOMPARE(lux(), 500.0F);
    QVERIFY(acknowledge());
    const unsigned char high = m_sensor->convLuxInExponentMantissaByte(1000);
    const unsigned char low = m_sensor->convLuxInExponentMantissaByte(450);

    QCOMPARE(m_sensor->setThresholds(high, low), 0);

    QVERIFY(staysQuiet(m_line));
    Board::set("als/lux", "900");
    QVERIFY(staysQuiet(m_line));
    Board::set("als/lux", "120");
    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::anInterruptCanBeRaisedByHand()
{
    Board::set("als/interrupt", "1");

    QVERIFY(isUrgent(m_line, deadlineMs));
    drain(m_line);
    QVERIFY(acknowledge());
    QVERIFY(staysQuiet(m_line));
}

void TestBoardSensor::nonsenseDoesNotInterruptAndLaterValuesDo()
{
    for (const char *text : {"", "bright", "-5", "1e999"}) {
        Board::set("als/lux", text);
        QVERIFY(staysQuiet(m_line));
        QCOMPARE(lux(), -1.0F);
    }

    Board::set("als/lux", "500");

    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::aRecreatedDirectoryIsWatchedAgain()
{
    // The sensor's thread reads the files when one is removed, and a read creates a missing file:
    // repeat the removal until it succeeds.
    QTRY_VERIFY_WITH_TIMEOUT(QDir(Board::pathOf("als")).removeRecursively(), deadlineMs);
    QCOMPARE(lux(), 120.0F);
    Board::set("als/threshold_high", "101");
    Board::set("als/interrupt_enabled", "1");

    Board::set("als/lux", "500");

    QVERIFY(isUrgent(m_line, deadlineMs));
    drain(m_line);
    QVERIFY(acknowledge());
    Board::set("als/lux", "600");
    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::theDescriptorDoesNotBlockAndIsNotInherited()
{
    char byte = 0;
    QCOMPARE(int(read(m_line, &byte, 1)), -1);
    QCOMPARE(errno, EAGAIN);
    QVERIFY(fcntl(m_line, F_GETFD) & FD_CLOEXEC);
    QCOMPARE(m_sensor->getinterruptHandler(), m_line);
}

void TestBoardSensor::withoutALoopbackInterfaceThereIsNoDescriptor()
{
    KyAls other;
    QCOMPARE(QProcess::execute("ip", {"link", "set", "lo", "down"}), 0);

    const int line = other.getinterruptHandler();
    const int initialised = other.init();
    const int enabled = other.interruptEnable(true);

    QCOMPARE(QProcess::execute("ip", {"link", "set", "lo", "up"}), 0);
    QCOMPARE(line, -2);
    QCOMPARE(initialised, 1);
    QCOMPARE(enabled, 1);
    QCOMPARE(other.init(), 0);
}

void TestBoardSensor::twoSensorsBothInterrupt()
{
    KyAls other;
    QCOMPARE(other.interruptEnable(true), 0);
    const int otherLine = other.getinterruptHandler();

    Board::set("als/lux", "500");

    QVERIFY(isUrgent(m_line, deadlineMs));
    QVERIFY(isUrgent(otherLine, deadlineMs));
}

void TestBoardSensor::aProcessCanExitWithAnActiveSensor()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--leave"});

    QVERIFY(process.waitForFinished());

    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 3);
}

void TestBoardSensor::destroyingTheSensorInAForkedChildDoesNotAffectTheParent()
{
    const pid_t child = fork();
    if (child == 0) {
        m_sensor.reset();
        _exit(5);
    }
    int status = 0;

    QVERIFY(QTest::qWaitFor([&] { return waitpid(child, &status, WNOHANG) == child; }, deadlineMs));

    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 5);
    Board::set("als/lux", "500");
    QVERIFY(isUrgent(m_line, deadlineMs));
}

void TestBoardSensor::theSensorsThreadBlocksAllSignals()
{
    m_sensor.reset();
    const QList<int> before = threadsOf(getpid());
    KyAls sensor;
    QCOMPARE(sensor.interruptEnable(true), 0);
    // The signal mask takes effect once the thread runs, which the interrupt proves.
    Board::set("als/interrupt", "1");
    QVERIFY(isUrgent(sensor.getinterruptHandler(), deadlineMs));

    QList<int> after = threadsOf(getpid());
    for (const int thread : before)
        after.removeAll(thread);
    QCOMPARE(after.size(), 1);
    const QByteArray mask = statusOf(after.first(), "SigBlk");
    const quint64 childSignal = quint64(1) << (SIGCHLD - 1);
    QVERIFY2(mask.toULongLong(nullptr, 16) & childSignal, mask);
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == QLatin1String("--leave"))
        return leaveWithASensor();
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test writes to /run and takes its network down: run it in a private world");
    TestBoardSensor test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_boardsensor.moc"
