#ifndef DAEMONTEST_H
#define DAEMONTEST_H

#include "daemon.h"
#include "files.h"
#include "remote.h"
#include "signalrecorder.h"
#include "testpart.h"

#include <QDir>
#include <QFile>
#include <QObject>
#include <QTest>

/**
 * Base of the tests of the running daemon.
 *
 * Every test function starts with a factory-new instrument and without a daemon, and ends with the
 * daemon stopped. If the test fails, the daemon's log is printed.
 */
class DaemonTest : public QObject
{
    Q_OBJECT

protected:
    Daemon daemon;

    /** The path of the profile folder of @p user. */
    static QString profile(const QString &user);

protected Q_SLOTS:
    void init();
    void cleanup();
};

/** The main function of a test that needs a private world; it refuses to run outside one. */
#define WORLD_TEST_MAIN(Test)                                                                      \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        if (!QFile::exists(QStringLiteral("/run/private-world")))                                  \
            qFatal("this test writes to /opt and /tmp: run it in a private world");                \
        QCoreApplication itself(argc, argv);                                                       \
        Test test;                                                                                 \
        return QTest::qExec(&test, argumentsOfPart(*test.metaObject(), itself.arguments(),         \
                                                   qEnvironmentVariable("TEST_PART")));            \
    }

#endif
