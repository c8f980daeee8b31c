#include "daemontest.h"
#include "deadline.h"

#include <QSettings>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

/** Mounts a small file system at a path during its lifetime. */
class SmallDisk
{
public:
    SmallDisk(const QString &path, const char *size) : m_path(path)
    {
        if (mount("tmpfs", qPrintable(m_path), "tmpfs", 0, size) != 0)
            qFatal("cannot mount a tmpfs at %s", qPrintable(m_path));
    }
    ~SmallDisk() { umount2(qPrintable(m_path), MNT_DETACH); }

private:
    const QString m_path;
};

/** The user profiles, on the running daemon. */
class TestUsers : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void getUserReturnsTheActiveProfile();
    void getUserReturnsAnyNameInTheLink_data();
    void getUserReturnsAnyNameInTheLink();
    void getUserWithoutALinkIsAReadError();
    void everyMethodRefusesOtherArguments();

    void startKeepsAValidUser();
    void startChoosesTheFirstUsableUser_data();
    void startChoosesTheFirstUsableUser();
    void startTakesTheNextUserWhenOneCannotBeActivated();
    void startMakesEveryUserValidAgain();
    void startWithoutAnyDirectorySucceeds();

    void setUserSwitchesToACompleteProfileWithoutChangingIt();
    void setUserToTheActiveUserDoesNothing();
    void setUserRefusesEveryOtherName_data();
    void setUserRefusesEveryOtherName();
    void setUserRefusesATextOfAHundredThousandCharacters();
    void setUserRebuildsAnIncompleteProfile();
    void setUserBuildsAMissingProfile();
    void setUserKeepsExtraFilesOfACompleteProfile();
    void setUserWithoutADefaultProfileAcceptsAnyDirectory();
    void setUserCreatesAMissingLink();
    void setUserReplacesAFileAtThePathOfTheLink();
    void aLinkThatCannotBeCreatedInvalidatesTheUser();
    void aLinkThatCannotBeCreatedLeavesNoActiveProfile();
    void filesAreSyncedBeforeTheyAreRenamed();
    void aProfileIsMadeIncompleteBeforeAnyFileIsErased();
    void aStartChangesNoProfile();
    void aFileBesideACompleteProfileDoesNotCauseARebuild();
    void theNextRebuildRemovesLeftoversOfAPowerCut();
    void leftoversOfAPowerCutDoNotMakeAProfileIncomplete();
    void aFailedRebuildLeavesNothingBehind();
    void theDefaultProfileIsNeverErased_data();
    void theDefaultProfileIsNeverErased();
    void aDanglingProfileLinkIsRefused();
    void anotherAccountsProfileIsReset();
    void aLinkOfRootAtThePathOfAProfileIsFollowed();
    void aStrangersLinkAtThePathOfAProfileIsNotFollowed();
    void aStrangersLinkInThePathOfAProfileIsNotFollowed();
    void aStrangersLinkAtThePathOfAllProfilesIsNotFollowed();
    void aStrangersLinkInTheDefaultProfileIsNotRead_data();
    void aStrangersLinkInTheDefaultProfileIsNotRead();
    void aStrangersLinkAtThePathOfAFileIsNotChanged();
    void aStrangersLinkAtThePathOfASubdirectoryIsReplaced();
    void startContinuesWhenNoUserCanBeActivated();
    void aFileAtThePathOfAProfileInvalidatesTheUserAndIsKept();
    void aDiskThatFillsUpDuringTheCopyInvalidatesTheUserAndKeepsTheLink();
    void withAnUnreadableDefaultProfileNoFilesAreErased();
    void withAnUnreadableDefaultProfileACompleteProfileIsActivated();
    void theStoredFlagDecidesWhetherAUserIsValid();
    void usersWhoseFlagsVanishAreInvalidUntilTheNextStart();
    void anInvalidUserStaysInvalidWhenTheSettingsVanish();
    void anInvalidUserCanBeUsedAfterARestart();

    void factoryResetOfAnotherUserLeavesTheLink();
    void factoryResetOfTheActiveUser();
    void factoryResetWithoutALink();
    void factoryResetRemovesAddedFiles();
    void factoryResetRefusesAnInvalidUser();
    void factoryResetReportsAFailedErase();
    void factoryResetReportsAFailedCopy();
    void factoryResetReportsAnUnreadableDefaultProfileAndErasesNothing();
    void factoryResetDoesNotFollowALinkOutOfTheProfile();
    void readOnlySubdirectoriesAreCopied();
    void aFailedSystemCallFailsTheReset_data();
    void aFailedSystemCallFailsTheReset();

