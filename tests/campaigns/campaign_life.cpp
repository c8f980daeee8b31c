#include "board.h"
#include "daemontest.h"
#include "deadline.h"
#include "leds.h"
#include "processes.h"
#include "realconnman.h"
#include "simulatedmodescript.h"
#include "supplicantstandin.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cstdio>
#include <memory>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int minuteSeconds = 60;
constexpr qint64 minutesOfRound = 10;
/** After these rounds memory must not grow: every kind of round has occurred by then. */
constexpr int warmUpRounds = 3;
/** How much the allocator may still grow afterwards, in kB. */
constexpr long allowedGrowthKb = 512;

/** How often the client tries a scan or a connect. */
constexpr int attempts = 4;

/** The simulated hours, and the number of clients that listen to all signals. */
int hours = 1;
int clients = 3;

/** A battery status, and its LEDs in the order of batteryLeds: '*' on, '.' off, '1' at 1 Hz. */
struct Pattern {
    const char *status;
    const char *leds;
};
const Pattern patterns[] = {
    {"CHARGER_OFF_BAT_PRWT", "1.....1."},   {"CHARGER_OFF_BAT_INF_20", "*.....*."},
    {"CHARGER_OFF_BAT_INF_40", ".**...*."}, {"CHARGER_OFF_BAT_INF_60", ".***..*."},
    {"CHARGER_OFF_BAT_INF_80", ".****.*."}, {"CHARGER_OFF_BAT_INF_100", ".******."},
    {"CHARGER_ON_BAT_INF_20", ".1.....1"},  {"CHARGER_ON_BAT_INF_40", ".*1....1"},
    {"CHARGER_ON_BAT_INF_60", ".**1...1"},  {"CHARGER_ON_BAT_INF_80", ".***1..1"},
    {"CHARGER_ON_BAT_INF_100", ".****1.1"}, {"CHARGER_ON_BAT_FULL", ".*****.*"},
};
const char *const batteryLeds[] = {"BAT_RS1", "BAT_GS1", "BAT_GS2", "BAT_GS3",
                                   "BAT_GS4", "BAT_GS5", "POWER_Y", "POWER_G"};

/** Writes figures to file descriptor 3 or, if that fails, to stdout. */
void tell(const QString &line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (write(3, bytes.constData(), size_t(bytes.size())) != bytes.size())
        static_cast<void>(std::fputs(bytes.constData(), stdout));
}

/** A client in a process of its own that prints every signal. */
class Listener
{
public:
    Listener()
    {
        m_process.start("kyboardctl", {"monitor", "--json"});
        if (!m_process.waitForReadyRead(deadlineMs))
            qFatal("a listener does not start");
    }
    ~Listener()
    {
        m_process.terminate();
        m_process.waitForFinished();
    }

    /** Its output so far: "INTERFACE SIGNAL [ARGUMENTS]", without the times. */
    const QStringList &lines()
    {
        while (m_process.waitForReadyRead(0)) {
        }
        m_pending += m_process.readAllStandardOutput();
        while (m_pending.contains('\n')) {
            const int end = m_pending.indexOf('\n');
            const QJsonObject line = QJsonDocument::fromJson(m_pending.left(end)).object();
            m_pending.remove(0, end + 1);
            m_lines << line.value("interface").toString() + ' ' + line.value("signal").toString() +
                           ' ' +
                           QJsonDocument(line.value("arguments").toArray())
                               .toJson(QJsonDocument::Compact);
        }
        return m_lines;
    }

private:
    QProcess m_process;
    QByteArray m_pending;
    QStringList m_lines;
};
} // namespace

/**
 * Simulates hours of an instrument's life within minutes: the battery drains and is charged, the
 * light changes, card, key and networks come and go, profiles switch. The clock advances in steps
 * that skip no timer of the daemon; ConnMan runs in real time.
 */
class InstrumentLife : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void hoursPass();

