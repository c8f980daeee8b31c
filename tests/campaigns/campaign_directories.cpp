#include "daemontest.h"
#include "deadline.h"
#include "figures.h"
#include "processes.h"

#include <QElapsedTimer>
#include <QRegularExpression>

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <linux/fs.h>
#include <new>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
const uid_t member = 61185;
const uid_t stranger = 61186;

const QString profiles = QStringLiteral("/tmp/User_part");
const QString victim = QStringLiteral("/opt/victim");
const QString secret = QStringLiteral("/opt/secret");
const QStringList everyUser = {"user1", "user2", "user3", "user4"};

/**
 * An attack of the local user @p owner: a loop that swaps a name in a directory of that user. It
 * runs in a process of its own and makes only system calls.
 */
struct Race {
    QString name;
    uid_t owner;
    /** The directory that the user owns, and the directory in which the loop swaps the name. */
    QString owned;
    QString directory;
    /** The name that alternates between its original and a link to the target. */
    QByteArray swapped;
    QByteArray target;
};

const QList<Race> races = {
    {"a subdirectory of the attacker's profile", member, profiles + "/user2_profile",
     profiles + "/user2_profile", "display", "/opt/victim"},
    {"the directory of a partial copy", member, profiles + "/user2_profile",
     profiles + "/user2_profile", ".rebuild", "/opt/victim"},
    {"a profile", stranger, profiles, profiles, "user2_profile", "/opt/victim"},
    {"all profiles", stranger, profiles, "/tmp", "User_part", "/opt/victim"},
    {"a file of the default profile", stranger, profiles, profiles + "/default_user_profile",
     "measure.conf", "/opt/secret/file"},
    {"a subdirectory of the default profile", stranger, profiles,
     profiles + "/default_user_profile", "display", "/opt/secret"},
};

/** Swaps the original and the link endlessly; creates the link if the name does not exist. */
[[noreturn]] void race(const Race &attack, std::atomic<long> &swaps)
{
    const QByteArray path = QFile::encodeName(attack.directory);
    const int directory = open(path.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const char *const name = attack.swapped.constData();
    const char *const aside = ".aside";
    if (directory < 0 || setgid(attack.owner) != 0 || setuid(attack.owner) != 0)
        _exit(1);
    for (;;) {
        symlinkat(attack.target.constData(), directory, aside);
        if (symlinkat(attack.target.constData(), directory, name) == 0)
            ++swaps;
        if (syscall(SYS_renameat2, directory, aside, directory, name, RENAME_EXCHANGE) == 0)
            ++swaps;
        if (syscall(SYS_renameat2, directory, aside, directory, name, RENAME_EXCHANGE) == 0)
            ++swaps;
    }
}

/** Lists everything below @p directory, with owners and modes. */
QStringList picture(const QString &directory)
{
    QStringList lines = snapshot(directory);
    for (QString &line : lines) {
        struct stat status = {};
        const QString name = line.section(QRegularExpression("=|->"), 0, 0);
        lstat(qPrintable(directory + '/' + name), &status);
        line += QStringLiteral(" %1 %2").arg(status.st_uid).arg(status.st_mode, 0, 8);
    }
    return lines;
}

void give(uid_t owner, const QString &path)
{
    if (QProcess::execute("chown", {"-hR", QString::number(owner), path}) != 0)
        qFatal("cannot give %s away", qPrintable(path));
}
} // namespace

/**
 * A local user owns a profile, or has created the directory of all profiles before the
 * installation, and plants links that lead out of it: before the start, and in a race with the
 * daemon. The daemon must not read, write or erase anything outside.
 *
 * FAULTS=all in the environment makes each race longer.
 */
class TestDirectories : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();

    void aLinkThatWasThereBeforeIsNotFollowed_data();
    void aLinkThatWasThereBeforeIsNotFollowed();
    void noRaceIsLost_data();
    void noRaceIsLost();

private:
    static void layOutVictim();
    static QStringList secretsOut();
    static bool isUntouched(const QStringList &before);
    QString peakMemory() const;

    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    const int m_rounds = qEnvironmentVariable("FAULTS") == QLatin1String("all") ? 5000 : 200;
    int m_raced = 0;
    int m_lost = 0;
    qint64 m_longest = 0;
};

void TestDirectories::init()
{
    DaemonTest::init();
    removePath(QStringLiteral("/tmp/.aside"));
    writeFile(secret + "/file", "secret");
    chmod(qPrintable(secret + "/file"), 0600);
    layOutVictim();
}

void TestDirectories::layOutVictim()
{
    removePath(victim);
    writeFile(victim + "/file", "keep");
    for (const QString &user : everyUser)
        writeFile(victim + '/' + user + "_profile/file", "keep");
}

