#include "daemontest.h"
#include "deadline.h"
#include "figures.h"

#include <QDBusPendingCall>

#include <algorithm>

/**
 * Cuts the power at each file-system call of a switch and of a reset. Afterwards each profile is
 * complete, or the daemon recognises it as incomplete: the start leaves it unchanged, and the next
 * switch replaces it. Only files of the profile that is being replaced are lost.
 *
 * FAULTS=all in the environment tests every call, with larger profiles.
 */
class TestPowerCut : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void everyProfileIsWholeOrReplacedByTheNextSwitch_data();
    void everyProfileIsWholeOrReplacedByTheNextSwitch();

private:
    struct Scenario {
        QString name;
        /** The user who is active before the call; the method; its argument. */
        QString active;
        QString method;
        QString user;
        /** True if the profile to switch to lacks a file. */
        bool isIncomplete;
    };

    void layOut(const Scenario &scenario);
    void startWithCut(int call);
    QStringList callsOf(const Scenario &scenario);
    QString whatIsLeft(const Scenario &scenario) const;
    void verifyProfiles(const Scenario &scenario);
    void verifySwitch(const QString &user);
    QByteArray contentOf(const QString &user) const;
    static QStringList contents(const QString &user);
    static bool isComplete(const QStringList &lines);
    void settleSettings();

    static const QList<Scenario> scenarios;

    const Remote users{QStringLiteral("/KyConfigMgr"), QStringLiteral("Users")};
    const bool m_isLong = qEnvironmentVariable("FAULTS") == QLatin1String("all");
    QMap<QString, QStringList> m_calls;
    QMap<QString, QMap<QString, int>> m_left;
    int m_cuts = 0;
    int m_survived = 0;
    int m_incomplete = 0;
    /** Every profile before the cut. */
    QMap<QString, QStringList> m_before;
};

const QList<TestPowerCut::Scenario> TestPowerCut::scenarios = {
    {"switch", "user1", "setUser", "user2", false},
    {"switch and rebuild", "user1", "setUser", "user2", true},
    {"reset of the active user", "user1", "factoryReset", "user1", false},
    {"reset of another user", "user1", "factoryReset", "user2", false},
};

namespace
{
const QString control = QStringLiteral("/run/powercut");
const QString settingsFile = QStringLiteral("/opt/settings.ini");
const QString systemLink = QStringLiteral("/tmp/User_part/system");
const QStringList everyUser = {"user1", "user2", "user3", "user4"};

QStringList log()
{
    QStringList lines = QString::fromUtf8(readFile(control + ".log")).split('\n');
    lines.removeAll(QString());
    return lines;
}

void arm(int call)
{
    writeFile(control + ".new", QByteArray::number(call) + '\n');
    QFile::remove(control);
    QFile::rename(control + ".new", control);
}
} // namespace

void TestPowerCut::init()
{
    DaemonTest::init();
    // Partial settings of the last cut, which the daemon never reads.
    for (const QString &part : QDir("/opt").entryList({"settings.ini.*"}, QDir::Files))
        QFile::remove("/opt/" + part);
    QFile::remove(control);
    QFile::remove(control + ".log");
}

/** Returns the entries of the profile of @p user, without the partial copy in ".rebuild". */
QStringList TestPowerCut::contents(const QString &user)
{
    QStringList lines = snapshot(profile(user));
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QString &line) { return line.startsWith(".rebuild"); }),
                lines.end());
    return lines;
}

/**
 * Returns true if @p lines contain every file and directory of the default profile, with any
 * content.
 */
bool TestPowerCut::isComplete(const QStringList &lines)
{
    QStringList names;
    for (const QString &line : lines)
        names << line.section('=', 0, 0);
    const QStringList whole = contents("default_user");
    return std::all_of(whole.begin(), whole.end(), [&](const QString &line) {
        return names.contains(line.section('=', 0, 0));
    });
}

/** Returns the content that all files of the profile of @p user have. */
QByteArray TestPowerCut::contentOf(const QString &user) const
{
    return QByteArray(m_isLong ? 5000 : 50, user.right(1).at(0).toLatin1());
}

