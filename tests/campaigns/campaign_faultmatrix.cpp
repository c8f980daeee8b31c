#include "board.h"
#include "daemontest.h"
#include "deadline.h"
#include "figures.h"
#include "introspection.h"
#include "leds.h"
#include "render.h"
#include "samplerecords.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QXmlStreamReader>

#include <functional>

/**
 * Applies every fault to every operation of the hardware libraries, with every method, property,
 * timer, interrupt and kernel event (a "stimulus") that makes the daemon call the operation.
 *
 * No operations or methods are listed here. The operations are the exports of the hardware
 * libraries, the methods come from introspection, and the board's journal shows which stimulus
 * calls which operation. The campaign fails if no stimulus calls an operation, or if the arguments
 * of a method are unknown: add a new one to the tables below.
 *
 * FAULTS=all in the environment applies the fault to each single call of an operation, not only to
 * the first and the last call that a stimulus causes; and each hang lasts three seconds.
 */
class TestFaultMatrix : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void everyOperationIsReached();
    void everyFaultIsSurvived_data();
    void everyFaultIsSurvived();

private:
    /** An event that makes the daemon use the hardware. */
    struct Stimulus {
        QString name;
        /** Brings the running daemon to the point where the stimulus reaches the hardware. */
        std::function<void()> prepare;
        /** Starts the stimulus without waiting. */
        std::function<void()> trigger;
        /** Waits until the daemon has handled the stimulus; returns the reply. */
        std::function<QString()> finish;
        /** The fault-free cycle that must repair the fault's effects; the stimulus itself if empty.
         */
        std::function<void()> heal;
        bool isStart = false;
    };

    /** The effects of a stimulus without a fault. */
    struct Reference {
        QStringList operations;
        QMap<QString, int> calls;
        QString reply;
        QStringList state;
        int descriptors = 0;
    };

    void addMethods(const QString &path);
    void addMethod(const QString &path, const QString &interface, const QString &member);
    void addProperty(const QString &path, const QString &interface, const QString &name);
    void addEvents();
    Stimulus callStimulus(const QString &name, const Remote &remote, const QString &method,
                          const QVariantList &arguments);
    Stimulus eventStimulus(const QString &name, const QString &marker,
                           const std::function<void()> &happen);
    Reference observe(const Stimulus &stimulus);
    void begin(const Stimulus &stimulus);
    void heal(const Stimulus &stimulus);
    QStringList state();
    bool waitForState(const QStringList &expected, QStringList &last);
    void settle();
    void addGetter(const Remote &remote, const QString &name, const QString &method);

    QList<Stimulus> m_stimuli;
    QMap<QString, Reference> m_references;
    QMap<QString, std::function<QString()>> m_getters;
    QDBusPendingCall m_pending = QDBusPendingCall::fromError(QDBusError());
    const bool m_isLong = qEnvironmentVariable("FAULTS") == QLatin1String("all");
    int m_pairs = 0;
    int m_faults = 0;
    int m_survived = 0;
};

