#include "deadline.h"
#include "figures.h"
#include "networktest.h"

#include <QRegularExpression>
#include <QStandardPaths>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

/**
 * Puts every file and directory that the daemon reads or writes into each of the conditions below:
 * only calls that need the file may fail, with the expected errors.
 *
 * FAULTS=all in the environment tests each condition both at the start and while the daemon runs;
 * otherwise only in one of the two cases.
 */
class TestFileFaults : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void cleanupTestCase();

    void theDaemonDoesWithout_data();
    void theDaemonDoesWithout();

private:
    void have(const QString &condition, const QString &path);
    void mountAt(const QString &source, const QString &path);
    void makeReadOnly(const QString &path);
    void fill(const QString &path);
    void verifyAnswers(const QStringList &concerned);

    QStringList m_mounts;
    int m_combinations = 0;
    int m_calls = 0;
    int m_survived = 0;
};

namespace
{
const QString precious = QStringLiteral("/opt/precious");

/** A file that the daemon uses, and the calls that need it. */
struct Place {
    const char *path;
    QStringList concerned;
    /** Calls that are affected only by a replacement at run time. */
    QStringList concernedLater = {};
};

const QStringList profileCalls = {"getUser", "setUser", "factoryReset"};

const QList<Place> places = {
    // Users without a stored flag are invalid.
    {"/opt/settings.ini", {}, {"setUser", "factoryReset"}},
    {"/opt", {"getSoftwareVersions"}},
    {"/tmp/User_part", {"getUser", "setUser", "factoryReset", "WIFIAP.connect"}},
    {"/tmp/User_part/system", profileCalls},
    {"/tmp/User_part/user1_profile", profileCalls},
    {"/tmp/User_part/user2_profile", profileCalls},
    {"/tmp/User_part/user2_profile/measure.conf", profileCalls},
    {"/tmp/User_part/user2_profile/display", profileCalls},
    {"/tmp/User_part/user3_profile", profileCalls},
    {"/tmp/User_part/user3_profile/measure.conf", profileCalls},
    {"/tmp/User_part/user3_profile/display", profileCalls},
    {"/tmp/User_part/default_user_profile", profileCalls},
    {"/tmp/User_part/default_user_profile/measure.conf", profileCalls},
    {"/tmp/User_part/default_user_profile/display", profileCalls},
    {"/tmp/User_part/hostapd.conf", {"WIFIAP.connect"}},
    {"/tmp/logkywifi", {}},
    {"/usr/share/redpine", {"WIFIAP.connect", "WIFI.scan"}},
    {"/usr/share/redpine/hostapd_open.conf", {"WIFIAP.connect"}},
    {"/etc/sw_version", {"getSoftwareVersions"}},
};

const QStringList conditions = {"missing",
                                "unreadable",
                                "a directory",
                                "a link to nowhere",
                                "a link to itself",
                                "a link to a file",
                                "a link to a directory",
                                "a link to a device without an end",
                                "a fifo",
                                "a socket",
                                "on a read-only disk",
                                "on a full disk"};

/** Regular expressions for the formatted replies of a call: without a fault, and with a fault. */
struct Expectation {
    const char *call;
    QString usual;
    QString other;
};

QString oneOf(const QStringList &texts)
{
    QStringList escaped;
    for (const QString &text : texts)
        escaped << QRegularExpression::escape(text);
    return escaped.join('|');
}

QList<Expectation> expectations()
{
    const QString invalid = failure("InvalidArguments", "User name is invalid.");
    return {
        {"getUser", "\\(\"user1\"\\)",
         "\\(\"[^\"]*\"\\)|" + oneOf({failure("Read", "Not able to read the current user.")})},
        {"setUser", "\\(\\)",
         oneOf({invalid,
                failure("Process", "Error while forcing a reload of the user configurations."),
                failure("Write", "Not able to overwrite the current user symlink.")})},
        {"factoryReset", "\\(\\)",
         oneOf({invalid, failure("Process", "Was not able to erase previous configuration"),
                failure("Write", "The copy of the default folder did not went as expected")})},
        {"WIFI.scan", "\\(\\)", oneOf({failed("Cannot switch in mode '1' (WLAN STATION)")})},
        {"WIFIAP.connect", "\\(\\)",
         oneOf({failed("Cannot create hostapd conf file"),
                failed("Cannot switch in mode '2' (WLAN ACCESS POINT)")})},
        {"getSoftwareVersions",
         "\\(\\{\"BSP\": <ay:\"312e32\">, \"KyApp\": <ay:\"342e35\">, \"KyBoardManager\": "
         "<\"[0-9.]+\">\\}\\)",
         "\\(\\{.*\"KyBoardManager\": <\"[0-9.]+\">\\}\\)"},
    };
}

void check(bool succeeded, const char *what)
{
    if (!succeeded)
        qFatal("%s: %s", what, std::strerror(errno));
}
} // namespace

