#include "daemontest.h"
#include "files.h"

#include <QProcess>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

/** The files that systemd-tmpfiles creates in /tmp for the daemon. */
class TestTmpfiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theDirectoryOfTheProfilesIsCreated();
    void rootOwnsTheDirectoryOfTheProfiles();
    void aStrangersLinkInItsPlaceIsNotFollowed();

private:
    static void create();
    static void verify(const QString &directory, uid_t owner, mode_t mode);

    static const uid_t stranger = 61186;
};

namespace
{
const QString profiles = QStringLiteral("/tmp/User_part");
} // namespace

void TestTmpfiles::init()
{
    removePath(profiles);
}

/** Ignores the exit status: it also depends on the trace's entry, which is not tested here. */
void TestTmpfiles::create()
{
    QProcess::execute(QStringLiteral("systemd-tmpfiles"), {"--create", QStringLiteral(TMPFILES)});
}

void TestTmpfiles::verify(const QString &directory, uid_t owner, mode_t mode)
{
    struct stat status = {};
    QCOMPARE(lstat(qPrintable(directory), &status), 0);
    QCOMPARE(status.st_uid, owner);
    QCOMPARE(status.st_mode, mode);
}

void TestTmpfiles::theDirectoryOfTheProfilesIsCreated()
{
    create();
    verify(profiles, 0, S_IFDIR | 0755);
}

void TestTmpfiles::rootOwnsTheDirectoryOfTheProfiles()
{
    writeFile(profiles + "/user1_profile/file", "mine");
    QCOMPARE(QProcess::execute("chown", {"-R", "stranger", profiles}), 0);
    QCOMPARE(chmod(qPrintable(profiles), 0777), 0);
    create();
    verify(profiles, 0, S_IFDIR | 0755);
    // An application may own its profile.
    verify(profiles + "/user1_profile", stranger, S_IFDIR | 0755);
    QCOMPARE(readFile(profiles + "/user1_profile/file"), QByteArray("mine"));
}

void TestTmpfiles::aStrangersLinkInItsPlaceIsNotFollowed()
{
    QVERIFY(QDir().mkpath("/opt/victim"));
    QCOMPARE(QProcess::execute("chown", {"stranger", "/opt/victim"}), 0);
    QVERIFY(QFile::link("/opt/victim", profiles));
    QCOMPARE(lchown(qPrintable(profiles), stranger, stranger), 0);
    create();
    verify("/opt/victim", stranger, S_IFDIR | 0755);
    removePath("/opt/victim");
}

WORLD_TEST_MAIN(TestTmpfiles)
#include "test_tmpfiles.moc"