namespace
{
/** Names of two faults in the tables below. The board's word for "nonsense" is "garbage". */
const QString always = QStringLiteral("always");
const QString nonsense = QStringLiteral("nonsense");

/** Operations that no stimulus calls, with the reason. */
const QMap<QString, QString> unreached = {};

/** Valid arguments of a method. Each list of arguments is a stimulus of its own. */
struct Arguments {
    const char *method;
    QList<QVariantList> lists;
};

const QList<Arguments> validArguments = {
    {"Users.setUser", {{"user2"}}},
    {"Users.factoryReset", {{"user2"}}},
    {"Ethernet.setIPv4", {{QVariantMap()}}},
    {"WIFI.setIPv4", {{QVariantMap()}}},
    {"WIFI.connect", {{QVariantMap()}}},
    {"WIFIAP.setIPv4", {{QVariantMap()}}},
    {"WIFIAP.connect", {{QVariantMap()}}},
    {"Agent.RequestInput", {{QVariant::fromValue(QDBusObjectPath("/a")), QVariantMap()}}},
    {"Agent.ReportError", {{QVariant::fromValue(QDBusObjectPath("/a")), "invalid-key"}}},
    {"Backlight.setBacklight", {{40}}},
    {"Backlight.enableBacklight", {{false}}},
    {"Backlight.setBacklightStep", {{false, 3}, {true, 3}}},
    {"LED.setLEDStatus", {{"WIFI", "ON"}}},
    {"Network.redpinePower", {{true}}},
    {"Storage.umount", {{"SD"}, {"USB"}}},
    {"Storage.isMounted", {{"SD"}, {"USB"}}},
    {"Temperature.setTemperatureThreshold", {{"SOM", 50}}},
    {"Temperature.setInterval", {{2000}}},
    {"Version.setEepromInstrument", {{instrumentRecord()}}},
    {"Version.setEepromMesure", {{measureRecord()}}},
};

/**
 * The expected reply to a stimulus while an operation has a fault. The first matching row counts;
 * an empty fault matches any failure. If no row matches, the expected reply is the usual one.
 */
struct Answer {
    const char *stimulus;
    const char *operation;
    const char *fault;
    QString answer;
};

QList<Answer> answersToFaults()
{
    const QString backlightUnread = failure("Read", "Could not get the current backlight value");
    const QString backlightUnset = failure("Write", "Could not set the current backlight value");
    const QString lightUnread = failure("Read", "Could not get the current brightness value");
    const QString noWriting =
        failure("Initialisation", "Not able to enable write permission in eeprom");
    const QString notWritten = failure("Write", "Not able to write in eeprom");
    const QString notProtected = failure("Write", "Not able to disable write permission in eeprom");
    const QString badRecord = QStringLiteral("({\"CRC\": <false>})");
    return {
        {"Alimentation.batteryStatus", "KyBatmonitor.getBatteryInfo", "",
         "(<\"CHARGER_OFF_UNKNOWN_BAT\">)"},
        {"Alimentation.batteryStatus", "KyBatmonitor.getBatteryInfo", "nonsense",
         "(<\"CHARGER_OFF_BAT_PRWT\">)"},
        {"Alimentation.batteryStatus", "KySocManager.getSoCRegister", "nonsense",
         "(<\"CHARGER_ON_BAT_FULL\">)"},
        {"Alimentation.batteryStatus with a charger that came", "KyBatmonitor.getBatteryInfo", "",
         "(<\"CHARGER_OFF_UNKNOWN_BAT\">)"},
        {"Alimentation.batteryStatus with a charger that came", "KyBatmonitor.getBatteryInfo",
         "nonsense", "(<\"CHARGER_OFF_UNKNOWN_BAT\">)"},
        {"Alimentation.batteryStatus with a charger that came", "KyBatmonitor.getCmeterType", "",
         "(<\"CHARGER_ON_NO_BAT\">)"},
        {"Alimentation.batteryStatus with a charger that came", "KyBatmonitor.getCmeterType",
         "nonsense", "(<\"CHARGER_ON_NO_BAT\">)"},
        // A charger that cannot be read counts as absent.
        {"Alimentation.batteryStatus with a charger that came", "KySocManager.getSoCRegister", "",
         "(<\"CHARGER_OFF_BAT_INF_80\">)"},
        {"Backlight.getBacklight", "KyBacklight.getBrightness", "", backlightUnread},
        {"Backlight.getBacklight", "KyBacklight.getBrightness", "nonsense", "(31337)"},
        {"Backlight.getBacklightStep", "KyBacklight.getBrightness", "", backlightUnread},
        {"Backlight.getBacklightStep", "KyBacklight.getBrightness", "nonsense", "(15)"},
        {"Backlight.setBacklight(40)", "KyBacklight.setBrightness", "", backlightUnset},
        {"Backlight.enableBacklight(false)", "KyBacklight.enableBacklight", "", backlightUnset},
        {"Backlight.setBacklightStep(false, 3)", "KyBacklight.setBrightness", "", backlightUnset},
        // In automatic mode a failed write is announced, not reported as an error.
        {"Backlight.setBacklightStep(true, 3)", "KyAls.readLux", "", lightUnread},
        {"Brightness.getBrightness", "KyAls.readLux", "", lightUnread},
        {"Brightness.getBrightness", "KyAls.readLux", "nonsense", "(d:nan)"},
        {"LED.setLEDStatus(\"WIFI\", \"ON\")", "KyLeds.setLedState", "",
         failure("Write", "Enable to set led WIFI to status ON")},
        {"LED.getLEDStatus", "KyLeds.getLedState", "always", "({})"},
        {"Network.redpinePower(true)", "KyPowerman.wifiPower", "",
         failure("Write", "Fail to change redpine power state")},
        {"Network.redpineSoftReset", "KyPowerman.wifiSoftReset", "",
         failure("Write", "Fail to soft reset redpine")},
        {"Network.redpineHardReset", "KyPowerman.wifiHardReset", "",
         failure("Write", "Fail to hard reset redpine")},
        {"Storage.umount(\"SD\")", "KyFaccess.unmountDevice", "",
         failure("Write", "Umount failed")},
        {"Storage.umount(\"USB\")", "KyFaccess.unmountDevice", "",
         failure("Write", "Umount failed")},
        {"Storage.isMounted(\"SD\")", "KyFaccess.isMounted", "", "(false)"},
        {"Storage.isMounted(\"USB\")", "KyFaccess.isMounted", "nonsense", "(true)"},
        {"Temperature.getTemperatures", "KyTemperature.getTemperature", "always", "({})"},
        {"Temperature.getTemperatures", "KyTemperature.getTemperature", "call 0",
         "({\"ANALOG_CHAIN\": <38>})"},
        {"Temperature.getTemperatures", "KyTemperature.getTemperature", "call 1",
         "({\"SOM\": <42>})"},
        {"Temperature.getTemperatures", "KyTemperature.getTemperature", "nonsense",
         "({\"ANALOG_CHAIN\": <-2147483648>, \"SOM\": <-2147483648>})"},
        {"Version.getEepromInstrument", "KyEeprom.readEeprom", "", badRecord},
        {"Version.getEepromInstrument", "KyEeprom.readEeprom", "nonsense", badRecord},
        {"Version.getEepromMesure", "KyEeprom.readEeprom", "", badRecord},
        {"Version.getEepromMesure", "KyEeprom.readEeprom", "nonsense", badRecord},
        {"Version.getRevision", "KyBoardRev.getRevision", "always", "({})"},
        {"Version.getRevision", "KyBoardRev.getRevision", "call 0",
         "({\"FPGA\": <\"2.3\">, \"HPS\": <u:1>, \"MESURE_CARD\": <u:2>})"},
        {"Version.getRevision", "KyBoardRev.getRevision", "call 1",
         "({\"FPGA\": <\"2.3\">, \"MESURE_CARD\": <u:2>, \"SOM\": <u:3>})"},
        {"Version.getRevision", "KyBoardRev.getRevision", "call 2",
         "({\"HPS\": <u:1>, \"MESURE_CARD\": <u:2>, \"SOM\": <u:3>})"},
        {"Version.getRevision", "KyBoardRev.getRevision", "call 3",
         "({\"FPGA\": <\"2.3\">, \"HPS\": <u:1>, \"SOM\": <u:3>})"},
        {"Version.getRevision", "KyBoardRev.getRevision", "nonsense",
         "({\"FPGA\": <\"65535.65535\">, \"HPS\": <u:4294967295>, \"MESURE_CARD\": <u:4294967295>, "
         "\"SOM\": <u:4294967295>})"},
        {"Version.setEeprom*", "KyEeprom.setWriteEnable", "always", noWriting},
        {"Version.setEeprom*", "KyEeprom.setWriteEnable", "call 0", noWriting},
        {"Version.setEeprom*", "KyEeprom.setWriteEnable", "call 1", notProtected},
        {"Version.setEeprom*", "KyEeprom.writeEeprom", "", notWritten},
        // A board that falsely reports the protection as lifted rejects the write.
        {"Version.setEeprom*", "KyEeprom.setWriteEnable", "nonsense", notWritten},
        {"Version.invalidateEepromsContent", "KyEeprom.setWriteEnable", "always", noWriting},
        {"Version.invalidateEepromsContent", "KyEeprom.setWriteEnable", "call 0", noWriting},
        {"Version.invalidateEepromsContent", "KyEeprom.setWriteEnable", "call 1", notProtected},
        {"Version.invalidateEepromsContent", "KyEeprom.setWriteEnable", "nonsense", notWritten},
        {"Version.invalidateEepromsContent", "KyEeprom.writeEeprom", "", notWritten},
        {"Watchdog.keepAlive", "KySocManager.getSoCRegister", "always",
         failure("Initialisation", "Fail to read the HPS initialisation state")},
        {"Watchdog.keepAlive", "KySocManager.getSoCRegister", "call 0",
         failure("Initialisation", "Fail to read the HPS initialisation state")},
        {"Watchdog.keepAlive", "KySocManager.getSoCRegister", "call 1",
         failure("Write", "Fail to transfert the keepalive signal to the FPGA")},
        {"Watchdog.keepAlive", "KyPowerman.setAckWatchdog", "",
         failure("Initialisation", "Fail to prevent the MSP430 from rebooting the sysem")},
        {"Watchdog.keepAlive again", "KySocManager.getSoCRegister", "",
         failure("Write", "Fail to transfert the keepalive signal to the FPGA")},
    };
}

/**
 * Faults whose effects last until the daemon's next start, as clients expect: some values are read
 * only once, and a sensor whose initialisation failed stays unused. An empty fault matches any
 * failure.
 */
struct Lasting {
    const char *stimulus;
    const char *operation;
    const char *fault;
};

const QList<Lasting> lasting = {
    // A light sensor whose initialisation failed is not used until the next start.
    {"start", "KyAls.init", ""},
    {"start", "KyAls.readLux", ""},
    {"start", "KyAls.setThresholds", ""},
    {"start", "KyAls.setThresholdsTimer", ""},
    {"start", "KyAls.interruptEnable", ""},
    {"start", "KyAls.getinterruptHandler", ""},
    // The same if the initialisation falsely reports success.
    {"start", "KyAls.setThresholds", "nonsense"},
    {"start", "KyAls.setThresholdsTimer", "nonsense"},
    {"start", "KyAls.interruptEnable", "nonsense"},
    // A conversion cannot report a failure: darkness becomes the lower bound.
    {"start", "KyAls.convLuxInExponentMantissaByte", "last call"},
    {"light interrupt*", "KyAls.convLuxInExponentMantissaByte", "last call"},
    // The sensor does not interrupt again after an interrupt that was not acknowledged, whatever
    // interruptRead() reports.
    {"light interrupt*", "KyAls.interruptRead", ""},
    {"light interrupt*", "KyAls.interruptRead", "nonsense"},
    // The instrument record is read once; without it there is no screen.
    {"start", "KyEeprom.readEeprom", ""},
    {"start", "KyEeprom.readEeprom", "nonsense"},
    // The daemon passes brand and model to the library only when it reads the record.
    {"start", "KyBoardRev.setBrand", ""},
    {"start", "KyBoardRev.setBrand", "nonsense"},
    {"start", "KyBoardRev.setModel", ""},
    {"start", "KyBoardRev.setModel", "nonsense"},
    // The daemon sets the card's LED again only when the card comes or goes.
    {"start", "KyLeds.setLedState", "last call"},
    {"start", "KyLeds.setLedState", "always"},
    {"start", "KyLeds.setLedState", "nonsense"},
    {"start", "KyFaccess.isMounted", ""},
    {"Version.getEepromInstrument", "KyEeprom.readEeprom", ""},
    {"Version.getEepromInstrument", "KyEeprom.readEeprom", "nonsense"},
    {"Version.getEepromMesure", "KyEeprom.readEeprom", ""},
    {"Version.getEepromMesure", "KyEeprom.readEeprom", "nonsense"},
    // If at least one revision could be read, the result is cached without the missing ones.
    {"Version.getRevision", "KyBoardRev.getRevision", "call *"},
    {"Version.getRevision", "KyBoardRev.getRevision", "nonsense"},
    {"Version.getRevision", "KyBoardRev.setSoMRevision", ""},
    {"Version.getRevision", "KyBoardRev.setSoMRevision", "nonsense"},
};

bool matches(const char *pattern, const QString &text)
{
    const QString glob = QLatin1String(pattern);
    return glob.endsWith(QLatin1Char('*')) ? text.startsWith(glob.left(glob.size() - 1))
                                           : text == glob;
}

bool isFailure(const QString &fault)
{
    return fault == always || fault.startsWith(QLatin1String("call "));
}

bool isFault(const char *pattern, const QString &fault)
{
    return *pattern ? matches(pattern, fault) : isFailure(fault);
}

/**
 * Returns the reply @p usual, changed as expected for an LED that cannot be read or has an invalid
 * state.
 */
QString ledAnswer(const QString &fault, QString usual)
{
    if (fault == nonsense)
        return usual.replace(QRegularExpression(QStringLiteral("<\"\\w+\">")),
                             QStringLiteral("<\"UNKNOWN\">"));
    const QString led = ledNames().at(fault.section(QLatin1Char(' '), 1).toInt()).name;
    return usual.remove(QRegularExpression(
        QStringLiteral("\"%1\": <\"\\w+\">, |, \"%1\": <\"\\w+\">(?=})").arg(led)));
}

QString expectedAnswer(const QString &stimulus, const QString &operation, const QString &fault,
                       const QString &usual)
{
    for (const Answer &answer : answersToFaults()) {
        if (matches(answer.stimulus, stimulus) && operation == QLatin1String(answer.operation) &&
            isFault(answer.fault, fault))
            return answer.answer;
    }
    return stimulus == QLatin1String("LED.getLEDStatus") ? ledAnswer(fault, usual) : usual;
}

/** Returns true if @p line shows a file that every attempt changes, such as a counter. */
bool isCount(const QString &line)
{
    static const QRegularExpression counts(
        QStringLiteral("^(journal|held|faults|powerman/.*_(resets|acknowledgements)|battery/"
                       "shutdowns_prepared|watchdog/feeds)"));
    return counts.match(line).hasMatch();
}

/** Returns the lines that are only in one of the two lists. */
QString difference(const QStringList &expected, const QStringList &found)
{
    QStringList lines;
    for (const QString &line : expected) {
        if (!found.contains(line))
            lines << QStringLiteral("missing: ") + line;
    }
    for (const QString &line : found) {
        if (!expected.contains(line))
            lines << QStringLiteral("instead: ") + line;
    }
    return lines.isEmpty() ? QStringLiteral("everything agrees") : lines.join(QLatin1Char('\n'));
}

/** The exported operations of the hardware libraries, with their names in the journal. */
QStringList exportedOperations()
{
    QStringList operations;
    for (const char *library : {"libKyBoard.so.1", "libKyFileaccess.so.1", "libKySoC.so.1"}) {
        QProcess nm;
        nm.start(QStringLiteral("nm"),
                 {QStringLiteral("--dynamic"), QStringLiteral("--defined-only"),
                  QStringLiteral("--demangle"),
                  qEnvironmentVariable("LD_LIBRARY_PATH") + '/' + QLatin1String(library)});
        nm.waitForFinished();
        static const QRegularExpression function(QStringLiteral(" T (Ky\\w+)::(\\w+)\\("));
        auto found = function.globalMatch(QString::fromLatin1(nm.readAllStandardOutput()));
        while (found.hasNext()) {
            const QRegularExpressionMatch match = found.next();
            if (match.captured(1) != match.captured(2))
                operations << match.captured(1) + '.' + match.captured(2);
        }
    }
    operations.removeDuplicates();
    operations.sort();
    return operations;
}
} // namespace

