#include "board.h"
#include "files.h"

#include "kyals.h"
#include "kybacklight.h"
#include "kybatmonitor.h"
#include "kyboardrev.h"
#include "kyeeprom.h"
#include "kyfaccess.h"
#include "kyleds.h"
#include "kypowerman.h"
#include "kysocmanager.h"
#include "kytemperature.h"
#include "leds.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <climits>
#include <clocale>
#include <cstdio>
#include <functional>
#include <linux/netlink.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{
/** Calls one operation; returns the result that the caller sees, in the journal's format. */
using Operation = std::function<QString()>;

QString seen(int status, const QString &out)
{
    return status == 0 ? QStringLiteral("0 ") + out : QString::number(status);
}

QString seen(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString readLux()
{
    float lux = 0;
    const int status = KyAls().readLux(&lux);
    return seen(status, QString::number(double(lux)));
}

QString readInterrupt()
{
    bool raised = false;
    const int status = KyAls().interruptRead(&raised);
    return seen(status, seen(raised));
}

QString readBattery()
{
    cmeter_data data = {};
    const int status = KyBatmonitor().getBatteryInfo(&data);
    return seen(status,
                QStringLiteral("%1 %2 %3").arg(data.flag).arg(data.charge).arg(data.voltage));
}

QString readRevision(e_device device)
{
    unsigned int revision = 0;
    const int status = KyBoardRev().getRevision(device, &revision);
    return seen(status, QString::number(revision));
}

QString readLed(e_leds led)
{
    e_led_state state = LED_OFF;
    const int status = KyLeds().getLedState(led, &state);
    return seen(status, QString::number(int(state)));
}

QString readRegister(unsigned short reg)
{
    unsigned int value = 0;
    const int status = KySocManager().getSoCRegister(reg, &value);
    return seen(status, QString::number(value));
}

QString readTemperature(e_tempdev sensor)
{
    int temperature = 0;
    const int status = KyTemperature().getTemperature(sensor, &temperature);
    return seen(status, QString::number(temperature));
}

QString readEeprom(e_eeprom eeprom, unsigned int offset, unsigned int size)
{
    QByteArray bytes(static_cast<int>(size), '\0');
    char *buffer = bytes.data();
    const int status = KyEeprom().readEeprom(eeprom, &buffer, offset, size);
    return seen(status, QString::fromLatin1(bytes.toHex()));
}

QString writeEeprom(e_eeprom eeprom, QByteArray bytes, unsigned int offset)
{
    return QString::number(KyEeprom().writeEeprom(eeprom, bytes.data(), offset,
                                                  static_cast<unsigned int>(bytes.size())));
}

/** An operation and its journal line. */
struct Row {
    const char *operation;
    const char *arguments;
    Operation call;
    /** Its result on success, or null for an unpredictable number. */
    const char *success;
    const char *failure;
    const char *garbage;
};

QString status(int result)
{
    return QString::number(result);
}

/** Every operation of the three libraries, on a new board with unprotected EEPROMs. */
std::vector<Row> operations()
{
    return {
        {"KyAls.init", "", [] { return status(KyAls().init()); }, "0", "1", "0"},
        {"KyAls.readLux", "", readLux, "0 120", "1", "0 nan"},
        {"KyAls.convLuxInExponentMantissaByte", "25",
         [] { return status(KyAls().convLuxInExponentMantissaByte(25)); }, "57", "0", "90"},
        {"KyAls.setThresholds", "101, 89", [] { return status(KyAls().setThresholds(101, 89)); },
         "0", "1", "0"},
        {"KyAls.setThresholdsTimer", "50", [] { return status(KyAls().setThresholdsTimer(50)); },
         "0", "1", "0"},
        {"KyAls.interruptEnable", "true", [] { return status(KyAls().interruptEnable(true)); }, "0",
         "1", "0"},
        {"KyAls.getinterruptHandler", "", [] { return status(KyAls().getinterruptHandler()); },
         nullptr, "-2", "1000000"},
        {"KyAls.interruptRead", "", readInterrupt, "0 false", "1", "0 true"},
        {"KyBacklight.getBrightness", "", [] { return status(KyBacklight().getBrightness()); },
         "55", "-1", "31337"},
        {"KyBacklight.setBrightness", "70", [] { return status(KyBacklight().setBrightness(70)); },
         "0", "1", "0"},
        {"KyBacklight.enableBacklight", "false",
         [] { return status(KyBacklight().enableBacklight(false)); }, "0", "1", "0"},
        {"KyBatmonitor.update", "true", [] { return status(KyBatmonitor().update(true)); }, "0",
         "1", "0"},
        {"KyBatmonitor.getCmeterType", "", [] { return status(KyBatmonitor().getCmeterType()); },
         "1", "-1", "31337"},
        {"KyBatmonitor.getBatteryInfo", "", readBattery, "0 0 80 7600", "1",
         "0 170 -2147483648 65535"},
        {"KyBatmonitor.prepareForShutdown", "",
         [] { return status(KyBatmonitor().prepareForShutdown()); }, "0", "1", "0"},
        {"KyBoardRev.setBrand", "1", [] { return status(KyBoardRev().setBrand(e_brand(1))); }, "0",
         "1", "0"},
        {"KyBoardRev.setModel", "1", [] { return status(KyBoardRev().setModel(e_model(1))); }, "0",
         "1", "0"},
        {"KyBoardRev.getRevision", "2", [] { return readRevision(DEVICE_FPGA); }, "0 131075", "1",
         "0 4294967295"},
        {"KyBoardRev.setSoMRevision", "3", [] { return status(KyBoardRev().setSoMRevision(3)); },
         "0", "1", "0"},
        {"KyEeprom.readEeprom", "0, 6, 2", [] { return readEeprom(EEPROM_INSTRUMENT, 6, 2); },
         "0 8345", "1", "0 5a5a"},
        {"KyEeprom.writeEeprom", "1, 0aff00, 5, 3",
         [] { return writeEeprom(EEPROM_MESURE, QByteArray("\x0a\xff\x00", 3), 5); }, "0", "1",
         "0"},
        {"KyEeprom.setWriteEnable", "false",
         [] { return status(KyEeprom().setWriteEnable(false)); }, "0", "1", "0"},
        {"KyFaccess.isDeviceInserted", "0",
         [] { return seen(KyFaccess().isDeviceInserted(STORAGE_SD)); }, "false", "false", "true"},
        {"KyFaccess.isMounted", "1", [] { return seen(KyFaccess().isMounted(STORAGE_USB)); },
         "false", "false", "true"},
        {"KyFaccess.unmountDevice", "0",
         [] { return status(KyFaccess().unmountDevice(STORAGE_SD)); }, "0", "1", "0"},
        {"KyLeds.setLedState", "18, 3",
         [] { return status(KyLeds().setLedState(LED_WIFI, LED_ON)); }, "0", "1", "0"},
        {"KyLeds.getLedState", "26", [] { return readLed(LED_SD_STATUS); }, "0 0", "1", "0 2989"},
        {"KyPowerman.wifiPower", "true", [] { return status(KyPowerman().wifiPower(true)); }, "0",
         "1", "0"},
        {"KyPowerman.wifiSoftReset", "", [] { return status(KyPowerman().wifiSoftReset()); }, "0",
         "1", "0"},
        {"KyPowerman.wifiHardReset", "", [] { return status(KyPowerman().wifiHardReset()); }, "0",
         "1", "0"},
        {"KyPowerman.setAckWatchdog", "", [] { return status(KyPowerman().setAckWatchdog()); }, "0",
         "1", "0"},
        {"KySocManager.initSPI", "", [] { return status(KySocManager().initSPI()); }, "0", "1",
         "0"},
        {"KySocManager.getSoCRegister", "107", [] { return readRegister(0x6B); }, "0 1", "1",
         "0 4294967295"},
        {"KyTemperature.getTemperature", "1", [] { return readTemperature(TEMPDEV_ANALOG_CHAIN); },
         "0 38", "1", "0 -2147483648"},
    };
}

/** Returns true for operations that need no board. */
bool needsNoBoard(const Row &row)
{
    return QStringList{"KyAls.convLuxInExponentMantissaByte", "KyAls.getinterruptHandler",
                       "KySocManager.initSPI"}
        .contains(row.operation);
}

/** Runs in a second process of this program, started with "--role ROLE"; uses the board. */
int play(const QString &role)
{
    if (role == QLatin1String("announce")) {
        KyFaccess().isMounted(STORAGE_SD);
    } else if (role == QLatin1String("reset")) {
        for (int index = 0; index < 300; ++index)
            KyPowerman().wifiSoftReset();
    } else {
        for (const Row &row : operations())
            if (!needsNoBoard(row))
                std::printf("%s: %s\n", row.operation, qPrintable(row.call()));
    }
    return 0;
}

/** Listens to the kernel's events in this world. */
class KernelEvents
{
public:
    KernelEvents() : m_socket(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT))
    {
        sockaddr_nl address = {};
        address.nl_family = AF_NETLINK;
        address.nl_groups = 1;
        if (bind(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
            qFatal("cannot listen for kernel events");
    }
    ~KernelEvents() { close(m_socket); }
    Q_DISABLE_COPY(KernelEvents)

    /** The messages since the last call. */
    QList<QByteArray> takeMessages() const
    {
        QList<QByteArray> messages;
        char buffer[4096];
        for (ssize_t size; (size = recv(m_socket, buffer, sizeof buffer, MSG_DONTWAIT)) >= 0;)
            messages << QByteArray(buffer, static_cast<int>(size));
        return messages;
    }

    /** The message headers since the last call that announce that @p name was added or removed. */
    QStringList take(const QString &name) const
    {
        QStringList headers;
        for (const QByteArray &message : takeMessages()) {
            const QString header = QString::fromLatin1(message.constData());
            if (header.contains(name) &&
                (header.startsWith("add@") || header.startsWith("remove@")))
                headers << header;
        }
        return headers;
    }

private:
    const int m_socket;
};
} // namespace

Q_DECLARE_METATYPE(Operation)

/** The hardware libraries on the simulated board. */
class TestBoard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aNewBoardHasSensibleValues_data();
    void aNewBoardHasSensibleValues();
    void aMissingBoardIsCreated();
    void aMissingValueIsCreated();
    void aMissingRegisterStaysMissing();
    void aBoardThatCannotBeCreatedFailsEveryCall();
    void aReadOnlyBoardIsRead();

    void everyOperationIsInTheJournal_data();
    void everyOperationIsInTheJournal();
    void everyOperationCanFail_data();
    void everyOperationCanFail();
    void everyOperationCanReturnGarbage_data();
    void everyOperationCanReturnGarbage();
    void garbageChangesNothingOnTheBoard();
    void nullPointersAreFailures();

    void settersWriteTheirFiles_data();
    void settersWriteTheirFiles();
    void gettersReadTheirFiles_data();
    void gettersReadTheirFiles();
    void callsForAbsentPartsOrValuesFail_data();
    void callsForAbsentPartsOrValuesFail();
    void nonsenseInAFileIsAFailure_data();
    void nonsenseInAFileIsAFailure();
    void anythingButARegularFileIsAFailure_data();
    void anythingButARegularFileIsAFailure();
    void aCountThatIsNonsenseIsNotIncremented();
    void numbersDoNotDependOnTheLocale();

    void theChargerShowsInTheStatusRegister();
    void aProtectedEepromIsNotWritten();
    void anUnprotectedEepromIsWrittenWhereAsked();
    void anEepromIsNotAccessedBeyondItsEnd();
    void aShortEepromImageIsReadAsFarAsItGoes();
    void anOversizedEepromImageIsAFailure();

    void aNumberOfCallsFails();
    void aFaultAffectsOnlyItsOperation();
    void aDelayedCallDoesItsWork();
    void aDelayedFailureDoesNothing();
    void aFaultMayComeLater();
    void aHeldCallWaitsForItsRelease();

    void aMissingJournalIsNotCreated();
    void theJournalIsInOrderOverLibrariesAndProcesses();

    void concurrentWritersCountCorrectly();
    void concurrentCallersCountFaultsCorrectly();
    void noReaderSeesAPartialValue();

    void theKernelAnnouncesAnInsertionOnce_data();
    void theKernelAnnouncesAnInsertionOnce();
    void onlyInsertedDevicesCanBeMountedOrRemoved();
    void aKernelEventCanHaveAnyContent();

private:
    static void addOperations();
};