private:
    static QStringList traced(const char *calls, const char *injection);
    bool isUserValid(const QString &user) const;
    void dropDacCapabilities();
    static void plantLink(const QString &target, const QString &path);

    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    const QString invalid = failure("InvalidArguments", QStringLiteral("User name is invalid."));
    const QString system = QStringLiteral("/tmp/User_part/system");
};

/**
 * Returns true if @p user is valid. Asks with a reset, because a reset never changes whether a user
 * is valid.
 */
bool TestUsers::isUserValid(const QString &user) const
{
    return users.call(QStringLiteral("factoryReset"), {user}) != invalid;
}

/** Replaces @p path with a link that the user "stranger" owns. */
void TestUsers::plantLink(const QString &target, const QString &path)
{
    const uid_t stranger = 61186;
    removePath(path);
    if (!QFile::link(target, path) || lchown(qPrintable(path), stranger, stranger) != 0)
        qFatal("cannot plant a link at %s", qPrintable(path));
}

/** Makes mode bits apply to the daemon, although it runs as root. */
void TestUsers::dropDacCapabilities()
{
    daemon.setWrapper({QStringLiteral("setpriv"), QStringLiteral("--bounding-set"),
                       QStringLiteral("-dac_override,-dac_read_search")});
}

/**
 * Returns the wrapper that runs the daemon under strace: strace injects the result @p injection
 * into the system calls @p calls.
 */
QStringList TestUsers::traced(const char *calls, const char *injection)
{
    return {"strace",
            "-D",
            "-f",
            "-o",
            "/dev/null",
            "-e",
            QStringLiteral("trace=") + calls,
            "-e",
            QStringLiteral("inject=") + injection};
}

void TestUsers::getUserReturnsTheActiveProfile()
{
    QVERIFY(daemon.start());
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
}

void TestUsers::getUserReturnsAnyNameInTheLink_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("name");
    QTest::newRow("default") << profile("default_user") << "default_user";
    QTest::newRow("nowhere") << "/nowhere"
                             << "/nowhere";
    QTest::newRow("repeated") << "/tmp/User_part/user2_profile_profile"
                              << "user2";
    QTest::newRow("path again") << "/tmp/User_part/a/tmp/User_part/b"
                                << "ab";
    QTest::newRow("other case") << "/tmp/User_part/user2_PROFILE"
                                << "user2_PROFILE";
    QTest::newRow("nothing left") << "/tmp/User_part/_profile"
                                  << "";
    QTest::newRow("relative") << "user3_profile"
                              << "user3";
    QTest::newRow("elsewhere") << "/media/user3_profile"
                               << "/media/user3";
}

void TestUsers::getUserReturnsAnyNameInTheLink()
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
    writeFile(profile("user1"), "no directory");

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

void TestUsers::startWithoutAnyDirectorySucceeds()
{
    removePath("/tmp/User_part");
    QVERIFY(daemon.start());
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(snapshot("/tmp/User_part"),
             (QStringList{"system->/tmp/User_part/user1_profile", "user1_profile"}));
}

void TestUsers::setUserSwitchesToACompleteProfileWithoutChangingIt()
{
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/opt/settings.ini"), deadlineMs);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    // The settings of the start are stored now. Remove them, so that the file later shows what the
    // switch stores.
    QFile::remove("/opt/settings.ini");
    const QStringList before = snapshot(profile("user2"));
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));

    QCOMPARE(recorder.take(),
             (QStringList{"Users.changingUser()", "Users.userChanged(\"user2\")"}));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
    QCOMPARE(snapshot(profile("user2")), before);
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user2\")"));
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/opt/settings.ini"),
                              QByteArray("[Users]\nstateuser2=true\n"), deadlineMs);
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

void TestUsers::setUserWithoutADefaultProfileAcceptsAnyDirectory()
{
    removePath(profile("default_user"));
    removePath(profile("user4"));
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
    QCOMPARE(users.call("setUser", {"user4"}), QStringLiteral("()"));
    QVERIFY(QFileInfo(profile("user4")).isDir());
    QCOMPARE(snapshot(profile("user4")), QStringList());
    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), QStringList());
    QVERIFY(!QFile::exists(profile("default_user")));
}

void TestUsers::setUserCreatesAMissingLink()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
}