private:
    struct Holdings {
        int descriptors;
        int threads;
        int children;
        int processes;
        long memory;
    };

    void live(int round);
    void switchProfile(int round);
    void changeLight(int round);
    void useCard(int round);
    void useKey();
    void useWifi(int round);
    void scan(bool isKitchenThere);
    void join(const char *network, const char *key);
    void joinAndLoseIt();
    void joinWithAKey(const char *network, const char *key);
    void failToJoinFirst();
    void useEthernet();
    void beAnAccessPoint();

    void pass(int seconds);
    void spendMinute();
    void settle();
    void passModuleDelay();
    bool announces(const QString &pattern);
    void leave();
    void waitForRadioOff();
    void compare();
    void compareBattery();
    void compareDevices();
    void compareNetworks();
    Holdings holdings() const;
    static QString batteryStatus();
    static QString address(const char *interface);
    static QString addressOf(const Remote &interface);

    const Remote users{"/KyConfigMgr", "Users"};
    const Remote ethernet{"/KyComMgr", "Ethernet"};
    const Remote wifi{"/KyComMgr", "WIFI"};
    const Remote accessPoint{"/KyComMgr", "WIFIAP"};
    const Remote alimentation{"/KyDeviceMgr", "Alimentation"};
    const Remote led{"/KyDeviceMgr", "LED"};
    const Remote storage{"/KyDeviceMgr", "Storage"};
    const Remote temperature{"/KyDeviceMgr", "Temperature"};
    const Remote backlight{"/KyDeviceMgr", "Backlight"};
    const Remote brightness{"/KyDeviceMgr", "Brightness"};
    const Remote watchdog{"/KyDeviceMgr", "Watchdog"};
    const Remote module{"/KyDeviceMgr", "Network"};
    const QString done = "()";
    const QString cafe = "/net/connman/service/wifi_02aabbccdd03_43616665_managed_none";
    const QString workshop = "/net/connman/service/wifi_02aabbccdd03_576f726b73686f70_managed_psk";

    RealConnman connman;
    SupplicantStandIn supplicant;
    SimulatedModeScript script;
    std::vector<std::unique_ptr<Listener>> listeners;
    int heard = 0;
    qint64 secondsLived = 0;
    int repetitions = 0;
    int percent = 80;
    bool isCharging = false;
};

void InstrumentLife::init()
{
    DaemonTest::init();
    // The journal would grow without limit.
    Board::remove("journal");
    script.install();
    supplicant.start();
    connman.start();
    daemon.controlClock();
    QVERIFY(daemon.start());
    for (int count = 0; count < clients; ++count)
        listeners.push_back(std::make_unique<Listener>());
}

void InstrumentLife::cleanup()
{
    listeners.clear();
    DaemonTest::cleanup();
    connman.kill();
    supplicant.kill();
    script.clear();
}

#define DO(step)                                                                                   \
    do {                                                                                           \
        step;                                                                                      \
        if (QTest::currentTestFailed())                                                            \
            return;                                                                                \
    } while (false)

void InstrumentLife::hoursPass()
{
    Holdings before = {};
    for (int round = 0; secondsLived < qint64(hours) * 60 * minuteSeconds; ++round) {
        if (round == warmUpRounds)
            before = holdings();
        DO(live(round));
        DO(compare());
    }
    const Holdings after = holdings();
    tell(QString("life: %1 h with %2 clients, %3 signals each, %4 scans and connects "
                 "repeated; descriptors %5 to %6, threads %7 to %8, children %9 to %10, processes "
                 "%11 to %12, memory %13 to %14 kB")
             .arg(hours)
             .arg(clients)
             .arg(heard)
             .arg(repetitions)
             .arg(before.descriptors)
             .arg(after.descriptors)
             .arg(before.threads)
             .arg(after.threads)
             .arg(before.children)
             .arg(after.children)
             .arg(before.processes)
             .arg(after.processes)
             .arg(before.memory)
             .arg(after.memory));
    QCOMPARE(after.descriptors, before.descriptors);
    QCOMPARE(after.threads, before.threads);
    QCOMPARE(after.children, before.children);
    QCOMPARE(after.processes, before.processes);
    QVERIFY(after.memory - before.memory <= allowedGrowthKb);
}