void TestBoard::init()
{
    Board::reset();
}

void TestBoard::addOperations()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<Operation>("call");
    QTest::addColumn<QString>("success");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QString>("garbage");

    for (const Row &row : operations())
        QTest::newRow(row.operation)
            << QString(row.operation) << QString(row.arguments) << row.call << QString(row.success)
            << QString(row.failure) << QString(row.garbage);
}

void TestBoard::cleanup()
{
    QVERIFY(std::setlocale(LC_ALL, "C.UTF-8"));
}

void TestBoard::aNewBoardHasSensibleValues_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("value");

    const QList<QPair<QString, QString>> values = {
        {"als/lux", "120"},
        {"als/threshold_high", "255"},
        {"als/threshold_low", "0"},
        {"als/interrupt_enabled", "0"},
        {"als/interrupt", "0"},
        {"backlight/brightness", "55"},
        {"backlight/enabled", "1"},
        {"battery/type", "1"},
        {"battery/charge", "80"},
        {"battery/charger_told", "0"},
        {"battery/shutdowns_prepared", "0"},
        {"charger/present", "0"},
        {"powerman/wifi_soft_resets", "0"},
        {"powerman/wifi_hard_resets", "0"},
        {"powerman/watchdog_acknowledgements", "0"},
        {"watchdog/feeds", "0"},
        {"soc/0x6b", "1"},
        {"temperature/SOM", "42"},
        {"temperature/ANALOG_CHAIN", "38"},
        {"storage/SD/inserted", "0"},
        {"storage/SD/mounted", "0"},
        {"storage/USB/inserted", "0"},
        {"storage/USB/mounted", "0"},
        {"eeprom/write_enabled", "0"},
        {"revision/brand", QString()},
        {"revision/model", QString()},
        {"revision/som_told", QString()},
    };
    for (const auto &value : values)
        QTest::newRow(qPrintable(value.first)) << value.first << value.second;
    for (const NamedValue &led : ledNames())
        QTest::newRow(qPrintable(led.name)) << "leds/" + led.name << QStringLiteral("OFF");
}