void TestFileFaults::init()
{
    NetworkTest::init();
    daemon.setWrapper({});
    script.setFailure(1);
    removePath(precious);
    writeFile(precious, "kept");
    writeFile("/etc/sw_version", "1.2\n");
    writeFile("/opt/KyApp", "#!/bin/sh\necho 4.5\n");
    QFile::setPermissions("/opt/KyApp", QFile::ReadOwner | QFile::ExeOwner);
}

void TestFileFaults::cleanup()
{
    while (!m_mounts.isEmpty())
        umount2(qPrintable(m_mounts.takeLast()), MNT_DETACH);
    NetworkTest::cleanup();
    for (const Place &place : places) {
        if (QFileInfo(place.path).isSymLink() || !QFileInfo(place.path).isDir())
            QFile::remove(place.path);
    }
    removePath("/usr/share/redpine");
    removePath("/tmp/logkywifi");
    removePath("/etc/sw_version");
    removePath("/opt/elsewhere");
    QDir().mkpath("/opt");
}

/** Mounts @p source at @p path until the end of the test. */
void TestFileFaults::mountAt(const QString &source, const QString &path)
{
    check(mount(qPrintable(source), qPrintable(path), nullptr, MS_BIND, nullptr) == 0, "bind");
    m_mounts << path;
}

