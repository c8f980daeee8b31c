#include "deadline.h"
#include "files.h"
#include "virtualscreen.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

/** simulator/world runs a command isolated from the machine: in a private world. */
class TestWorld : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theStatusIsThatOfTheCommand();
    void inputAndOutputAreThoseOfTheCommand();
    void nothingWrittenThereReachesTheMachine();
    void theMachinesDevicesCannotBeReplaced();
    void theWorldHasItsOwnProcessesAndNetwork();
    void theWorldHasItsOwnBus();
    void aKeptDirectoryIsVisibleAndReadOnly();
    void everythingEndsWithTheCommand();
    void everythingEndsWhenTheWorldGetsSigterm();
    void everythingEndsWhenTheWorldIsKilled();
    void aCommandThatJoinsEarlyWaitsForTheWorld();
    void aCommandJoinsARunningWorld();
    void aJoinedCommandEndsWithItsCaller_data();
    void aJoinedCommandEndsWithItsCaller();
    void windowsOpenOnTheScreenOutside();
    void windowsOpenFromAJoinedCommand();
    void theSocketOfWaylandIsReached();
    void onlyTheScreenOfTheMachineIsReached();
    void withoutTheOptionNoScreenIsReached();
    void withoutARunningWorldNothingIsJoined();
    void anUnknownOptionIsRefused();
    void helpOfRunAndTestShowsTheirUsage_data();
    void helpOfRunAndTestShowsTheirUsage();
    void runRejectsUnknownOptions_data();
    void runRejectsUnknownOptions();

private:
    struct Result {
        int status;
        QString output;
        QString complaint;
    };
    static QStringList worldArguments(const QStringList &command, const QStringList &options = {});
    static Result run(const QStringList &command, const QStringList &options = {},
                      const QByteArray &input = {});
    static bool isAlive(const QString &marker);
    void verifyEndAfter(const std::function<void(QProcess &)> &ending);
};

QStringList TestWorld::worldArguments(const QStringList &command, const QStringList &options)
{
    return options + QStringList{"--"} + command;
}

TestWorld::Result TestWorld::run(const QStringList &command, const QStringList &options,
                                 const QByteArray &input)
{
    QProcess world;
    world.start(WORLD, worldArguments(command, options));
    world.write(input);
    world.closeWriteChannel();
    if (!world.waitForFinished(deadlineMs))
        return {-1, QString(), QStringLiteral("no end")};
    return {world.exitCode(), world.readAllStandardOutput(), world.readAllStandardError()};
}

/** Returns true if a "sleep" with @p marker in its arguments runs, in any world. */
bool TestWorld::isAlive(const QString &marker)
{
    for (const QString &process : QDir("/proc").entryList({"[0-9]*"})) {
        const QList<QByteArray> arguments = readFile("/proc/" + process + "/cmdline").split('\0');
        if (arguments.value(0) == "sleep" && arguments.contains(marker.toUtf8()))
            return true;
    }
    return false;
}

void TestWorld::theStatusIsThatOfTheCommand()
{
    QCOMPARE(run({"true"}).status, 0);
    QCOMPARE(run({"sh", "-c", "exit 37"}).status, 37);
    QCOMPARE(run({"no-such-program"}).status, 127);
}

void TestWorld::inputAndOutputAreThoseOfTheCommand()
{
    const Result result = run({"sh", "-c", "cat; echo complaint >&2"}, {}, "to and fro");
    QCOMPARE(result.output, QStringLiteral("to and fro"));
    QCOMPARE(result.complaint, QStringLiteral("complaint\n"));
}

