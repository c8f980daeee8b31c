#include "deadline.h"
#include "ethernettest.h"
#include "figures.h"
#include "networktest.h"
#include "processes.h"

#include <QStandardPaths>

#include <csignal>

/**
 * Applies every fault to the programs that the daemon starts, for each adaptor that starts them.
 * The daemon must continue, no process or descriptor of the program may remain, and the next call
 * must succeed.
 */
class TestChildFaults : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void cleanupTestCase();

    void theNextOneWorks_data();
    void theNextOneWorks();

private:
    void install(const QString &child, const QString &fault);
    void restore(const QString &child);
    QString use(const QString &adaptor);
    void endAttempt(const QString &adaptor);
    void verifyWorks(const QString &adaptor);

    int m_combinations = 0;
    int m_survived = 0;
};

namespace
{
const QString fakes = QStringLiteral("/run/fakes");
const QString module = QStringLiteral("/usr/share/redpine/switch_coex_mode.sh");
const QString application = QStringLiteral("/opt/KyApp");

const QStringList faults = {"hangs",          "prints megabytes", "ends by a signal",
                            "ends with 1",    "is missing",       "is not executable",
                            "is a directory", "is no program",    "leaves a child behind"};

QString pathOf(const QString &child)
{
    return child == "script" ? module : child == "pidof" ? fakes + "/pidof" : application;
}

QByteArray scriptOf(const QString &fault)
{
    const QByteArray note = "#!/bin/sh\nunset LD_PRELOAD\necho $$ >>/run/fakes/running\n";
    if (fault == "hangs")
        return note + "trap '' TERM\nexec sleep 1000\n";
    if (fault == "prints megabytes")
        return note + "head -c 20000000 /dev/zero\nhead -c 20000000 /dev/zero >&2\nexit 1\n";
    if (fault == "ends by a signal")
        return note + "kill -SEGV $$\n";
    if (fault == "leaves a child behind")
        return note + "sleep 1000 &\necho $! >>/run/fakes/running\nexit 1\n";
    return fault == "is no program" ? "\x7f"
                                      "ELF is not what this is"
                                    : note + "exit 1\n";
}

/** Kills the faulty programs that still run, and their children. */
void endRunning()
{
    for (const QByteArray &id : readFile(fakes + "/running").split('\n')) {
        if (id.toInt() > 0)
            ::kill(pid_t(id.toInt()), SIGKILL);
    }
    QFile::remove(fakes + "/running");
}

/** The number of zombies among the children of @p process. */
int uncollected(qint64 process)
{
    const QList<int> children = childrenOf(process);
    return int(std::count_if(children.begin(), children.end(), hasEnded));
}
} // namespace

void TestChildFaults::init()
{
    NetworkTest::init();
    removePath(fakes);
    QDir().mkpath(fakes);
    daemon.setEnvironment("PATH", fakes + ':' + qEnvironmentVariable("PATH"));
    connman.setServices({wired(), network("Lab", "idle")});
}

void TestChildFaults::cleanup()
{
    NetworkTest::cleanup();
    endRunning();
    removePath(application);
}

/** Replaces the program @p child by a program with @p fault. */
void TestChildFaults::install(const QString &child, const QString &fault)
{
    const QString path = pathOf(child);
    removePath(path);
    if (fault == "is missing")
        return;
    if (fault == "is a directory") {
        QVERIFY(QDir().mkpath(path));
        return;
    }
    writeFile(path, scriptOf(fault));
    if (fault != "is not executable")
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner));
}

/** Restores the working program. */
void TestChildFaults::restore(const QString &child)
{
    removePath(pathOf(child));
    if (child == "script") {
        script.install();
    } else if (child == "KyApp") {
        writeFile(application, "#!/bin/sh\necho 4.5\n");
        QFile::setPermissions(application, QFile::ReadOwner | QFile::ExeOwner);
    }
}

/** Makes @p adaptor use the program; returns the reply. */
QString TestChildFaults::use(const QString &adaptor)
{
    if (adaptor == "Version")
        return Remote("/KyDeviceMgr", "Version").call("getSoftwareVersions");
    if (adaptor == "Ethernet")
        return ethernet.call("connect");
    return adaptor == "WIFI"
               ? wifi.call("connect", {QVariantMap{{"Service", "Lab"}}})
               : wifiAp.call("connect", {QVariantMap{{"SSID", "Lab"}, {"IP", "192.168.7.1"}}});
}