void TestFaultMatrix::initTestCase()
{
    init();
    QVERIFY(daemon.start());
    for (const char *path : {"/KyConfigMgr", "/KyComMgr", "/KyComMgr/Agent", "/KyDeviceMgr"})
        addMethods(QString::fromLatin1(path));
    addEvents();
    daemon.stop();

    for (const Stimulus &stimulus : m_stimuli) {
        init();
        m_references.insert(stimulus.name, observe(stimulus));
        QVERIFY(!QTest::currentTestFailed());
        daemon.stop();
    }
}

void TestFaultMatrix::init()
{
    DaemonTest::init();
    daemon.controlClock();
    // A card is inserted and its LED is on. The sensor repeats its interrupts as often as possible.
    Board::set("storage/SD/inserted", "1");
    Board::set("storage/SD/mounted", "1");
    writeFile("/opt/settings.ini", "[Brightness]\ntimer=0\n");
}

void TestFaultMatrix::cleanupTestCase()
{
    QSet<QString> operations;
    for (const Reference &reference : m_references) {
        for (const QString &operation : reference.operations)
            operations.insert(operation);
    }
    reportFigures(
        QStringLiteral("faults of the hardware: %1 operations, %2 stimuli, %3 pairs, %4 faults, "
                       "%5 survived")
            .arg(operations.size())
            .arg(m_stimuli.size())
            .arg(m_pairs)
            .arg(m_faults)
            .arg(m_survived));
}

