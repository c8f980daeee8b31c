#include "board.h"
#include "daemontest.h"

#include "boardmanager.h"
#include "boardmanageralimentation.h"
#include "boardmanagerbacklight.h"
#include "boardmanagerbrightness.h"
#include "boardmanagerethernet.h"
#include "boardmanagerled.h"
#include "boardmanagermgr.h"
#include "boardmanagernetwork.h"
#include "boardmanagerstorage.h"
#include "boardmanagertemperature.h"
#include "boardmanagerusers.h"
#include "boardmanagerversion.h"
#include "boardmanagerwatchdog.h"
#include "boardmanagerwifi.h"
#include "boardmanagerwifiap.h"

#include <QProcess>

/** The installed client classes, and the example that is built with them. */
class TestClientPackage : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void theExampleSwitchesTheUser();
    void theExampleDoesNothingForTheActiveUser();
    void theExampleShowsTheDaemonsError();
    void theExampleShowsThatThereIsNoDaemon();
    void everyInterfaceHasItsClass();
    void mapsComeAsMaps();
    void aPropertyIsRead();

private:
    struct Result {
        int status;
        QString output;
        QString complaint;
    };
    static Result example(const QString &user);

    template <class Proxy>
    static Proxy *proxy(const QString &path, QObject *parent)
    {
        return new Proxy(BoardManager::service(), path, QDBusConnection::systemBus(), parent);
    }
};

namespace
{
/** Returns the error of a reply; empty on success. */
QString errorOf(QDBusPendingCall reply)
{
    reply.waitForFinished();
    return reply.isError() ? reply.error().name() + ": " + reply.error().message() : QString();
}
} // namespace

TestClientPackage::Result TestClientPackage::example(const QString &user)
{
    QProcess process;
    process.start(QStringLiteral(EXAMPLE), {user});
    if (!process.waitForFinished(deadlineMs))
        return {-1, QString(), QStringLiteral("no end")};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

void TestClientPackage::theExampleSwitchesTheUser()
{
    QVERIFY(daemon.start());
    const Result result = example("user2");
    QCOMPARE(result.complaint, QString());
    QCOMPARE(result.output, QString("The active profile is that of user2\n"));
    QCOMPARE(result.status, 0);
    QCOMPARE(QFile::symLinkTarget("/tmp/User_part/system"), profile("user2"));
}

void TestClientPackage::theExampleDoesNothingForTheActiveUser()
{
    QVERIFY(daemon.start());
    const Result result = example("user1");
    QCOMPARE(result.complaint + result.output, QString());
    QCOMPARE(result.status, 0);
}

void TestClientPackage::theExampleShowsTheDaemonsError()
{
    QVERIFY(daemon.start());
    const Result result = example("user9");
    QCOMPARE(result.complaint, failure("InvalidArguments", "User name is invalid.") + '\n');
    QCOMPARE(result.status, 1);
}

void TestClientPackage::theExampleShowsThatThereIsNoDaemon()
{
    const Result result = example("user2");
    QVERIFY2(result.complaint.startsWith("org.freedesktop.DBus.Error.ServiceUnknown: "),
             qPrintable(result.complaint));
    QCOMPARE(result.status, 1);
}

void TestClientPackage::everyInterfaceHasItsClass()
{
    using namespace BoardManager;
    Board::setModel(0x8345);
    QVERIFY(daemon.start());
    QObject p;
    QCOMPARE(errorOf(proxy<BoardManagerAlimentation>(alimentationPath(), &p)->getBatteryVoltage()),
             QString());
    QCOMPARE(errorOf(proxy<BoardManagerBacklight>(backlightPath(), &p)->setBacklight(40)),
             QString());
    QCOMPARE(errorOf(proxy<BoardManagerBrightness>(brightnessPath(), &p)->getBrightness()),
             QString());
    QCOMPARE(errorOf(proxy<BoardManagerEthernet>(ethernetPath(), &p)->getIPv4()), QString());
    QCOMPARE(errorOf(proxy<BoardManagerLED>(ledPath(), &p)->setLEDStatus("WIFI", "ON")), QString());
    QCOMPARE(errorOf(proxy<BoardManagerNetwork>(networkPath(), &p)->redpinePower(true)), QString());
    QCOMPARE(errorOf(proxy<BoardManagerStorage>(storagePath(), &p)->isMounted("SD")), QString());
    QCOMPARE(errorOf(proxy<BoardManagerTemperature>(temperaturePath(), &p)->setInterval(1000)),
             QString());
    QCOMPARE(errorOf(proxy<BoardManagerUsers>(usersPath(), &p)->factoryReset("user3")), QString());
    QCOMPARE(errorOf(proxy<BoardManagerVersion>(versionPath(), &p)->getRevision()), QString());
    QCOMPARE(errorOf(proxy<BoardManagerWatchdog>(watchdogPath(), &p)->keepAlive()), QString());
    QCOMPARE(errorOf(proxy<BoardManagerWIFI>(wifiPath(), &p)->getStrength()), QString());
    QCOMPARE(errorOf(proxy<BoardManagerWIFIAP>(wifiapPath(), &p)->wpsEnable()), QString());
    QCOMPARE(errorOf(proxy<BoardManagerMGR>(mgrPath(), &p)->prepareForShutdown()), QString());
}

void TestClientPackage::mapsComeAsMaps()
{
    Board::set("temperature/SOM", "61");
    QVERIFY(daemon.start());
    QObject parent;
    auto *temperature = proxy<BoardManagerTemperature>(BoardManager::temperaturePath(), &parent);
    QDBusPendingReply<QVariantMap> reply = temperature->getTemperatures();
    reply.waitForFinished();
    QCOMPARE(reply.value().value("SOM"), QVariant(61));
}

void TestClientPackage::aPropertyIsRead()
{
    QVERIFY(daemon.start());
    QObject parent;
    auto *supply = proxy<BoardManagerAlimentation>(BoardManager::alimentationPath(), &parent);
    QCOMPARE(supply->batteryStatus(), QString("CHARGER_OFF_BAT_INF_80"));
}

WORLD_TEST_MAIN(TestClientPackage)
#include "deadline.h"
#include "test_clientpackage.moc"
