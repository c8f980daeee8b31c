#include "childsignal.h"
#include "daemontest.h"
#include "kycommgr.h"
#include "processes.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

/** Start-up, command line, object tree and exit paths of the daemon. */
class TestStartup : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theThreeRootsAreExported();
    void theRootObjectsShowNoMembersOfTheirOwn();
    void kyComMgrRegistersTheTypesOfConnMansLists();
    void nothingIsLoggedAtAnOrdinaryStart();
    void theLogHasOneTextPerLineAndNothingElse();

    void versionIsPrintedAndNothingElseHappens();
    void versionDoesNotDependOnTheProgramsName();
    void helpIsPrintedAndNothingElseHappens();
    void anUnknownOptionIsRefusedAndNothingElseHappens();

    void aSecondInstanceActivatesAProfileAndThenEndsWithStatusOne();
    void aSecondInstanceNeverHangsOrCrashes();
    void withoutABusTheStatusIsOne();
    void withoutPermissionToOwnTheNameTheStatusIsOne();

    void theEndOfAChildIsPrinted();
    void theEndOfARealChildIsPrintedAndTheChildNotReaped();
    void otherSignalsPrintNothing();
    void theDaemonRunsWithoutItsSignalHandler();
    void theDaemonRunsUntilItIsKilled_data();
    void theDaemonRunsUntilItIsKilled();
    void anIgnoredSignalStaysIgnored();

private:
    void verifyNothingWasTouched();
};

void TestStartup::verifyNothingWasTouched()
{
    QVERIFY(!QFile::exists("/opt/settings.ini"));
    QVERIFY(QFileInfo("/tmp/User_part/system").isSymLink() == false);
}

void TestStartup::theThreeRootsAreExported()
{
    QVERIFY(daemon.start());
    const Remote root("com.orvendis.Strandel.BoardManager", "/",
                      "org.freedesktop.DBus.Introspectable");
    const QString document = root.call("Introspect");
    for (const char *path : {"KyConfigMgr", "KyComMgr", "KyDeviceMgr"})
        QVERIFY2(document.contains(QStringLiteral("<node name=\"%1\"/>").arg(path)), path);
}

void TestStartup::theRootObjectsShowNoMembersOfTheirOwn()
{
    QVERIFY(daemon.start());
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyDeviceMgr"}) {
        const Remote root("com.orvendis.Strandel.BoardManager", path,
                          "org.freedesktop.DBus.Introspectable");
        const QString document = root.call("Introspect");
        QVERIFY(document.contains("org.freedesktop.DBus.Properties"));
        QVERIFY2(!document.contains("local."), qPrintable(document));
        // If a root's own members were exported, its property "objectName" could be read.
        QCOMPARE(
            Remote("com.orvendis.Strandel.BoardManager", path, "org.freedesktop.DBus.Properties")
                .call("Get", {"local.QObject", "objectName"})
                .section(':', 0, 0)
                .startsWith("org.freedesktop.DBus.Error."),
            true);
    }
}

void TestStartup::kyComMgrRegistersTheTypesOfConnMansLists()
{
    QObject root;
    const KyComMgr manager(&root);

    const struct {
        const char *type;
        const char *signature;
    } types[] = {
        {"ConnmanObject", "(oa{sv})"},
        {"QList<ConnmanObject>", "a(oa{sv})"},
        {"InterfaceList", "a{sa{sv}}"},
        {"ManagedObjectList", "a{oa{sa{sv}}}"},
    };
    for (const auto &row : types)
        QCOMPARE(QDBusMetaType::typeToSignature(QMetaType::type(row.type)), row.signature);
}

void TestStartup::nothingIsLoggedAtAnOrdinaryStart()
{
    QVERIFY(daemon.start());
    QCOMPARE(daemon.log(), QString());
    QCOMPARE(daemon.output(), QString());
}

