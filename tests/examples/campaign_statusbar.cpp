#include "board.h"
#include "busmonitor.h"
#include "deadline.h"
#include "ethernettest.h"
#include "instrument.h"
#include "wifitest.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QQuickView>
#include <QQuickWindow>
#include <QSignalSpy>

#include <csignal>
#include <cstdio>
#include <memory>

namespace
{
QStringList warnings;

/** Collects the messages of Qt and QML. */
void takeMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings << text;
}

/** The only argument of this program: makes it print the problem that the model reports. */
const char *const tellingProblem = "--problem";

const QColor green(0x6f, 0xcf, 0x7c);
const QColor amber(0xf0, 0xb8, 0x4a);
const QColor red(0xf0, 0x65, 0x5c);
const QColor grey(0x68, 0x72, 0x7c);
} // namespace

/** The status bar with the real daemon: its model and its picture. */
class TestStatusBar : public WifiTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void withoutTheDaemonNothingIsKnown();
    void theDaemonIsShownWhenItComes();
    void theCableIsShownAsItConnects();
    void theStationIsShownAsItConnects();
    void theAccessPointIsShown();
    void aBarThatStartsLateShowsTheJoinedNetwork();
    void theDaemonMayDieAndComeBack();
    void theBatteryFollowsTheBoard();
    void cardAndKeyAreShown();
    void aProfileThatIsResetIsNotTheActiveOne();
    void aModelWithoutAScreenHasNoBacklight();
    void theProgramShowsTheBar();
    void aUserOutsideTheGroupSeesTheReason();
    void thePictureShowsTheBar();

private:
    void show();
    QObject *sign(const char *name) const;
    QColor colourOf(const char *name) const;
    QImage picture();
    QColor pixelAt(const char *name, double x, double y);
    static QString state(const Link *link) { return link->state(); }

    std::unique_ptr<QQuickView> view;
    Instrument *instrument = nullptr;
};

void TestStatusBar::init()
{
    WifiTest::init();
    warnings.clear();
    connman.setServices({wired(), network("Lab", "idle")});
}

void TestStatusBar::cleanup()
{
    view.reset();
    WifiTest::cleanup();
    QCOMPARE(warnings, QStringList());
}

void TestStatusBar::show()
{
    view = std::make_unique<QQuickView>();
    view->setSource(QUrl("qrc:/StatusBar.qml"));
    QCOMPARE(view->status(), QQuickView::Ready);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    instrument = view->rootObject()->property("instrument").value<Instrument *>();
    QVERIFY(instrument);
}

QObject *TestStatusBar::sign(const char *name) const
{
    return view->rootObject()->findChild<QObject *>(name);
}

QColor TestStatusBar::colourOf(const char *name) const
{
    return sign(name)->property("color").value<QColor>();
}

/** The visible picture; without a screen the window itself cannot be grabbed. */
QImage TestStatusBar::picture()
{
    const QSharedPointer<QQuickItemGrabResult> result = view->rootObject()->grabToImage();
    QSignalSpy ready(result.data(), &QQuickItemGrabResult::ready);
    return ready.wait(20000) ? result->image().convertToFormat(QImage::Format_RGB32) : QImage();
}

/** The visible colour at a position, in parts of the item's width and height. */
QColor TestStatusBar::pixelAt(const char *name, double x, double y)
{
    const auto *item = qobject_cast<QQuickItem *>(sign(name));
    const QPoint point = item->mapToScene(QPointF(item->width() * x, item->height() * y)).toPoint();
    const QImage shown = picture();
    return shown.rect().contains(point) ? shown.pixelColor(point) : QColor();
}

void TestStatusBar::withoutTheDaemonNothingIsKnown()
{
    show();
    QCOMPARE(instrument->isAvailable(), false);
    QCOMPARE(instrument->problem(), QString("The board manager is away"));
    QCOMPARE(state(instrument->ethernet()), QString("unknown"));
    QCOMPARE(instrument->sdCard(), QString("unknown"));
    QCOMPARE(instrument->batteryLevel(), -1);
    QCOMPARE(sign("problem")->property("visible").toBool(), true);
    QCOMPARE(sign("problem")->property("text").toString(), instrument->problem());
    QCOMPARE(sign("signs")->property("visible").toBool(), false);
    QCOMPARE(sign("profile")->property("visible").toBool(), false);
}