void TestBoard::aNewBoardHasSensibleValues()
{
    QFETCH(QString, path);
    QFETCH(QString, value);

    QCOMPARE(Board::get(path), value);
}

void TestBoard::aMissingBoardIsCreated()
{
    const QStringList before = snapshot(Board::pathOf(QString()));
    QVERIFY(QDir(Board::pathOf(QString())).removeRecursively());

    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("0 42"));

    Board::setBytes("journal", QByteArray());
    QCOMPARE(snapshot(Board::pathOf(QString())), before);
}

void TestBoard::aMissingValueIsCreated()
{
    Board::remove("temperature/SOM");
    Board::set("temperature/ANALOG_CHAIN", "50");
    QVERIFY(QDir(Board::pathOf("leds")).removeRecursively());

    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("0 42"));
    QCOMPARE(readLed(LED_WPS), QStringLiteral("0 0"));

    QCOMPARE(Board::get("temperature/SOM"), QStringLiteral("42"));
    QCOMPARE(Board::get("temperature/ANALOG_CHAIN"), QStringLiteral("50"));
    QCOMPARE(Board::get("leds/BT"), QStringLiteral("OFF"));
}

void TestBoard::aMissingRegisterStaysMissing()
{
    Board::remove("soc/0x68");

    QCOMPARE(readRegister(0x68), QStringLiteral("1"));

    QVERIFY(!QFile::exists(Board::pathOf("soc/0x68")));
}

void TestBoard::aBoardThatCannotBeCreatedFailsEveryCall()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("STRANDEL_BOARD", "/dev/null/board");
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {"--role", "everything"});
    QVERIFY(process.waitForFinished());

    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QString failures;
    for (const Row &row : operations())
        if (!needsNoBoard(row))
            failures += QStringLiteral("%1: %2\n").arg(row.operation, row.failure);
    QCOMPARE(QString::fromLatin1(process.readAllStandardOutput()), failures);
}