void TestChildFaults::endAttempt(const QString &adaptor)
{
    const Remote &remote = adaptor == "Ethernet" ? ethernet : adaptor == "WIFI" ? wifi : wifiAp;
    for (int times = 0; times < 3; ++times) {
        remote.call("disconnect");
        waitForScripts();
        daemon.letTimePass(16);
        settle();
    }
    connman.storeProperty(ConnmanStandIn::ethernetTechnology, "Powered", false);
    connman.storeProperty(ConnmanStandIn::wifiTechnology, "Powered", false);
    connman.clearJournal();
    recorder->take();
}

/** Verifies that the next attempt succeeds. */
void TestChildFaults::verifyWorks(const QString &adaptor)
{
    if (adaptor == "Version") {
        // The daemon calls the program only once, even if the call fails: start the daemon again.
        daemon.stop();
        QVERIFY(daemon.start());
        QVERIFY(use(adaptor).contains("\"KyApp\": <ay:\"342e35\">"));
        return;
    }
    endAttempt(adaptor);
    QCOMPARE(use(adaptor), QString("()"));
    passModuleDelay();
    const QString reached = adaptor == "WIFIAP" ? "\"ready\"" : "\"association\"";
    QTRY_VERIFY_WITH_TIMEOUT(recorder->recorded().join(' ').contains(reached), deadlineMs);
}

void TestChildFaults::theNextOneWorks_data()
{
    QTest::addColumn<QString>("child");
    QTest::addColumn<QString>("adaptor");
    QTest::addColumn<QString>("fault");
    for (const char *child : {"script", "pidof", "KyApp"}) {
        const bool isVersion = child == QByteArray("KyApp");
        for (const QString &adaptor :
             isVersion ? QStringList("Version") : QStringList{"Ethernet", "WIFI", "WIFIAP"}) {
            for (const QString &fault : faults)
                QTest::newRow(qPrintable(adaptor + ", " + child + ' ' + fault))
                    << child << adaptor << fault;
        }
    }
}

void TestChildFaults::theNextOneWorks()
{
    QFETCH(QString, child);
    QFETCH(QString, adaptor);
    QFETCH(QString, fault);
    ++m_combinations;
    if (child == "pidof" && fault == "is missing")
        daemon.setEnvironment(
            "PATH",
            fakes + ':' + QFileInfo(QStandardPaths::findExecutable("KyBoardManager")).path());
    begin();
    const int before = daemon.settledDescriptors();
    install(child, fault);

    const QString reply = use(adaptor);
    // If the script cannot be started, the caller gets an error. A later failure of the script
    // shows only in the link state.
    const bool canStart = child != "script" || !fault.startsWith("is ");
    const QString cannotSwitchTo =
        adaptor == "WIFIAP" ? "2' (WLAN ACCESS POINT)" : "1' (WLAN STATION)";
    if (adaptor == "Version")
        QCOMPARE(reply, QString("({\"KyBoardManager\": <\"%1\">})").arg(Daemon::version()));
    else if (canStart || fault == "is no program")
        QVERIFY2(reply == "()" || fault == "is no program", qPrintable(reply));
    else
        QCOMPARE(reply, failed("Cannot switch in mode '" + cannotSwitchTo));
    // Two seconds later the daemon looks for ConnMan, or for the access point's programs.
    if (adaptor != "Version") {
        if (!(child == "script" && fault == "hangs"))
            waitForScripts();
        daemon.letTimePass(2);
        settle();
        daemon.letTimePass(61);
    }
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QString("(\"user1\")"));
    QVERIFY(daemon.isRunning());

    endRunning();
    restore(child);
    QVERIFY(QTest::qWaitFor([&] { return uncollected(daemon.processId()) == 0; }, deadlineMs));
    QVERIFY(QTest::qWaitFor([&] { return daemon.descriptors() <= before; }, deadlineMs));
    if (child == "pidof" && fault == "is missing") {
        // The daemon's PATH did not contain the system's programs: start it again.
        daemon.stop();
        daemon.resetEnvironment();
        begin();
    }
    verifyWorks(adaptor);
    QVERIFY(!QTest::currentTestFailed());
    ++m_survived;
}

void TestChildFaults::cleanupTestCase()
{
    reportFigures(QStringLiteral("faults of children: %1 combinations, %2 survived")
                      .arg(m_combinations)
                      .arg(m_survived));
}

WORLD_TEST_MAIN(TestChildFaults)
#include "campaign_childfaults.moc"
