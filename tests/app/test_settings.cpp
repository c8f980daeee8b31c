#include "daemontest.h"
#include "deadline.h"
#include "settings.h"

/** The settings file. */
class TestSettings : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyHasItsPath();
    void thereIsOneInstance();

    void theFourUsersAreUsableAfterAStart();
    void unreadEntriesAreKept();
    void aFileThatCannotBeUsedIsAnEmptyOne_data();
    void aFileThatCannotBeUsedIsAnEmptyOne();
    void aFileThatCannotBeWrittenIsNotReported();
    void anUnusableFileDisablesStoringUntilTheNextStart_data();
    void anUnusableFileDisablesStoringUntilTheNextStart();
    void onlyARegularFileIsReadOrWrittenWhileTheDaemonRuns_data();
    void onlyARegularFileIsReadOrWrittenWhileTheDaemonRuns();
    void aLockLeftByAPowerCutIsNotWaitedFor_data();
    void aLockLeftByAPowerCutIsNotWaitedFor();
    void theFileIsNeverFilledWithDefaults();
    void aChangeOfTheFileIsNotSeenBeforeTheNextStart();

private:
    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    const QByteArray fourUsers = "[Users]\nstateuser1=true\nstateuser2=true\n"
                                 "stateuser3=true\nstateuser4=true\n";
};

void TestSettings::everyKeyHasItsPath()
{
    const struct {
        QString key;
        const char *path;
    } rows[] = {
        {USER, "Users/"},
        {USER_STATE, "Users/state"},
        {NETWORK_ENABLE_WINDOW, "Network/enableWindow"},
        {WIFI_AP, "WifiAp/"},
        {WIFI_AP_IP, "WifiAp/ip"},
        {WIFI_AP_NETMASK, "WifiAp/netmask"},
        {WIFI_AP_MIN_CHANNEL, "WifiAp/minChannel"},
        {WIFI_AP_MAX_CHANNEL, "WifiAp/maxChannel"},
        {WIFI_AP_WPS_CHECK_INTERVAL, "WifiAp/intervalWPS"},
        {SCREEN_BACKLIGHT, "ScreenBacklight/"},
        {SCREEN_BACKLIGHT_STEP_0, "ScreenBacklight/step0"},
        {SCREEN_BACKLIGHT_STEP_1, "ScreenBacklight/step1"},
        {SCREEN_BACKLIGHT_STEP_2, "ScreenBacklight/step2"},
        {SCREEN_BACKLIGHT_STEP_3, "ScreenBacklight/step3"},
        {SCREEN_BACKLIGHT_STEP_4, "ScreenBacklight/step4"},
        {SCREEN_BACKLIGHT_STEP_5, "ScreenBacklight/step5"},
        {SCREEN_BACKLIGHT_STEP_6, "ScreenBacklight/step6"},
        {SCREEN_BACKLIGHT_STEP_7, "ScreenBacklight/step7"},
        {SCREEN_BACKLIGHT_STEP_8, "ScreenBacklight/step8"},
        {SCREEN_BACKLIGHT_STEP_9, "ScreenBacklight/step9"},
        {SCREEN_BACKLIGHT_STEP_10, "ScreenBacklight/step10"},
        {SCREEN_BACKLIGHT_STEP_11, "ScreenBacklight/step11"},
        {SCREEN_BACKLIGHT_STEP_12, "ScreenBacklight/step12"},
        {SCREEN_BACKLIGHT_STEP_13, "ScreenBacklight/step13"},
        {SCREEN_BACKLIGHT_STEP_14, "ScreenBacklight/step14"},
        {SCREEN_BACKLIGHT_STEP_15, "ScreenBacklight/step15"},
        {BRIGHTNESS, "Brightness/"},
        {BRIGHTNESS_TIMER, "Brightness/timer"},
        {BRIGHTNESS_LEVEL_0, "Brightness/level0"},
        {BRIGHTNESS_LEVEL_1, "Brightness/level1"},
        {BRIGHTNESS_LEVEL_2, "Brightness/level2"},
        {BRIGHTNESS_LEVEL_3, "Brightness/level3"},
        {BRIGHTNESS_LEVEL_4, "Brightness/level4"},
        {BRIGHTNESS_LEVEL_5, "Brightness/level5"},
        {BRIGHTNESS_LEVEL_6, "Brightness/level6"},
        {BRIGHTNESS_LEVEL_7, "Brightness/level7"},
        {BRIGHTNESS_LEVEL_8, "Brightness/level8"},
        {BRIGHTNESS_LEVEL_9, "Brightness/level9"},
        {BRIGHTNESS_LEVEL_10, "Brightness/level10"},
        {BRIGHTNESS_LEVEL_11, "Brightness/level11"},
        {BRIGHTNESS_LEVEL_12, "Brightness/level12"},
        {BRIGHTNESS_LEVEL_13, "Brightness/level13"},
        {BRIGHTNESS_LEVEL_14, "Brightness/level14"},
        {BRIGHTNESS_LEVEL_15, "Brightness/level15"},
        {BRIGHTNESS_LEVEL_16, "Brightness/level16"},
        {BRIGHTNESS_LEVEL_17, "Brightness/level17"},
        {BATTERY_CHECK_INTERVAL, "Alimentation/intervalBattery"},
    };
    for (const auto &row : rows)
        QCOMPARE(row.key, QString(row.path));
}