void TestWorld::nothingWrittenThereReachesTheMachine()
{
    const QString name = QStringLiteral("private-world-%1").arg(QCoreApplication::applicationPid());
    const QStringList directories = {
        "/opt", "/tmp", "/run", "/etc", "/usr/share", "/usr/share/redpine", "/var/lib", "/dev/shm"};
    QString script;
    for (const QString &directory : directories)
        script += QStringLiteral("echo x > %1/%2 && test -s %1/%2 && ").arg(directory, name);
    script += "echo 1.2 > /etc/sw_version && ls -A /opt /usr/share/redpine";

    const Result result = run({"sh", "-c", script});

    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.output, QStringLiteral("/opt:\n%1\n\n/usr/share/redpine:\n%1\n").arg(name));
    for (const QString &directory : directories)
        QVERIFY2(!QFile::exists(directory + '/' + name), qPrintable(directory));
}

void TestWorld::theMachinesDevicesCannotBeReplaced()
{
    const Result result =
        run({"sh", "-c",
             "for device in /dev/*; do touch /tmp/file; "
             "if test -c $device && test ! -L $device && mv /tmp/file $device 2>/dev/null; "
             "then echo $device; fi; done; "
             "echo x > /dev/shm/file; echo x > /dev/file; "
             "head -c 3 /dev/zero | wc -c"});
    QCOMPARE(result.output, QStringLiteral("3\n"));
    QVERIFY(!QFile::exists("/dev/file"));
}

void TestWorld::theWorldHasItsOwnProcessesAndNetwork()
{
    QCOMPARE(run({"sh", "-c", "ls /sys/class/net; ip -brief link | wc -l"}).output,
             QStringLiteral("lo\n1\n"));
    QCOMPARE(run({"pidof", QCoreApplication::applicationName()}).status, 1);
    QCOMPARE(run({"sh", "-c", "tr '\\0' ' ' < /proc/1/cmdline"}).output.section(' ', 0, 1),
             QStringLiteral("bash " WORLD));
}

void TestWorld::theWorldHasItsOwnBus()
{
    const Result result = run({"busctl", "--system", "--no-legend", "--acquired", "list"});
    QCOMPARE(result.output.simplified().section(' ', 0, 0), QStringLiteral("org.freedesktop.DBus"));
    QCOMPARE(result.output.count('\n'), 1);
}

void TestWorld::aKeptDirectoryIsVisibleAndReadOnly()
{
    QTemporaryDir directory;
    writeFile(directory.path() + "/file", "seen");
    QVERIFY(run({"cat", directory.path() + "/file"}).status != 0);
    QCOMPARE(run({"cat", directory.path() + "/file"}, {"--keep", directory.path()}).output,
             QStringLiteral("seen"));
    QVERIFY(run({"rm", directory.path() + "/file"}, {"--keep", directory.path()}).status != 0);
    QCOMPARE(readFile(directory.path() + "/file"), QByteArray("seen"));
}

void TestWorld::everythingEndsWithTheCommand()
{
    const QString marker = QStringLiteral("100%1").arg(QCoreApplication::applicationPid());
    QCOMPARE(run({"sh", "-c", "setsid sleep " + marker + " > /dev/null 2>&1 & exit 0"}).status, 0);
    QTRY_VERIFY_WITH_TIMEOUT(!isAlive(marker), deadlineMs);
}