/** Creates the profiles. The content of each file shows its user (see contentOf()). */
void TestPowerCut::layOut(const Scenario &scenario)
{
    QStringList files = {"/measure.conf", "/display/theme.conf", "/display/.hidden",
                         "/network/wifi"};
    for (int index = 0; m_isLong && index < 20; ++index)
        files << QStringLiteral("/more/%1/file%2").arg(index / 5).arg(index);
    removePath("/tmp/User_part");
    const QStringList own = {"/.mine", "/display/mine", "/mine/file"};
    for (const QString &user : everyUser + QStringList("default_user")) {
        for (const QString &file : user == "default_user" ? files : files + own)
            writeFile(profile(user) + file, contentOf(user));
    }
    if (scenario.isIncomplete)
        QFile::remove(profile(scenario.user) + "/display/theme.conf");
    for (const QString &user : everyUser + QStringList("default_user"))
        m_before[user] = contents(user);
    QFile::link(profile(scenario.active), systemLink);
}

/** Waits until QSettings, which writes some time after a change, has written the settings. */
void TestPowerCut::settleSettings()
{
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settingsFile), deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(settingsFile + ".lock"), deadlineMs);
}

/**
 * Starts the daemon and waits until it has written its settings. From then on, cuts the power
 * before file-system call number @p call; with 0, records the calls and cuts nothing.
 */
void TestPowerCut::startWithCut(int call)
{
    daemon.setWrapper({POWERCUT, control, "/tmp/User_part", "/opt", "--"});
    QVERIFY(daemon.start());
    settleSettings();
    arm(call);
}

/**
 * Carries out the scenario without a cut. Returns the daemon's file-system calls in order; an empty
 * list on failure.
 */
QStringList TestPowerCut::callsOf(const Scenario &scenario)
{
    layOut(scenario);
    startWithCut(0);
    const QString reply = users.call(scenario.method, {scenario.user});
    const QString last = scenario.method == "setUser" ? "unlink /opt/settings.ini.lock" : " close ";
    if (reply != "()" ||
        !QTest::qWaitFor([&] { return !log().filter(last).isEmpty(); }, deadlineMs))
        return {};
    return log();
}

void TestPowerCut::initTestCase()
{
    for (const Scenario &scenario : scenarios) {
        init();
        m_calls.insert(scenario.name, callsOf(scenario));
        daemon.stop();
        QVERIFY2(!m_calls.value(scenario.name).isEmpty(), qPrintable(scenario.name));
    }
}

void TestPowerCut::cleanupTestCase()
{
    for (const Scenario &scenario : scenarios) {
        const QMap<QString, int> left = m_left.value(scenario.name);
        for (auto kind = left.begin(); kind != left.end(); ++kind)
            qInfo("%s: %d times %s", qPrintable(scenario.name), kind.value(),
                  qPrintable(kind.key()));
    }
    int calls = 0;
    for (const QStringList &each : m_calls)
        calls += each.size();
    reportFigures(QStringLiteral("power cuts: %1 calls to the file system, %2 cuts, %3 survived, "
                                 "%4 with a profile that is replaced by the next switch")
                      .arg(calls)
                      .arg(m_cuts)
                      .arg(m_survived)
                      .arg(m_incomplete));
}

void TestPowerCut::everyProfileIsWholeOrReplacedByTheNextSwitch_data()
{
    QTest::addColumn<int>("scenario");
    QTest::addColumn<int>("call");
    for (int index = 0; index < scenarios.size(); ++index) {
        const QStringList calls = m_calls.value(scenarios.at(index).name);
        for (int call = 1; call <= calls.size(); ++call) {
            const QString name = calls.at(call - 1).section(' ', 1, 1);
            // A call that only reads changes nothing: a cut before it leaves the same state as a
            // cut before the next call.
            static const QStringList reading = {
                "stat",  "lstat", "newfstatat", "statx",      "access",     "readlink",
                "close", "read",  "faccessat2", "getdents64", "readlinkat", "faccessat"};
            if (m_isLong || !reading.contains(name))
                QTest::newRow(qPrintable(scenarios.at(index).name + ", " + calls.at(call - 1)))
                    << index << call;
        }
    }
}

