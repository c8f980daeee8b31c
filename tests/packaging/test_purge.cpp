#include "daemontest.h"
#include "files.h"

#include <QProcess>
#include <QTest>

#include <unistd.h>

/** The files that a purge of the package removes. */
class TestPurge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void filesOfTheServiceAreDeleted();
    void profilesStay();
    void aPurgeWithoutAnyFileSucceeds();
    void aDirectoryAtThePathOfAFileStaysAndThePurgeSucceeds();
    void noLinkIsFollowed_data();
    void noLinkIsFollowed();

private:
    static int purge();
};

namespace
{
const QString profiles = QStringLiteral("/tmp/User_part");
const QString victim = QStringLiteral("/opt/victim");
} // namespace

void TestPurge::init()
{
    removePath(profiles);
    removePath(victim);
}

int TestPurge::purge()
{
    return QProcess::execute(QStringLiteral("sh"), {QStringLiteral(POSTRM), "purge"});
}

void TestPurge::filesOfTheServiceAreDeleted()
{
    for (const QString &path : {QStringLiteral("/opt/settings.ini"),
                                QStringLiteral("/tmp/logkywifi"), profiles + "/hostapd.conf"})
        writeFile(path, "written");
    QVERIFY(QFile::link("/nowhere", profiles + "/system"));

    QCOMPARE(purge(), 0);

    QVERIFY(!QFile::exists("/opt/settings.ini"));
    QVERIFY(!QFile::exists("/tmp/logkywifi"));
    QVERIFY(!QFile::exists(profiles));
}

void TestPurge::profilesStay()
{
    writeFile(profiles + "/user1_profile/file", "mine");
    writeFile(profiles + "/hostapd.conf", "written");
    QCOMPARE(purge(), 0);
    QCOMPARE(snapshot(profiles), (QStringList{"user1_profile", "user1_profile/file=mine"}));
}

void TestPurge::aPurgeWithoutAnyFileSucceeds()
{
    QCOMPARE(purge(), 0);
}

void TestPurge::aDirectoryAtThePathOfAFileStaysAndThePurgeSucceeds()
{
    for (const QString &path : {QStringLiteral("/tmp/logkywifi"), profiles + "/system"})
        QVERIFY(QDir().mkpath(path));
    writeFile("/opt/settings.ini", "written");
    writeFile(profiles + "/hostapd.conf", "written");

    QCOMPARE(purge(), 0);

    QVERIFY(!QFile::exists("/opt/settings.ini"));
    QCOMPARE(snapshot(profiles), QStringList{"system"});
    QVERIFY(QDir().rmdir("/tmp/logkywifi"));
}

void TestPurge::noLinkIsFollowed_data()
{
    QTest::addColumn<uint>("owner");
    QTest::newRow("root's") << 0U;
    QTest::newRow("stranger's") << 61186U;
}

void TestPurge::noLinkIsFollowed()
{
    QFETCH(uint, owner);
    writeFile(victim + "/hostapd.conf", "keep");
    writeFile(victim + "/system", "keep");
    QVERIFY(QFile::link(victim, profiles));
    QCOMPARE(lchown(qPrintable(profiles), owner, owner), 0);

    QCOMPARE(purge(), 0);

    QCOMPARE(snapshot(victim), (QStringList{"hostapd.conf=keep", "system=keep"}));
}

WORLD_TEST_MAIN(TestPurge)
#include "test_purge.moc"