/** Adds the methods and properties of the object at @p path, from introspection. */
void TestFaultMatrix::addMethods(const QString &path)
{
    const Introspection object = introspect(path);
    QVERIFY2(object.error.isEmpty(), qPrintable(object.error));
    for (auto interface = object.interfaces.begin(); interface != object.interfaces.end();
         ++interface) {
        if (interface.key().startsWith(QLatin1String("org.freedesktop.DBus")))
            continue;
        for (const QString &member : interface.value()) {
            const QString name = member.section(QRegularExpression("[ (]"), 1, 1);
            if (member.startsWith(QLatin1String("method ")))
                addMethod(path, interface.key(), member);
            else if (member.startsWith(QLatin1String("property ")))
                addProperty(path, interface.key(), name);
        }
    }
}

void TestFaultMatrix::addMethod(const QString &path, const QString &interface,
                                const QString &member)
{
    const QString method = member.section(QRegularExpression("[ (]"), 1, 1);
    const QString name = interface.section('.', -1) + '.' + method;
    const Remote remote(daemonName, path, interface);
    const bool takesArguments = member.contains(QLatin1String("(in "));
    QList<QVariantList> lists = {{}};
    if (takesArguments) {
        lists.clear();
        for (const Arguments &row : validArguments) {
            if (name == QLatin1String(row.method))
                lists = row.lists;
        }
        QVERIFY2(!lists.isEmpty(), qPrintable("no valid arguments are known for " + name));
    } else if (member.contains(QLatin1String("(out "))) {
        m_getters.insert(name, [remote, method] { return remote.call(method); });
    }
    for (const QVariantList &arguments : lists)
        m_stimuli << callStimulus(takesArguments ? name + render(arguments) : name, remote, method,
                                  arguments);
}

