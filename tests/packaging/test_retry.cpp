#include "deadline.h"
#include "files.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** The pauses before starts after repeated failures; sleep and systemctl only log their calls. */
class TestRetry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void thePauseDoublesUpToTenMinutes();
    void anHourWithoutAFailureResetsThePause_data();
    void anHourWithoutAFailureResetsThePause();
    void theServiceIsStartedAfterThePause();

private:
    QStringList retry();
    QString pause() { return retry().value(0); }

    QScopedPointer<QTemporaryDir> directory;
};

void TestRetry::init()
{
    directory.reset(new QTemporaryDir);
    QVERIFY(directory->isValid());
    for (const char *program : {"sleep", "systemctl"}) {
        const QString path = directory->filePath(program);
        writeFile(path, "#!/bin/sh\necho \"${0##*/} $*\" >>\"$RUNTIME_DIRECTORY/log\"\n");
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
    }
}

/** Runs the script after another failure, and returns the calls that it made. */
QStringList TestRetry::retry()
{
    QFile::remove(directory->filePath("log"));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("RUNTIME_DIRECTORY", directory->path());
    environment.insert("PATH", directory->path() + ':' + environment.value("PATH"));
    process.setProcessEnvironment(environment);
    process.start(RETRY, QStringList());
    if (!process.waitForFinished(deadlineMs) || process.exitCode() != 0)
        return {QString::fromUtf8(process.readAllStandardError())};
    return QString::fromUtf8(readFile(directory->filePath("log"))).trimmed().split('\n');
}

void TestRetry::thePauseDoublesUpToTenMinutes()
{
    for (const char *expected : {"sleep 15", "sleep 30", "sleep 60", "sleep 120", "sleep 240",
                                 "sleep 480", "sleep 600", "sleep 600", "sleep 600"})
        QCOMPARE(pause(), QString(expected));
}

void TestRetry::anHourWithoutAFailureResetsThePause_data()
{
    QTest::addColumn<QString>("lastRetry");
    QTest::addColumn<QString>("expected");
    QTest::newRow("half an hour") << "30 minutes ago"
                                  << "sleep 60";
    QTest::newRow("more than an hour") << "61 minutes ago"
                                       << "sleep 15";
}

void TestRetry::anHourWithoutAFailureResetsThePause()
{
    QFETCH(QString, lastRetry);
    QFETCH(QString, expected);
    QCOMPARE(pause(), QString("sleep 15"));
    QCOMPARE(pause(), QString("sleep 30"));
    QCOMPARE(QProcess::execute("touch", {"--date=" + lastRetry, directory->filePath("retries")}),
             0);
    QCOMPARE(pause(), expected);
}

void TestRetry::theServiceIsStartedAfterThePause()
{
    QCOMPARE(retry(), (QStringList{"sleep 15", "systemctl reset-failed kyboardmanager.service",
                                   "systemctl start --no-block kyboardmanager.service"}));
}

QTEST_GUILESS_MAIN(TestRetry)
#include "test_retry.moc"