/** Simulates ten minutes, or a little more. */
void InstrumentLife::live(int round)
{
    const qint64 start = secondsLived;
    DO(switchProfile(round));
    spendMinute();
    DO(changeLight(round));
    spendMinute();
    DO(useCard(round));
    spendMinute();
    DO(useKey());
    spendMinute();
    DO(useWifi(round));
    spendMinute();
    DO(useEthernet());
    spendMinute();
    if (round % 3 == 1)
        DO(beAnAccessPoint());
    while (secondsLived - start < minutesOfRound * minuteSeconds)
        spendMinute();
}

void InstrumentLife::switchProfile(int round)
{
    const QString user = QString("user%1").arg((round + 1) % 4 + 1);
    QCOMPARE(users.call("setUser", {user}), done);
    QVERIFY(announces(QString("Users userChanged .*\"%1\"").arg(user)));
    if (round % 3 == 2)
        QCOMPARE(users.call("factoryReset", {user}), done);
}

void InstrumentLife::changeLight(int round)
{
    const bool isAutomatic = round % 2 == 0;
    QCOMPARE(backlight.call("setBacklightStep", {isAutomatic, 3}), done);
    for (const char *lux : {"5", "900", "60", "120"}) {
        Board::set("als/lux", lux);
        QVERIFY(announces(QString("Brightness reachedBrightnessThreshold .*\\b%1,").arg(lux)));
    }
    QCOMPARE(module.call("redpinePower", {isAutomatic}), done);
    Board::set("temperature/SOM", round % 2 == 0 ? "85" : "41");
    QCOMPARE(temperature.call("periodicTemperatureCheck"), done);
    if (round % 2 == 0)
        QVERIFY(announces("Temperature temperatureReached .*SOM"));
}

void InstrumentLife::useCard(int round)
{
    QVERIFY(Board::storage("insert", "SD"));
    QVERIFY(announces("Storage sdcardPresence .*true"));
    QVERIFY(Board::storage("mount", "SD"));
    spendMinute();
    QCOMPARE(storage.call("isMounted", {"SD"}), QString("(true)"));
    QCOMPARE(Board::get("leds/SD_STATUS"), QString("ON"));
    if (round % 2 == 0) {
        QCOMPARE(storage.call("umount", {"SD"}), done);
        QVERIFY(announces("Storage sdcardPresence .*false"));
    }
    QVERIFY(Board::storage("remove", "SD"));
    QVERIFY(announces("Storage sdcardPresence .*false"));
}

void InstrumentLife::useKey()
{
    QVERIFY(Board::storage("insert", "USB"));
    QVERIFY(announces("Storage usbKeyPresence .*true"));
    QVERIFY(Board::storage("mount", "USB"));
    QCOMPARE(storage.call("isMounted", {"USB"}), QString("(true)"));
    QCOMPARE(storage.call("umount", {"USB"}), done);
    QVERIFY(Board::storage("remove", "USB"));
    QVERIFY(announces("Storage usbKeyPresence .*false"));
}

void InstrumentLife::useWifi(int round)
{
    const bool isKitchenThere = round % 2 == 0;
    supplicant.set("kitchen/ssid", "Kitchen");
    supplicant.set("kitchen/in_range", isKitchenThere ? "1" : "0");
    DO(scan(isKitchenThere));
    DO(waitForRadioOff());
    if (round % 3 == 0)
        DO(joinAndLoseIt());
    else if (round % 3 == 1)
        DO(joinWithAKey("Workshop", "seven seas"));
    else
        DO(failToJoinFirst());
    DO(leave());
}

/** Scans until the list has all networks in the air: ConnMan may announce them in two parts. */
void InstrumentLife::scan(bool isKitchenThere)
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QCOMPARE(wifi.call("scan"), done);
        DO(passModuleDelay());
        QVERIFY(announces("WIFI servicesListChanged"));
        const QString list = listeners.front()->lines().at(heard - 1);
        if (list.contains("\"Kitchen\"") == isKitchenThere && list.contains("\"Workshop\""))
            return;
        ++repetitions;
        DO(waitForRadioOff());
    }
    QFAIL("the scans do not list the access points in the air");
}