void TestFaultMatrix::addProperty(const QString &path, const QString &interface,
                                  const QString &name)
{
    const Remote remote(daemonName, path, interface);
    const Remote properties(daemonName, path, QStringLiteral("org.freedesktop.DBus.Properties"));
    const QString title = interface.section('.', -1) + '.' + name;
    m_getters.insert(title, [remote, name] { return remote.property(name); });
    m_stimuli << callStimulus(title, properties, QStringLiteral("Get"), {interface, name});
}

TestFaultMatrix::Stimulus TestFaultMatrix::callStimulus(const QString &name, const Remote &remote,
                                                        const QString &method,
                                                        const QVariantList &arguments)
{
    Stimulus stimulus;
    stimulus.name = name;
    stimulus.trigger = [=] { m_pending = remote.start(method, arguments); };
    stimulus.finish = [this] {
        m_pending.waitForFinished();
        const QString reply = renderReply(m_pending.reply());
        settle();
        return reply;
    };
    return stimulus;
}

/** A stimulus without a reply; @p marker is an operation that it always reaches. */
TestFaultMatrix::Stimulus TestFaultMatrix::eventStimulus(const QString &name, const QString &marker,
                                                         const std::function<void()> &happen)
{
    Stimulus stimulus;
    stimulus.name = name;
    stimulus.trigger = [happen] {
        Board::clearJournal();
        happen();
    };
    stimulus.finish = [this, marker] {
        const bool isDone = QTest::qWaitFor(
            [&] {
                return !Board::journal()
                            .filter(QRegularExpression('^' + QRegularExpression::escape(marker)))
                            .isEmpty();
            },
            deadlineMs);
        settle();
        return isDone ? QStringLiteral("done") : QStringLiteral("not done");
    };
    return stimulus;
}

