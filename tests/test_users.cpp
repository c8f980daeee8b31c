#include "daemontest.h"

#include <QSettings>

#include <sys/mount.h>

/** The user profiles, on the running daemon. */
class TestUsers : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void getUserNamesTheActiveProfile();
    void getUserTakesTheNameFromTheLinkWhateverItIs_data();
    void getUserTakesTheNameFromTheLinkWhateverItIs();
    void getUserWithoutALinkIsAReadError();
    void everyMethodRefusesOtherArguments();

    void startKeepsAValidUser();
    void startChoosesTheFirstUsableUser_data();
    void startChoosesTheFirstUsableUser();
    void startTakesTheNextUserWhenOneCannotBeActivated();
    void startMakesEveryUserValidAgain();
    void startWithoutAnyFolderServesAllTheSame();

    void setUserSwitchesToACompleteProfileAsItIs();
    void setUserToTheActiveUserDoesNothing();
    void setUserRefusesEveryOtherName_data();
    void setUserRefusesEveryOtherName();
    void setUserRefusesATextOfAHundredThousandCharacters();
    void setUserRebuildsAnIncompleteProfile();
    void setUserBuildsAMissingProfile();
    void setUserKeepsExtraFilesOfACompleteProfile();
    void setUserWithoutADefaultProfileTakesAnyFolder();
    void setUserMakesAMissingLink();
    void setUserReplacesAFileInTheLinksPlace();
    void aLinkThatCannotBeMadeInvalidatesTheUser();
    void aLinkThatCannotBeMadeLeavesNoActiveProfile();
    void aProfileFolderThatIsAFileInvalidatesTheUserAndIsKept();
    void aDiskThatIsFullInMidCopyInvalidatesTheUserAndKeepsTheLink();
    void anUnreadableDefaultProfileCostsNoUserItsFiles();
    void anUnreadableDefaultProfileDoesNotHinderACompleteProfile();
    void anInvalidUserCanBeUsedAfterARestart();

    void factoryResetOfAnotherUserLeavesTheLink();
    void factoryResetOfTheActiveUser();
    void factoryResetWithoutALink();
    void factoryResetRemovesWhatTheUserAdded();
    void factoryResetRefusesAnInvalidUser();
    void factoryResetReportsWhatCannotBeErased();
    void factoryResetReportsAFailedCopy();
    void factoryResetReportsAnUnreadableDefaultProfileAndErasesNothing();
    void factoryResetDoesNotFollowALinkOutOfTheProfile();

private:
    bool isUserValid(const QString &user) const;
    void removeDefaultFileAccess();

    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    const QString invalid = failure("InvalidArguments", QStringLiteral("User name is invalid."));
    const QString system = QStringLiteral("/tmp/User_part/system");
};

/** Whether the daemon takes @p user; asked by a reset, which never changes the flag. */
bool TestUsers::isUserValid(const QString &user) const
{
    return users.call(QStringLiteral("factoryReset"), {user}) != invalid;
}

/** Makes the daemon obey the modes of files, as root otherwise need not. */
void TestUsers::removeDefaultFileAccess()
{
    daemon.setWrapper({QStringLiteral("setpriv"), QStringLiteral("--bounding-set"),
                       QStringLiteral("-dac_override,-dac_read_search")});
}

void TestUsers::getUserNamesTheActiveProfile()
{
    QVERIFY(daemon.start());
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
}

void TestUsers::getUserTakesTheNameFromTheLinkWhateverItIs_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("name");
    QTest::newRow("default") << profile("default_user") << "default_user";
    QTest::newRow("nowhere") << "/nowhere"
                             << "/nowhere";
    QTest::newRow("repeated") << "/tmp/User_part/user2_profile_profile"
                              << "user2";
    QTest::newRow("elsewhere") << "/media/user3_profile"
                               << "/media/user3";
}

void TestUsers::getUserTakesTheNameFromTheLinkWhateverItIs()
{
    QFETCH(QString, target);
    QFETCH(QString, name);
    QVERIFY(daemon.start());
    QFile::remove(system);
    QFile::link(target, system);

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"%1\")").arg(name));
}

void TestUsers::getUserWithoutALinkIsAReadError()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    const QString expected = failure("Read", "Not able to read the current user.");
    QCOMPARE(users.call("getUser"), expected);

    writeFile(system, "no link");
    QCOMPARE(users.call("getUser"), expected);
}

void TestUsers::everyMethodRefusesOtherArguments()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");
    const QString unknown = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod: ");

    QVERIFY(users.call("getUser", {"user1"}).startsWith(unknown));
    QVERIFY(users.call("setUser").startsWith(unknown));
    QVERIFY(users.call("setUser", {2}).startsWith(unknown));
    QVERIFY(users.call("setUser", {"user2", "user3"}).startsWith(unknown));
    QVERIFY(users.call("factoryReset", {QStringList{"user2"}}).startsWith(unknown));

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
}