void TestStartup::theLogHasOneTextPerLineAndNothingElse()
{
    QFile::remove("/tmp/User_part/system");
    QVERIFY(daemon.start());
    QCOMPARE(daemon.log(),
             QStringLiteral("Init of KyUsers failed: failed to get the current user\n"));
}

void TestStartup::versionIsPrintedAndNothingElseHappens()
{
    QFile::remove("/tmp/User_part/system");
    daemon.launch({"--version"});
    QCOMPARE(daemon.waitForExit(), 0);
    QCOMPARE(daemon.output(), "KyBoardManager " + Daemon::version() + '\n');
    verifyNothingWasTouched();
}

void TestStartup::versionDoesNotDependOnTheProgramsName()
{
    daemon.setWrapper({"bash", "-c", "exec -a other \"$@\"", "bash"});
    daemon.launch({"--version"});
    QCOMPARE(daemon.waitForExit(), 0);
    QCOMPARE(daemon.output(), "KyBoardManager " + Daemon::version() + '\n');
}

void TestStartup::helpIsPrintedAndNothingElseHappens()
{
    QFile::remove("/tmp/User_part/system");
    daemon.launch({"--help"});
    QCOMPARE(daemon.waitForExit(), 0);
    QVERIFY(daemon.output().contains("Board manager of the Strandel.\n"));
    QVERIFY(daemon.output().contains("--version"));
    verifyNothingWasTouched();
}

void TestStartup::anUnknownOptionIsRefusedAndNothingElseHappens()
{
    QFile::remove("/tmp/User_part/system");
    daemon.launch({"--simulate"});
    QCOMPARE(daemon.waitForExit(), 1);
    QVERIFY(daemon.log().contains("Unknown option 'simulate'."));
    verifyNothingWasTouched();
}

void TestStartup::aSecondInstanceActivatesAProfileAndThenEndsWithStatusOne()
{
    QVERIFY(daemon.start());
    QFile::remove("/tmp/User_part/system");
    Daemon second;

    second.launch();

    QCOMPARE(second.waitForExit(), 1);
    // If the name is taken, the connection's last error has no text.
    QCOMPARE(second.log(), QStringLiteral("Init of KyUsers failed: failed to get the current user\n"
                                          "\"\"\n"));
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user1"));
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
}

void TestStartup::aSecondInstanceNeverHangsOrCrashes()
{
    QVERIFY(daemon.start());
    for (int attempt = 0; attempt < 10; ++attempt) {
        Daemon second;
        second.launch();
        QCOMPARE(second.waitForExit(), 1);
    }
}

void TestStartup::withoutABusTheStatusIsOne()
{
    daemon.setEnvironment("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/run/dbus/missing");
    daemon.launch();
    QCOMPARE(daemon.waitForExit(), 1);
    QVERIFY2(daemon.log().contains(
                 QRegularExpression("^\"[^\"]+\"$", QRegularExpression::MultilineOption)),
             qPrintable(daemon.log()));
}

void TestStartup::withoutPermissionToOwnTheNameTheStatusIsOne()
{
    // The user "stranger" cannot enter the parent directories of the build.
    const QString readable = QStringLiteral("/run/readable");
    QVERIFY(QDir().mkpath(readable));
    QVERIFY(QFile::copy(QStandardPaths::findExecutable("KyBoardManager"),
                        readable + "/KyBoardManager"));
    for (const char *library : {"libKyBoard.so.1", "libKyFileaccess.so.1", "libKySoC.so.1"})
        QVERIFY(QFile::copy(qEnvironmentVariable("LD_LIBRARY_PATH") + '/' + library,
                            readable + '/' + library));
    daemon.setEnvironment("LD_LIBRARY_PATH", readable);
    daemon.setWrapper({"setpriv", "--reuid=stranger", "--clear-groups", "env", "PATH=" + readable});
    daemon.launch();
    QCOMPARE(daemon.waitForExit(), 1);
    QVERIFY2(daemon.log().contains("not allowed to own the service"), qPrintable(daemon.log()));
}