void TestBoard::aReadOnlyBoardIsRead()
{
    const QByteArray directory = Board::pathOf(QString()).toLocal8Bit();
    QCOMPARE(mount(directory, directory, nullptr, MS_BIND, nullptr), 0);
    QCOMPARE(mount(nullptr, directory, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);

    const QString read = readTemperature(TEMPDEV_SOM);
    const int write = KyPowerman().wifiPower(true);
    const int count = KyPowerman().wifiHardReset();

    QCOMPARE(umount(directory), 0);
    QCOMPARE(read, QStringLiteral("0 42"));
    QCOMPARE(write, 1);
    QCOMPARE(count, 1);
    QCOMPARE(Board::get("powerman/wifi_supply"), QStringLiteral("0"));
}

void TestBoard::everyOperationIsInTheJournal_data()
{
    addOperations();
}

void TestBoard::everyOperationIsInTheJournal()
{
    QFETCH(QString, operation);
    QFETCH(QString, arguments);
    QFETCH(Operation, call);
    QFETCH(QString, success);

    Board::set("eeprom/write_enabled", "1");

    const QString result = call();

    if (!success.isNull())
        QCOMPARE(result, success);
    QCOMPARE(Board::journal(),
             QStringList{QStringLiteral("%1(%2) = %3").arg(operation, arguments, result)});
}

void TestBoard::everyOperationCanFail_data()
{
    addOperations();
}

void TestBoard::everyOperationCanFail()
{
    QFETCH(QString, operation);
    QFETCH(QString, arguments);
    QFETCH(Operation, call);
    QFETCH(QString, success);
    QFETCH(QString, failure);
    Board::set("eeprom/write_enabled", "1");
    Board::fault(operation, "always");
    const QStringList before = snapshot(Board::pathOf(QString()));
    const QString line = QStringLiteral("%1(%2) = %3").arg(operation, arguments, failure);

    QCOMPARE(call(), failure);
    QCOMPARE(call(), failure);

    QCOMPARE(Board::journal(), (QStringList{line, line}));
    Board::clearJournal();
    QCOMPARE(snapshot(Board::pathOf(QString())), before);
    Board::clearFaults();
    const QString result = call();
    if (!success.isNull())
        QCOMPARE(result, success);
}

void TestBoard::everyOperationCanReturnGarbage_data()
{
    addOperations();
}

void TestBoard::everyOperationCanReturnGarbage()
{
    QFETCH(QString, operation);
    QFETCH(QString, arguments);
    QFETCH(Operation, call);
    QFETCH(QString, garbage);
    Board::fault(operation, "garbage");

    QCOMPARE(call(), garbage);
    QCOMPARE(Board::journal(),
             QStringList{QStringLiteral("%1(%2) = %3").arg(operation, arguments, garbage)});
}

void TestBoard::garbageChangesNothingOnTheBoard()
{
    Board::fault("KyLeds.setLedState", "garbage");

    QCOMPARE(KyLeds().setLedState(LED_BT, LED_ON), 0);

    QCOMPARE(Board::get("leds/BT"), QStringLiteral("OFF"));
}

void TestBoard::nullPointersAreFailures()
{
    char *noBuffer = nullptr;
    QVERIFY(KyAls().readLux(nullptr) != 0);
    QVERIFY(KyAls().interruptRead(nullptr) != 0);
    QVERIFY(KyBatmonitor().getBatteryInfo(nullptr) != 0);
    QVERIFY(KyBoardRev().getRevision(DEVICE_SOM, nullptr) != 0);
    QVERIFY(KyEeprom().readEeprom(EEPROM_INSTRUMENT, nullptr, 0, 2) != 0);
    QVERIFY(KyEeprom().readEeprom(EEPROM_INSTRUMENT, &noBuffer, 0, 2) != 0);
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);
    QVERIFY(KyEeprom().writeEeprom(EEPROM_INSTRUMENT, nullptr, 0, 2) != 0);
    QVERIFY(KyLeds().getLedState(LED_BT, nullptr) != 0);
    QVERIFY(KySocManager().getSoCRegister(0x68, nullptr) != 0);
    QVERIFY(KyTemperature().getTemperature(TEMPDEV_SOM, nullptr) != 0);
}

void TestBoard::settersWriteTheirFiles_data()
{
    QTest::addColumn<Operation>("call");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("value");

    const auto add = [](const char *path, const char *value, const Operation &call) {
        QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(path, value)))
            << call << QString::fromLatin1(path) << QString::fromLatin1(value);
    };
    add("als/threshold_high", "101", [] { return status(KyAls().setThresholds(101, 89)); });
    add("als/threshold_low", "89", [] { return status(KyAls().setThresholds(101, 89)); });
    add("als/timer", "44", [] { return status(KyAls().setThresholdsTimer(44)); });
    add("als/interrupt_enabled", "1", [] { return status(KyAls().interruptEnable(true)); });
    add("als/interrupt_enabled", "0", [] { return status(KyAls().interruptEnable(false)); });
    add("backlight/brightness", "0", [] { return status(KyBacklight().setBrightness(0)); });
    add("backlight/brightness", "100", [] { return status(KyBacklight().setBrightness(100)); });
    add("backlight/enabled", "0", [] { return status(KyBacklight().enableBacklight(false)); });
    add("backlight/enabled", "1", [] { return status(KyBacklight().enableBacklight(true)); });
    add("battery/charger_told", "1", [] { return status(KyBatmonitor().update(true)); });
    add("battery/shutdowns_prepared", "1",
        [] { return status(KyBatmonitor().prepareForShutdown()); });
    add("eeprom/write_enabled", "1", [] { return status(KyEeprom().setWriteEnable(true)); });
    add("powerman/wifi_supply", "1", [] { return status(KyPowerman().wifiPower(true)); });
    add("powerman/wifi_soft_resets", "1", [] { return status(KyPowerman().wifiSoftReset()); });
    add("powerman/wifi_hard_resets", "1", [] { return status(KyPowerman().wifiHardReset()); });
    add("powerman/watchdog_acknowledgements", "1",
        [] { return status(KyPowerman().setAckWatchdog()); });
    add("revision/brand", "7", [] { return status(KyBoardRev().setBrand(e_brand(7))); });
    add("revision/model", "3", [] { return status(KyBoardRev().setModel(e_model(3))); });
    add("revision/som_told", "9", [] { return status(KyBoardRev().setSoMRevision(9)); });
    add("leds/WIFI", "BLINK_1HZ",
        [] { return status(KyLeds().setLedState(LED_WIFI, LED_BLINK_1HZ)); });
    add("leds/BAT_RS1", "BLINK_3HZ",
        [] { return status(KyLeds().setLedState(LED_BAT_RS1, LED_BLINK_3HZ)); });
    add("leds/SD_STATUS", "ON", [] { return status(KyLeds().setLedState(LED_SD_STATUS, LED_ON)); });
    add("leds/BT", "OFF", [] { return status(KyLeds().setLedState(LED_BT, LED_OFF)); });
    add("leds/POWER_Y", "UNKNOWN",
        [] { return status(KyLeds().setLedState(LED_POWER_Y, LED_UNKNOWN)); });
    add("storage/SD/mounted", "0", [] {
        Board::set("storage/SD/mounted", "1");
        return status(KyFaccess().unmountDevice(STORAGE_SD));
    });
    add("storage/USB/mounted", "0", [] {
        Board::set("storage/USB/mounted", "1");
        return status(KyFaccess().unmountDevice(STORAGE_USB));
    });
}