void TestUsers::startKeepsAValidUser()
{
    QFile::remove(system);
    QFile::link(profile("user3"), system);
    QFile::remove(profile("user3") + "/measure.conf");

    QVERIFY(daemon.start());

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user3\")"));
    QVERIFY(!QFile::exists(profile("user3") + "/measure.conf"));
    QVERIFY(!daemon.log().contains("Init of KyUsers failed"));
}

void TestUsers::startChoosesTheFirstUsableUser_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("no link") << QString();
    QTest::newRow("link to nowhere") << "/nowhere";
    QTest::newRow("link to the default profile") << profile("default_user");
    QTest::newRow("link to an unknown user") << profile("user5");
}

void TestUsers::startChoosesTheFirstUsableUser()
{
    QFETCH(QString, target);
    QFile::remove(system);
    if (!target.isEmpty())
        QFile::link(target, system);

    QVERIFY(daemon.start());

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(daemon.log().contains("Init of KyUsers failed: failed to get the current user"),
             target.isEmpty());
}

void TestUsers::startTakesTheNextUserWhenOneCannotBeActivated()
{
    QFile::remove(system);
    removePath(profile("user1"));
    writeFile(profile("user1"), "no folder");

    QVERIFY(daemon.start());

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user2\")"));
    QVERIFY(!isUserValid("user1"));
}

void TestUsers::startMakesEveryUserValidAgain()
{
    writeFile("/opt/settings.ini", "[Users]\nstateuser1=false\nstateuser2=false\n"
                                   "stateuser3=nonsense\nstateuser4=\n");
    QVERIFY(daemon.start());
    for (const char *user : {"user1", "user2", "user3", "user4"})
        QVERIFY(isUserValid(user));
}

void TestUsers::startWithoutAnyFolderServesAllTheSame()
{
    removePath("/tmp/User_part");
    QVERIFY(daemon.start());
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(snapshot("/tmp/User_part"),
             (QStringList{"system->/tmp/User_part/user1_profile", "user1_profile"}));
}

void TestUsers::setUserSwitchesToACompleteProfileAsItIs()
{
    QVERIFY(daemon.start());
    const QStringList before = snapshot(profile("user2"));
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user2\")"}));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
    QCOMPARE(snapshot(profile("user2")), before);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user2\")"));
    daemon.stop();
    QCOMPARE(QSettings("/opt/settings.ini", QSettings::IniFormat).value("Users/stateuser2"),
             QVariant("true"));
}

void TestUsers::setUserToTheActiveUserDoesNothing()
{
    QVERIFY(daemon.start());
    QFile::remove(profile("user1") + "/measure.conf");
    const QStringList before = snapshot("/tmp/User_part");
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user1"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(snapshot("/tmp/User_part"), before);
}

void TestUsers::setUserRefusesEveryOtherName_data()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"User1", "user5", "", "user1 ", " user1", "user0", "default_user",
                             "../user2", "user2/", "/tmp/User_part/user2", "user1_profile"})
        QTest::newRow(name) << name;
}

void TestUsers::setUserRefusesEveryOtherName()
{
    QFETCH(QString, name);
    QVERIFY(daemon.start());
    const QStringList before = snapshot("/tmp/User_part");
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {name}), invalid);
    QCOMPARE(users.call("factoryReset", {name}), invalid);

    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(snapshot("/tmp/User_part"), before);
}

void TestUsers::setUserRefusesATextOfAHundredThousandCharacters()
{
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {QString(100000, 'u')}), invalid);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
}

void TestUsers::setUserRebuildsAnIncompleteProfile()
{
    writeFile(profile("default_user") + "/.secrets/.keys/station", "default");
    writeFile(profile("user3") + "/mine", "lost by design");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));

    QCOMPARE(snapshot(profile("user3")), snapshot(profile("default_user")));
    QVERIFY(QFile::exists(profile("user3") + "/.secrets/.keys/station"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user3"));
    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user3\")"}));
}

void TestUsers::setUserBuildsAMissingProfile()
{
    removePath(profile("user4"));
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user4"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user4")), snapshot(profile("default_user")));
}

void TestUsers::setUserKeepsExtraFilesOfACompleteProfile()
{
    writeFile(profile("user2") + "/extra", "mine");
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/extra"), QByteArray("mine"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
}

void TestUsers::setUserWithoutADefaultProfileTakesAnyFolder()
{
    removePath(profile("default_user"));
    removePath(profile("user4"));
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
    QCOMPARE(users.call("setUser", {"user4"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user4")), QStringList());
    QVERIFY(!QFile::exists(profile("default_user")));
}

void TestUsers::setUserMakesAMissingLink()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
}

void TestUsers::setUserReplacesAFileInTheLinksPlace()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    writeFile(system, "no link");
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
}

void TestUsers::aLinkThatCannotBeMadeInvalidatesTheUser()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    QVERIFY(QDir().mkpath(system + "/in/the/way"));
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Write", "Not able to overwrite the current user symlink."));
    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});

    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    QCOMPARE(users.call("factoryReset", {"user2"}), invalid);
    QCOMPARE(recorder.take(), QStringList());
    daemon.stop();
    const QSettings settings("/opt/settings.ini", QSettings::IniFormat);
    QCOMPARE(settings.value("Users/stateuser2"), QVariant("false"));
    QCOMPARE(settings.value("Users/stateuser3"), QVariant("true"));
}