void TestStartup::theEndOfAChildIsPrinted()
{
    QVERIFY(daemon.start());
    QString expected;
    for (int signal = 0; signal < 3; ++signal) {
        QCOMPARE(kill(pid_t(daemon.processId()), SIGCHLD), 0);
        expected += "signal SIGCHLD received\n";
        QVERIFY(daemon.waitForOutput(expected));
    }
    QCOMPARE(daemon.output(), expected);
    QCOMPARE(daemon.log(), QString());
}

void TestStartup::theEndOfARealChildIsPrintedAndTheChildNotReaped()
{
    // The shell becomes the daemon, which then has a child that it has not started.
    daemon.setWrapper({"sh", "-c", "(read -r _ < /tmp/User_part/go) & exec \"$@\"", "sh"});
    QCOMPARE(mkfifo("/tmp/User_part/go", 0600), 0);
    QVERIFY(daemon.start());
    QCOMPARE(daemon.output(), QString());

    writeFile("/tmp/User_part/go", "\n");

    QVERIFY(daemon.waitForOutput("signal SIGCHLD received\n"));
    const QList<int> children = childrenOf(daemon.processId());
    QCOMPARE(children.size(), 1);
    QCOMPARE(stateOf(children.first()), QByteArray("Z"));
}

void TestStartup::otherSignalsPrintNothing()
{
    int ends[2];
    QCOMPARE(pipe(ends), 0);
    const int output = dup(STDOUT_FILENO);
    dup2(ends[1], STDOUT_FILENO);
    errno = EXFULL;
    sig_handler(SIGUSR1);
    sig_handler(SIGCHLD);
    const int errnoAfterwards = errno;
    dup2(output, STDOUT_FILENO);
    close(ends[1]);
    close(output);
    char printed[100];
    const ssize_t size = read(ends[0], printed, sizeof printed);
    close(ends[0]);

    QCOMPARE(QByteArray(printed, int(size)), QByteArray("signal SIGCHLD received\n"));
    QCOMPARE(errnoAfterwards, EXFULL);
}

void TestStartup::theDaemonRunsWithoutItsSignalHandler()
{
    daemon.setWrapper({"strace", "-D", "-o", "/dev/null", "-e", "trace=rt_sigaction", "-e",
                       "inject=rt_sigaction:error=EINVAL"});
    QVERIFY(daemon.start());
    QCOMPARE(daemon.log(), QStringLiteral("Can't catch SIGCHLD signal\n"));
}

void TestStartup::theDaemonRunsUntilItIsKilled_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("isToAnotherThread");
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGABRT, SIGUSR1, SIGUSR2, SIGALRM, SIGTERM,
                             SIGXCPU, SIGPWR, SIGVTALRM, SIGPROF, SIGIO, SIGKILL})
        QTest::newRow(strsignal(signal)) << signal << false;
    QTest::newRow("to another thread") << SIGTERM << true;
}

void TestStartup::theDaemonRunsUntilItIsKilled()
{
    QFETCH(int, signal);
    QFETCH(bool, isToAnotherThread);
    // The shell's exit status tells which signal ended the daemon.
    daemon.setWrapper({"sh", "-c", "\"$@\"; exit $?", "sh"});
    QVERIFY(daemon.start());
    const uint process =
        QDBusConnection::systemBus().interface()->servicePid("com.orvendis.Strandel.BoardManager");
    const int thread = isToAnotherThread ? daemon.otherThread(process) : int(process);
    QVERIFY(thread != 0);
    QCOMPARE(syscall(SYS_tgkill, pid_t(process), thread, signal), 0);
    QCOMPARE(daemon.waitForExit(), 128 + signal);
}

void TestStartup::anIgnoredSignalStaysIgnored()
{
    daemon.setWrapper({"env", "--ignore-signal=HUP"});
    QVERIFY(daemon.start());
    QCOMPARE(kill(pid_t(daemon.processId()), SIGHUP), 0);
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
    QVERIFY(daemon.isRunning());
}

WORLD_TEST_MAIN(TestStartup)
#include "test_startup.moc"