void TestSettings::thereIsOneInstance()
{
    QCOMPARE(&Settings::instance(), &Settings::instance());
    QCOMPARE(Settings::instance().fileName(), QStringLiteral("/opt/settings.ini"));
    QCOMPARE(Settings::instance().format(), QSettings::IniFormat);
}

void TestSettings::theFourUsersAreUsableAfterAStart()
{
    QVERIFY(daemon.start());
    // The event loop's first round writes the settings: the daemon does not have to end.
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/opt/settings.ini"), fourUsers, deadlineMs);
}

void TestSettings::unreadEntriesAreKept()
{
    const QByteArray others = "[Alimentation]\nintervalBattery=1\n\n"
                              "[Network]\nenableWindow=7\n\n"
                              "[ScreenBacklight]\nstep0=1\nstep1=2\nstep2=3\n\n";
    const QByteArray accessPoint = "\n[WifiAp]\nip=1.2.3.4\nmaxChannel=11\nminChannel=1\n";
    writeFile("/opt/settings.ini", others + accessPoint);
    QVERIFY(daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/opt/settings.ini"), others + fourUsers + accessPoint,
                              deadlineMs);
}

void TestSettings::aFileThatCannotBeUsedIsAnEmptyOne_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("no sections") << QByteArray("]]]][[[ = = %%% \\x \n;;\n[Users\n");
    QTest::newRow("bytes") << QByteArray(5000, '\xff');
    QTest::newRow("zeros") << QByteArray(5000, '\0');
    QTest::newRow("variant") << QByteArray("[Users]\nstateuser2=@Variant(\\x7f\\xff\\xff)\n");
    QTest::newRow("list") << QByteArray("[Users]\nstateuser1=a, b\nstateuser2=@Invalid()\n");
}

void TestSettings::aFileThatCannotBeUsedIsAnEmptyOne()
{
    QFETCH(QByteArray, content);
    writeFile("/opt/settings.ini", content);
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QVERIFY(!daemon.log().contains("settings.ini"));
}

void TestSettings::aFileThatCannotBeWrittenIsNotReported()
{
    QVERIFY(QDir().mkpath("/opt/settings.ini/directory"));
    QVERIFY(daemon.start());
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user2\")"));
    QCOMPARE(daemon.log(), QString());
    QCOMPARE(snapshot("/opt/settings.ini"), QStringList{"directory"});
}

void TestSettings::anUnusableFileDisablesStoringUntilTheNextStart_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("fifo") << QStringList{"mkfifo"};
    QTest::newRow("device") << QStringList{"ln", "-s", "/dev/zero"};
    QTest::newRow("directory") << QStringList{"mkdir"};
}