void TestUsers::aLinkThatCannotBeMadeLeavesNoActiveProfile()
{
    // A file system that holds no further name, once the link has been removed.
    emptyFolder("/tmp/User_part");
    QCOMPARE(mount("tmpfs", "/tmp/User_part", "tmpfs", 0, "nr_inodes=2"), 0);
    QVERIFY(daemon.start());
    QCOMPARE(umount("/tmp/User_part"), 0);
    QCOMPARE(users.call("getUser"), failure("Read", "Not able to read the current user."));
}

void TestUsers::aProfileFolderThatIsAFileInvalidatesTheUserAndIsKept()
{
    removePath(profile("user2"));
    writeFile(profile("user2"), "no folder");
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    QCOMPARE(readFile(profile("user2")), QByteArray("no folder"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
}

void TestUsers::aDiskThatIsFullInMidCopyInvalidatesTheUserAndKeepsTheLink()
{
    writeFile(profile("default_user") + "/large", QByteArray(300000, 'x'));
    QCOMPARE(mount("tmpfs", qPrintable(profile("user2")), "tmpfs", 0, "size=128k"), 0);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(readFile(profile("user1") + "/measure.conf"), QByteArray("user1"));
    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));
    QCOMPARE(umount(qPrintable(profile("user2"))), 0);
}

void TestUsers::anUnreadableDefaultProfileCostsNoUserItsFiles()
{
    writeFile(profile("default_user") + "/new/secret", "unreadable");
    QVERIFY(QFile::setPermissions(profile("default_user") + "/new/secret", {}));
    const QStringList before = snapshot(profile("user2"));
    removeDefaultFileAccess();
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(snapshot(profile("user2")), before);
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
    QCOMPARE(users.call("setUser", {"user2"}), invalid);
}

void TestUsers::anUnreadableDefaultProfileDoesNotHinderACompleteProfile()
{
    QVERIFY(QFile::setPermissions(profile("default_user"), {}));
    removeDefaultFileAccess();
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
}

void TestUsers::anInvalidUserCanBeUsedAfterARestart()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    QVERIFY(QDir().mkpath(system + "/in/the/way"));
    users.call("setUser", {"user2"});
    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    daemon.stop();
    QVERIFY(QDir(system).removeRecursively());

    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
}

void TestUsers::factoryResetOfAnotherUserLeavesTheLink()
{
    writeFile(profile("default_user") + "/.hidden", "default");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user2\")"}));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
    QCOMPARE(readFile(profile("user1") + "/measure.conf"), QByteArray("user1"));
}

void TestUsers::factoryResetOfTheActiveUser()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user1"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user1\")"}));
    QCOMPARE(readFile(profile("user1") + "/measure.conf"), QByteArray("default_user"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
}

void TestUsers::factoryResetWithoutALink()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user2\")"}));
    QVERIFY(!QFileInfo(system).isSymLink());
}

void TestUsers::factoryResetRemovesWhatTheUserAdded()
{
    writeFile(profile("user2") + "/.mine", "hidden");
    writeFile(profile("user2") + "/a/b/c/mine", "deep");
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
}

void TestUsers::factoryResetRefusesAnInvalidUser()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");
    QCOMPARE(users.call("factoryReset", {"user9"}), invalid);
    QCOMPARE(recorder.take(), QStringList());
}

void TestUsers::factoryResetReportsWhatCannotBeErased()
{
    QVERIFY(QDir().mkpath(profile("user2") + "/mounted"));
    QCOMPARE(mount("tmpfs", qPrintable(profile("user2") + "/mounted"), "tmpfs", 0, ""), 0);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Process", "Was not able to erase previous configuration"));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QVERIFY(isUserValid("user2"));
    QCOMPARE(umount(qPrintable(profile("user2") + "/mounted")), 0);
}

void TestUsers::factoryResetReportsAFailedCopy()
{
    writeFile(profile("default_user") + "/large", QByteArray(300000, 'x'));
    QCOMPARE(mount("tmpfs", qPrintable(profile("user2")), "tmpfs", 0, "size=128k"), 0);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QVERIFY(isUserValid("user2"));
    QCOMPARE(umount(qPrintable(profile("user2"))), 0);
}

void TestUsers::factoryResetReportsAnUnreadableDefaultProfileAndErasesNothing()
{
    QVERIFY(QFile::setPermissions(profile("default_user") + "/measure.conf", {}));
    removeDefaultFileAccess();
    QVERIFY(daemon.start());
    const QStringList before = snapshot(profile("user2"));
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QCOMPARE(snapshot(profile("user2")), before);
}

void TestUsers::factoryResetDoesNotFollowALinkOutOfTheProfile()
{
    writeFile("/opt/precious/file", "keep");
    QVERIFY(QFile::link("/opt/precious", profile("user2") + "/link"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile("/opt/precious/file"), QByteArray("keep"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
}

WORLD_TEST_MAIN(TestUsers)
#include "test_users.moc"