void TestBoard::settersWriteTheirFiles()
{
    QFETCH(Operation, call);
    QFETCH(QString, path);
    QFETCH(QString, value);
    const QStringList before = snapshot(Board::pathOf(QString()));

    QCOMPARE(call(), QStringLiteral("0"));

    QCOMPARE(Board::get(path), value);
    QVERIFY(snapshot(Board::pathOf(QString())).size() <= before.size() + 1);
}

void TestBoard::gettersReadTheirFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("text");
    QTest::addColumn<Operation>("call");
    QTest::addColumn<QString>("result");

    const auto add = [](const char *path, const char *text, const Operation &call,
                        const char *result) {
        QTest::newRow(qPrintable(QStringLiteral("%1 %2").arg(path, text)))
            << QString::fromLatin1(path) << QString::fromLatin1(text) << call
            << QString::fromLatin1(result);
    };
    const Operation brightness = [] { return QString::number(KyBacklight().getBrightness()); };
    const Operation type = [] { return QString::number(KyBatmonitor().getCmeterType()); };
    add("als/lux", "0", readLux, "0 0");
    add("als/lux", "12.5", readLux, "0 12.5");
    add("als/lux", "  64000  ", readLux, "0 64000");
    add("als/interrupt", "1", readInterrupt, "0 true");
    add("backlight/brightness", "0", brightness, "0");
    add("backlight/brightness", "100", brightness, "100");
    add("battery/type", "2", type, "2");
    add("battery/charge", "-35", readBattery, "0 0 -35 7600");
    add("battery/flag", "255", readBattery, "0 255 80 7600");
    add("battery/voltage", "65535", readBattery, "0 0 80 65535");
    add(
        "leds/WPS", "BLINK_3HZ", [] { return readLed(LED_WPS); }, "0 2");
    add(
        "leds/POWER_G", "UNKNOWN", [] { return readLed(LED_POWER_G); }, "0 4");
    add(
        "revision/SOM", "4294967295", [] { return readRevision(DEVICE_SOM); }, "0 4294967295");
    add(
        "revision/HPS", "8", [] { return readRevision(DEVICE_HPS); }, "0 8");
    add(
        "revision/FPGA", "0x00020003", [] { return readRevision(DEVICE_FPGA); }, "0 131075");
    add(
        "revision/MESURE_CARD", "5", [] { return readRevision(DEVICE_MESURE_CARD); }, "0 5");
    add(
        "soc/0x68", "0xffffffff", [] { return readRegister(0x68); }, "0 4294967295");
    add(
        "soc/0x6b", "0", [] { return readRegister(0x6B); }, "0 0");
    add(
        "soc/0x1", "17", [] { return readRegister(1); }, "0 17");
    add(
        "temperature/SOM", "-40", [] { return readTemperature(TEMPDEV_SOM); }, "0 -40");
    add(
        "temperature/ANALOG_CHAIN", "71", [] { return readTemperature(TEMPDEV_ANALOG_CHAIN); },
        "0 71");
    for (const e_storagedevice number : {STORAGE_SD, STORAGE_USB}) {
        const QString directory = number == STORAGE_SD ? "storage/SD/" : "storage/USB/";
        const Operation isInserted = [=] { return seen(KyFaccess().isDeviceInserted(number)); };
        const Operation isMounted = [=] { return seen(KyFaccess().isMounted(number)); };
        add(qPrintable(directory + "inserted"), "1", isInserted, "true");
        add(qPrintable(directory + "inserted"), "0", isInserted, "false");
        add(qPrintable(directory + "mounted"), "1", isMounted, "true");
        add(qPrintable(directory + "mounted"), "0", isMounted, "false");
    }
}

void TestBoard::gettersReadTheirFiles()
{
    QFETCH(QString, path);
    QFETCH(QString, text);
    QFETCH(Operation, call);
    QFETCH(QString, result);
    Board::set(path, text);

    QCOMPARE(call(), result);
}

void TestBoard::callsForAbsentPartsOrValuesFail_data()
{
    QTest::addColumn<Operation>("call");

    QTest::newRow("brightness over 100")
        << Operation([] { return status(KyBacklight().setBrightness(101)); });
    QTest::newRow("LED between two LEDs")
        << Operation([] { return status(KyLeds().setLedState(e_leds(1), LED_ON)); });
    QTest::newRow("LED after the last")
        << Operation([] { return readLed(e_leds(ledNames().last().value + 2)); });
    QTest::newRow("LED state") << Operation(
        [] { return status(KyLeds().setLedState(LED_BT, e_led_state(5))); });
    QTest::newRow("register") << Operation([] { return readRegister(0x601); });
    QTest::newRow("temperature") << Operation([] { return readTemperature(e_tempdev(2)); });
    QTest::newRow("revision") << Operation([] { return readRevision(e_device(4)); });
    QTest::newRow("brand") << Operation([] { return status(KyBoardRev().setBrand(e_brand(256))); });
    QTest::newRow("model") << Operation([] { return status(KyBoardRev().setModel(e_model(4))); });
    QTest::newRow("EEPROM") << Operation([] { return readEeprom(e_eeprom(2), 0, 2); });
    QTest::newRow("storage device")
        << Operation([] { return status(KyFaccess().unmountDevice(e_storagedevice(2))); });
}

void TestBoard::callsForAbsentPartsOrValuesFail()
{
    QFETCH(Operation, call);
    const QStringList before = snapshot(Board::pathOf(QString()));

    QCOMPARE(call(), QStringLiteral("1"));

    Board::clearJournal();
    QCOMPARE(snapshot(Board::pathOf(QString())), before);
}