/** Joins a network; retries if ConnMan does not know the network yet. */
void InstrumentLife::join(const char *network, const char *key)
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QCOMPARE(wifi.call("connect", {QVariantMap{{"Service", network}, {"Password", key}}}),
                 done);
        DO(passModuleDelay());
        // An attempt without a reply of ConnMan ends after a minute.
        const QRegularExpression end("WIFI propertyChanged .*\"(online|failure)\".*");
        const auto isDecided = [&] { return listeners.front()->lines().indexOf(end, heard) >= 0; };
        if (!QTest::qWaitFor(isDecided, deadlineMs / 2))
            spendMinute();
        QVERIFY(announces("WIFI propertyChanged .*\"(online|failure)\""));
        if (listeners.front()->lines().at(heard - 1).contains("online"))
            return;
        ++repetitions;
    }
    QFAIL(network);
}

void InstrumentLife::joinAndLoseIt()
{
    DO(join("Cafe", ""));
    DO(compareNetworks());
    supplicant.set("cafe/in_range", "0");
    QTRY_COMPARE_WITH_TIMEOUT(address("wifi_sta"), QString(), deadlineMs);
    supplicant.set("cafe/in_range", "1");
}

void InstrumentLife::joinWithAKey(const char *network, const char *key)
{
    DO(join(network, key));
    DO(compareNetworks());
    spendMinute();
}

void InstrumentLife::failToJoinFirst()
{
    const QString hall = "/net/connman/service/wifi_02aabbccdd03_48616c6c_managed_psk";
    const auto isRefused = [&] {
        return RealConnman::properties(hall).value("Error") == "invalid-key";
    };
    const QRegularExpression failure("WIFI propertyChanged .*\"failure\".*");
    const auto isOver = [&] {
        return isRefused() || listeners.front()->lines().indexOf(failure, heard) >= 0;
    };
    bool wasRefused = false;
    for (int attempt = 0; attempt < attempts && !wasRefused; ++attempt) {
        repetitions += attempt > 0 ? 1 : 0;
        QCOMPARE(
            wifi.call("connect", {QVariantMap{{"Service", "Hall"}, {"Password", "only noise"}}}),
            done);
        DO(passModuleDelay());
        QVERIFY(QTest::qWaitFor(isOver, deadlineMs));
        wasRefused = isRefused();
        spendMinute();
        QVERIFY(announces("WIFI propertyChanged .*\"failure\""));
    }
    QVERIFY(wasRefused);
    DO(joinWithAKey("Hall", "echo chamber"));
}

/** Leaves the Wi-Fi network, even one that is already gone. */
void InstrumentLife::leave()
{
    const QString answer = wifi.call("disconnect");
    QVERIFY2(answer == done || answer == failed("Cannot remove service"), qPrintable(answer));
    QVERIFY(announces("WIFI propertyChanged .*\"idle\""));
    DO(waitForRadioOff());
    QTRY_COMPARE_WITH_TIMEOUT(address("wifi_sta"), QString(), deadlineMs);
}