void TestUsers::setUserReplacesAFileAtThePathOfTheLink()
{
    QVERIFY(daemon.start());
    QFile::remove(system);
    writeFile(system, "no link");
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user2"));
}

void TestUsers::aLinkThatCannotBeCreatedInvalidatesTheUser()
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

void TestUsers::aLinkThatCannotBeCreatedLeavesNoActiveProfile()
{
    // The daemon removes the old link before it fails to create the new one.
    daemon.setWrapper(traced("symlink,symlinkat", "symlink,symlinkat:error=ENOSPC"));
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Write", "Not able to overwrite the current user symlink."));

    QCOMPARE(users.call("getUser"), failure("Read", "Not able to read the current user."));
    QVERIFY(!QFileInfo(system).isSymLink());
}

void TestUsers::filesAreSyncedBeforeTheyAreRenamed()
{
    daemon.setWrapper({"strace", "-D", "-f", "-o", "/tmp/trace", "-e",
                       "trace=syncfs,sync,fsync,fdatasync,/rename,/open,sendfile,copy_file_range"});
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/opt/settings.ini"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists("/opt/settings.ini.lock"), deadlineMs);
    writeFile("/tmp/trace", "");

    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));

    const QByteArray trace = readFile("/tmp/trace");
    QVERIFY2(trace.count("sync") == 1, trace.constData());
    const int synchronised = trace.indexOf("syncfs(");
    // Every file is written before the synchronisation and renamed after it.
    QVERIFY2(trace.lastIndexOf("O_CREAT") >= 0 && trace.lastIndexOf("O_CREAT") < synchronised,
             trace.constData());
    const QStringList renames = QString(trace.mid(synchronised)).split('\n').filter("rename");
    QCOMPARE(renames.size(), 2);
    for (const char *name : {"\"measure.conf\"", "\"display\""})
        QCOMPARE(renames.filter(name).size(), 1);
}

void TestUsers::aProfileIsMadeIncompleteBeforeAnyFileIsErased()
{
    writeFile(profile("user2") + "/added", "user2");
    daemon.setWrapper(
        {"strace", "-D", "-f", "-o", "/tmp/trace", "-e", "trace=/rename,/unlink,/rmdir"});
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/opt/settings.ini"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists("/opt/settings.ini.lock"), deadlineMs);
    writeFile("/tmp/trace", "");

    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));

    // The rename of measure.conf comes first. It makes the profile incomplete until the copy is in
    // place: after a power cut, the next switch replaces the profile.
    const QByteArray trace = readFile("/tmp/trace");
    const int renamed = trace.indexOf("\"measure.conf\"");
    QVERIFY2(renamed >= 0 && renamed < trace.indexOf("\".rebuild\""), trace.constData());
    QVERIFY2(renamed < trace.indexOf("unlink"), trace.constData());
}

void TestUsers::aStartChangesNoProfile()
{
    writeFile("/tmp/User_part/.user1_profile.rebuild", QByteArray());
    QVERIFY(QFile::remove(profile("user1") + "/display/theme.conf"));
    writeFile(profile("user1") + "/.rebuild/display/theme.conf", "dark");
    writeFile(profile("user1") + "/added", "user1");
    const QStringList before = snapshot("/tmp/User_part");

    QVERIFY(daemon.start());

    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(snapshot("/tmp/User_part"), before);
}

void TestUsers::aFileBesideACompleteProfileDoesNotCauseARebuild()
{
    writeFile("/tmp/User_part/.user2_profile.rebuild", QByteArray());
    const QStringList before = snapshot(profile("user2"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), before);
}

void TestUsers::theNextRebuildRemovesLeftoversOfAPowerCut()
{
    writeFile(profile("user2") + "/.rebuild/measure.conf", "cut sho");
    QVERIFY(QFile::remove(profile("user2") + "/measure.conf"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
}

void TestUsers::leftoversOfAPowerCutDoNotMakeAProfileIncomplete()
{
    QVERIFY(QDir().mkdir(profile("user2") + "/.rebuild"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
}

void TestUsers::aFailedRebuildLeavesNothingBehind()
{
    writeFile(profile("default_user") + "/display/theme.conf", QByteArray(100000, 'd'));
    QFile::remove(profile("user2") + "/measure.conf");
    QVERIFY(daemon.start());
    {
        SmallDisk disk(profile("user2"), "size=40k");
        QCOMPARE(users.call("setUser", {"user2"}),
                 failure("Process", "Error while forcing a reload of the user configurations."));
        QCOMPARE(snapshot(profile("user2")), QStringList());
    }
    daemon.stop();
    // After the error, the client itself supplies a complete profile.
    writeFile(profile("user2") + "/measure.conf", "own");
    writeFile(profile("user2") + "/display/theme.conf", "own");

    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));

    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("own"));
}

void TestUsers::theDefaultProfileIsNeverErased_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("target");
    QTest::newRow("user's directory leads to default profile")
        << profile("user2") << profile("default_user");
    QTest::newRow("default profile leads to user's directory")
        << profile("default_user") << profile("user2");
    QTest::newRow("user's directory leads into default profile")
        << profile("user2") << profile("default_user") + "/display";
}