void TestBoard::nonsenseInAFileIsAFailure_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("beyond");
    QTest::addColumn<Operation>("call");
    QTest::addColumn<QString>("failure");

    const Operation brightness = [] { return QString::number(KyBacklight().getBrightness()); };
    const Operation type = [] { return QString::number(KyBatmonitor().getCmeterType()); };
    const Operation isInserted = [] { return seen(KyFaccess().isDeviceInserted(STORAGE_SD)); };
    const Operation isMounted = [] { return seen(KyFaccess().isMounted(STORAGE_USB)); };
    const Operation status = [] { return readRegister(0x600); };
    const auto add = [](const char *path, const char *beyond, const Operation &call,
                        const char *failure) {
        QTest::newRow(path) << QString::fromLatin1(path) << QString::fromLatin1(beyond) << call
                            << QString::fromLatin1(failure);
    };
    add("als/lux", "-1", readLux, "1");
    add("als/interrupt", "2", readInterrupt, "1");
    add("backlight/brightness", "101", brightness, "-1");
    add("battery/type", "-1", type, "-1");
    add("battery/flag", "256", readBattery, "1");
    add("battery/charge", "2147483648", readBattery, "1");
    add("battery/voltage", "65536", readBattery, "1");
    add("charger/present", "2", status, "1");
    add(
        "leds/BT", "on", [] { return readLed(LED_BT); }, "1");
    add(
        "revision/HPS", "-1", [] { return readRevision(DEVICE_HPS); }, "1");
    add("soc/0x600", "0x100000000", status, "1");
    add("storage/SD/inserted", "2", isInserted, "false");
    add("storage/USB/mounted", "-1", isMounted, "false");
    add(
        "temperature/SOM", "2147483648", [] { return readTemperature(TEMPDEV_SOM); }, "1");
}

void TestBoard::nonsenseInAFileIsAFailure()
{
    QFETCH(QString, path);
    QFETCH(QString, beyond);
    QFETCH(Operation, call);
    QFETCH(QString, failure);

    for (const QByteArray &text :
         {beyond.toLatin1(), QByteArray(), QByteArray("\n"), QByteArray("x"), QByteArray("nan"),
          QByteArray("0x"), QByteArray("1,5"), QByteArray("1 2"), QByteArray("0\0000", 3),
          QByteArray("99999999999999999999"), QByteArray("1e999"), QByteArray("\xff\xfe"),
          QByteArray(1000000, '0')}) {
        Board::setBytes(path, text);
        QVERIFY2(call() == failure, text.left(20));
    }
}

void TestBoard::anythingButARegularFileIsAFailure_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<Operation>("call");

    QTest::newRow("value") << "temperature/SOM"
                           << Operation([] { return readTemperature(TEMPDEV_SOM); });
    QTest::newRow("EEPROM") << "eeprom/measure"
                            << Operation([] { return readEeprom(EEPROM_MESURE, 0, 2); });
}

void TestBoard::anythingButARegularFileIsAFailure()
{
    QFETCH(QString, path);
    QFETCH(Operation, call);
    const QByteArray file = QFile::encodeName(Board::pathOf(path));

    QVERIFY(unlink(file) == 0 && mkdir(file, 0755) == 0);
    QCOMPARE(call(), QStringLiteral("1"));
    QVERIFY(rmdir(file) == 0 && mkfifo(file, 0644) == 0);
    QCOMPARE(call(), QStringLiteral("1"));
    QVERIFY(unlink(file) == 0 && symlink(file, file) == 0);
    QCOMPARE(call(), QStringLiteral("1"));
    QVERIFY(unlink(file) == 0 && symlink("/nowhere", file) == 0);
    QCOMPARE(call(), QStringLiteral("1"));
    QVERIFY(unlink(file) == 0 && symlink("/dev/zero", file) == 0);
    QCOMPARE(call(), QStringLiteral("1"));
}

void TestBoard::anOversizedEepromImageIsAFailure()
{
    Board::setBytes("eeprom/measure", QByteArray(4097, 'x'));

    QCOMPARE(readEeprom(EEPROM_MESURE, 0, 2), QStringLiteral("1"));
}

void TestBoard::aCountThatIsNonsenseIsNotIncremented()
{
    Board::set("powerman/wifi_hard_resets", "many");

    QCOMPARE(KyPowerman().wifiHardReset(), 1);

    QCOMPARE(Board::get("powerman/wifi_hard_resets"), QStringLiteral("many"));
}

void TestBoard::numbersDoNotDependOnTheLocale()
{
    // Set a locale with a decimal comma, if the test's world has one.
    for (const char *locale : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"})
        if (std::setlocale(LC_ALL, locale))
            break;
    Board::set("als/lux", "0.5");

    QCOMPARE(readLux(), QStringLiteral("0 0.5"));

    QCOMPARE(Board::journal(), QStringList{"KyAls.readLux() = 0 0.5"});
}

void TestBoard::theChargerShowsInTheStatusRegister()
{
    Board::set("soc/0x600", "0x80000005");
    QCOMPARE(readRegister(0x600), QStringLiteral("0 2147483653"));

    Board::set("charger/present", "1");
    QCOMPARE(readRegister(0x600), QString("0 %1").arg(0xC0000005U));

    Board::set("soc/0x600", "0xffffffff");
    Board::set("charger/present", "0");
    QCOMPARE(readRegister(0x600), QString("0 %1").arg(0xBFFFFFFFU));
}

void TestBoard::aProtectedEepromIsNotWritten()
{
    const QByteArray before = Board::bytes("eeprom/instrument");

    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "ab", 0), QStringLiteral("1"));
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);
    QCOMPARE(KyEeprom().setWriteEnable(false), 0);
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "ab", 0), QStringLiteral("1"));
    Board::set("eeprom/write_enabled", "yes");
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "ab", 0), QStringLiteral("1"));

    QCOMPARE(Board::bytes("eeprom/instrument"), before);
}