/** Waits until ConnMan, which runs in real time, has powered the radio off. */
void InstrumentLife::waitForRadioOff()
{
    const QString technology = "/net/connman/technology/wifi";
    QTRY_VERIFY_WITH_TIMEOUT(!RealConnman::properties(technology).value("Powered").toBool(),
                             deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(RealConnman::properties(workshop).isEmpty(), deadlineMs);
}

void InstrumentLife::useEthernet()
{
    QCOMPARE(ethernet.call("connect"), done);
    QVERIFY(announces("Ethernet propertyChanged .*\"online\""));
    DO(compareNetworks());
    connman.unplugCable();
    QTRY_COMPARE_WITH_TIMEOUT(address("eth0"), QString(), deadlineMs);
    connman.plugCable();
    QTRY_VERIFY_WITH_TIMEOUT(!address("eth0").isEmpty(), deadlineMs);
    QCOMPARE(ethernet.call("disconnect"), done);
    QTRY_COMPARE_WITH_TIMEOUT(address("eth0"), QString(), deadlineMs);
}

void InstrumentLife::beAnAccessPoint()
{
    QCOMPARE(accessPoint.call("connect", {QVariantMap{{"SSID", "Strandel"},
                                                      {"Channel", 6},
                                                      {"Security", "WPA2"},
                                                      {"Password", "under the dome"},
                                                      {"IP", "192.168.7.1"}}}),
             done);
    DO(passModuleDelay());
    QVERIFY(announces("WIFIAP propertyChanged .*\"ready\""));
    pass(3);
    QVERIFY(announces("WIFIAP propertyChanged .*\"online\""));
    DO(compareNetworks());
    QCOMPARE(accessPoint.call("disconnect"), done);
    DO(passModuleDelay());
    QVERIFY(!QFile::exists("/sys/class/net/wifi_ap"));
}

/** Advances the daemon's clock in steps that skip no timer. */
void InstrumentLife::pass(int seconds)
{
    const int longestStep = 10;
    for (int left = seconds; left > 0; left -= longestStep) {
        // Wait for pending calls to ConnMan: the step would count towards their timeouts.
        settle();
        daemon.letTimePass(std::min(left, longestStep));
        settle();
    }
    secondsLived += seconds;
}

void InstrumentLife::spendMinute()
{
    if (percent <= 4 || percent >= 100)
        isCharging = percent <= 4;
    percent += isCharging ? 4 : -4;
    const bool isFull = percent >= 100;
    Board::set("battery/charge", QString::number(isCharging && !isFull ? -percent : percent));
    Board::set("battery/voltage", QString::number(6400 + 16 * percent));
    Board::set("charger/present", isCharging ? "1" : "0");
    QCOMPARE(watchdog.call("keepAlive"), done);
    pass(minuteSeconds);
}

/** Waits until the daemon has handled everything that has reached it. */
void InstrumentLife::settle()
{
    users.call("getUser");
}

void InstrumentLife::passModuleDelay()
{
    QTRY_COMPARE_WITH_TIMEOUT(daemon.children(), 0, deadlineMs);
    pass(2);
}

/** Waits until every listener has printed a matching line, after the lines of earlier waits. */
bool InstrumentLife::announces(const QString &pattern)
{
    const QRegularExpression line(pattern + ".*");
    const auto isHeard = [&](Listener &listener) {
        return QTest::qWaitFor([&] { return listener.lines().indexOf(line, heard) >= 0; },
                               deadlineMs);
    };
    for (const auto &listener : listeners) {
        if (!isHeard(*listener)) {
            qWarning("not heard: %s", qPrintable(pattern));
            return false;
        }
    }
    heard = listeners.front()->lines().indexOf(line, heard) + 1;
    return true;
}

void InstrumentLife::compare()
{
    DO(compareBattery());
    DO(compareDevices());
    DO(compareNetworks());
    settle();
    const QStringList expected = listeners.front()->lines();
    for (const auto &listener : listeners) {
        QTRY_VERIFY_WITH_TIMEOUT(listener->lines().size() >= expected.size(), deadlineMs);
        QVERIFY2(listener->lines().mid(0, expected.size()) == expected,
                 "a listener has heard something else");
    }
    heard = expected.size();
}

QString InstrumentLife::batteryStatus()
{
    const bool isCharger = Board::get("charger/present") == "1";
    const int charge = Board::get("battery/charge").toInt();
    if (isCharger && charge >= 0)
        return QStringLiteral("CHARGER_ON_BAT_FULL");
    if (!isCharger && charge <= 10)
        return QStringLiteral("CHARGER_OFF_BAT_PRWT");
    // Round up to the next multiple of 20.
    const int bound = (std::abs(charge) + 19) / 20 * 20;
    return QStringLiteral("CHARGER_%1_BAT_INF_%2").arg(isCharger ? "ON" : "OFF").arg(bound);
}

void InstrumentLife::compareBattery()
{
    // The check comes every five minutes. No signal announces a new charge or charger in between:
    // wait until the LEDs are up to date.
    pass(5 * minuteSeconds);
    const QString status = batteryStatus();
    QCOMPARE(alimentation.property("batteryStatus"), "(<\"" + status + "\">)");
    QCOMPARE(alimentation.call("getBatteryVoltage"), "(u:" + Board::get("battery/voltage") + ')');
    QByteArray shown;
    for (const char *name : batteryLeds) {
        const QString state = Board::get(QString("leds/") + name);
        shown += state == "ON" ? '*' : state == "OFF" ? '.' : state == "BLINK_1HZ" ? '1' : '?';
    }
    QByteArray expected = "no such status";
    for (const Pattern &pattern : patterns) {
        if (status == QLatin1String(pattern.status))
            expected = pattern.leds;
    }
    QCOMPARE(shown, expected);
}

void InstrumentLife::compareDevices()
{
    QStringList leds;
    for (const QString &name : QDir(Board::pathOf("leds")).entryList(QDir::Files))
        leds << QString("\"%1\": <\"%2\">").arg(name, Board::get("leds/" + name));
    QCOMPARE(leds.size(), ledNames().size());
    QCOMPARE(led.call("getLEDStatus"), "({" + leds.join(", ") + "})");
    QCOMPARE(temperature.call("getTemperatures"),
             QString("({\"ANALOG_CHAIN\": <%1>, \"SOM\": <%2>})")
                 .arg(Board::get("temperature/ANALOG_CHAIN"), Board::get("temperature/SOM")));
    for (const char *device : {"SD", "USB"})
        QCOMPARE(storage.call("isMounted", {device}),
                 Board::get(QString("storage/%1/mounted").arg(device)) == "1" ? QString("(true)")
                                                                              : QString("(false)"));
    QCOMPARE(backlight.call("getBacklight"), '(' + Board::get("backlight/brightness") + ')');
    QCOMPARE(brightness.reply("getBrightness").arguments().value(0).toDouble(),
             Board::get("als/lux").toDouble());
    // The start is acknowledged only once.
    QCOMPARE(Board::get("powerman/watchdog_acknowledgements"), QString("1"));
    QCOMPARE(
        users.call("getUser"),
        "(\"" +
            QFileInfo(QFile::symLinkTarget("/tmp/User_part/system")).fileName().section('_', 0, 0) +
            "\")");
}

void InstrumentLife::compareNetworks()
{
    QTRY_COMPARE_WITH_TIMEOUT(addressOf(ethernet), address("eth0"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(addressOf(wifi), address("wifi_sta"), deadlineMs);
    QCOMPARE(accessPoint.call("getHardwareInfos").contains("\"wifi_ap\""),
             QFile::exists("/sys/class/net/wifi_ap"));
}

/** The address of @p interface in the kernel; empty if there is none. */
QString InstrumentLife::address(const char *interface)
{
    QProcess ip;
    ip.start("ip", {"-4", "-oneline", "address", "show", "dev", QLatin1String(interface)});
    ip.waitForFinished();
    return QString::fromUtf8(ip.readAllStandardOutput()).section(' ', 6, 6).section('/', 0, 0);
}

/** The address that the daemon reports. */
QString InstrumentLife::addressOf(const Remote &interface)
{
    return interface.call("getIPv4").section("\"Address\": <\"", 1).section('"', 0, 0);
}

InstrumentLife::Holdings InstrumentLife::holdings() const
{
    return {daemon.descriptors(), threadsOf(daemon.processId()).size(), daemon.children(),
            processes().size(), statusOf(daemon.processId(), "RssAnon").toLong()};
}

int main(int argc, char *argv[])
{
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test writes to /opt and /tmp: run it in a private world");
    if (argc == 3) {
        hours = QByteArray(argv[1]).toInt();
        clients = QByteArray(argv[2]).toInt();
    }
    if (hours < 1 || clients < 1) {
        static_cast<void>(std::fputs("usage: life [HOURS CLIENTS]\n", stderr));
        return 2;
    }
    // A day takes longer than the default limit of a test function.
    qputenv("QTEST_FUNCTION_TIMEOUT", "7200000");
    QCoreApplication application(argc, argv);
    InstrumentLife life;
    return QTest::qExec(&life, 1, argv);
}

#include "campaign_life.moc"