void TestFileFaults::makeReadOnly(const QString &path)
{
    mountAt(path, path);
    check(mount(nullptr, qPrintable(path), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0,
          "read-only");
}

/** Moves @p path and its content to a full file system of its own. */
void TestFileFaults::fill(const QString &path)
{
    const QString disk = "/run/disk";
    QDir().mkpath(disk);
    check(mount("tmpfs", qPrintable(disk), "tmpfs", 0, "size=256k") == 0, "small disk");
    m_mounts << disk;
    check(QProcess::execute("cp", {"-a", path, disk}) == 0, "copy");
    const int filler = open(qPrintable(disk + "/filler"), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const QByteArray page(4096, 'x');
    while (write(filler, page.constData(), size_t(page.size())) > 0) {
    }
    close(filler);
    mountAt(disk + '/' + QFileInfo(path).fileName(), path);
}

/** Replaces @p path as @p condition says. */
void TestFileFaults::have(const QString &condition, const QString &path)
{
    if (condition == "unreadable") {
        QFile::setPermissions(path, {});
        return;
    }
    if (condition.startsWith("on a ")) {
        // A mount needs an existing file, and some files are created only by the daemon.
        if (!QFile::exists(path))
            writeFile(path, QByteArray());
        if (condition == "on a full disk")
            fill(path);
        else
            makeReadOnly(path);
        return;
    }
    removePath(path);
    if (condition == "a directory")
        check(QDir().mkpath(path + "/inside"), "directory");
    else if (condition == "a link to nowhere")
        check(QFile::link("/opt/nowhere", path), "link");
    else if (condition == "a link to itself")
        check(symlink(qPrintable(path), qPrintable(path)) == 0, "link");
    else if (condition == "a link to a file")
        check(QFile::link(precious, path), "link");
    else if (condition == "a link to a directory")
        check(QDir().mkpath("/opt/elsewhere/inside") && QFile::link("/opt/elsewhere", path),
              "link");
    else if (condition == "a link to a device without an end")
        check(QFile::link("/dev/zero", path), "link");
    else if (condition == "a fifo")
        check(mkfifo(qPrintable(path), 0666) == 0, "fifo");
    else if (condition == "a socket") {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
        const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        check(bind(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0,
              "socket");
        close(descriptor);
    }
}

/** Calls everything that uses a file; only the @p concerned calls may fail. */
void TestFileFaults::verifyAnswers(const QStringList &concerned)
{
    const Remote users("/KyConfigMgr", "Users");
    const Remote version("/KyDeviceMgr", "Version");
    for (const Expectation &expectation : expectations()) {
        ++m_calls;
        const QString name = expectation.call;
        const QVariantMap open = {{"SSID", "Lab"}};
        const QString answer = name == "getUser"          ? users.call(name)
                               : name == "setUser"        ? users.call(name, {"user2"})
                               : name == "factoryReset"   ? users.call(name, {"user3"})
                               : name == "WIFI.scan"      ? wifi.call("scan")
                               : name == "WIFIAP.connect" ? wifiAp.call("connect", {open})
                                                          : version.call(name);
        const QString expected = concerned.contains(name)
                                     ? expectation.usual + '|' + expectation.other
                                     : expectation.usual;
        QVERIFY2(answer.contains(QRegularExpression("^(" + expected + ")$")),
                 qPrintable(name + ": " + answer));
        waitForScripts();
    }
}

void TestFileFaults::theDaemonDoesWithout_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<bool>("isRunning");
    const bool isLong = qEnvironmentVariable("FAULTS") == QLatin1String("all");
    int turn = 0;
    for (const QString &condition : conditions) {
        for (int index = 0; index < places.size(); ++index) {
            const QString path = places.at(index).path;
            const bool isDisk = condition.startsWith("on a ");
            // System directories cannot be removed or made inaccessible to root.
            if (path == "/opt" && !isDisk)
                continue;
            // A symbolic link cannot be a mount point.
            if (path == "/tmp/User_part/system" && isDisk)
                continue;
            ++turn;
            for (const bool isRunning : {false, true}) {
                if (isLong || isRunning == (turn % 2 == 0))
                    QTest::newRow(qPrintable(path + ' ' + condition +
                                             (isRunning ? ", while it runs" : ", at start")))
                        << index << condition << isRunning;
            }
        }
    }
}

void TestFileFaults::theDaemonDoesWithout()
{
    QFETCH(int, index);
    QFETCH(QString, condition);
    QFETCH(bool, isRunning);
    const Place &place = places.at(index);
    ++m_combinations;
    QStringList wrapper;
#ifndef __SANITIZE_ADDRESS__
    // If the daemon read an endless file, it must not take all of the machine's memory.
    wrapper = QStringList{"prlimit", "--as=1000000000"};
#endif
    if (condition == "unreadable")
        wrapper += {"setpriv", "--bounding-set", "-dac_override,-dac_read_search"};
    daemon.setWrapper(wrapper);

    if (!isRunning)
        have(condition, place.path);
    QVERIFY(daemon.start());
    // The start has written its settings.
    settle();
    if (isRunning)
        have(condition, place.path);
    settle();
    const int before = daemon.settledDescriptors();
    verifyAnswers(place.concerned + (isRunning ? place.concernedLater : QStringList()));

    QVERIFY(!QTest::currentTestFailed());
    QVERIFY(daemon.isRunning());
    // The daemon may write through a link only at the path of the settings.
    if (place.path != QByteArray("/opt/settings.ini"))
        QCOMPARE(readFile(precious), QByteArray("kept"));
    QVERIFY(QTest::qWaitFor([&] { return daemon.descriptors() <= before; }, deadlineMs));
    ++m_survived;
}

void TestFileFaults::cleanupTestCase()
{
    reportFigures(
        QStringLiteral("faults of files and disks: %1 combinations, %2 calls, %3 survived")
            .arg(m_combinations)
            .arg(m_calls)
            .arg(m_survived));
}

WORLD_TEST_MAIN(TestFileFaults)
#include "campaign_filefaults.moc"