/** Adds stimuli other than calls, and calls that need a preparation. */
void TestFaultMatrix::addEvents()
{
    const Stimulus battery =
        eventStimulus("battery timer", "KyBatmonitor.update", [this] { daemon.letTimePass(10); });
    const auto checkBattery = [battery] {
        battery.trigger();
        battery.finish();
    };
    m_stimuli << battery;

    const Remote version("/KyDeviceMgr", "Version");
    const Remote backlight("/KyDeviceMgr", "Backlight");
    const Remote temperature("/KyDeviceMgr", "Temperature");
    const Remote watchdog("/KyDeviceMgr", "Watchdog");
    for (int index = 0, count = m_stimuli.size(); index < count; ++index) {
        Stimulus stimulus = m_stimuli.at(index);
        if (stimulus.name == QLatin1String("Version.getEepromInstrument")) {
            // A rejected map empties the cache.
            m_stimuli[index].prepare = [=] {
                version.call("setEepromInstrument", {QVariantMap()});
            };
        } else if (stimulus.name == QLatin1String("Alimentation.batteryStatus")) {
            // Reading the status updates the LEDs only if the charger came or went.
            stimulus.heal = m_stimuli[index].heal = checkBattery;
            stimulus.name += QStringLiteral(" with a charger that came");
            stimulus.prepare = [] { Board::set("charger/present", "1"); };
            m_stimuli << stimulus;
        } else if (stimulus.name == QLatin1String("Watchdog.keepAlive")) {
            stimulus.name += QStringLiteral(" again");
            stimulus.prepare = [=] { watchdog.call("keepAlive"); };
            m_stimuli << stimulus;
        }
    }

    Stimulus temperatures = eventStimulus("temperature timer", "KyTemperature.getTemperature",
                                          [this] { daemon.letTimePass(1); });
    temperatures.prepare = [=] { temperature.call("setInterval", {1000}); };
    m_stimuli << temperatures;

    Stimulus light = eventStimulus("light interrupt", "KyAls.interruptRead",
                                   [] { Board::set("als/lux", "900"); });
    light.heal = [this] {
        settle();
        Board::set("als/lux", "30");
    };
    m_stimuli << light;
    light.name = "light interrupt in automatic mode";
    light.prepare = [=] { backlight.call("setBacklightStep", {true, 3}); };
    // This light needs another step of the backlight.
    light.trigger = [] {
        Board::clearJournal();
        Board::set("als/lux", "60");
    };
    m_stimuli << light;

    const auto insert = [] { Board::storage("insert", "SD"); };
    const auto remove = [] { Board::storage("remove", "SD"); };
    Stimulus inserted = eventStimulus("card inserted", "KyLeds.setLedState", insert);
    inserted.heal = [=] {
        remove();
        insert();
    };
    m_stimuli << inserted;
    Stimulus removed = eventStimulus("card removed", "KyLeds.setLedState", remove);
    removed.prepare = insert;
    removed.heal = [=] {
        insert();
        remove();
    };
    m_stimuli << removed;

    Stimulus start;
    start.name = "start";
    start.isStart = true;
    start.trigger = [this] { daemon.launch(); };
    start.finish = [this] {
        const bool isUp = QTest::qWaitFor(
            [] { return Remote("/KyConfigMgr", "Users").call("getUser") == "(\"user1\")"; },
            deadlineMs);
        settle();
        return isUp ? QStringLiteral("up") : QStringLiteral("not up");
    };
    start.heal = checkBattery;
    m_stimuli << start;
}

