#include "board.h"
#include "boardmanager.h"
#include "connmanstandin.h"
#include "daemontest.h"
#include "deadline.h"
#include "ethernettest.h"
#include "hands.h"
#include "look.h"
#include "panelwidget.h"
#include "panelwindow.h"
#include "trafficlog.h"

#include <QApplication>
#include <QComboBox>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextBlock>

#include <csignal>
#include <memory>

/**
 * The front panel with the running daemon: clicks reach the daemon, and its effects are visible.
 */
class TestPanel : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void anLedLightsUpWhereItIsDrawn();
    void anLedBlinks();
    void aCardIsInsertedMountedAndPulled();
    void theChargerAndTheBatteryReachTheDaemon();
    void lightAndTemperatureReachTheDaemon();
    void theWatchdogIsWatched();
    void theSurroundingsAreShown();
    void onlyTheEndOfADragCounts();
    void theMousePointerTellsWhatCanBePressed();
    void blinkingLedsAreLitInAPicture();
    void aValueIsSetAgain();
    void aHangingCommandDoesNotBlockOthers();
    void theProfileComesFromTheDaemon();
    void statesAreShownAsTheyPass();
    void theStrengthEndsWithTheNetwork();
    void repliesAndAnnouncementsOfTheDaemonAreShown();
    void accessPointsAreMoved();
    void aFaultOfTheMenuFails();
    void oneOfTwoFaultsIsHealed();
    void aCommandThatFailsSaysWhy();
    void theDaemonGoesAndComes();
    void theBusGoesAndComes();
    void theBoardGoesAndComes();
    void theLogShowsTheBusMessages();
    void theWindowLogsItsCommandsButNotItsCalls();
    void theLogIsClearedAndSaved();
    void theLogKeepsTheNewestLines();

private:
    void click(const QString &element, double place = 0.5);
    QColor colourOf(const QString &element);
    QString text(const QString &element) const;
    bool shows(const QString &element, const QString &wanted);
    void chooseInFaultMenu(const QString &ofClass, const QString &operation, const QString &entry);

    const QByteArray m_usualBus = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    std::unique_ptr<PanelWidget> panel;
    const Remote leds{"/KyDeviceMgr", "LED"};
    const Remote alimentation{"/KyDeviceMgr", "Alimentation"};
    const Remote storage{"/KyDeviceMgr", "Storage"};
};

void TestPanel::init()
{
    DaemonTest::init();
    QVERIFY(daemon.start());
    panel = std::make_unique<PanelWidget>(DRAWING);
    panel->resize(1280, 800);
    panel->show();
    QTRY_VERIFY_WITH_TIMEOUT(panel->isComplete(), deadlineMs);
}

void TestPanel::cleanup()
{
    panel.reset();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_usualBus);
    QDBusConnection::systemBus().unregisterService(BoardManager::service());
    DaemonTest::cleanup();
}

void TestPanel::click(const QString &element, double place)
{
    QTest::mouseClick(panel.get(), Qt::LeftButton, {}, panel->placeOf(element, place));
}

/** The colour at the centre of an element. */
QColor TestPanel::colourOf(const QString &element)
{
    return panel->grab().toImage().pixelColor(panel->placeOf(element));
}

QString TestPanel::text(const QString &element) const
{
    return lookOf(panel->instrument(), 0).texts.value(element);
}

bool TestPanel::shows(const QString &element, const QString &wanted)
{
    return QTest::qWaitFor([&] { return text(element) == wanted; }, deadlineMs);
}