/** The files in the profiles that contain a copy of the secret, which only root may read. */
QStringList TestDirectories::secretsOut()
{
    QStringList files;
    for (const QString &line : snapshot(profiles).filter("=secret"))
        files << profiles + '/' + line.section('=', 0, 0);
    return files;
}

/**
 * Returns true if the target of the links has not changed since @p before, and no secret was
 * copied. Otherwise restores the target and removes the copies.
 */
bool TestDirectories::isUntouched(const QStringList &before)
{
    const QStringList secrets = secretsOut();
    if (picture(victim) == before && secrets.isEmpty())
        return true;
    layOutVictim();
    for (const QString &file : secrets)
        QFile::remove(file);
    return false;
}

QString TestDirectories::peakMemory() const
{
    return statusOf(daemon.processId(), "VmHWM") + " kB";
}

void TestDirectories::aLinkThatWasThereBeforeIsNotFollowed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("target");
    for (const QString &user : everyUser)
        QTest::newRow(qPrintable(user + "'s profile")) << profile(user) << victim;
    QTest::newRow("all profiles") << profiles << victim;
    QTest::newRow("a subdirectory of a profile") << profile("user1") + "/display" << victim;
    QTest::newRow("the default profile") << profile("default_user") << secret;
    QTest::newRow("a file of the default profile")
        << profile("default_user") + "/secret" << secret + "/file";
    QTest::newRow("a subdirectory of the default profile")
        << profile("default_user") + "/secret" << secret;
    QTest::newRow("the link to the active profile") << profiles + "/system" << victim;
}

void TestDirectories::aLinkThatWasThereBeforeIsNotFollowed()
{
    QFETCH(QString, path);
    QFETCH(QString, target);
    // No profile is complete: every start and every switch has to replace one.
    writeFile(profile("default_user") + "/new", "default");
    QFile::remove(profiles + "/system");
    removePath(path);
    QVERIFY(QFile::link(target, path));
    give(stranger, profiles);
    const QStringList before = picture(victim);

    QVERIFY(daemon.start());
    for (const QString &user : everyUser) {
        users.call("setUser", {user});
        users.call("factoryReset", {user});
    }

    QCOMPARE(picture(victim), before);
    QCOMPARE(secretsOut(), QStringList());
    QVERIFY(daemon.isRunning());
}

void TestDirectories::noRaceIsLost_data()
{
    QTest::addColumn<int>("index");
    for (int index = 0; index < races.size(); ++index)
        QTest::newRow(qPrintable(races.at(index).name)) << index;
}

void TestDirectories::noRaceIsLost()
{
    QFETCH(int, index);
    const Race &attack = races.at(index);
    give(attack.owner, attack.owned);
    const QStringList before = picture(victim);
    QVERIFY(daemon.start());
    const int descriptors = daemon.settledDescriptors();
    void *const shared = mmap(nullptr, sizeof(std::atomic<long>), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    QVERIFY(shared != MAP_FAILED);
    auto &swaps = *new (shared) std::atomic<long>(0);
    const pid_t attacker = fork();
    if (attacker == 0)
        race(attack, swaps);
    QTRY_VERIFY_WITH_TIMEOUT(swaps > 0, deadlineMs);

    int lost = 0;
    int done = 0;
    int status = 0;
    QElapsedTimer timer;
    for (int round = 0; round < m_rounds && daemon.isRunning(); ++round) {
        timer.start();
        if (users.call("factoryReset", {"user2"}) == "()")
            ++done;
        m_longest = qMax(m_longest, timer.elapsed());
        kill(attacker, SIGSTOP);
        QVERIFY(waitpid(attacker, &status, WUNTRACED) == attacker && WIFSTOPPED(status));
        if (!isUntouched(before))
            ++lost;
        kill(attacker, SIGCONT);
    }
    kill(attacker, SIGKILL);
    waitpid(attacker, &status, 0);

    qInfo("%s: %d rounds, %d resets done, %ld swaps, %d races lost, peak memory %s",
          attack.name.toUtf8().constData(), m_rounds, done, swaps.load(), lost,
          qPrintable(peakMemory()));
    munmap(shared, sizeof(std::atomic<long>));
    m_raced += m_rounds;
    m_lost += lost;
    QVERIFY(daemon.isRunning());
    QCOMPARE(lost, 0);
    QVERIFY(QTest::qWaitFor([&] { return daemon.descriptors() <= descriptors; }, deadlineMs));
}

void TestDirectories::cleanupTestCase()
{
    reportFigures(QStringLiteral("directories that others own: %1 rounds of %2 races, %3 lost, "
                                 "longest call %4 ms")
                      .arg(m_raced)
                      .arg(races.size())
                      .arg(m_lost)
                      .arg(m_longest));
}

WORLD_TEST_MAIN(TestDirectories)
#include "campaign_directories.moc"