/** Waits until the daemon has handled everything that has reached it. */
void TestFaultMatrix::settle()
{
    for (int times = 0; times < 2; ++times)
        Remote(daemonName, "/KyDeviceMgr", "org.freedesktop.DBus.Introspectable")
            .reply("Introspect");
}

/** The replies to all getters without arguments, and the board's files. */
QStringList TestFaultMatrix::state()
{
    QStringList lines;
    for (auto getter = m_getters.begin(); getter != m_getters.end(); ++getter)
        lines << getter.key() + QLatin1Char(' ') + getter.value()();
    for (const QString &line : snapshot(Board::pathOf(QString()))) {
        if (!isCount(line))
            lines << line;
    }
    return lines;
}

bool TestFaultMatrix::waitForState(const QStringList &expected, QStringList &last)
{
    last = state();
    return last == expected || QTest::qWaitFor(
                                   [&] {
                                       last = state();
                                       return last == expected;
                                   },
                                   deadlineMs);
}

/** Brings the daemon to the start of @p stimulus. */
void TestFaultMatrix::begin(const Stimulus &stimulus)
{
    if (stimulus.isStart)
        return;
    QVERIFY(daemon.start());
    if (stimulus.prepare)
        stimulus.prepare();
    settle();
}

void TestFaultMatrix::heal(const Stimulus &stimulus)
{
    if (stimulus.heal) {
        stimulus.heal();
    } else {
        stimulus.trigger();
        stimulus.finish();
    }
    settle();
}

TestFaultMatrix::Reference TestFaultMatrix::observe(const Stimulus &stimulus)
{
    Reference reference;
    begin(stimulus);
    if (QTest::currentTestFailed())
        return reference;
    Board::clearJournal();
    const int before = stimulus.isStart ? 0 : daemon.settledDescriptors();
    stimulus.trigger();
    reference.reply = stimulus.finish();
    for (const QString &line : Board::journal()) {
        const QString operation = line.section('(', 0, 0);
        if (!reference.calls.contains(operation))
            reference.operations << operation;
        ++reference.calls[operation];
    }
    heal(stimulus);
    // Wait until pending changes, such as the sensor's own registers, have settled.
    QStringList previous;
    do {
        previous = reference.state;
        reference.state = state();
    } while (previous != reference.state);
    reference.descriptors = daemon.descriptors() - before;
    return reference;
}

void TestFaultMatrix::everyOperationIsReached()
{
    const QStringList operations = exportedOperations();
    QVERIFY(operations.contains("KyAls.readLux"));
    QSet<QString> reached;
    for (const Reference &reference : m_references) {
        for (const QString &operation : reference.operations) {
            QVERIFY2(operations.contains(operation), qPrintable(operation));
            reached.insert(operation);
        }
    }
    for (const QString &operation : operations)
        QVERIFY2(reached.contains(operation) != unreached.contains(operation),
                 qPrintable(operation));
    for (const QString &operation : unreached.keys())
        QVERIFY2(operations.contains(operation), qPrintable(operation));
}