void TestSettings::anUnusableFileDisablesStoringUntilTheNextStart()
{
    QFETCH(QStringList, command);
    const QString file = "/opt/settings.ini";
    command << file;
    QCOMPARE(QProcess::execute(command.takeFirst(), command), 0);
    QVERIFY(daemon.start());
    QCOMPARE(QProcess::execute("rm", {"-r", file}), 0);
    const QStringList before = snapshot("/opt");

    // The event loop's next round writes the settings, before the next call is answered.
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(users.call("setUser", {"user3"}), QStringLiteral("()"));
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user3\")"));
    QCOMPARE(snapshot("/opt"), before);

    daemon.stop();
    QVERIFY(daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(readFile(file), fourUsers, deadlineMs);
}

void TestSettings::onlyARegularFileIsReadOrWrittenWhileTheDaemonRuns_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("fifo") << QStringList{"mkfifo"};
    QTest::newRow("endless device") << QStringList{"ln", "-s", "/dev/zero"};
}

void TestSettings::onlyARegularFileIsReadOrWrittenWhileTheDaemonRuns()
{
    QFETCH(QStringList, command);
    const QString file = "/opt/settings.ini";
    // Limit the memory of a daemon that wrongly reads the endless device. AddressSanitizer reserves
    // more than this limit from the start.
    if (!qEnvironmentVariableIsSet("ASAN_OPTIONS"))
        daemon.setWrapper({"prlimit", "--data=1000000000"});
    QVERIFY(daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(readFile(file), fourUsers, deadlineMs);
    QVERIFY(QFile::remove(file));
    command << file;
    QCOMPARE(QProcess::execute(command.takeFirst(), command), 0);

    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
    QCOMPARE(users.call("getUser"), QStringLiteral("(\"user2\")"));
    const QFileInfo info(file);
    QVERIFY(!info.isFile() && (info.exists() || info.isSymLink()));

    // A failed write leaves the old flag in effect.
    const QString link = "/tmp/User_part/system";
    QVERIFY(QFile::remove(link) && QDir().mkpath(link + "/directory"));
    QVERIFY(users.call("setUser", {"user3"}).contains("Not able to overwrite"));
    QVERIFY(users.call("setUser", {"user3"}).contains("Not able to overwrite"));
}

void TestSettings::aLockLeftByAPowerCutIsNotWaitedFor_data()
{
    QTest::addColumn<QString>("content");
    QTest::newRow("no content") << QString();
    QTest::newRow("truncated content") << "1234\nKyBoard";
    QTest::newRow("the same PID") << "%1\nKyBoardManager\n" + QSysInfo::machineHostName() + '\n';
}

void TestSettings::aLockLeftByAPowerCutIsNotWaitedFor()
{
    QFETCH(QString, content);
    const QString file = "/opt/settings.ini";
    const QString lock = file + ".lock";
    // The shell becomes the daemon and keeps its PID. The lock file's time is in the future, so
    // that its age does not make it stale during the test.
    writeFile("/run/lock-content", content.toUtf8());
    daemon.setWrapper({"sh", "-c",
                       "sed \"s/%1/$$/\" /run/lock-content >$0 && touch -d '25 seconds' $0 && "
                       "exec \"$@\"",
                       lock});
    QVERIFY(daemon.start());

    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(lock), deadlineMs);
}

void TestSettings::theFileIsNeverFilledWithDefaults()
{
    QVERIFY(daemon.start());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists("/opt/settings.ini"), deadlineMs);
    QVERIFY(!readFile("/opt/settings.ini").contains("Brightness"));
    QVERIFY(!readFile("/opt/settings.ini").contains("ScreenBacklight"));
}

void TestSettings::aChangeOfTheFileIsNotSeenBeforeTheNextStart()
{
    QVERIFY(daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/opt/settings.ini"), fourUsers, deadlineMs);
    writeFile("/opt/settings.ini", "[Users]\nstateuser2=false\n");
    QCOMPARE(users.call("setUser", {"user2"}), QStringLiteral("()"));
}

WORLD_TEST_MAIN(TestSettings)
#include "test_settings.moc"