void TestStatusBar::theDaemonIsShownWhenItComes()
{
    show();
    begin();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->isAvailable(), true, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->batteryLevel(), 80, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->backlight(), 55, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->sdCard(), QString("none"), deadlineMs);
    QCOMPARE(instrument->problem(), QString());
    // The bar has seen the daemon start: all links are down.
    for (const Link *link : {instrument->ethernet(), instrument->wifi(), instrument->accessPoint()})
        QCOMPARE(link->state(), QString("idle"));
    QCOMPARE(sign("problem")->property("visible").toBool(), false);
    QCOMPARE(sign("profile")->property("text").toString(), QString("user1"));
    QCOMPARE(sign("backlight")->property("text").toString(), QString("\u2600 55 %"));
    QCOMPARE(sign("ethernet")->property("text").toString(), QString("LAN"));
    QCOMPARE(colourOf("ethernet"), grey);
    QCOMPARE(sign("strength")->property("visible").toBool(), false);
}

void TestStatusBar::theCableIsShownAsItConnects()
{
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    const auto states = std::make_shared<QStringList>();
    QObject::connect(instrument->ethernet(), &Link::stateChanged, this,
                     [this, states] { *states << instrument->ethernet()->state(); });
    connectEthernet(ethernet, connman, "ready");
    QTRY_COMPARE_WITH_TIMEOUT(*states, (QStringList{"association", "ready"}), deadlineMs);
    QCOMPARE(colourOf("ethernet"), amber);
    connman.storeProperty(cable, "IPv4", lease);
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->ethernet()->address(), QString("10.77.0.50"), deadlineMs);
    QCOMPARE(colourOf("ethernet"), green);
    QCOMPARE(ethernet.call("disconnect"), QString("()"));
    QTRY_COMPARE_WITH_TIMEOUT(
        *states, (QStringList{"association", "ready", "online", "disconnect", "idle"}), deadlineMs);
    QCOMPARE(instrument->ethernet()->address(), QString());
    QCOMPARE(colourOf("ethernet"), grey);
}

void TestStatusBar::theStationIsShownAsItConnects()
{
    show();
    reach("online");
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->wifi()), QString("online"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->address(), QString("10.0.0.7"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->strength(), 70, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(sign("strength")->property("visible").toBool(), true, deadlineMs);
    QCOMPARE(colourOf("wifi"), green);
    connman.setProperty(lab, "Strength", QVariant::fromValue(uchar(20)));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->strength(), 20, deadlineMs);
    // The last of the four bars is no longer lit, the first one is.
    QTRY_COMPARE_WITH_TIMEOUT(pixelAt("strength", 0.95, 0.5), grey, deadlineMs);
    QCOMPARE(pixelAt("strength", 0.1, 0.75), green);
    // ConnMan replies with the error that Wi-Fi is already off. The link goes to idle nevertheless.
    wifi.call("disconnect");
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->wifi()), QString("idle"), deadlineMs);
    QCOMPARE(colourOf("wifi"), grey);
    QCOMPARE(instrument->wifi()->strength(), -1);
    QCOMPARE(instrument->wifi()->address(), QString());
    instrument->wifi()->takeProperty("State", "failure");
    QCOMPARE(colourOf("wifi"), red);
}

void TestStatusBar::theAccessPointIsShown()
{
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    QCOMPARE(state(instrument->accessPoint()), QString("unknown"));
    const QVariantMap parameters = {
        {"Channel", 6}, {"SSID", "Lab"}, {"Security", "open"}, {"IP", "192.168.7.1"}};
    QCOMPARE(wifiAp.call("connect", {parameters}), QString("()"));
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->accessPoint()), QString("configuration"),
                              deadlineMs);
    QCOMPARE(colourOf("accessPoint"), amber);
}

void TestStatusBar::aBarThatStartsLateShowsTheJoinedNetwork()
{
    reach("online");
    ListedObject joined = network("Lab", "ready");
    joined.properties.insert("IPv4", address);
    connman.setServices({wired(), joined});
    connectEthernet(ethernet, connman, "ready");
    show();
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->wifi()), QString("online"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->address(), QString("10.0.0.7"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->strength(), 70, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    // The state of the cable and of the access point is unknown.
    QCOMPARE(state(instrument->ethernet()), QString("unknown"));
    QCOMPARE(state(instrument->accessPoint()), QString("unknown"));
    QCOMPARE(sign("ethernet")->property("text").toString(), QString("LAN ?"));
    connman.storeProperty(cable, "IPv4", lease);
    connman.setProperty(ConnmanStandIn::ethernetTechnology, "Connected", true);
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->ethernet()), QString("online"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->ethernet()->address(), QString("10.77.0.50"), deadlineMs);
}

