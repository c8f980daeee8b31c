#include "board.h"
#include "figures.h"
#include "networktest.h"
#include "processes.h"
#include "wire.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <unistd.h>

/**
 * Pending messages beyond the limit of libdbus: large calls that pile up while the main thread is
 * busy, large records, and a ConnMan with ten thousand services. The daemon must not restart, and
 * must answer its other clients.
 */
class Deafness : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void largeCallsWhileTheDaemonIsBusy_data();
    void largeCallsWhileTheDaemonIsBusy();
    void recordsOfLargeMaps_data();
    void recordsOfLargeMaps();
    void aConnManWithThousandsOfServices();

private:
    void beginAttack();
    void busy(const std::function<void()> &attack);
    void endAttack(qint64 longestMeanwhile);
    QVariantMap enlarged(QVariantMap map, const QString &kind, const QString &key) const;
    qint64 processorTimeOfTheBus(const QVariantMap &argument) const;

    qint64 m_process = 0;
    qint64 m_memoryBefore = 0;
};

namespace
{
const QString service = QStringLiteral("com.orvendis.Strandel.BoardManager");

/** Initialised before anything connects to the bus: the limits apply to new connections only. */
const bool areLimitsLifted = liftBusLimits();

/** Below the bus's own limit of 32 MB. */
constexpr int largeBytes = 30 * 1000 * 1000;

/** The longest wait of another client in ms; beyond it the daemon counts as deaf. */
constexpr int longestWaitMs = 120000;

/** The processor time that @p process has used, in ms. */
qint64 processorTime(qint64 process)
{
    // Skip the name, which may contain blanks. The state, ten other fields and the times follow.
    const QByteArray stat = readFile(QStringLiteral("/proc/%1/stat").arg(process));
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toLongLong() + fields.value(12).toLongLong()) * 1000 /
           sysconf(_SC_CLK_TCK);
}

QDBusMessage call(const char *path, const char *interface, const char *method,
                  const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        service, QString::fromLatin1(path), service + QLatin1Char('.') + interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage getUser()
{
    return call("/KyConfigMgr", "Users", "getUser", {});
}

/** Another client, which repeatedly asks for the active user on a connection of its own. */
class OtherClient : public QThread
{
public:
    ~OtherClient() override { finish(); }

    /** Ends the client. Returns its longest wait for a reply in ms, -1 if a reply was missing. */
    qint64 finish()
    {
        m_isOver = true;
        wait();
        return m_longest;
    }

protected:
    void run() override
    {
        const QString name = QStringLiteral("other client");
        {
            QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, name);
            while (!m_isOver && m_longest >= 0) {
                QElapsedTimer timer;
                timer.start();
                const QDBusMessage reply = bus.call(getUser(), QDBus::Block, longestWaitMs);
                m_longest = reply.type() == QDBusMessage::ReplyMessage
                                ? qMax<qint64>(m_longest, timer.elapsed())
                                : -1;
            }
        }
        QDBusConnection::disconnectFromBus(name);
    }

private:
    std::atomic<bool> m_isOver{false};
    std::atomic<qint64> m_longest{0};
};
} // namespace

void Deafness::initTestCase()
{
    QVERIFY(areLimitsLifted);
}

void Deafness::beginAttack()
{
    begin();
    m_process = daemon.processId();
    m_memoryBefore = statusOf(m_process, "VmRSS").toLongLong();
    // Resets the peak.
    writeFile(QStringLiteral("/proc/%1/clear_refs").arg(m_process), "5");
}

/** Runs @p attack while the daemon's main thread waits for the hardware. */
void Deafness::busy(const std::function<void()> &attack)
{
    Board::fault("KyLeds.setLedState", "hold");
    const QDBusPendingCall held =
        Remote("/KyDeviceMgr", "LED").start("setLEDStatus", {"WIFI", "ON"});
    QVERIFY(Board::waitFor("held", "KyLeds.setLedState"));
    attack();
    // Qt D-Bus's receiving thread answers this ping after all messages of the attack, unless the
    // connection has stopped reading.
    const QDBusMessage ping = QDBusMessage::createMethodCall(service, "/KyDeviceMgr",
                                                             "org.freedesktop.DBus.Peer", "Ping");
    QDBusConnection::systemBus().call(ping, QDBus::Block, 5000);
    Board::clearFaults();
}