void TestWorld::verifyEndAfter(const std::function<void(QProcess &)> &ending)
{
    const QString marker = QStringLiteral("200%1").arg(QCoreApplication::applicationPid());
    QProcess world;
    world.start(WORLD, worldArguments({"sh", "-c",
                                       "trap : TERM; sleep " + marker +
                                           " & echo up; "
                                           "while true; do wait; done"}));
    QTRY_COMPARE_WITH_TIMEOUT(world.peek(3), QByteArray("up\n"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(isAlive(marker), deadlineMs);

    ending(world);

    QVERIFY(world.waitForFinished(deadlineMs));
    QTRY_VERIFY_WITH_TIMEOUT(!isAlive(marker), deadlineMs);
}

void TestWorld::everythingEndsWhenTheWorldGetsSigterm()
{
    verifyEndAfter([](QProcess &world) { world.terminate(); });
}

void TestWorld::everythingEndsWhenTheWorldIsKilled()
{
    verifyEndAfter([](QProcess &world) { world.kill(); });
}

void TestWorld::aCommandThatJoinsEarlyWaitsForTheWorld()
{
    QTemporaryDir directory;
    const QString handle = directory.path() + "/handle";
    QProcess world;
    world.start(WORLD, worldArguments({"cat"}, {"--handle", handle}));
    QTRY_VERIFY_WITH_TIMEOUT(!readFile(handle).isEmpty(), deadlineMs);

    const Result joined = run({"sh", "-c",
                               "test -e /run/private-world && busctl --system list > /dev/null && "
                               "echo joined"},
                              {"--join", handle});
    QCOMPARE(joined.complaint, QString());
    QCOMPARE(joined.output, QStringLiteral("joined\n"));

    world.closeWriteChannel();
    QVERIFY(world.waitForFinished(deadlineMs));
}

void TestWorld::aCommandJoinsARunningWorld()
{
    QTemporaryDir directory;
    const QString handle = directory.path() + "/handle";
    QProcess world;
    world.start(WORLD, worldArguments({"sh", "-c", "echo here > /tmp/who; echo up; cat"},
                                      {"--handle", handle}));
    QTRY_COMPARE_WITH_TIMEOUT(world.peek(3), QByteArray("up\n"), deadlineMs);

    const Result joined =
        run({"sh", "-c", "cat /tmp/who; busctl --system list > /dev/null"}, {"--join", handle});
    QCOMPARE(joined.complaint, QString());
    QCOMPARE(joined.output, QStringLiteral("here\n"));
    QCOMPARE(joined.status, 0);

    world.closeWriteChannel();
    QVERIFY(world.waitForFinished(deadlineMs));
    QVERIFY(!QFile::exists(handle));
}

void TestWorld::aJoinedCommandEndsWithItsCaller_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("trap");
    QTest::newRow("SIGTERM") << SIGTERM << "";
    QTest::newRow("SIGHUP") << SIGHUP << "";
    QTest::newRow("SIGKILL") << SIGKILL << "";
    QTest::newRow("SIGTERM, ignored by the command") << SIGTERM << "trap : TERM; ";
}

void TestWorld::aJoinedCommandEndsWithItsCaller()
{
    QFETCH(int, signal);
    QFETCH(QString, trap);
    const QString marker = QStringLiteral("300%1").arg(QCoreApplication::applicationPid());
    const QString other = QStringLiteral("400%1").arg(QCoreApplication::applicationPid());
    QTemporaryDir directory;
    const QString handle = directory.path() + "/handle";
    QProcess world;
    world.start(WORLD, worldArguments({"sh", "-c", "sleep " + other + " & echo up; cat"},
                                      {"--handle", handle}));
    QTRY_COMPARE_WITH_TIMEOUT(world.peek(3), QByteArray("up\n"), deadlineMs);
    QProcess joined;
    joined.start(WORLD,
                 worldArguments({"sh", "-c",
                                 trap + "sleep " + marker + " & echo here; while true; do sleep " +
                                     marker + "; done"},
                                {"--join", handle}));
    QTRY_COMPARE_WITH_TIMEOUT(joined.peek(5), QByteArray("here\n"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(isAlive(marker), deadlineMs);

    QCOMPARE(::kill(pid_t(joined.processId()), signal), 0);

    QVERIFY(joined.waitForFinished(deadlineMs));
    QTRY_VERIFY_WITH_TIMEOUT(!isAlive(marker), deadlineMs);
    // The world stays, with the other commands in it.
    QVERIFY(isAlive(other));
    QCOMPARE(run({"sh", "-c", "exit 7"}, {"--join", handle}).status, 7);
    world.closeWriteChannel();
    QVERIFY(world.waitForFinished(deadlineMs));
}

void TestWorld::windowsOpenOnTheScreenOutside()
{
    QTemporaryDir directory;
    const QString key = directory.path() + "/key";
    writeFile(key, VirtualScreen::newKey());
    VirtualScreen screen;
    QVERIFY(screen.start(key));
    qputenv("DISPLAY", screen.name().toLatin1());
    const QStringList client{"xdotool", "getdisplaygeometry"};

    qputenv("XAUTHORITY", key.toLocal8Bit());
    QCOMPARE(run(client, {"--display"}).output, QStringLiteral("1400 1000\n"));
    qunsetenv("XAUTHORITY");
    QCOMPARE(run(client, {"--display"}).output, QString());
    // Without XAUTHORITY, the key is in the home directory.
    QVERIFY(QFile::copy(key, directory.path() + "/.Xauthority"));
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", directory.path().toLocal8Bit());
    QCOMPARE(run(client, {"--display"}).output, QStringLiteral("1400 1000\n"));
    qputenv("HOME", home);
}

void TestWorld::windowsOpenFromAJoinedCommand()
{
    QTemporaryDir directory;
    const QString handle = directory.path() + "/handle";
    const QString key = directory.path() + "/key";
    writeFile(key, VirtualScreen::newKey());
    VirtualScreen screen;
    QVERIFY(screen.start(key));
    QProcess world;
    // The world does not know the screen that the command uses.
    qunsetenv("DISPLAY");
    world.start(WORLD,
                worldArguments({"sh", "-c", "echo up; cat"}, {"--display", "--handle", handle}));
    QTRY_COMPARE_WITH_TIMEOUT(world.peek(3), QByteArray("up\n"), deadlineMs);

    qputenv("DISPLAY", screen.name().toLatin1());
    qputenv("XAUTHORITY", key.toLocal8Bit());
    const Result joined = run({"xdotool", "getdisplaygeometry"}, {"--display", "--join", handle});
    qunsetenv("XAUTHORITY");

    QCOMPARE(joined.output, QStringLiteral("1400 1000\n"));
    world.closeWriteChannel();
    QVERIFY(world.waitForFinished(deadlineMs));
}

void TestWorld::theSocketOfWaylandIsReached()
{
    QTemporaryDir directory;
    QLocalServer compositor;
    QVERIFY(compositor.listen(directory.path() + "/wayland-7"));
    // Close every connection, so that the client ends.
    connect(&compositor, &QLocalServer::newConnection,
            [&] { delete compositor.nextPendingConnection(); });
    QSignalSpy connections(&compositor, &QLocalServer::newConnection);
    const QStringList command = worldArguments(
        {"sh", "-c",
         "echo $WAYLAND_DISPLAY; ls $XDG_RUNTIME_DIR;"
         "busctl --address=unix:path=$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY list 2>/dev/null"},
        {"--display"});
    const QString path = compositor.fullServerName();
    for (const QString &name : {QStringLiteral("wayland-7"), path}) {
        connections.clear();
        QProcess world;
        qputenv("XDG_RUNTIME_DIR", directory.path().toLocal8Bit());
        qputenv("WAYLAND_DISPLAY", name.toLocal8Bit());
        world.start(WORLD, command);
        qunsetenv("WAYLAND_DISPLAY");
        qunsetenv("XDG_RUNTIME_DIR");
        QTRY_COMPARE_WITH_TIMEOUT(connections.size(), 1, deadlineMs);
        QTRY_COMPARE_WITH_TIMEOUT(world.state(), QProcess::NotRunning, deadlineMs);
        QCOMPARE(world.readAllStandardOutput(), QByteArray("wayland-7\nwayland-7\n"));
    }
}

void TestWorld::onlyTheScreenOfTheMachineIsReached()
{
    VirtualScreen screen;
    QVERIFY(screen.start());
    qputenv("DISPLAY", screen.name().toLatin1());
    const QString socket = "/tmp/.X11-unix/X" + screen.name().mid(1);
    const Result result = run(
        {"sh", "-c",
         "ls -A /tmp /run/session; rm -f " + socket + " 2>/dev/null; echo > /tmp/.X11-unix/file"},
        {"--display"});
    QCOMPARE(result.output, QStringLiteral("/run/session:\n\n/tmp:\n.X11-unix\n"));
    QVERIFY(result.status != 0);
    QVERIFY(QFile::exists(socket));
    QVERIFY(!QFile::exists("/tmp/.X11-unix/file"));
}

void TestWorld::withoutTheOptionNoScreenIsReached()
{
    VirtualScreen screen;
    QVERIFY(screen.start());
    qputenv("DISPLAY", screen.name().toLatin1());
    QCOMPARE(run({"xdotool", "getdisplaygeometry"}).output, QString());
    QCOMPARE(run({"sh", "-c", "ls -A /tmp; test -e /run/session"}).output, QString());
}

void TestWorld::withoutARunningWorldNothingIsJoined()
{
    QCOMPARE(run({"true"}, {"--join", "/nowhere"}).status, 125);
}

void TestWorld::anUnknownOptionIsRefused()
{
    const Result result = run({"true"}, {"--unknown"});
    QCOMPARE(result.status, 125);
    QVERIFY(result.complaint.startsWith("usage: world"));
}

void TestWorld::helpOfRunAndTestShowsTheirUsage_data()
{
    QTest::addColumn<QString>("shown");
    QTest::newRow("run") << "./run -- COMMAND...";
    QTest::newRow("test") << "./test --long";
}

void TestWorld::helpOfRunAndTestShowsTheirUsage()
{
    QFETCH(QString, shown);
    for (const char *option : {"--help", "-h"}) {
        QProcess command;
        command.start(QDir::cleanPath(WORLD "/../..") + '/' + QTest::currentDataTag(), {option});
        QVERIFY(command.waitForFinished(deadlineMs));
        QCOMPARE(command.exitCode(), 0);
        QCOMPARE(command.readAllStandardError(), QByteArray());
        const QString output = QString::fromUtf8(command.readAllStandardOutput());
        QVERIFY2(output.contains("\n  " + shown), qPrintable(output));
        QVERIFY2(!output.contains("set -e") && !output.contains('#'), qPrintable(output));
    }
}

void TestWorld::runRejectsUnknownOptions_data()
{
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *options, const char *complaint) {
        QTest::newRow(options) << complaint;
    };
    row("--bogus", "there is no option '--bogus'");
    row("-x", "there is no option '-x'");
    row("--speed", "--speed: '--' is not a whole number from 1 to 60");
    row("--speed 0", "--speed: '0' is not a whole number from 1 to 60");
    row("--speed 61", "--speed: '61' is not a whole number from 1 to 60");
    row("--speed fast", "--speed: 'fast' is not a whole number from 1 to 60");
    row("--handle here", "--handle: 'here' is not an absolute path");
    row("--speed 2 --bogus", "there is no option '--bogus'");
}

void TestWorld::runRejectsUnknownOptions()
{
    QFETCH(QString, complaint);
    QProcess command;
    command.start(QDir::cleanPath(WORLD "/../..") + "/run",
                  QString(QTest::currentDataTag()).split(' ') + QStringList{"--", "true"});
    QVERIFY(command.waitForFinished(deadlineMs));
    QCOMPARE(command.exitCode(), 2);
    const QString said = QString::fromUtf8(command.readAllStandardError());
    QVERIFY2(said.startsWith("./run: " + complaint + '\n'), qPrintable(said));
    QVERIFY2(said.contains("\n  ./run -- COMMAND..."), qPrintable(said));
    QCOMPARE(command.readAllStandardOutput(), QByteArray());
}

QTEST_GUILESS_MAIN(TestWorld)
#include "test_world.moc"