void TestFaultMatrix::everyFaultIsSurvived_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("fault");
    for (int index = 0; index < m_stimuli.size(); ++index) {
        const QString name = m_stimuli.at(index).name;
        const Reference reference = m_references.value(name);
        for (const QString &operation : reference.operations) {
            ++m_pairs;
            const int calls = reference.calls.value(operation);
            QStringList faults = {always, nonsense};
            for (int call = 0; call < calls; ++call) {
                if (m_isLong || call == 0 || call == calls - 1)
                    faults << QStringLiteral("call %1").arg(call);
                if (m_isLong || call == 0)
                    faults << QStringLiteral("hang %1").arg(call);
            }
            for (const QString &fault : faults)
                QTest::newRow(qPrintable(name + ", " + operation + ", " + fault))
                    << index << operation << fault;
        }
    }
}

void TestFaultMatrix::everyFaultIsSurvived()
{
    QFETCH(int, index);
    QFETCH(QString, operation);
    QFETCH(QString, fault);
    const Stimulus &stimulus = m_stimuli.at(index);
    const Reference reference = m_references.value(stimulus.name);
    const QString number = fault.section(' ', 1);
    const bool isHang = fault.startsWith(QLatin1String("hang "));
    ++m_faults;

    // Given: the daemon at the start of the stimulus, and the operation with its fault.
    begin(stimulus);
    QVERIFY(!QTest::currentTestFailed());
    const int before = stimulus.isStart ? 0 : daemon.settledDescriptors();
    Board::clearJournal();
    if (fault == always)
        Board::fault(operation, "always");
    else if (fault == nonsense)
        Board::fault(operation, "garbage");
    else
        Board::fault(operation, (isHang ? "hold after " : "1 after ") + number);

    // When: the stimulus comes. A hung hardware call blocks the daemon and its clients.
    stimulus.trigger();
    QDBusPendingCall other = QDBusPendingCall::fromError(QDBusError());
    if (isHang) {
        QVERIFY(Board::waitFor("held", operation));
        if (!stimulus.isStart)
            other = Remote("/KyConfigMgr", "Users").start("getUser");
        if (m_isLong)
            daemon.letTimePass(3);
        Board::clearFaults();
    }
    const QString reply = stimulus.finish();

    // Then: the daemon runs and has sent the expected reply.
    QVERIFY(daemon.isRunning());
    QCOMPARE(reply, isHang ? reference.reply
                           : expectedAnswer(stimulus.name, operation, fault, reference.reply));
    if (isHang && !stimulus.isStart) {
        other.waitForFinished();
        QCOMPARE(renderReply(other.reply()), QStringLiteral("(\"user1\")"));
    }
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("getUser"), QStringLiteral("(\"user1\")"));

    // And: without the fault, the daemon agrees with the board after the next successful cycle, or
    // after its next start if clients expect that.
    Board::clearFaults();
    heal(stimulus);
    bool isLasting = false;
    for (const Lasting &row : lasting) {
        const bool isLastCall =
            fault == QStringLiteral("call %1").arg(reference.calls.value(operation) - 1);
        isLasting =
            isLasting ||
            (matches(row.stimulus, stimulus.name) && operation == QLatin1String(row.operation) &&
             (isFault(row.fault, fault) || (row.fault == QByteArray("last call") && isLastCall)));
    }
    QStringList state;
    if (isLasting)
        QVERIFY2((state = this->state()) != reference.state, "no trace of the fault has stayed");
    else
        QVERIFY2(waitForState(reference.state, state),
                 qPrintable(difference(reference.state, state)));
    QVERIFY2(QTest::qWaitFor([&] { return daemon.descriptors() - before <= reference.descriptors; },
                             deadlineMs),
             "descriptors are left open");
    if (isLasting) {
        daemon.stop();
        // The light of the first start: otherwise the stimulus might not leave the sensor's band.
        Board::set("als/lux", "120");
        begin(stimulus);
        stimulus.trigger();
        QCOMPARE(stimulus.finish(), reference.reply);
        heal(stimulus);
        QVERIFY2(waitForState(reference.state, state),
                 qPrintable(difference(reference.state, state)));
    }
    ++m_survived;
}

WORLD_TEST_MAIN(TestFaultMatrix)
#include "campaign_faultmatrix.moc"
