#include "daemon.h"

#include "files.h"
#include "kernelevents.h"
#include "processes.h"
#include "remote.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QTest>

#include <csignal>
#include <cstdio>

namespace
{
const QString clockFile = QStringLiteral("/run/daemon-clock");

// Not a full second, because Qt aligns coarse timers to full seconds. libfaketime converts the time
// to a floating-point number, which holds this fraction exactly.
const QDateTime stoppedClock(QDate(2030, 1, 1), QTime(12, 0, 0, 125));

/** Makes the daemon's main thread and the thread of Qt D-Bus read the clock soon. */
void wakeDaemon()
{
    for (const char *name :
         {"org.freedesktop.DBus.Peer.Ping", "org.freedesktop.DBus.Introspectable.Introspect"}) {
        const QString method = QString::fromLatin1(name);
        QDBusConnection::systemBus().asyncCall(
            QDBusMessage::createMethodCall(daemonName, QStringLiteral("/KyComMgr"),
                                           method.section('.', 0, -2), method.section('.', -1)));
    }
}
} // namespace

Daemon::Daemon()
{
    resetEnvironment();
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { m_log += m_process.readAllStandardError(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { m_output += m_process.readAllStandardOutput(); });
}

Daemon::~Daemon()
{
    stop();
}

QString Daemon::version()
{
    return QStringLiteral(PROJECT_VERSION);
}

void Daemon::setWrapper(const QStringList &wrapper)
{
    m_wrapper = wrapper;
}

void Daemon::speedUp(int factor)
{
    // Preload the library. The program faketime would run the daemon as a child process, which
    // would continue to run after faketime was killed.
    setWrapper({QStringLiteral("env"), QStringLiteral("FAKETIME=+0 x%1").arg(factor),
                QStringLiteral("LD_PRELOAD=/usr/$LIB/faketime/libfaketimeMT.so.1")});
}

void Daemon::controlClock()
{
    takeClock(false);
}

void Daemon::stopClock()
{
    takeClock(true);
}

void Daemon::takeClock(bool isStopped)
{
    m_isClockStopped = isStopped;
    m_millisecondsPassed = 0;
    writeClock();
    setWrapper({QStringLiteral("env"), QStringLiteral("FAKETIME_NO_CACHE=1"),
                QStringLiteral("FAKETIME_TIMESTAMP_FILE=") + clockFile,
                QStringLiteral("LD_PRELOAD=/usr/$LIB/faketime/libfaketimeMT.so.1")});
}

void Daemon::writeClock() const
{
    const QDateTime time = stoppedClock.addMSecs(m_millisecondsPassed);
    // Replace atomically: the daemon must not read a partial file.
    writeFile(clockFile + QStringLiteral(".new"),
              m_isClockStopped ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")).toLatin1()
                               : '+' + QByteArray::number(m_millisecondsPassed / 1000.0, 'f', 3));
    if (std::rename(qPrintable(clockFile + QStringLiteral(".new")), qPrintable(clockFile)) != 0)
        qFatal("cannot set the clock");
}

void Daemon::letTimePass(int seconds)
{
    letMillisecondsPass(seconds * 1000);
}

void Daemon::letMillisecondsPass(int milliseconds)
{
    m_millisecondsPassed += milliseconds;
    writeClock();
    wakeDaemon();
}

bool Daemon::letTimePassUntil(const std::function<bool()> &condition)
{
    const int call = 25;
    // Longer than the timeout of the calls in condition().
    const QDeadlineTimer deadline(2 * qint64(deadlineMs));
    // The test cannot see when the daemon begins to wait, and time that passes earlier has no
    // effect: advance the clock repeatedly.
    while (!condition()) {
        if (deadline.hasExpired() || !isRunning())
            return false;
        letTimePass(call);
        static_cast<void>(QTest::qWaitFor(condition, 100));
    }
    return true;
}

void Daemon::setEnvironment(const QString &name, const QString &value)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(name, value);
    m_process.setProcessEnvironment(environment);
}

void Daemon::resetEnvironment()
{
    m_process.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
}

bool Daemon::start(const QStringList &arguments)
{
    // Wait until the bus has released the name of the previous daemon. Otherwise the second wait
    // could find that daemon's name.
    if (!waitUntil([] { return !isOnTheBus(daemonName); }))
        return false;
    launch(arguments);
    return waitUntil([this] { return !isRunning() || isOnTheBus(daemonName); }) && isRunning();
}

void Daemon::launch(const QStringList &arguments)
{
    m_log.clear();
    m_output.clear();
    QStringList command = m_wrapper;
    command << QStringLiteral("KyBoardManager") << arguments;
    const QString program = command.takeFirst();
    m_process.start(program, command);
    m_isMeantToRun = m_process.waitForStarted();
}

int Daemon::waitForExit()
{
    if (waitUntil([this] { return !isRunning(); }))
        m_isMeantToRun = false;
    return !isRunning() && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode()
                                                                          : -1;
}

void Daemon::stop()
{
    if (!m_isMeantToRun)
        return;
    m_isMeantToRun = false;
    m_process.terminate();
    if (isRunning() && !m_process.waitForFinished(5000)) {
        m_process.kill();
        m_process.waitForFinished();
    }
    const bool isEndedByUs = m_process.exitStatus() == QProcess::CrashExit &&
                             (m_process.exitCode() == SIGTERM || m_process.exitCode() == SIGKILL);
    QVERIFY2(isEndedByUs, "the daemon has ended by itself");
}

bool Daemon::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

qint64 Daemon::processId() const
{
    return m_process.processId();
}

int Daemon::children() const
{
    return childrenOf(processId()).size();
}

int Daemon::otherThread(qint64 process) const
{
    const qint64 main = process ? process : processId();
    const QList<int> threads = threadsOf(main);
    for (const int thread : threads) {
        if (thread != main && statusOf(thread, "SigBlk") == "0000000000000000")
            return thread;
    }
    return 0;
}

int Daemon::privateMemory() const
{
    const QList<QByteArray> lines =
        readFile(QStringLiteral("/proc/%1/smaps_rollup").arg(processId())).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("Private_Dirty:"))
            return line.mid(14).trimmed().split(' ').first().toInt();
    }
    return 0;
}

int Daemon::descriptors() const
{
    return descriptorsOf(processId()).size();
}

int Daemon::settledDescriptors()
{
    const bool isSettled = waitUntil([this] {
        return !descriptorsOf(processId()).filter(QStringLiteral("anon_inode:inotify")).isEmpty();
    });
    if (!isSettled || !KernelEvents::waitForListeners(1))
        qFatal("the light sensor does not watch, or nobody listens to device events");
    return descriptors();
}

QString Daemon::log()
{
    drain();
    return QString::fromUtf8(m_log);
}

QString Daemon::output()
{
    drain();
    return QString::fromUtf8(m_output);
}

/** Reads everything available from the pipes. */
void Daemon::drain()
{
    while (m_process.waitForReadyRead(0)) {
    }
    m_log += m_process.readAllStandardError();
    m_output += m_process.readAllStandardOutput();
}

bool Daemon::waitForLog(const QString &text)
{
    return waitUntil([this, text] { return log().contains(text); });
}

bool Daemon::waitForOutput(const QString &text)
{
    return waitUntil([this, text] { return output().contains(text); });
}

bool Daemon::waitUntil(const std::function<bool()> &condition, int milliseconds)
{
    return QTest::qWaitFor(condition, milliseconds);
}