void TestPanel::anLedLightsUpWhereItIsDrawn()
{
    const QColor dark = colourOf("WIFI");
    QCOMPARE(leds.call("setLEDStatus", {"WIFI", "ON"}), QStringLiteral("()"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("WIFI").blue() > dark.blue() + 100, deadlineMs);
    QVERIFY(colourOf("BT") == dark);
    QCOMPARE(leds.call("setLEDStatus", {"WIFI", "OFF"}), QStringLiteral("()"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("WIFI") == dark, deadlineMs);
    // The panel shows the board's file, even if the daemon did not write it.
    Board::set("leds/RECORDING", "ON");
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("RECORDING").red() > 200, deadlineMs);
}

void TestPanel::anLedBlinks()
{
    QCOMPARE(leds.call("setLEDStatus", {"WPS", "BLINK_3HZ"}), QStringLiteral("()"));
    for (int times = 0; times < 2; ++times) {
        QTRY_VERIFY_WITH_TIMEOUT(colourOf("WPS").red() > 200, deadlineMs);
        QTRY_VERIFY_WITH_TIMEOUT(colourOf("WPS").red() < 120, deadlineMs);
    }
}

void TestPanel::aCardIsInsertedMountedAndPulled()
{
    SignalRecorder signalsOfDevices("/KyDeviceMgr");
    click("SD-mount");
    click("SD-hand");
    QVERIFY(shows("SD-text", "inserted"));
    QCOMPARE(text("command"), QStringLiteral("./run -- storage insert SD"));
    QVERIFY(signalsOfDevices.waitFor(2).contains("Storage.sdcardPresence(true)"));
    click("SD-mount");
    QVERIFY(shows("SD-text", "mounted"));
    QCOMPARE(storage.call("isMounted", {"SD"}), QStringLiteral("(true)"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("SD_STATUS").green() > 160, deadlineMs);
    // A client's unmount is visible.
    QCOMPARE(storage.call("umount", {"SD"}), QStringLiteral("()"));
    QVERIFY(shows("SD-text", "inserted"));
    signalsOfDevices.take();
    click("SD");
    QVERIFY(shows("SD-text", "empty"));
    QVERIFY(signalsOfDevices.waitFor(2).contains("Storage.sdcardPresence(false)"));
    click("USB");
    QVERIFY(shows("USB-text", "inserted"));
    QVERIFY(signalsOfDevices.waitFor(1).contains("Storage.usbKeyPresence(true)"));
}

void TestPanel::theChargerAndTheBatteryReachTheDaemon()
{
    QVERIFY(shows("battery-status", "CHARGER_OFF_BAT_INF_80"));
    click("charger");
    QVERIFY(shows("battery-direction", "charging"));
    // The daemon announces a change that it detects during the call.
    QCOMPARE(alimentation.property("batteryStatus"),
             QStringLiteral("(<\"CHARGER_ON_BAT_INF_80\">)"));
    QVERIFY(shows("battery-status", "CHARGER_ON_BAT_INF_80"));
    click("battery-track", 0.3);
    QVERIFY(shows("battery-voltage", "6600 mV"));
    QCOMPARE(alimentation.property("batteryStatus"),
             QStringLiteral("(<\"CHARGER_ON_BAT_INF_40\">)"));
    click("battery-track", 1);
    // The command writes the voltage last: the charge is set by then.
    QVERIFY(shows("battery-voltage", "8000 mV"));
    QCOMPARE(alimentation.property("batteryStatus"), QStringLiteral("(<\"CHARGER_ON_BAT_FULL\">)"));
    click("charger");
    QVERIFY(shows("battery-direction", "on battery"));
    click("battery-track", 0.08);
    QVERIFY(shows("battery-voltage", "6160 mV"));
    QCOMPARE(alimentation.property("batteryStatus"),
             QStringLiteral("(<\"CHARGER_OFF_BAT_PRWT\">)"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("battery-track") != QColor(0x63, 0xb7, 0x7c), deadlineMs);
}

void TestPanel::lightAndTemperatureReachTheDaemon()
{
    SignalRecorder signalsOfDevices("/KyDeviceMgr");
    click("light-track", 0.75);
    QVERIFY(shows("light-text", "5600 lux"));
    const QStringList announced = signalsOfDevices.waitFor(1);
    QVERIFY(!announced.isEmpty());
    QVERIFY2(announced.first().startsWith("Brightness.reachedBrightnessThreshold(d:5600"),
             qPrintable(announced.first()));
    click("temperature-SOM-track", 0.625);
    QVERIFY(shows("temperature-SOM-text", "60 \u00b0C"));
    QCOMPARE(Remote("/KyDeviceMgr", "Temperature").call("getTemperatures"),
             QStringLiteral("({\"ANALOG_CHAIN\": <38>, \"SOM\": <60>})"));
}

void TestPanel::theWatchdogIsWatched()
{
    Board::set("watchdog/feeds", "5");
    QVERIFY(shows("watchdog-text", "fed 5 times"));
    QFile feeds(Board::pathOf("watchdog/feeds"));
    QVERIFY(feeds.open(QIODevice::ReadWrite));
    QVERIFY(feeds.setFileTime(QDateTime::currentDateTime().addSecs(-40),
                              QFileDevice::FileModificationTime));
    QVERIFY(shows("watchdog-text", "fed 5 times, starving"));
}

void TestPanel::theSurroundingsAreShown()
{
    writeFile("/run/strandel-speed", "60\n");
    QVERIFY(shows("speed-text", "time passes 60 times faster"));
    // picture() reads the surroundings itself, without waiting for the next poll.
    for (const char *speed : {"2", "3"}) {
        writeFile("/run/strandel-speed", speed);
        panel->picture({640, 400});
        QCOMPARE(text("speed-text"), QStringLiteral("time passes %1 times faster").arg(speed));
    }
    removePath("/run/strandel-speed");
    QVERIFY(shows("speed-text", ""));

    QProcess server;
    server.start("sleep", {"infinity"});
    QVERIFY(server.waitForStarted());
    for (const bool isWired : {true, false}) {
        const QString file = isWired ? "/run/ethernet-dhcp.pid" : "/run/wifi-dhcp.pid";
        writeFile(file, QByteArray::number(server.processId()) + '\n');
        QCOMPARE(::kill(pid_t(server.processId()), SIGSTOP), 0);
        QVERIFY(shows(isWired ? "dhcp-text" : "wifi-dhcp-text", "Unmute DHCP server"));
        QCOMPARE(text(isWired ? "wifi-dhcp-text" : "dhcp-text"),
                 QStringLiteral("Mute DHCP server"));
        QCOMPARE(::kill(pid_t(server.processId()), SIGCONT), 0);
        QVERIFY(shows(isWired ? "dhcp-text" : "wifi-dhcp-text", "Mute DHCP server"));
        removePath(file);
    }
    server.kill();
    QVERIFY(server.waitForFinished(deadlineMs));
}

void TestPanel::onlyTheEndOfADragCounts()
{
    QSignalSpy commands(panel.get(), &PanelWidget::commandRan);
    QTest::mousePress(panel.get(), Qt::LeftButton, {}, panel->placeOf("battery-track", 0.5));
    for (int percent = 49; percent >= 20; --percent) {
        QMouseEvent move(QEvent::MouseMove, panel->placeOf("battery-track", percent / 100.0),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(panel.get(), &move);
    }
    QTest::mouseRelease(panel.get(), Qt::LeftButton, {}, panel->placeOf("battery-track", 0.2));
    QVERIFY(shows("battery-charge", "20 %"));
    QCOMPARE(text("command"), QStringLiteral("./run -- battery 20"));
    QCOMPARE(commands.size(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(!panel->isBusy(), deadlineMs);
    // A scale ends where it is drawn, and only the left button drags.
    QTest::mousePress(panel.get(), Qt::RightButton, {}, panel->placeOf("battery-track", 0.7));
    QVERIFY(!panel->isBusy());
    const QPoint middle = panel->placeOf("battery-track", 0.5);
    QTest::mousePress(panel.get(), Qt::LeftButton, {}, middle);
    QTRY_VERIFY_WITH_TIMEOUT(!panel->isBusy(), deadlineMs);
    QMouseEvent same(QEvent::MouseMove, middle, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(panel.get(), &same);
    QVERIFY(!panel->isBusy());
    QMouseEvent beyond(QEvent::MouseMove, QPoint(0, panel->placeOf("battery-track").y()),
                       Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(panel.get(), &beyond);
    QTest::mouseRelease(panel.get(), Qt::LeftButton, {}, QPoint());
    QVERIFY(shows("battery-charge", "0 %"));
    QCOMPARE(text("command"), QStringLiteral("./run -- battery 0"));
    QCOMPARE(commands.size(), 4);
    // Moving the mouse without a pressed button changes only the tooltip.
    QMouseEvent move(QEvent::MouseMove, panel->placeOf("battery-track", 0.9), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(panel.get(), &move);
    QCOMPARE(panel->toolTip(), QStringLiteral("./run -- battery 90"));
    QCOMPARE(Board::get("battery/charge"), QStringLiteral("0"));
}

void TestPanel::theMousePointerTellsWhatCanBePressed()
{
    const auto shapeAt = [&](const QPoint &place) {
        QMouseEvent move(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(panel.get(), &move);
        return panel->cursor().shape();
    };
    QCOMPARE(shapeAt(panel->placeOf("charger")), Qt::PointingHandCursor);
    QCOMPARE(panel->toolTip(), QStringLiteral("./run -- charger plug"));
    QCOMPARE(shapeAt(panel->placeOf("light-track")), Qt::SizeHorCursor);
    QCOMPARE(shapeAt(panel->placeOf("faults")), Qt::PointingHandCursor);
    QCOMPARE(shapeAt(QPoint(2, 2)), Qt::ArrowCursor);
    QCOMPARE(panel->toolTip(), QString());
    // There is nothing to mount.
    QCOMPARE(shapeAt(panel->placeOf("SD-mount")), Qt::ArrowCursor);
}

void TestPanel::blinkingLedsAreLitInAPicture()
{
    Board::set("leds/WPS", "BLINK_1HZ");
    Board::set("leds/RECORDING", "BLINK_3HZ");
    const QImage picture = panel->picture(panel->size());
    for (const char *led : {"WPS", "RECORDING"})
        QVERIFY(picture.pixelColor(panel->placeOf(led)).red() > 200);
}

void TestPanel::aValueIsSetAgain()
{
    click("battery-track", 0.2);
    QVERIFY(shows("battery-charge", "20 %"));
    // A script changes the value meanwhile.
    Board::set("battery/charge", "70");
    QVERIFY(shows("battery-charge", "70 %"));
    click("battery-track", 0.2);
    QVERIFY(shows("battery-charge", "20 %"));
}

void TestPanel::aHangingCommandDoesNotBlockOthers()
{
    // Suspend the daemon, as a debugger does: SIGTERM stays pending.
    writeFile("/run/KyBoardManager.pid", QByteArray::number(daemon.processId()));
    QCOMPARE(::kill(pid_t(daemon.processId()), SIGSTOP), 0);
    click("daemon-stop");
    // The panel queues this command and starts it without another click.
    click("charger");
    QVERIFY(panel->isBusy());
    QCOMPARE(text("command"), QStringLiteral("./run -- daemon stop"));
    QVERIFY(shows("charger-text", "Pull the charger"));
    click("daemon-stop");
    QVERIFY(shows("command-result", "still runs"));
    click("daemon-kill");
    QVERIFY(shows("daemon-text", "away"));
    QVERIFY(shows("command-result", ""));
    removePath("/run/KyBoardManager.pid");
}

void TestPanel::theProfileComesFromTheDaemon()
{
    QVERIFY(shows("daemon-profile", "profile user1"));
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("setUser", {"user3"}), QStringLiteral("()"));
    QVERIFY(shows("daemon-profile", "profile user3"));
}

void TestPanel::statesAreShownAsTheyPass()
{
    QCOMPARE(text("Ethernet-state"), QStringLiteral("not known"));
    registerListedObjects();
    SimulatedModeScript script;
    script.install();
    ConnmanStandIn connman;
    connman.start();
    connman.setServices({wired()});
    const Remote ethernet("/KyComMgr", "Ethernet");
    connectEthernet(ethernet, connman, "online");
    QVERIFY(shows("Ethernet-trail", "association \u2192 ready \u2192 online"));
    QVERIFY(shows("Ethernet-state", "online"));
    QVERIFY(shows("Ethernet-address", "10.77.0.50"));
    QCOMPARE(text("screen-network"), QStringLiteral("Ethernet"));
    QCOMPARE(text("WIFI-state"), QStringLiteral("not known"));

    // A panel that starts later knows the address, but no earlier states.
    panel = std::make_unique<PanelWidget>(DRAWING);
    QVERIFY(shows("Ethernet-address", "10.77.0.50"));
    QCOMPARE(text("Ethernet-state"), QStringLiteral("online"));
    QCOMPARE(text("Ethernet-trail"), QString());

    QCOMPARE(ethernet.call("disconnect"), QStringLiteral("()"));
    QVERIFY(shows("Ethernet-trail", "disconnect \u2192 idle"));
    QVERIFY(shows("Ethernet-address", "no address"));
    QCOMPARE(text("screen-network"), QString());
}

void TestPanel::theStrengthEndsWithTheNetwork()
{
    daemon.stop();
    QVERIFY(shows("daemon-text", "away"));
    // Announce states in the daemon's name.
    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.registerService(BoardManager::service()));
    QVERIFY(shows("daemon-text", "on the bus"));
    const auto announce = [&](const char *property, const QVariant &value) {
        QDBusMessage signal = QDBusMessage::createSignal(
            BoardManager::wifiPath(), BoardManager::service() + ".WIFI", "propertyChanged");
        signal << "/net/connman/service/lab" << property
               << QVariant::fromValue(QDBusVariant(value));
        return bus.send(signal);
    };
    QVERIFY(announce("State", "online"));
    QVERIFY(announce("Strength", QVariant::fromValue(uchar(54))));
    QVERIFY(shows("strength-text", "54 %"));
    QCOMPARE(text("WIFI-state"), QStringLiteral("online"));
    QVERIFY(announce("State", "disconnect"));
    QVERIFY(shows("WIFI-state", "disconnect"));
    QCOMPARE(text("strength-text"), QString());
}

/** A stand-in for the daemon, which gives the replies that the test sets. */
class ScriptedDaemon : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &call, const QDBusConnection &bus) override
    {
        const QString name = call.interface().section('.', -1) + '.' + call.member();
        return bus.send(replies.contains(name) ? call.createReply(replies.value(name))
                                               : call.createErrorReply(error, "not yet"));
    }

    QDBusError::ErrorType error = QDBusError::UnknownObject;
    QMap<QString, QVariant> replies;
};

void TestPanel::repliesAndAnnouncementsOfTheDaemonAreShown()
{
    QVERIFY(panel->isComplete());
    panel->askAgain();
    QVERIFY(!panel->isComplete());
    daemon.stop();
    QVERIFY(shows("daemon-text", "away"));
    QVERIFY(panel->isComplete());
    ScriptedDaemon scripted;
    QDBusConnection bus = QDBusConnection::systemBus();
    QVERIFY(bus.registerVirtualObject("/", &scripted, QDBusConnection::SubPath));
    QVERIFY(bus.registerService(BoardManager::service()));
    QVERIFY(shows("daemon-text", "on the bus"));
    // This panel has not seen the daemon start.
    panel = std::make_unique<PanelWidget>(DRAWING);
    QVERIFY(!panel->isComplete());
    // The panel asks again until the daemon answers. These two errors are no answers.
    const auto addressOf = [](const char *address) { return QVariantMap{{"Address", address}}; };
    for (const auto &error : {QDBusError::UnknownObject, QDBusError::NoReply}) {
        scripted.error = error;
        scripted.replies.clear();
        panel->askAgain();
        QVERIFY(!QTest::qWaitFor([&] { return panel->isComplete(); }, 500));
        scripted.replies = {
            {"Users.getUser", error == QDBusError::NoReply ? "user4" : "user3"},
            {"Properties.Get", QVariant::fromValue(QDBusVariant("CHARGER_ON_BAT_FULL"))},
            {"Ethernet.getIPv4", addressOf("10.77.0.51")},
            {"WIFI.getIPv4", addressOf("10.78.0.51")},
            {"WIFIAP.getIPv4", addressOf("192.168.7.1")},
            {"WIFI.getStrength", QVariantMap{{"Strength", QVariant::fromValue(uchar(61))}}},
        };
        QVERIFY(shows("daemon-profile",
                      error == QDBusError::NoReply ? "profile user4" : "profile user3"));
    }
    QVERIFY(shows("battery-status", "CHARGER_ON_BAT_FULL"));
    QVERIFY(shows("Ethernet-address", "10.77.0.51"));
    QVERIFY(shows("WIFI-address", "10.78.0.51"));
    QVERIFY(shows("WIFIAP-address", "192.168.7.1"));

    const auto announce = [&](const char *path, const char *name, const QVariantList &values) {
        QDBusMessage signal = QDBusMessage::createSignal(
            path, BoardManager::service() + '.' + QString(name).section('.', 0, 0),
            QString(name).section('.', 1));
        signal.setArguments(values);
        return bus.send(signal);
    };
    const auto announceLink = [&](const char *link, const char *property, const QVariant &value) {
        return announce(
            "/KyComMgr", qPrintable(QString(link) + ".propertyChanged"),
            {"/net/connman/service/lab", property, QVariant::fromValue(QDBusVariant(value))});
    };
    QVERIFY(announce("/KyConfigMgr", "Users.changingUser", {}));
    QVERIFY(shows("daemon-profile", "profile user4 \u2192 \u2026"));
    // This signal announces the reset of another profile.
    QVERIFY(announce("/KyConfigMgr", "Users.userChanged", {"user2"}));
    QVERIFY(shows("daemon-profile", "profile user4"));
    scripted.replies["Ethernet.getIPv4"] = addressOf("10.77.0.52");
    QVERIFY(announceLink("Ethernet", "IPv4", addressOf("10.77.0.52")));
    QVERIFY(shows("Ethernet-address", "10.77.0.52"));
    for (const char *state : {"association", "association", "configuration", "ready"})
        QVERIFY(announceLink("WIFIAP", "State", state));
    QVERIFY(shows("WIFIAP-state", "ready"));
    QCOMPARE(text("WIFIAP-trail"), QStringLiteral("association \u2192 configuration \u2192 ready"));
    // The access point has no address now; the states of the other links stay.
    QCOMPARE(text("WIFIAP-address"), QStringLiteral("no address"));
    // The panel shows the last four states.
    QVERIFY(announceLink("WIFIAP", "State", "disconnect"));
    QVERIFY(
        shows("WIFIAP-trail", "association \u2192 configuration \u2192 ready \u2192 disconnect"));
    QVERIFY(announceLink("WIFIAP", "State", "idle"));
    QVERIFY(shows("WIFIAP-trail", "configuration \u2192 ready \u2192 disconnect \u2192 idle"));
    QCOMPARE(text("WIFI-state"), QStringLiteral("online"));
    QVERIFY(shows("strength-text", "61 %"));

    QVERIFY(announceLink("WIFI", "State", "idle"));
    QVERIFY(shows("strength-text", ""));
    scripted.replies["WIFI.getStrength"] = QVariantMap{{"Strength", QVariant::fromValue(uchar(7))}};
    QVERIFY(announceLink("WIFI", "State", "online"));
    QVERIFY(shows("strength-text", "7 %"));
    QVERIFY(shows("WIFI-address", "10.78.0.51"));
    QCOMPARE(panel->instrument().joinedService, QStringLiteral("/net/connman/service/lab"));
    scripted.replies["WIFI.getStrength"] = QVariantMap();
    QVERIFY(announceLink("WIFI", "State", "online"));
    QVERIFY(shows("strength-text", ""));
    QVERIFY(announceLink("WIFI", "State", "disconnect"));
    QVERIFY(shows("WIFI-state", "disconnect"));
    QCOMPARE(panel->instrument().joinedService, QString());

    // Any other error is an answer: the panel does not ask again.
    scripted.error = QDBusError::AccessDenied;
    scripted.replies.clear();
    panel->askAgain();
    QTRY_VERIFY_WITH_TIMEOUT(panel->isComplete(), deadlineMs);
    // A second daemon takes the bus name over at once: the panel keeps no state of the first one.
    QCOMPARE(text("daemon-profile"), QStringLiteral("profile user4"));
    QDBusConnection second = QDBusConnection::connectToBus(QDBusConnection::SystemBus, "second");
    QVERIFY(second.interface()->registerService(BoardManager::service(),
                                                QDBusConnectionInterface::QueueService));
    QVERIFY(bus.unregisterService(BoardManager::service()));
    QVERIFY(shows("WIFI-state", "idle"));
    QCOMPARE(text("daemon-text"), QStringLiteral("on the bus"));
    QCOMPARE(text("daemon-profile"), QString());
    QCOMPARE(text("battery-status"), QStringLiteral("nothing"));
    QDBusConnection::disconnectFromBus("second");
    bus.unregisterObject("/", QDBusConnection::UnregisterTree);
}

void TestPanel::accessPointsAreMoved()
{
    writeFile("/run/strandel-air/cafe/ssid", "Cafe\n");
    QVERIFY(shows("air-1-name", "Cafe"));
    QVERIFY(shows("air-1-signal", "-60 dBm"));
    click("air-1-track", 1);
    QVERIFY(shows("air-1-signal", "-30 dBm"));
    QCOMPARE(readFile("/run/strandel-air/cafe/signal"), QByteArray("-30\n"));
    click("air-1-switch");
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/run/strandel-air/cafe/in_range"), QByteArray("0\n"),
                              deadlineMs);
    QTRY_VERIFY_WITH_TIMEOUT(!panel->instrument().air.first().isInRange, deadlineMs);
    click("air-1-switch");
    QTRY_COMPARE_WITH_TIMEOUT(readFile("/run/strandel-air/cafe/in_range"), QByteArray("1\n"),
                              deadlineMs);
    click("air-2-switch");
    removePath("/run/strandel-air");
    QTRY_VERIFY_WITH_TIMEOUT(panel->instrument().air.isEmpty(), deadlineMs);
}

/** Opens the menu of the faults, and chooses an entry of an operation. */
void TestPanel::chooseInFaultMenu(const QString &ofClass, const QString &operation,
                                  const QString &entry)
{
    const auto named = [](const QMenu *menu, const QString &name) -> QAction * {
        for (QAction *action : menu->actions()) {
            if (action->text() == name)
                return action;
        }
        return nullptr;
    };
    panel->faultMenu()->close();
    click("faults");
    QTRY_VERIFY_WITH_TIMEOUT(panel->faultMenu()->isVisible(), deadlineMs);
    const QAction *operations = named(panel->faultMenu(), ofClass);
    QVERIFY(operations);
    const QAction *entries = named(operations->menu(), operation);
    QVERIFY(entries);
    QAction *action = named(entries->menu(), entry);
    QVERIFY(action);
    // The entry "heal" is enabled only while the operation has a fault.
    const bool isThere = panel->instrument().board.contains("faults/" + ofClass + '.' + operation);
    QCOMPARE(named(entries->menu(), "heal")->isEnabled(), isThere);
    action->trigger();
}

void TestPanel::aFaultOfTheMenuFails()
{
    chooseInFaultMenu("KyLeds", "setLedState", "fails");
    QMenu *menu = panel->faultMenu();
    QVERIFY(shows("fault-text", "fault: KyLeds.setLedState"));
    QVERIFY(leds.call("setLEDStatus", {"WIFI", "ON"}).contains("Error.Write"));
    menu->actions().first()->trigger();
    QVERIFY(shows("fault-text", "no faults"));
    QCOMPARE(leds.call("setLEDStatus", {"WIFI", "ON"}), QStringLiteral("()"));
    menu->close();
}

void TestPanel::oneOfTwoFaultsIsHealed()
{
    chooseInFaultMenu("KyLeds", "setLedState", "fails");
    QVERIFY(shows("fault-text", "fault: KyLeds.setLedState"));
    QCOMPARE(Board::get("faults/KyLeds.setLedState"), QStringLiteral("always"));
    chooseInFaultMenu("KyTemperature", "getTemperature", "lies");
    QVERIFY(shows("fault-text", "2 faults"));
    QCOMPARE(Board::get("faults/KyTemperature.getTemperature"), QStringLiteral("garbage"));
    chooseInFaultMenu("KyLeds", "setLedState", "heal");
    QVERIFY(shows("fault-text", "fault: KyTemperature.getTemperature"));
    chooseInFaultMenu("KyTemperature", "getTemperature", "heal");
    QVERIFY(shows("fault-text", "no faults"));
    panel->faultMenu()->close();
}

void TestPanel::aCommandThatFailsSaysWhy()
{
    panel->run("echo one >&2; echo two >&2; exit 3");
    QVERIFY(shows("command-result", "one"));
    panel->run("exit 3");
    QVERIFY(shows("command-result", "ended with status 3"));
    panel->run("echo harmless >&2");
    QVERIFY(shows("command-result", ""));
    // A card is inserted, but the board's file says that the slot is empty, and so does the panel.
    QVERIFY(Board::storage("insert", "SD"));
    Board::set("storage/SD/inserted", "0");
    QVERIFY(shows("SD-text", "empty"));
    click("SD-hand");
    QVERIFY(shows("command-result", "storage: the SD device is inserted already"));
}

void TestPanel::theDaemonGoesAndComes()
{
    QVERIFY(shows("daemon-text", "on the bus"));
    const QColor there = colourOf("daemon-there");
    daemon.stop();
    QVERIFY(shows("daemon-text", "away"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("daemon-there").red() > there.red() + 100, deadlineMs);
    QCOMPARE(text("daemon-profile"), QString());
    QCOMPARE(text("battery-status"), QStringLiteral("nothing"));
    Board::set("temperature/SOM", "77");
    QVERIFY(shows("temperature-SOM-text", "77 \u00b0C"));
    // The panel sees the daemon start: all links are idle.
    QCOMPARE(text("WIFI-state"), QStringLiteral("not known"));
    QVERIFY(daemon.start());
    QVERIFY(shows("daemon-text", "on the bus"));
    QVERIFY(shows("daemon-profile", "profile user1"));
    QVERIFY(shows("battery-status", "CHARGER_OFF_BAT_INF_80"));
    for (const char *link : {"Ethernet-state", "WIFI-state", "WIFIAP-state"})
        QCOMPARE(text(link), QStringLiteral("idle"));
}

void TestPanel::theBusGoesAndComes()
{
    const QString address = "unix:path=/run/dbus/other";
    QProcess bus;
    QByteArray configuration = readFile("/run/dbus/system.conf");
    configuration.replace("/run/dbus/system_bus_socket", "/run/dbus/other");
    writeFile("/run/dbus/other.conf", configuration);
    const auto startBus = [&] {
        QFile::remove("/run/dbus/other");
        bus.start("dbus-daemon",
                  {"--config-file=/run/dbus/other.conf", "--nofork", "--print-address=1"});
        return QTest::qWaitFor([&] { return bus.canReadLine(); }, deadlineMs);
    };
    QVERIFY(startBus());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address.toLatin1());
    panel = std::make_unique<PanelWidget>(DRAWING);
    QProcess other;
    const auto startDaemon = [&] { other.start("KyBoardManager", QStringList()); };
    QVERIFY(shows("daemon-text", "away"));
    startDaemon();
    QVERIFY(shows("daemon-text", "on the bus"));
    auto *shown = new PanelWidget(DRAWING);
    const PanelWindow window(shown, {640, 400});
    const auto *log = window.findChild<TrafficLog *>();
    const QSignalSpy came(panel.get(), &PanelWidget::busCame);

    bus.kill();
    QVERIFY(shows("daemon-text", "the bus is away"));
    Board::set("temperature/SOM", "55");
    QVERIFY(shows("temperature-SOM-text", "55 \u00b0C"));
    // The daemon keeps running without a bus. Start another one, as systemd does on an instrument.
    other.kill();
    QVERIFY(other.waitForFinished(deadlineMs));
    QVERIFY(startBus());
    QVERIFY(shows("daemon-text", "away"));
    startDaemon();
    QVERIFY(shows("daemon-text", "on the bus"));
    QVERIFY(shows("daemon-profile", "profile user1"));
    QCOMPARE(came.size(), 1);
    // The log monitors the new bus.
    const auto isLogged = [&] {
        panel->askAgain();
        return QTest::qWaitFor([&] { return log->text().contains("getUser"); }, 500);
    };
    QVERIFY(QTest::qWaitFor(isLogged, deadlineMs));
    // The log still leaves out the calls of its panel, which has another name on the new bus.
    const QDBusConnection client = QDBusConnection::connectToBus(address, "client");
    const auto callsBefore = [&](const char *led) {
        QDBusMessage call =
            QDBusMessage::createMethodCall(BoardManager::service(), "/KyDeviceMgr",
                                           BoardManager::service() + ".LED", "setLEDStatus");
        client.send(call << led << "OFF");
        const bool isThere = QTest::qWaitFor([&] { return log->text().contains(led); }, deadlineMs);
        return isThere ? log->text().count("call    Users.getUser") : -1;
    };
    QTRY_VERIFY_WITH_TIMEOUT(panel->isComplete() && shown->isComplete(), deadlineMs);
    const int calls = callsBefore("WPS");
    QVERIFY(calls > 0);
    shown->askAgain();
    QTRY_VERIFY_WITH_TIMEOUT(shown->isComplete(), deadlineMs);
    QCOMPARE(callsBefore("RECORDING"), calls);
    QDBusConnection::disconnectFromBus("client");
    panel.reset();
    other.kill();
    other.waitForFinished();
    bus.kill();
    bus.waitForFinished();
}

void TestPanel::theBoardGoesAndComes()
{
    Board::set("leds/BT", "ON");
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("BT").blue() > 200, deadlineMs);
    daemon.stop();
    const QString board = QFileInfo(Board::pathOf("held")).path();
    QVERIFY(QDir().rename(board, board + ".moved"));
    QVERIFY(shows("battery-charge", "?"));
    QVERIFY(shows("light-text", "?"));
    QVERIFY(!panel->isComplete());
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("BT").blue() < 200, deadlineMs);
    QVERIFY(!QFile::exists(board));
    // A click creates only the file that it changes.
    click("light-track", 0.75);
    QVERIFY(shows("light-text", "5600 lux"));
    QCOMPARE(text("battery-charge"), QStringLiteral("?"));
    removePath(board);
    QVERIFY(QDir().rename(board + ".moved", board));
    QVERIFY(shows("battery-charge", "80 %"));
    QVERIFY(shows("light-text", "120 lux"));
    QTRY_VERIFY_WITH_TIMEOUT(colourOf("BT").blue() > 200, deadlineMs);
}

void TestPanel::theLogShowsTheBusMessages()
{
    TrafficLog log;
    log.setIgnored(panel->daemonView().ownName());
    const auto has = [&](const QString &part) {
        return QTest::qWaitFor([&] { return log.text().contains(part); }, deadlineMs);
    };
    // The log is subscribed once it has shown a message.
    QVERIFY(QTest::qWaitFor(
        [&] {
            leds.call("setLEDStatus", {"WPS", "OFF"});
            return QTest::qWaitFor([&] { return log.text().contains("WPS"); }, 200);
        },
        deadlineMs));
    leds.call("setLEDStatus", {"WIFI", "BRIGHT"});
    QVERIFY(has("call    LED.setLEDStatus(\"WIFI\", \"BRIGHT\")"));
    QVERIFY(has("error   LED.setLEDStatus: com.orvendis.Strandel.BoardManager.Error."));
    Remote("/KyConfigMgr", "Users").call("setUser", {"user2"});
    QVERIFY(has("signal  Users.userChanged(\"user2\")"));
    log.note("./run -- charger plug");
    // The panel then asks for the profile; its own calls are not shown.
    QVERIFY(shows("daemon-profile", "profile user2"));
    QVERIFY(!log.text().contains("getUser"));

    // Each interface can be chosen once.
    const auto *interfaces = log.findChild<QComboBox *>();
    QStringList names;
    for (int index = 0; index < interfaces->count(); ++index)
        names << interfaces->itemText(index);
    QCOMPARE(names.removeDuplicates(), 0);
    QCOMPARE(names.first(), QStringLiteral("All interfaces"));
    QVERIFY(names.contains("LED"));
    // Replies, errors and signals have colours of their own.
    QSet<QRgb> colours;
    const auto *lines = log.findChild<QPlainTextEdit *>();
    QVERIFY(lines->isReadOnly());
    for (const char *kind : {"  call  ", "  error  ", "  reply  ", "  signal  "}) {
        QTextBlock line = lines->document()->begin();
        while (line.isValid() && !line.text().replace(QChar::Nbsp, QLatin1Char(' ')).contains(kind))
            line = line.next();
        QVERIFY2(line.isValid(), kind);
        colours << line.begin().fragment().charFormat().foreground().color().rgb();
    }
    QCOMPARE(colours.size(), 4);

    log.showInterface("Users");
    QVERIFY(!log.text().contains("LED."));
    QVERIFY(log.text().contains("userChanged"));
    QVERIFY(log.text().contains("$ ./run -- charger plug"));
    QTemporaryDir directory;
    QVERIFY(log.save(directory.path() + "/log"));
    QCOMPARE(readFile(directory.path() + "/log"), log.text().toUtf8() + '\n');
    QVERIFY(!log.save(directory.path() + "/none/log"));
    log.showInterface("no such interface");
    QVERIFY(log.text().contains("LED."));
    log.showInterface(QString());
    QVERIFY(log.text().contains("LED."));
}

void TestPanel::theWindowLogsItsCommandsButNotItsCalls()
{
    auto *shown = new PanelWidget(DRAWING);
    const PanelWindow window(shown, {640, 400});
    const auto *log = window.findChild<TrafficLog *>();
    const auto has = [&](const QString &part, int milliseconds = deadlineMs) {
        return QTest::qWaitFor([&] { return log->text().contains(part); }, milliseconds);
    };
    // The log is subscribed once it has shown a message.
    QVERIFY(QTest::qWaitFor(
        [&] {
            leds.call("setLEDStatus", {"WPS", "OFF"});
            return has("WPS", 200);
        },
        deadlineMs));
    shown->run("true >/run/log-test");
    QCOMPARE(log->text().count("$ ./run -- sh -c 'true >/run/log-test'"), 1);
    QTRY_VERIFY_WITH_TIMEOUT(!shown->isBusy() && shown->isComplete(), deadlineMs);
    shown->askAgain();
    QTRY_VERIFY_WITH_TIMEOUT(shown->isComplete(), deadlineMs);
    leds.call("setLEDStatus", {"WIFI", "ON"});
    QVERIFY(has("\"WIFI\", \"ON\""));
    QVERIFY(!log->text().contains("getUser"));
    // The same calls of another panel are shown.
    panel->askAgain();
    QVERIFY(has("call    Users.getUser()"));
    removePath("/run/log-test");
}

void TestPanel::theLogIsClearedAndSaved()
{
    TrafficLog log;
    log.note("echo <b>one</b>  &amp; two");
    QCOMPARE(log.text(), QStringLiteral("$ echo <b>one</b>  &amp; two"));
    const auto press = [&](const QString &title) {
        for (auto *button : log.findChildren<QPushButton *>()) {
            if (button->text().startsWith(title))
                button->click();
        }
    };
    const QTemporaryDir directory;
    QString complaint;
    // "Save" returns only after its dialogue is answered: a timer answers it.
    const auto saveAs = [&](const QString &file) {
        QTimer answering;
        connect(&answering, &QTimer::timeout, this, [&] {
            QWidget *shown = QApplication::activeModalWidget();
            if (auto *dialogue = qobject_cast<QFileDialog *>(shown)) {
                // Until the directory is loaded, the proposed name overrides selectFile().
                dialogue->findChild<QLineEdit *>()->setText(file);
                static_cast<QDialog *>(dialogue)->accept();
            } else if (auto *box = qobject_cast<QMessageBox *>(shown)) {
                complaint = box->text();
                box->accept();
            }
        });
        answering.start(10);
        press("Save");
    };
    saveAs(directory.path() + "/log");
    QCOMPARE(readFile(directory.path() + "/log"), log.text().toUtf8() + '\n');
    QCOMPARE(complaint, QString());
    saveAs("/proc/log");
    QCOMPARE(complaint, QStringLiteral("/proc/log cannot be written."));
    press("Clear");
    QCOMPARE(log.text(), QString());
    log.note("exit");
    QCOMPARE(log.text(), QStringLiteral("$ exit"));
}

void TestPanel::theLogKeepsTheNewestLines()
{
    TrafficLog log;
    QVERIFY(QTest::qWaitFor(
        [&] {
            leds.call("setLEDStatus", {"WPS", "OFF"});
            return QTest::qWaitFor([&] { return log.text().contains("WPS"); }, 200);
        },
        deadlineMs));
    // The log keeps 5000 lines.
    for (int number = 0; number < 5000; ++number)
        log.note(QString::number(number));
    const auto isComplete = [&] {
        const QStringList lines = log.text().split('\n');
        return lines.size() == 5000 && lines.first() == "$ 0" && lines.last() == "$ 4999";
    };
    log.showInterface("LED");
    QVERIFY(isComplete());
    log.note("5000");
    QCOMPARE(log.text().section('\n', 0, 0), QStringLiteral("$ 1"));
    log.showInterface(QString());
    QCOMPARE(log.text().section('\n', 0, 0), QStringLiteral("$ 1"));
}

int main(int argc, char *argv[])
{
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test writes to /opt and /tmp: run it in a private world");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication itself(argc, argv);
    TestPanel test;
    return QTest::qExec(&test, itself.arguments());
}
#include "test_panel.moc"