/** Verifies that the process is the same, and that other clients get replies. */
void Deafness::endAttack(qint64 longestMeanwhile)
{
    QVERIFY2(longestMeanwhile >= 0, "another client was not answered meanwhile");
    OtherClient other;
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage user =
        QDBusConnection::systemBus().call(getUser(), QDBus::Block, longestWaitMs);
    QCOMPARE(renderReply(user), QStringLiteral("(\"user1\")"));
    longestMeanwhile = qMax(longestMeanwhile, timer.elapsed());
    other.start();
    for (int calls = 0; calls < 50; ++calls)
        Remote("/KyDeviceMgr", "Temperature").call("getTemperatures");
    const qint64 afterwards = other.finish();

    QVERIFY2(afterwards >= 0, "another client was not answered afterwards");
    QVERIFY(daemon.isRunning());
    QCOMPARE(daemon.processId(), m_process);
    reportFigures(QStringLiteral("deafness, %1 %2: %3 MB before, %4 MB at most, %5 MB afterwards; "
                                 "another client waits for %6 ms at most")
                      .arg(QLatin1String(QTest::currentTestFunction()),
                           QLatin1String(QTest::currentDataTag() ? QTest::currentDataTag() : ""))
                      .arg(m_memoryBefore / 1024)
                      .arg(statusOf(m_process, "VmHWM").toLongLong() / 1024)
                      .arg(statusOf(m_process, "VmRSS").toLongLong() / 1024)
                      .arg(qMax(longestMeanwhile, afterwards)));
}

/** Enlarges @p map to nearly the bus's limit: with a large value of @p key, or with many keys. */
QVariantMap Deafness::enlarged(QVariantMap map, const QString &kind, const QString &key) const
{
    map.insert(key, 7);
    if (kind == QLatin1String("text"))
        map[key] = QString(largeBytes, QLatin1Char('x'));
    else if (kind == QLatin1String("bytes"))
        map[key] = QByteArray(largeBytes, 'x');
    else if (kind == QLatin1String("numbers"))
        map[key] = QVariant::fromValue(QVector<int>(largeBytes / 4, 7).toList());
    else if (kind == QLatin1String("texts"))
        map[key] = QStringList(QVector<QString>(largeBytes / 8, "x").toList());
    else if (kind == QLatin1String("variants"))
        map[key] = QVector<QVariant>(largeBytes / 8, 7).toList();
    else
        for (int index = 0; index < largeBytes / 24; ++index)
            map.insert(QString::number(index), 7);
    return map;
}

/** The processor time in ms that the bus alone needs for a message with @p argument. */
qint64 Deafness::processorTimeOfTheBus(const QVariantMap &argument) const
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    const qint64 process = QDBusConnection::systemBus().interface()->servicePid(bus);
    const qint64 before = processorTime(process);
    QDBusMessage message =
        QDBusMessage::createMethodCall(bus, "/org/freedesktop/DBus", bus, "none");
    message << argument;
    QDBusConnection::systemBus().call(message, QDBus::Block, longestWaitMs);
    return processorTime(process) - before;
}

void Deafness::largeCallsWhileTheDaemonIsBusy_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind : {"text", "bytes", "numbers"})
        QTest::newRow(kind) << QString(kind);
}

void Deafness::largeCallsWhileTheDaemonIsBusy()
{
    QFETCH(QString, kind);
    beginAttack();
    QList<QDBusPendingCall> replies;
    const QVariantMap map = enlarged({}, kind, "Extra");

    busy([&] {
        for (int number = 0; number < 3; ++number)
            replies << QDBusConnection::systemBus().asyncCall(
                call("/KyDeviceMgr", "Version", "setEepromInstrument", {map}));
    });

    endAttack(0);
    if (QTest::currentTestFailed())
        return;
    for (QDBusPendingCall &reply : replies) {
        reply.waitForFinished();
        QCOMPARE(reply.error().message(), QStringLiteral("Data not valid"));
    }
}