/** Describes the state after the cut. */
QString TestPowerCut::whatIsLeft(const Scenario &scenario) const
{
    QStringList left;
    const QStringList now = contents(scenario.user);
    if (now.isEmpty())
        left << "an empty profile";
    else if (now == contents("default_user"))
        left << "the new profile, whole";
    else if (now == m_before.value(scenario.user))
        left << "the old profile";
    else
        left << QString(now.filter("=r").isEmpty() ? "a part of the old profile, incomplete"
                                                   : "a part of the new profile, incomplete");
    if (snapshot(profile(scenario.user)).size() > now.size())
        left << "an unfinished step";
    const QString target = QFile::symLinkTarget(systemLink);
    left << (target.isEmpty()
                 ? "no link"
                 : "the link to " + QString(target == profile(scenario.active) ? "the old user"
                                                                               : "the new user"));
    for (const QString &file : QDir("/opt").entryList({"settings.ini?*"}, QDir::Files))
        left << (file.endsWith(".lock") ? "the lock of the settings" : "a part of the settings");
    return left.join(", ");
}

/**
 * Verifies that every other profile is unchanged. The profile that was being replaced must be the
 * old profile, the new profile, or incomplete without truncated files.
 */
void TestPowerCut::verifyProfiles(const Scenario &scenario)
{
    for (const QString &user : m_before.keys()) {
        if (user != scenario.user)
            QCOMPARE(contents(user), m_before.value(user));
    }
    const QStringList whole = m_before.value("default_user");
    const QStringList old = m_before.value(scenario.user);
    const QStringList now = contents(scenario.user);
    if (now == old || now == whole)
        return;
    QVERIFY2(!isComplete(now), qPrintable(now.join('\n').left(2000)));
    // No file is truncated.
    for (const QString &line : now)
        QVERIFY2(old.contains(line) || whole.contains(line), qPrintable(line.left(200)));
    ++m_incomplete;
}

/** Verifies that a switch leaves a complete profile unchanged, and replaces an incomplete one. */
void TestPowerCut::verifySwitch(const QString &user)
{
    const QStringList before = contents(user);
    QCOMPARE(users.call("setUser", {user}), QStringLiteral("()"));
    QCOMPARE(contents(user), isComplete(before) ? before : contents("default_user"));
    QCOMPARE(QFile::symLinkTarget(systemLink), profile(user));
}

void TestPowerCut::everyProfileIsWholeOrReplacedByTheNextSwitch()
{
    QFETCH(int, scenario);
    QFETCH(int, call);
    const Scenario &cut = scenarios.at(scenario);
    ++m_cuts;
    layOut(cut);
    startWithCut(call);

    QDBusPendingCall pending = users.start(cut.method, {cut.user});
    QCOMPARE(daemon.waitForExit(), -1);
    QVERIFY(!daemon.isRunning());
    ++m_left[cut.name][whatIsLeft(cut)];
    verifyProfiles(cut);
    QVERIFY(!QTest::currentTestFailed());
    QFile::remove(control);
    daemon.setWrapper({});
    QMap<QString, QStringList> left;
    for (const QString &user : everyUser)
        left[user] = snapshot(profile(user));

    QVERIFY(daemon.start());
    const QString active = users.call("getUser").section('"', 1, 1);
    QVERIFY2(everyUser.contains(active), qPrintable(active));
    QCOMPARE(QFile::symLinkTarget(systemLink), profile(active));
    for (const QString &user : everyUser)
        QCOMPARE(snapshot(profile(user)), left.value(user));

    for (const QString &user : {QStringLiteral("user3"), cut.user, QStringLiteral("user4")}) {
        verifySwitch(user);
        QVERIFY(!QTest::currentTestFailed());
    }
    QCOMPARE(users.call("factoryReset", {cut.user}), QStringLiteral("()"));
    QCOMPARE(snapshot(profile(cut.user)), snapshot(profile("default_user")));
    settleSettings();
    QCOMPARE(QDir("/tmp/User_part")
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot)
                 .size(),
             6);
    ++m_survived;
}

WORLD_TEST_MAIN(TestPowerCut)
#include "campaign_powercut.moc"
