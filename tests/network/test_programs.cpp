#include "deadline.h"
#include "files.h"
#include "programs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <climits>
#include <csignal>
#include <malloc.h>

/** Finding running programs with pidof. Only the last function uses the real pidof. */
class TestPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aProgramRunsIfPidofFindsIt();
    void aProgramCountsAsAbsentIfPidofFails();
    void aProgramCountsAsAbsentIfPidofCrashes();
    void aProgramCountsAsAbsentWithoutPidof();
    void pidofGetsOnlyTheName();
    void aPidofThatHangsIsKilledAfterASecond();
    void aMissingPidofLeaksNoMemory();
    void theRealPidofFindsThisTest();

private:
    void makePidof(const QByteArray &script);
    QString path(const char *name) const { return m_directory->path() + '/' + name; }

    QScopedPointer<QTemporaryDir> m_directory;
    QByteArray m_searchPath;
};

void TestPrograms::init()
{
    m_searchPath = qgetenv("PATH");
    m_directory.reset(new QTemporaryDir);
}

void TestPrograms::cleanup()
{
    qputenv("PATH", m_searchPath);
}

void TestPrograms::makePidof(const QByteArray &script)
{
    writeFile(path("pidof"), "#!/bin/sh\n" + script + "\n");
    QFile::setPermissions(path("pidof"), QFile::ReadOwner | QFile::ExeOwner);
    qputenv("PATH", m_directory->path().toLocal8Bit() + ':' + m_searchPath);
}

// Tests that expect true repeat the query: on a busy machine, pidof can take more than a second.
void TestPrograms::aProgramRunsIfPidofFindsIt()
{
    makePidof("echo 12 34; exit 0");
    QTRY_VERIFY_WITH_TIMEOUT(isProgramRunning("connmand"), deadlineMs);
}

void TestPrograms::aProgramCountsAsAbsentIfPidofFails()
{
    makePidof("exit 1");
    QVERIFY(!isProgramRunning("connmand"));
}

void TestPrograms::aProgramCountsAsAbsentIfPidofCrashes()
{
    makePidof("kill -SEGV $$");
    QVERIFY(!isProgramRunning("connmand"));
}

void TestPrograms::aProgramCountsAsAbsentWithoutPidof()
{
    qputenv("PATH", m_directory->path().toLocal8Bit());
    QVERIFY(!isProgramRunning("connmand"));
}

void TestPrograms::pidofGetsOnlyTheName()
{
    makePidof("printf '<%s>' \"$@\" >" + path("arguments").toLocal8Bit());
    QTRY_VERIFY_WITH_TIMEOUT(isProgramRunning("two words"), deadlineMs);
    QCOMPARE(readFile(path("arguments")), QByteArray("<two words>"));
}

void TestPrograms::aPidofThatHangsIsKilledAfterASecond()
{
    makePidof("echo $$ >" + path("pid").toLocal8Bit() + "\nexec sleep 60");
    pid_t pid = 0;
    qint64 shortest = LLONG_MAX;
    // On a busy machine, pidof may be killed before it has written its PID, or killed late.
    for (int attempt = 0; attempt < 20 && (pid == 0 || shortest >= 1900); ++attempt) {
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!isProgramRunning("connmand"));
        QVERIFY(timer.elapsed() >= 900);
        shortest = qMin(shortest, timer.elapsed());
        pid = readFile(path("pid")).trimmed().toInt();
    }

    QVERIFY2(shortest < 1900, qPrintable(QString::number(shortest)));
    QVERIFY(pid > 0);
    QTRY_VERIFY_WITH_TIMEOUT(::kill(pid, 0) != 0, deadlineMs);
}

void TestPrograms::aMissingPidofLeaksNoMemory()
{
    qputenv("PATH", m_directory->path().toLocal8Bit());
    const auto memoryAfterAsking = [](int times) {
        for (int i = 0; i < times; ++i)
            isProgramRunning("connmand");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return mallinfo2().uordblks;
    };
    const size_t before = memoryAfterAsking(10);
    // A leaked process object takes 1500 bytes for each query; Qt itself leaks 100.
    const size_t grown = memoryAfterAsking(200) - before;
    QVERIFY2(grown < size_t(200) * 500, qPrintable(QString::number(grown)));
}

void TestPrograms::theRealPidofFindsThisTest()
{
    QTRY_VERIFY_WITH_TIMEOUT(isProgramRunning("test_programs"), deadlineMs);
    QVERIFY(!isProgramRunning("no_such_program"));
}

QTEST_GUILESS_MAIN(TestPrograms)
#include "test_programs.moc"