void TestUsers::theDefaultProfileIsNeverErased()
{
    QFETCH(QString, link);
    QFETCH(QString, target);
    removePath(link);
    QVERIFY(QFile::link(target, link));
    const QStringList before = snapshot(target);
    QVERIFY(daemon.start());

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));

    QCOMPARE(snapshot(target), before);
}

void TestUsers::aDanglingProfileLinkIsRefused()
{
    removePath(profile("user2"));
    QVERIFY(QFile::link("/opt/nowhere", profile("user2")));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));
    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));
    QVERIFY(!QFile::exists("/opt/nowhere"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
}

void TestUsers::anotherAccountsProfileIsReset()
{
    QCOMPARE(QProcess::execute("chown", {"-R", "member", profile("user2")}), 0);
    QVERIFY(QFile::link("/opt", profile("user2") + "/link"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
    QCOMPARE(QFileInfo(profile("user2")).owner(), QStringLiteral("member"));
}

void TestUsers::aLinkOfRootAtThePathOfAProfileIsFollowed()
{
    writeFile("/opt/elsewhere/mine", "lost by design");
    removePath(profile("user2"));
    QVERIFY(QFile::link("/opt/elsewhere", profile("user2")));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot("/opt/elsewhere"), snapshot(profile("default_user")));
    QVERIFY(QFileInfo(profile("user2")).isSymLink());
    removePath("/opt/elsewhere");
}

void TestUsers::aStrangersLinkAtThePathOfAProfileIsNotFollowed()
{
    writeFile("/opt/victim/file", "keep");
    plantLink("/opt/victim", profile("user2"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Process", "Was not able to erase previous configuration"));
    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));
    QCOMPARE(snapshot("/opt/victim"), QStringList{"file=keep"});
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
    removePath("/opt/victim");
}

void TestUsers::aStrangersLinkInThePathOfAProfileIsNotFollowed()
{
    writeFile("/opt/victim/profile/file", "keep");
    plantLink("/opt/victim", "/opt/way");
    removePath(profile("user2"));
    QVERIFY(QFile::link("/opt/way/profile", profile("user2")));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Process", "Was not able to erase previous configuration"));
    QCOMPARE(snapshot("/opt/victim"), (QStringList{"profile", "profile/file=keep"}));
    removePath("/opt/victim");
    removePath("/opt/way");
}

void TestUsers::aStrangersLinkAtThePathOfAllProfilesIsNotFollowed()
{
    writeFile("/opt/victim/user2_profile/file", "keep");
    QVERIFY(QFile::link("/opt/victim/user2_profile", "/opt/victim/system"));
    const QStringList before = snapshot("/opt/victim");
    plantLink("/opt/victim", "/tmp/User_part");

    QVERIFY(daemon.start());

    QCOMPARE(users.call("getUser"), failure("Read", "Not able to read the current user."));
    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    QCOMPARE(snapshot("/opt/victim"), before);
    removePath("/opt/victim");
}

void TestUsers::aStrangersLinkInTheDefaultProfileIsNotRead_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("file") << "/opt/secret/file";
    QTest::newRow("directory") << "/opt/secret";
}

void TestUsers::aStrangersLinkInTheDefaultProfileIsNotRead()
{
    QFETCH(QString, target);
    writeFile("/opt/secret/file", "secret");
    plantLink(target, profile("default_user") + "/display/link");
    QVERIFY(daemon.start());
    const QStringList before = snapshot(profile("user2"));

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));

    QCOMPARE(snapshot(profile("user2")), before);
    removePath("/opt/secret");
}

void TestUsers::aStrangersLinkAtThePathOfAFileIsNotChanged()
{
    plantLink("/opt/nowhere", profile("user2") + "/measure.conf");
    const QStringList before = snapshot(profile("user2"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), before);
}