void TestBoard::anUnprotectedEepromIsWrittenWhereAsked()
{
    QByteArray instrument = Board::bytes("eeprom/instrument");
    QByteArray measure = Board::bytes("eeprom/measure");
    QCOMPARE(instrument.size(), 128);
    QCOMPARE(measure.size(), 4096);
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);

    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, QByteArray("a\0b", 3), 2), QStringLiteral("0"));
    QCOMPARE(writeEeprom(EEPROM_MESURE, "xyz", 4093), QStringLiteral("0"));

    QCOMPARE(Board::bytes("eeprom/instrument"), instrument.replace(2, 3, QByteArray("a\0b", 3)));
    QCOMPARE(Board::bytes("eeprom/measure"), measure.replace(4093, 3, "xyz"));
    QCOMPARE(readEeprom(EEPROM_INSTRUMENT, 2, 3), QStringLiteral("0 610062"));
    QCOMPARE(readEeprom(EEPROM_MESURE, 4094, 2), QStringLiteral("0 797a"));
}

void TestBoard::anEepromIsNotAccessedBeyondItsEnd()
{
    const QByteArray before = Board::bytes("eeprom/instrument");
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);

    QCOMPARE(readEeprom(EEPROM_INSTRUMENT, 0, 129), QStringLiteral("1"));
    QCOMPARE(readEeprom(EEPROM_INSTRUMENT, UINT_MAX, 2), QStringLiteral("1"));
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, QByteArray(129, 'x'), 0), QStringLiteral("1"));
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "xy", 127), QStringLiteral("1"));
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "xy", UINT_MAX), QStringLiteral("1"));
    QCOMPARE(writeEeprom(EEPROM_MESURE, QByteArray(400000, 'x'), 0), QStringLiteral("1"));

    QCOMPARE(Board::bytes("eeprom/instrument"), before);
    QCOMPARE(Board::bytes("eeprom/measure").size(), 4096);
}

void TestBoard::aShortEepromImageIsReadAsFarAsItGoes()
{
    Board::setBytes("eeprom/instrument", "abc");
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);

    QCOMPARE(readEeprom(EEPROM_INSTRUMENT, 0, 3), QStringLiteral("0 616263"));
    QCOMPARE(readEeprom(EEPROM_INSTRUMENT, 0, 4), QStringLiteral("1"));
    QCOMPARE(writeEeprom(EEPROM_INSTRUMENT, "f", 5), QStringLiteral("0"));
    QCOMPARE(Board::bytes("eeprom/instrument"), QByteArray("abc\xff\xff"
                                                           "f"));
}

void TestBoard::aNumberOfCallsFails()
{
    Board::fault("KyTemperature.getTemperature", "2");

    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("1"));
    QCOMPARE(Board::get("faults/KyTemperature.getTemperature"), QStringLiteral("1"));
    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("1"));
    QVERIFY(!QFile::exists(Board::pathOf("faults/KyTemperature.getTemperature")));
    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("0 42"));
    Board::fault("KyTemperature.getTemperature", "0");
    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("0 42"));
    QVERIFY(!QFile::exists(Board::pathOf("faults/KyTemperature.getTemperature")));
}

void TestBoard::aFaultAffectsOnlyItsOperation()
{
    Board::fault("KyLeds.setLedState", "always");

    QCOMPARE(readLed(LED_BT), QStringLiteral("0 0"));
    QCOMPARE(KyPowerman().wifiPower(true), 0);
    QCOMPARE(KyLeds().setLedState(LED_BT, LED_ON), 1);
}

void TestBoard::aDelayedCallDoesItsWork()
{
    Board::fault("KyPowerman.wifiPower", "delay 50");
    QElapsedTimer timer;
    timer.start();

    QCOMPARE(KyPowerman().wifiPower(true), 0);

    QVERIFY(timer.elapsed() >= 50);
    QCOMPARE(Board::get("powerman/wifi_supply"), QStringLiteral("1"));
    QCOMPARE(Board::get("faults/KyPowerman.wifiPower"), QStringLiteral("delay 50"));
}

void TestBoard::aDelayedFailureDoesNothing()
{
    Board::fault("KyPowerman.wifiPower", "1 delay 50");
    QElapsedTimer timer;
    timer.start();

    QCOMPARE(KyPowerman().wifiPower(true), 1);

    QVERIFY(timer.elapsed() >= 50);
    QCOMPARE(Board::get("powerman/wifi_supply"), QStringLiteral("0"));
}

void TestBoard::aFaultMayComeLater()
{
    Board::fault("KyTemperature.getTemperature", "1 after 2");

    QStringList readings;
    for (int call = 0; call < 4; ++call)
        readings << readTemperature(TEMPDEV_SOM);

    QCOMPARE(readings, (QStringList{"0 42", "0 42", "1", "0 42"}));
    QVERIFY(!QFile::exists(Board::pathOf("faults/KyTemperature.getTemperature")));
}

void TestBoard::aHeldCallWaitsForItsRelease()
{
    Board::fault("KyPowerman.wifiPower", "hold");
    int status = -1;
    std::thread caller([&status] { status = KyPowerman().wifiPower(true); });

    const bool isHeld = Board::waitFor("held", "KyPowerman.wifiPower");
    const QStringList journal = Board::journal();
    Board::clearFaults();
    caller.join();

    QVERIFY(isHeld);
    QCOMPARE(journal, QStringList());
    QCOMPARE(status, 0);
    QCOMPARE(Board::journal(), QStringList{"KyPowerman.wifiPower(true) = 0"});
    QCOMPARE(Board::get("powerman/wifi_supply"), QStringLiteral("1"));
    QCOMPARE(Board::get("held"), QString());
}

void TestBoard::aMissingJournalIsNotCreated()
{
    Board::remove("journal");

    QCOMPARE(readTemperature(TEMPDEV_SOM), QStringLiteral("0 42"));

    QVERIFY(!QFile::exists(Board::pathOf("journal")));
}