void TestStatusBar::theDaemonMayDieAndComeBack()
{
    show();
    reach("online");
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->strength(), 70, deadlineMs);
    daemon.stop();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->isAvailable(), false, deadlineMs);
    QCOMPARE(instrument->profile(), QString());
    QCOMPARE(instrument->batteryLevel(), -1);
    QCOMPARE(instrument->backlight(), -1);
    QCOMPARE(instrument->usbKey(), QString("unknown"));
    QCOMPARE(state(instrument->wifi()), QString("unknown"));
    QCOMPARE(instrument->wifi()->strength(), -1);
    QCOMPARE(sign("problem")->property("visible").toBool(), true);
    QCOMPARE(sign("signs")->property("visible").toBool(), false);

    QFile::remove("/tmp/User_part/system");
    QVERIFY(QFile::link(profile("user2"), "/tmp/User_part/system"));
    QVERIFY(daemon.start());
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user2"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->batteryLevel(), 80, deadlineMs);
    QCOMPARE(state(instrument->wifi()), QString("idle"));
    // The bar receives the new daemon's signals, too.
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("setUser", {"user3"}), QString("()"));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user3"), deadlineMs);
    connectEthernet(ethernet, connman, "association");
    QTRY_COMPARE_WITH_TIMEOUT(state(instrument->ethernet()), QString("association"), deadlineMs);
}

void TestStatusBar::theBatteryFollowsTheBoard()
{
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->batteryLevel(), 80, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(pixelAt("fill", 0.98, 0.5), green, deadlineMs);
    const double full = sign("fill")->property("width").toDouble();
    Board::set("battery/charge", "15");
    // The daemon sends no signal before its next check: the bar asks for the battery status.
    QTRY_COMPARE_WITH_TIMEOUT(instrument->batteryLevel(), 20, deadlineMs);
    QCOMPARE(sign("fill")->property("width").toDouble(), full / 4);
    QTRY_COMPARE_WITH_TIMEOUT(pixelAt("fill", 0.5, 0.5), red, deadlineMs);
    Board::set("charger/present", "1");
    QTRY_COMPARE_WITH_TIMEOUT(instrument->isChargerConnected(), true, deadlineMs);
}

void TestStatusBar::cardAndKeyAreShown()
{
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->sdCard(), QString("none"), deadlineMs);
    QVERIFY(Board::storage("insert", "SD"));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->sdCard(), QString("mounted"), deadlineMs);
    QCOMPARE(colourOf("sdCard"), green);
    QVERIFY(Board::storage("insert", "USB"));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->usbKey(), QString("inserted"), deadlineMs);
    QCOMPARE(colourOf("usbKey"), amber);
    // No signal announces the mount.
    QVERIFY(Board::storage("mount", "USB"));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->usbKey(), QString("mounted"), deadlineMs);
    QVERIFY(Board::storage("remove", "USB"));
    QVERIFY(Board::storage("remove", "SD"));
    QTRY_COMPARE_WITH_TIMEOUT(instrument->sdCard(), QString("none"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->usbKey(), QString("none"), deadlineMs);
    QCOMPARE(colourOf("usbKey"), grey);
}

void TestStatusBar::aProfileThatIsResetIsNotTheActiveOne()
{
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    BusMonitor monitor;
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("factoryReset", {"user3"}), QString("()"));
    const auto asks = [&] {
        for (const BusMessage &message : monitor.take()) {
            if (message.type == BusMessage::Call && message.member == "getUser")
                return true;
        }
        return false;
    };
    QVERIFY(QTest::qWaitFor(asks, deadlineMs));
    settle();
    QCOMPARE(instrument->profile(), QString("user1"));
    QCOMPARE(Remote("/KyConfigMgr", "Users").call("setUser", {"user2"}), QString("()"));
    QTRY_COMPARE_WITH_TIMEOUT(sign("profile")->property("text").toString(), QString("user2"),
                              deadlineMs);
}

