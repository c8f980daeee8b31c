#include "connmansignals.h"
#include "connmanstandin.h"
#include "daemontest.h"
#include "deadline.h"
#include "realconnman.h"
#include "render.h"

#include <QDBusVariant>
#include <QRegularExpression>

/** The stand-in for ConnMan replies and announces like the real one. */
class TestConnmanAgreement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void bothReplyTheSame_data();
    void bothReplyTheSame();
    void bothAnnounceTheSame_data();
    void bothAnnounceTheSame();

private:
    /** Plugs or unplugs the cable, of the real ConnMan or of the stand-in. */
    using MoveCable = std::function<void(bool in)>;

    using Answers = QMap<QString, QString>;
    using Announcements = QMap<QString, QStringList>;

    static Answers ask();
    static Announcements observe(const MoveCable &moveCable);
    static QStringList essence(const QStringList &heard);
    static QStringList withoutService(const QStringList &heard);

    Answers realAnswers;
    Answers standInAnswers;
    Announcements realAnnouncements;
    Announcements standInAnnouncements;
};

namespace
{
const QString technology = "/net/connman/technology/ethernet";
const QString service = "/net/connman/service/ethernet_02aabbccdd02_cable";
const QString changed = " PropertyChanged ";

struct Call {
    const char *name;
    QString path;
    const char *interface;
    const char *method;
    QList<QVariant> arguments;
};

QVariant variant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

QVariant path(const QString &text)
{
    return QVariant::fromValue(QDBusObjectPath(text));
}

const QVariantMap manual = {{"Method", "manual"},
                            {"Address", "10.77.0.7"},
                            {"Netmask", "255.255.255.0"},
                            {"Gateway", "10.77.0.1"}};
const QVariantMap badMethod = {{"Method", "automatic"}};
const QVariantMap badAddress = {{"Method", "manual"}, {"Address", "10.77.0.256"}};
const QVariantMap shortAddress = {{"Method", "manual"}, {"Address", "10.77.7"}};

/** Calls to a connected ConnMan. */
const QList<Call> calls = {
    {"state", "/", "Manager", "GetProperties", {}},
    {"unknown method", "/", "Manager", "Nothing", {}},
    {"unknown interface", "/", "Nobody", "GetServices", {}},
    {"service on a technology", technology, "Service", "Connect", {}},
    {"unknown service", "/net/connman/service/none", "Service", "Connect", {}},
    {"unknown technology", "/net/connman/technology/wifi", "Technology", "Scan", {}},
    {"wrong arguments", technology, "Technology", "SetProperty", {"Powered"}},
    {"powered on", technology, "Technology", "SetProperty", {"Powered", variant(true)}},
    {"powered as text", technology, "Technology", "SetProperty", {"Powered", variant("true")}},
    {"unknown property", technology, "Technology", "SetProperty", {"Nothing", variant(true)}},
    {"scan by cable", technology, "Technology", "Scan", {}},
    {"asynchronous scan", technology, "Technology", "AsyncScan", {}},
    {"connected already", service, "Service", "Connect", {}},
    {"forget the cable", service, "Service", "Remove", {}},
    {"read-only property", service, "Service", "SetProperty", {"State", variant("idle")}},
    {"unknown setting", service, "Service", "SetProperty", {"Nothing", variant("idle")}},
    {"no settings",
     service,
     "Service",
     "SetProperty",
     {"IPv4.Configuration", variant(QVariantMap())}},
    {"settings as text",
     service,
     "Service",
     "SetProperty",
     {"IPv4.Configuration", variant("dhcp")}},
    {"unknown settings",
     service,
     "Service",
     "SetProperty",
     {"IPv4.Configuration", variant(badMethod)}},
    {"bad address", service, "Service", "SetProperty", {"IPv4.Configuration", variant(badAddress)}},
    {"short address",
     service,
     "Service",
     "SetProperty",
     {"IPv4.Configuration", variant(shortAddress)}},
    {"name servers",
     service,
     "Service",
     "SetProperty",
     {"Nameservers.Configuration", variant(QStringList{"10.77.0.1"})}},
    {"name servers as text",
     service,
     "Service",
     "SetProperty",
     {"Nameservers.Configuration", variant("10.77.0.1")}},
    {"unknown agent", "/", "Manager", "UnregisterAgent", {path("/agent")}},
    {"agent", "/", "Manager", "RegisterAgent", {path("/agent")}},
    {"second agent", "/", "Manager", "RegisterAgent", {path("/agent")}},
    {"agent's end", "/", "Manager", "UnregisterAgent", {path("/agent")}},
};

QString call(const Call &call)
{
    return Remote("net.connman", call.path, QString("net.connman.") + call.interface)
        .call(call.method, call.arguments);
}

void order(const QString &object, const char *interface, const char *name, const QVariant &value)
{
    call({"", object, interface, "SetProperty", {name, variant(value)}});
}

/** Aborts the test if ConnMan did not reach the state that later steps need. */
void wait(bool done)
{
    if (!done)
        qFatal("ConnMan did not reach the expected state");
}

bool isConnected()
{
    return render(RealConnman::service("IPv4")).contains("Gateway");
}
} // namespace