void TestUsers::aStrangersLinkAtThePathOfASubdirectoryIsReplaced()
{
    writeFile("/opt/victim/theme.conf", "keep");
    plantLink("/opt/victim", profile("user2") + "/display");
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
    QCOMPARE(snapshot("/opt/victim"), QStringList{"theme.conf=keep"});
    removePath("/opt/victim");
}

void TestUsers::startContinuesWhenNoUserCanBeActivated()
{
    QFile::remove(system);
    for (const char *user : {"user1", "user2", "user3", "user4"}) {
        removePath(profile(user));
        writeFile(profile(user), "no directory");
    }
    QVERIFY(daemon.start());
    QCOMPARE(users.call("getUser"), failure("Read", "Not able to read the current user."));
    for (const char *user : {"user1", "user2", "user3", "user4"})
        QCOMPARE(users.call("setUser", {user}), invalid);
}

void TestUsers::aFileAtThePathOfAProfileInvalidatesTheUserAndIsKept()
{
    removePath(profile("user2"));
    writeFile(profile("user2"), "no directory");
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    QCOMPARE(readFile(profile("user2")), QByteArray("no directory"));
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
}

void TestUsers::aDiskThatFillsUpDuringTheCopyInvalidatesTheUserAndKeepsTheLink()
{
    writeFile(profile("default_user") + "/large", QByteArray(300000, 'x'));
    const SmallDisk disk(profile("user2"), "size=128k");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user1\")"));
    QCOMPARE(readFile(profile("user1") + "/measure.conf"), QByteArray("user1"));
    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));
}

void TestUsers::withAnUnreadableDefaultProfileNoFilesAreErased()
{
    writeFile(profile("default_user") + "/new/secret", "unreadable");
    QVERIFY(QFile::setPermissions(profile("default_user") + "/new/secret", {}));
    const QStringList before = snapshot(profile("user2"));
    dropDacCapabilities();
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}),
             failure("Process", "Error while forcing a reload of the user configurations."));

    QCOMPARE(snapshot(profile("user2")), before);
    QCOMPARE(QFile::symLinkTarget(system), profile("user1"));
    QCOMPARE(users.call("setUser", {"user2"}), invalid);
}

void TestUsers::withAnUnreadableDefaultProfileACompleteProfileIsActivated()
{
    QVERIFY(QFile::setPermissions(profile("default_user"), {}));
    dropDacCapabilities();
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(readFile(profile("user2") + "/measure.conf"), QByteArray("user2"));
}

void TestUsers::theStoredFlagDecidesWhetherAUserIsValid()
{
    const QString settings = "/opt/settings.ini";
    removePath(profile("user2"));
    writeFile(profile("user2"), "a file");
    QVERIFY(daemon.start());
    users.call("setUser", {"user2"});
    QTRY_VERIFY_WITH_TIMEOUT(readFile(settings).contains("stateuser2=false"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(settings + ".lock"), deadlineMs);
    QCOMPARE(users.call("setUser", {"user2"}), invalid);
    removePath(profile("user2"));

    // The daemon reads the changed file when it next writes its settings.
    writeFile(settings, "[Users]\nstateuser2=true\nstateuser4=false\n");
    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));
    QTRY_VERIFY_WITH_TIMEOUT(readFile(settings).contains("stateuser3=true"), deadlineMs);

    QCOMPARE(users.call("setUser", {"user4"}), invalid);
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
}

void TestUsers::usersWhoseFlagsVanishAreInvalidUntilTheNextStart()
{
    const QString settings = "/opt/settings.ini";
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings) && !QFile::exists(settings + ".lock"),
                             deadlineMs);
    QFile::remove(settings);
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings) && !QFile::exists(settings + ".lock"),
                             deadlineMs);

    for (const char *user : {"user1", "user3", "user4"})
        QCOMPARE(users.call("setUser", {user}), invalid);
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    daemon.stop();

    QVERIFY(daemon.start());
    for (const char *user : {"user3", "user4", "user1", "user2"})
        QCOMPARE(users.call("setUser", {user}), QStringLiteral("()"));
}

void TestUsers::anInvalidUserStaysInvalidWhenTheSettingsVanish()
{
    const QString settings = "/opt/settings.ini";
    removePath(profile("user2"));
    writeFile(profile("user2"), "a file");
    QVERIFY(daemon.start());
    users.call("setUser", {"user2"});
    QTRY_VERIFY_WITH_TIMEOUT(readFile(settings).contains("stateuser2=false"), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(settings + ".lock"), deadlineMs);
    QFile::remove(settings);
    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings) && !QFile::exists(settings + ".lock"),
                             deadlineMs);

    QCOMPARE(users.call("setUser", {"user2"}), invalid);
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