void TestStatusBar::aModelWithoutAScreenHasNoBacklight()
{
    Board::setModel(0x8346);
    begin();
    show();
    QTRY_COMPARE_WITH_TIMEOUT(instrument->profile(), QString("user1"), deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->sdCard(), QString("none"), deadlineMs);
    QCOMPARE(instrument->backlight(), -1);
    QCOMPARE(instrument->problem(), QString());
    QCOMPARE(sign("backlight")->property("visible").toBool(), false);
}

void TestStatusBar::theProgramShowsTheBar()
{
    begin();
    BusMonitor monitor;
    QProcess bar;
    bar.start(STATUS_BAR, QStringList());
    QVERIFY(bar.waitForStarted());
    const auto asks = [&] {
        for (const BusMessage &message : monitor.take()) {
            if (message.type == BusMessage::Call && message.member == "getBacklight")
                return true;
        }
        return false;
    };
    QVERIFY(QTest::qWaitFor(asks, deadlineMs));
    bar.terminate();
    QVERIFY(bar.waitForFinished());
    QCOMPARE(bar.exitCode(), SIGTERM);
    QCOMPARE(bar.readAllStandardError(), QByteArray());
}

void TestStatusBar::aUserOutsideTheGroupSeesTheReason()
{
    begin();
    // A copy of this program in a directory that every user can enter.
    const QString program = "/tmp/statusbar";
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));
    const auto problemOf = [&](const QString &user, const QString &group) {
        QProcess bar;
        bar.start("setpriv", {"--reuid=" + user, "--regid=" + group, "--clear-groups", program,
                              QLatin1String(tellingProblem)});
        return bar.waitForFinished(30000) ? bar.readAllStandardOutput() : QByteArray("no end");
    };
    QCOMPARE(problemOf("stranger", "61186"),
             QByteArray("This user is not in the group strandel\n"));
    QCOMPARE(problemOf("member", "strandel"), QByteArray("\n"));
    QVERIFY(QFile::remove(program));
}

void TestStatusBar::thePictureShowsTheBar()
{
    show();
    reach("online");
    QTRY_COMPARE_WITH_TIMEOUT(instrument->wifi()->strength(), 70, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->batteryLevel(), 80, deadlineMs);
    QTRY_COMPARE_WITH_TIMEOUT(instrument->backlight(), 55, deadlineMs);
    QVERIFY(Board::storage("insert", "SD"));
    QTRY_COMPARE_WITH_TIMEOUT(colourOf("sdCard"), green, deadlineMs);
    QVERIFY(Board::storage("insert", "USB"));
    QTRY_COMPARE_WITH_TIMEOUT(colourOf("usbKey"), amber, deadlineMs);
    const QImage shown = picture();
    // Save the picture for a developer who has changed the bar.
    static_cast<void>(shown.save(DRAWN));
    const QImage kept = QImage(PICTURE).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(kept.size(), shown.size());
    // Text rendering differs between machines.
    int different = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x)
            different += std::abs(qGray(shown.pixel(x, y)) - qGray(kept.pixel(x, y))) > 64 ? 1 : 0;
    }
    QVERIFY2(different * 100 < shown.width() * shown.height(),
             qPrintable(QString::number(different)));
}

namespace
{
/** Prints the problem that the model reports, once the model has data or has failed for good. */
int tellProblem(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const Instrument instrument;
    const auto knows = [&] {
        return !instrument.profile().isEmpty() || instrument.problem().contains("group");
    };
    if (!QTest::qWaitFor(knows, deadlineMs))
        return 1;
    return std::puts(qPrintable(instrument.problem())) < 0;
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && qstrcmp(argv[1], tellingProblem) == 0)
        return tellProblem(argc, argv);
    if (!QFile::exists(QStringLiteral("/run/private-world")))
        qFatal("this test writes to /opt and /tmp: run it in a private world");
    const QString session = QStringLiteral("/tmp/session");
    QDir().mkpath(session);
    QFile::setPermissions(session, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", session.toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(takeMessage);
    Instrument::registerTypes();
    TestStatusBar test;
    return QTest::qExec(&test, argumentsOfPart(*test.metaObject(), application.arguments(),
                                               qEnvironmentVariable("TEST_PART")));
}

#include "campaign_statusbar.moc"