void TestConnmanAgreement::initTestCase()
{
    RealConnman real;
    ConnmanSignals heard;
    real.start();
    QVERIFY(heard.waitFor("/ ServicesChanged") && QTest::qWaitFor(isConnected, deadlineMs));
    realAnnouncements = observe([&](bool in) { in ? real.plugCable() : real.unplugCable(); });
    real.kill();
    // Ask last: some of the calls disturb the connection, although ConnMan rejects them.
    real.start();
    realAnswers = ask();
    real.kill();

    ConnmanStandIn standIn;
    const ListedObject cable = {
        QDBusObjectPath(service),
        {{"Type", "ethernet"}, {"IPv4.Configuration", QVariantMap{{"Method", "dhcp"}}}}};
    standIn.start();
    standIn.setTechnologies({{QDBusObjectPath(technology),
                              {{"Type", "ethernet"}, {"Powered", true}, {"Connected", false}}}});
    standIn.setLively(true);
    heard.take();
    standIn.addSurrounding(cable);
    QVERIFY(heard.waitFor("/ ServicesChanged"));
    standInAnswers = ask();
    standInAnnouncements = observe(
        [&](bool in) { in ? standIn.addSurrounding(cable) : standIn.removeSurrounding(service); });
    standIn.kill();
}

/** The replies of a connected ConnMan. */
TestConnmanAgreement::Answers TestConnmanAgreement::ask()
{
    Answers answers;
    for (const Call &each : calls)
        answers.insert(each.name, call(each));
    return answers;
}

/** The announcements of a connected ConnMan while the link goes down and up again. */
TestConnmanAgreement::Announcements TestConnmanAgreement::observe(const MoveCable &moveCable)
{
    Announcements announcements;
    ConnmanSignals heard;
    order(technology, "Technology", "Powered", false);
    wait(heard.waitFor("/ ServicesChanged"));
    announcements.insert("power off", essence(heard.take()));
    order(technology, "Technology", "Powered", true);
    wait(heard.waitFor("/ ServicesChanged") && QTest::qWaitFor(isConnected, deadlineMs));
    announcements.insert("power on", withoutService(essence(heard.take())));

    moveCable(false);
    wait(heard.waitFor("/ ServicesChanged"));
    announcements.insert("cable out", essence(heard.take()));

    moveCable(true);
    wait(heard.waitFor("/ ServicesChanged") && QTest::qWaitFor(isConnected, deadlineMs));
    announcements.insert("cable in", withoutService(essence(heard.take())));

    order(service, "Service", "IPv4.Configuration", manual);
    wait(heard.waitFor(service + changed + "(\"State\", <\"ready\">") &&
         QTest::qWaitFor(isConnected, deadlineMs));
    announcements.insert("manual settings", essence(heard.take()));
    return announcements;
}

/**
 * Returns the reproducible part of @p heard: the signals of the link, and the lists of services. An
 * address becomes complete in several signals "IPv4": only the last of them is kept. "..." replaces
 * the properties in the lists.
 */
QStringList TestConnmanAgreement::essence(const QStringList &heard)
{
    const QRegularExpression link("PropertyChanged \\(\"(State|Connected|Powered|IPv4|"
                                  "IPv4\\.Configuration)\", ");
    const QString address = service + changed + "(\"IPv4\", ";
    QStringList kept;
    for (QString signal : heard) {
        if (signal.startsWith("/ ServicesChanged"))
            signal.replace(QRegularExpression("\\{\".*\\}"), "{...}");
        else if (!link.match(signal).hasMatch())
            continue;
        if (!kept.isEmpty() && kept.last().startsWith(address) && signal.startsWith(address))
            kept.removeLast();
        kept << signal;
    }
    return kept;
}

/** Leaves out the service and the lists, which depend on how soon the service gets its lease. */
QStringList TestConnmanAgreement::withoutService(const QStringList &heard)
{
    QStringList kept;
    for (const QString &signal : heard) {
        if (!signal.startsWith(service) && !signal.startsWith("/ ServicesChanged"))
            kept << signal;
    }
    return kept;
}

void TestConnmanAgreement::bothReplyTheSame_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : realAnswers.keys())
        QTest::newRow(qPrintable(name)) << name;
}

void TestConnmanAgreement::bothReplyTheSame()
{
    QFETCH(QString, name);
    QCOMPARE(standInAnswers.value(name), realAnswers.value(name));
}

void TestConnmanAgreement::bothAnnounceTheSame_data()
{
    QTest::addColumn<QString>("name");
    for (const QString &name : realAnnouncements.keys())
        QTest::newRow(qPrintable(name)) << name;
}

void TestConnmanAgreement::bothAnnounceTheSame()
{
    QFETCH(QString, name);
    QVERIFY(!realAnnouncements.value(name).isEmpty());
    QCOMPARE(standInAnnouncements.value(name), realAnnouncements.value(name));
}

WORLD_TEST_MAIN(TestConnmanAgreement)
#include "test_connmanagreement.moc"
