#include "board.h"
#include "daemontest.h"
#include "deadline.h"
#include "logging.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** Without a reader of the log, the daemon discards lines, and neither blocks nor ends. */
class TestLogging : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void textIsWrittenWhole_data();
    void textIsWrittenWhole();
    void textForAFullPipeIsDropped();
    void longTextIsWrittenAsFarAsItFits();

    void anUnreadLogDoesNotBlockTheDaemon();
    void loggingResumesWithANewReader();
    void theDaemonSurvivesTheEndOfTheLogsReader();
    void theDaemonSurvivesSigpipe();
    void childrenHaveDefaultSignals_data();
    void childrenHaveDefaultSignals();

    void cleanup();

private:
    void startWithPipe();
    void causeLines();
    QByteArray readPipe() const;

    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    int m_pipe = -1;
};

namespace
{
const char pipePath[] = "/run/log";
const QByteArray childLine = "signal SIGCHLD received\n";

/** Fills a pipe completely; returns the number of bytes. */
int fill(int descriptor)
{
    const int flags = fcntl(descriptor, F_GETFL);
    fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
    const QByteArray page(4096, '.');
    int filled = 0;
    for (int size = page.size(); size > 0; size /= 2) {
        for (ssize_t written; (written = write(descriptor, page.constData(), size_t(size))) > 0;)
            filled += int(written);
    }
    fcntl(descriptor, F_SETFL, flags);
    return filled;
}
} // namespace

void TestLogging::cleanup()
{
    daemon.setWrapper({});
    if (m_pipe >= 0)
        close(m_pipe);
    m_pipe = -1;
    unlink(pipePath);
    DaemonTest::cleanup();
}

void TestLogging::textIsWrittenWhole_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {0, 1, 2047, 2048, 2049, 4096, 4097, 60000})
        QTest::addRow("%d", size) << size;
}

void TestLogging::textIsWrittenWhole()
{
    QFETCH(int, size);
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    QByteArray text;
    for (int index = 0; index < size; ++index)
        text += char('a' + index % 26);

    writeWithoutWaiting(ends[1], text.constData(), size_t(text.size()));

    close(ends[1]);
    QFile file;
    QVERIFY(file.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    QCOMPARE(file.readAll(), text);
}

void TestLogging::textForAFullPipeIsDropped()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const int filled = fill(ends[1]);

    writeWithoutWaiting(ends[1], "text", 4);

    close(ends[1]);
    QFile file;
    QVERIFY(file.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    QCOMPARE(file.readAll(), QByteArray(filled, '.'));
}

void TestLogging::longTextIsWrittenAsFarAsItFits()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const QByteArray text(1000000, 'x');
    writeWithoutWaiting(ends[1], text.constData(), size_t(text.size()));
    close(ends[1]);
    QFile file;
    QVERIFY(file.open(ends[0], QIODevice::ReadOnly, QFile::AutoCloseHandle));
    const QByteArray written = file.readAll();
    QVERIFY(written.size() >= 4096);
    QVERIFY(text.startsWith(written));
}

/** Starts the daemon with stdout and stderr in a pipe that the test reads. */
void TestLogging::startWithPipe()
{
    QCOMPARE(mkfifo(pipePath, 0600), 0);
    m_pipe = open(pipePath, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    QVERIFY(m_pipe >= 0);
    daemon.setWrapper({"sh", "-c", "exec \"$@\" >/run/log 2>&1", "sh"});
    QVERIFY(daemon.start());
}

/** Makes the daemon log a line and print another one. */
void TestLogging::causeLines()
{
    Board::clearJournal();
    Board::fault("KyAls.interruptRead", "1");
    Board::set("als/lux", Board::get("als/lux") == "900" ? "12" : "900");
    QVERIFY(Board::waitForJournal("KyAls.interruptRead() = 1"));
    QCOMPARE(kill(pid_t(daemon.processId()), SIGCHLD), 0);
}

QByteArray TestLogging::readPipe() const
{
    QByteArray text;
    char part[4096];
    for (ssize_t size; (size = read(m_pipe, part, sizeof part)) > 0;)
        text.append(part, int(size));
    return text;
}

void TestLogging::anUnreadLogDoesNotBlockTheDaemon()
{
    startWithPipe();
    const int writer = open(pipePath, O_WRONLY | O_CLOEXEC);
    const int filled = fill(writer);
    close(writer);
    QVERIFY(filled >= 4096);

    causeLines();

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(kill(pid_t(daemon.processId()), SIGCHLD), 0);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(readPipe(), QByteArray(filled, '.'));
}

void TestLogging::loggingResumesWithANewReader()
{
    startWithPipe();
    const int writer = open(pipePath, O_WRONLY | O_CLOEXEC);
    fill(writer);
    close(writer);
    QCOMPARE(kill(pid_t(daemon.processId()), SIGCHLD), 0);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    readPipe();

    causeLines();

    QByteArray text;
    QTRY_VERIFY2_WITH_TIMEOUT((text += readPipe()).contains(childLine), text.constData(),
                              deadlineMs);
    QTRY_VERIFY2_WITH_TIMEOUT((text += readPipe()).contains("Read interrupt ALS failed"),
                              text.constData(), deadlineMs);
}

void TestLogging::theDaemonSurvivesTheEndOfTheLogsReader()
{
    startWithPipe();
    close(m_pipe);
    m_pipe = -1;

    causeLines();

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QVERIFY(daemon.isRunning());
}

void TestLogging::theDaemonSurvivesSigpipe()
{
    QVERIFY(daemon.start());
    QCOMPARE(kill(pid_t(daemon.processId()), SIGPIPE), 0);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QVERIFY(daemon.isRunning());
    QCOMPARE(daemon.log() + daemon.output(), QString());
}

void TestLogging::childrenHaveDefaultSignals_data()
{
    QTest::addColumn<QStringList>("wrapper");
    QTest::newRow("started by hand") << QStringList();
    // systemd starts a service with SIGPIPE ignored.
    QTest::newRow("SIGPIPE ignored") << QStringList{"env", "--ignore-signal=PIPE"};
}

void TestLogging::childrenHaveDefaultSignals()
{
    QFETCH(QStringList, wrapper);
    const QString script = QStringLiteral("/usr/share/redpine/switch_coex_mode.sh");
    // Reads /proc/self/status in the shell itself: in a child process, such as grep, the signal
    // masks would differ.
    writeFile(script,
              "#!/bin/sh\n"
              "while read -r line; do case $line in Sig[BI]*) echo \"$line\"; esac; done "
              "</proc/self/status >/run/child && echo heard && mv /run/child /run/signals\n");
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));
    QFile::remove("/run/signals");
    daemon.setWrapper(wrapper);
    QVERIFY(daemon.start());

    Remote("/KyComMgr", "WIFI").call("scan");

    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/run/signals"), deadlineMs);
    const QByteArray none = "\t0000000000000000";
    QCOMPARE(readFile("/run/signals"), "SigBlk:" + none + "\nSigIgn:" + none + '\n');
    QFile::remove(script);
}

WORLD_TEST_MAIN(TestLogging)
#include "test_logging.moc"