void Deafness::recordsOfLargeMaps_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("instrumentKey");
    QTest::addColumn<QString>("measureKey");
    QTest::addColumn<bool>("isTaken");
    for (const char *kind : {"text", "bytes", "numbers", "texts", "variants", "entries"}) {
        QTest::addRow("surplus %s", kind) << QString(kind) << "Extra"
                                          << "Extra" << (qstrcmp(kind, "entries") != 0);
        QTest::addRow("field of %s", kind) << QString(kind) << "IrdSessionPassword"
                                           << "AdjustementCoefficients" << false;
    }
}

void Deafness::recordsOfLargeMaps()
{
    QFETCH(QString, kind);
    QFETCH(QString, instrumentKey);
    QFETCH(QString, measureKey);
    QFETCH(bool, isTaken);
    QVariantMap instrument;
    for (const char *key : {"Subsidiary", "Fabrication", "Brand", "Type", "Model", "SerialNumber",
                            "WarrantyNumber", "TroubleshootingTag", "RelaunchTag", "FirstPassTag",
                            "IrdInstrumentPassword", "IrdSessionPassword"})
        instrument.insert(key, 1);
    QVariantMap measure{{"AdjustementSite", 1},
                        {"AdjustementDate", 1},
                        {"NextAdjustementDate", 1},
                        {"AdjustementCoefficients", 1}};
    instrument = enlarged(instrument, kind, instrumentKey);
    measure = enlarged(measure, kind, measureKey);
    beginAttack();
    const QString answer =
        isTaken ? "()" : "com.orvendis.Strandel.BoardManager.Error.Write: Data not valid";
    const auto set = [](const char *method, const QVariantMap &map) {
        return renderReply(QDBusConnection::systemBus().call(
            call("/KyDeviceMgr", "Version", method, {map}), QDBus::Block, longestWaitMs));
    };

    const qint64 busAlone = processorTimeOfTheBus(measure);
    const qint64 before = processorTime(m_process);
    QCOMPARE(set("setEepromMesure", measure), answer);
    const qint64 needed = processorTime(m_process) - before;
    OtherClient other;
    other.start();
    QCOMPARE(set("setEepromInstrument", instrument), answer);
    QCOMPARE(set("setEepromMesure", measure), answer);

    endAttack(other.finish());
    reportFigures(QStringLiteral("deafness, %1: the bus needs %2 ms of processor time for the "
                                 "message, the daemon %3 ms")
                      .arg(QTest::currentDataTag())
                      .arg(busAlone)
                      .arg(needed));
    // libdbus validates a message in the bus and again in the daemon.
    QVERIFY2(busAlone > 0 && needed < 2 * busAlone + 1000,
             qPrintable(QStringLiteral("%1 ms, and %2 ms in the bus").arg(needed).arg(busAlone)));
}

void Deafness::aConnManWithThousandsOfServices()
{
    ListedObjects services;
    for (int number = 0; number < 10000; ++number) {
        ListedObject object = network(QStringLiteral("Net%1").arg(number), "idle");
        for (const char *key : {"IPv4", "IPv6", "Proxy", "Ethernet", "Provider"})
            object.properties.insert(
                key, QVariantMap{{"Method", "dhcp"}, {"Address", QString(150, '1')}});
        object.properties.insert("Nameservers", QStringList{"10.0.0.1", "10.0.0.2"});
        services << object;
    }
    beginAttack();
    connman.setServices(services);

    QCOMPARE(wifi.call("scan"), QStringLiteral("()"));
    busy([this] {
        for (int signal = 0; signal < 10; ++signal)
            connman.emitServicesChanged();
    });

    endAttack(0);
}

WORLD_TEST_MAIN(Deafness)
#include "campaign_deafness.moc"
