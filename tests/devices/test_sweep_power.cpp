#include "board.h"
#include "daemontest.h"

#include <QDBusVariant>

/**
 * Invalid calls, with wrong signatures and very long names, of the methods of the power supply, the
 * screen, the ambient light, the LEDs, the storage and the temperatures.
 */
class TestSweepPower : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void wrongSignaturesAreRefused_data();
    void wrongSignaturesAreRefused();
    void endlessNamesAreUnknownNames();
};

namespace
{
using Arguments = QList<QVariant>;

QVariant inVariant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

/** Argument lists that fit no method, of every length that a method has. */
const QList<Arguments> wrongArguments = {
    {0u},
    {inVariant("SD")},
    {QVariantMap()},
    {QStringList("SD")},
    {QByteArray("SD")},
    {"WIFI", true},
    {"SOM", 80u},
    {"SOM", inVariant(80)},
    {80, "SOM"},
    {1000, 1000},
    {1000.0},
    {"WIFI", "ON", "ON"},
    {"SOM", 80, 80},
};
} // namespace

void TestSweepPower::wrongSignaturesAreRefused_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QList<QVariantList>>("alsoWrong");
    const auto addRow = [](const char *suffix, const char *method,
                           const QList<QVariantList> &alsoWrong) {
        QTest::addRow("%s.%s", suffix, method) << suffix << method << alsoWrong;
    };
    const Arguments none;
    const Arguments text = {"SD"};
    const Arguments number = {1000};
    const Arguments texts = {"WIFI", "ON"};
    const Arguments flag = {true};
    const Arguments step = {true, 3};
    addRow("Alimentation", "getBatteryVoltage", {text, number, texts});
    addRow("Backlight", "getBacklight", {text, number, texts, flag, step});
    addRow("Backlight", "setBacklight", {none, text, texts, flag, step});
    addRow("Backlight", "enableBacklight", {none, text, number, texts, step});
    addRow("Backlight", "getBacklightStep", {text, number, texts, flag, step});
    addRow("Backlight", "setBacklightStep", {none, text, number, texts, flag, {3, true}});
    addRow("Brightness", "getBrightness", {text, number, texts, flag, step});
    addRow("LED", "setLEDStatus", {none, text, number});
    addRow("LED", "getLEDStatus", {text, number, texts});
    addRow("LED", "prepareForShutdown", {text, number, texts});
    addRow("Storage", "umount", {none, number, texts});
    addRow("Storage", "isMounted", {none, number, texts});
    addRow("Temperature", "getTemperatures", {text, number, texts});
    addRow("Temperature", "setTemperatureThreshold", {none, text, number, texts});
    addRow("Temperature", "setInterval", {none, text, texts});
    addRow("Temperature", "periodicTemperatureCheck", {text, number, texts});
}

void TestSweepPower::wrongSignaturesAreRefused()
{
    QFETCH(QString, suffix);
    QFETCH(QString, method);
    QFETCH(QList<QVariantList>, alsoWrong);
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    const Remote interface("/KyDeviceMgr", suffix);
    Board::clearJournal();

    for (const Arguments &arguments : wrongArguments + alsoWrong) {
        const QString reply = interface.call(method, arguments);
        QVERIFY2(reply.startsWith("org.freedesktop.DBus.Error.UnknownMethod: "), qPrintable(reply));
    }

    QCOMPARE(Board::journal(), QStringList());
    QCOMPARE(recorder.take(), QStringList());
}

void TestSweepPower::endlessNamesAreUnknownNames()
{
    QVERIFY(daemon.start());
    SignalRecorder recorder("/KyDeviceMgr");
    const QString name(100000, 'W');
    const Remote led("/KyDeviceMgr", "LED");
    const Remote storage("/KyDeviceMgr", "Storage");
    Board::clearJournal();

    QCOMPARE(led.call("setLEDStatus", {name, name}),
             failure("InvalidArguments", "The LED is unknown"));
    QCOMPARE(led.call("setLEDStatus", {"WIFI", name}),
             failure("InvalidArguments", "The status is unknown"));
    QCOMPARE(storage.call("umount", {name}), failure("Write", "Unknowned device"));
    QCOMPARE(storage.call("isMounted", {name}), QStringLiteral("(false)"));
    QCOMPARE(Remote("/KyDeviceMgr", "Temperature").call("setTemperatureThreshold", {name, 10}),
             failure("InvalidArguments", "Unknown device"));

    QCOMPARE(Board::journal(), QStringList());
    QCOMPARE(recorder.take(), QStringList());
}

WORLD_TEST_MAIN(TestSweepPower)
#include "test_sweep_power.moc"