void TestUsers::factoryResetRemovesAddedFiles()
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

void TestUsers::factoryResetReportsAFailedErase()
{
    QVERIFY(QDir().mkpath(profile("user2") + "/mounted"));
    const SmallDisk disk(profile("user2") + "/mounted", "");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Process", "Was not able to erase previous configuration"));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QVERIFY(isUserValid("user2"));
}

void TestUsers::factoryResetReportsAFailedCopy()
{
    writeFile(profile("default_user") + "/large", QByteArray(300000, 'x'));
    const SmallDisk disk(profile("user2"), "size=128k");
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyConfigMgr");

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));

    QCOMPARE(recorder.take(), QStringList{"Users.changingUser()"});
    QVERIFY(isUserValid("user2"));
}

void TestUsers::factoryResetReportsAnUnreadableDefaultProfileAndErasesNothing()
{
    QVERIFY(QFile::setPermissions(profile("default_user") + "/measure.conf", {}));
    dropDacCapabilities();
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

void TestUsers::readOnlySubdirectoriesAreCopied()
{
    const QStringList directories = {"/fixed", "/fixed/deeper"};
    writeFile(profile("default_user") + "/fixed/deeper/file", "default");
    for (const QString &directory : directories)
        QCOMPARE(QProcess::execute("chmod", {"555", profile("default_user") + directory}), 0);
    dropDacCapabilities();
    QVERIFY(daemon.start());

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    // Reset twice: the second reset also erases the copy that the first reset made.
    for (int count = 0; count < 2; ++count) {
        QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
        QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
        for (const QString &directory : directories)
            QCOMPARE(QFileInfo(profile("user2") + directory).permissions(),
                     QFileInfo(profile("default_user") + directory).permissions());
    }
}

void TestUsers::aFailedSystemCallFailsTheReset_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("count");
    QTest::newRow("making the directory of the copy") << "mkdirat" << 1;
    QTest::newRow("making a subdirectory") << "mkdirat" << 2;
    QTest::newRow("making a subdirectory of that") << "mkdirat" << 3;
    QTest::newRow("copying") << "sendfile" << 1;
    QTest::newRow("the mode of a file") << "fchmod" << 1;
    QTest::newRow("the mode of a subdirectory's subdirectory") << "fchmod" << 2;
    QTest::newRow("the mode of a subdirectory") << "fchmod" << 3;
    QTest::newRow("synchronising") << "syncfs" << 1;
    // The first renameat makes the profile incomplete; the second one moves an entry.
    QTest::newRow("moving") << "renameat" << 2;
}

void TestUsers::aFailedSystemCallFailsTheReset()
{
    QFETCH(QString, call);
    QFETCH(int, count);
    for (const QString &user : {QStringLiteral("default_user"), QStringLiteral("user2")}) {
        removePath(profile(user));
        writeFile(profile(user) + "/fixed/deeper/file", "text");
    }
    for (const char *directory : {"/fixed/deeper", "/fixed"})
        QCOMPARE(chmod(qPrintable(profile("default_user") + directory), 0555), 0);
    QVERIFY(daemon.start());
    daemon.settledDescriptors();
    QTRY_VERIFY_WITH_TIMEOUT(
        QFile::exists("/opt/settings.ini") && !QFile::exists("/opt/settings.ini.lock"), deadlineMs);
    // Attach after the start: count only the calls of the reset.
    QProcess strace;
    strace.start("strace", {"-f", "-o", "/dev/null", "-p", QString::number(daemon.processId()),
                            "-e", "trace=" + call, "-e",
                            QStringLiteral("inject=%1:error=ENOSPC:when=%2").arg(call).arg(count)});
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT((said += strace.readAllStandardError()).contains("attached"),
                             deadlineMs);

    QCOMPARE(users.call("factoryReset", {"user2"}),
             failure("Write", "The copy of the default folder did not went as expected"));
    QVERIFY(!QFile::exists(profile("user2") + "/.rebuild"));

    QCOMPARE(users.call("factoryReset", {"user2"}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile("user2")), snapshot(profile("default_user")));
    strace.terminate();
    QVERIFY(strace.waitForFinished());
}

WORLD_TEST_MAIN(TestUsers)
#include "test_users.moc"