void TestBoard::theJournalIsInOrderOverLibrariesAndProcesses()
{
    QCOMPARE(KyLeds().setLedState(LED_WIFI, LED_ON), 0);
    QCOMPARE(readRegister(104), QStringLiteral("0 0"));
    QCOMPARE(QProcess::execute(QCoreApplication::applicationFilePath(), {"--role", "announce"}), 0);
    QCOMPARE(KyLeds().setLedState(LED_WIFI, LED_OFF), 0);

    QCOMPARE(Board::journal(), (QStringList{
                                   "KyLeds.setLedState(18, 3) = 0",
                                   "KySocManager.getSoCRegister(104) = 0 0",
                                   "KyFaccess.isMounted(0) = false",
                                   "KyLeds.setLedState(18, 0) = 0",
                               }));
    // Reading register 104 feeds the watchdog.
    QCOMPARE(Board::get("watchdog/feeds"), QStringLiteral("1"));
    QList<QByteArray> lines = Board::bytes("journal").split('\n');
    QCOMPARE(lines.takeLast(), QByteArray());
    double last = 0;
    for (const QByteArray &line : lines) {
        const QByteArray time = line.left(line.indexOf(' '));
        QVERIFY2(QRegularExpression("^[0-9]+\\.[0-9]{6}$").match(time).hasMatch(), time);
        QVERIFY(time.toDouble() >= last);
        last = time.toDouble();
    }
}

void TestBoard::concurrentWritersCountCorrectly()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"--role", "reset"});
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread)
        threads.emplace_back([] { play("reset"); });
    for (std::thread &thread : threads)
        thread.join();
    QVERIFY(process.waitForFinished());

    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(Board::get("powerman/wifi_soft_resets"), QStringLiteral("1200"));
    QCOMPARE(Board::journal().count("KyPowerman.wifiSoftReset() = 0"), 1200);
}

void TestBoard::concurrentCallersCountFaultsCorrectly()
{
    Board::fault("KyTemperature.getTemperature", "100");
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&failures] {
            for (int call = 0; call < 50; ++call)
                failures += readTemperature(TEMPDEV_SOM) == QLatin1String("1");
        });
    for (std::thread &thread : threads)
        thread.join();

    QCOMPARE(failures.load(), 100);
    QVERIFY(!QFile::exists(Board::pathOf("faults/KyTemperature.getTemperature")));
}

void TestBoard::noReaderSeesAPartialValue()
{
    const QByteArray zeros(1196, '\0');
    const QByteArray ones(1196, '\x01');
    Board::setBytes("eeprom/measure", zeros);
    QCOMPARE(KyEeprom().setWriteEnable(true), 0);
    std::atomic<bool> isWriting{true};
    std::thread writer([&] {
        for (int index = 0; index < 300; ++index) {
            KyLeds().setLedState(LED_BT, index % 2 ? LED_OFF : LED_BLINK_3HZ);
            writeEeprom(EEPROM_MESURE, index % 2 ? zeros : ones, 0);
        }
        isWriting = false;
    });
    const QStringList images = {"0 " + zeros.toHex(), "0 " + ones.toHex()};
    QStringList torn;
    while (isWriting) {
        const QString led = readLed(LED_BT);
        const QString image = readEeprom(EEPROM_MESURE, 0, 1196);
        if (!QStringList{"0 0", "0 2"}.contains(led))
            torn << led;
        if (!images.contains(image))
            torn << image;
    }
    writer.join();

    QCOMPARE(torn, QStringList());
}

void TestBoard::theKernelAnnouncesAnInsertionOnce_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("partition");

    QTest::newRow("SD card") << "SD"
                             << "mmcblk0p1";
    QTest::newRow("USB key") << "USB"
                             << "sda1";
}

void TestBoard::theKernelAnnouncesAnInsertionOnce()
{
    QFETCH(QString, device);
    QFETCH(QString, partition);
    const KernelEvents events;
    const QString directory = QStringLiteral("storage/%1/").arg(device);

    QVERIFY(Board::storage("insert", device));
    QCOMPARE(events.take(partition), QStringList{"add@/devices/virtual/net/" + partition});
    QCOMPARE(Board::get(directory + "inserted"), QStringLiteral("1"));
    QCOMPARE(Board::get(directory + "mounted"), QStringLiteral("0"));

    QVERIFY(Board::storage("mount", device));
    QCOMPARE(events.take(partition), QStringList());
    QCOMPARE(Board::get(directory + "mounted"), QStringLiteral("1"));

    QVERIFY(Board::storage("remove", device));
    QCOMPARE(events.take(partition), QStringList{"remove@/devices/virtual/net/" + partition});
    QCOMPARE(Board::get(directory + "inserted"), QStringLiteral("0"));
    QCOMPARE(Board::get(directory + "mounted"), QStringLiteral("0"));
}

void TestBoard::onlyInsertedDevicesCanBeMountedOrRemoved()
{
    const KernelEvents events;
    QVERIFY(!Board::storage("mount", "SD"));
    QVERIFY(!Board::storage("remove", "SD"));
    QVERIFY(!Board::storage("insert", "sd"));
    QVERIFY(!Board::storage("format", "SD"));
    QVERIFY(Board::storage("insert", "SD"));
    events.take(QString());

    QVERIFY(!Board::storage("insert", "SD"));

    QCOMPARE(events.take(QString()), QStringList());
    QCOMPARE(Board::get("storage/SD/mounted"), QStringLiteral("0"));
    Board::reset();
    QCOMPARE(events.take("mmcblk0p1"), QStringList{"remove@/devices/virtual/net/mmcblk0p1"});
}

void TestBoard::aKernelEventCanHaveAnyContent()
{
    const KernelEvents events;
    const QByteArray odd("add@\0\xff no end", 13);

    QVERIFY(Board::sendKernelEvent(odd, 3));

    QCOMPARE(events.takeMessages(), (QList<QByteArray>{odd, odd, odd}));
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--role"))
        return play(arguments.value(2));
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test writes to /run and makes network links: run it in a private world");
    TestBoard test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_board.moc"
