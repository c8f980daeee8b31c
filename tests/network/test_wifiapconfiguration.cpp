#include "networktest.h"

#include <QDBusMetaType>

#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using Texts = QMap<QString, QString>;
Q_DECLARE_METATYPE(Texts)

/** The configuration that the access point writes for hostapd, on the running daemon. */
class TestWifiApConfiguration : public NetworkTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void theConfigurationIsTheTemplatesWithTheValues_data();
    void theConfigurationIsTheTemplatesWithTheValues();
    void aTemplateIsRewrittenByteForByte();
    void channelsAreCutToSixteenBits_data();
    void channelsAreCutToSixteenBits();
    void valuesOfOtherTypesAreEmpty();
    void anEarlierConfigurationIsReplaced();
    void aTemplateThatCannotBeReadKeepsTheEarlierConfiguration_data();
    void aTemplateThatCannotBeReadKeepsTheEarlierConfiguration();
    void aConfigurationThatCannotBeWrittenFailsTheConnect_data();
    void aConfigurationThatCannotBeWrittenFailsTheConnect();
    void aFullDiskFailsTheConnect();
    void aControlCharacterIsRefused_data();
    void aControlCharacterIsRefused();

private:
    QString start(const QVariantMap &parameters);
    static void plantElsewhere();
    static QByteArray written() { return readFile("/tmp/User_part/hostapd.conf"); }

    const QVariantMap lab = {{"Channel", 6},
                             {"SSID", "Lab"},
                             {"Password", "12345678"},
                             {"Security", "WPA2"},
                             {"IP", "192.168.7.1"}};
    const QString cannotCreate = failed("Cannot create hostapd conf file");
    const QStringList failing = {state("WIFIAP", "/net/wap", "configuration"),
                                 state("WIFIAP", "/net/wap", "failure")};
};

void TestWifiApConfiguration::initTestCase()
{
    qDBusRegisterMetaType<Texts>();
}

void TestWifiApConfiguration::init()
{
    NetworkTest::init();
    // The steps after the configuration are tested elsewhere.
    script.setFailure(1);
}

QString TestWifiApConfiguration::start(const QVariantMap &parameters)
{
    QString reply = wifiAp.call("connect", {parameters});
    waitForScripts();
    return reply;
}

void TestWifiApConfiguration::theConfigurationIsTheTemplatesWithTheValues_data()
{
    QTest::addColumn<QString>("security");
    QTest::addColumn<QString>("file");
    QTest::newRow("encrypted") << "WPA2"
                               << "hostapd_ccmp.conf";
    QTest::newRow("another case") << "wpa2"
                                  << "hostapd_open.conf";
    QTest::newRow("suffix") << "WPA2-PSK"
                            << "hostapd_open.conf";
    QTest::newRow("none") << ""
                          << "hostapd_open.conf";
}

void TestWifiApConfiguration::theConfigurationIsTheTemplatesWithTheValues()
{
    QFETCH(QString, security);
    QFETCH(QString, file);
    QByteArray expected = readFile("/usr/share/redpine/" + file);
    expected.replace("channel=1\n", "channel=6\n");
    expected.replace("ssid=Strandel\n", "ssid=Lab\n");
    expected.replace("wpa_passphrase=strandel\n", "wpa_passphrase=12345678\n");
    expected.replace("own_ip_addr=192.168.2.1\n", "own_ip_addr=192.168.7.1\n");
    begin();
    QVariantMap parameters = lab;
    parameters["Security"] = security;

    QCOMPARE(start(parameters), QString("()"));

    QCOMPARE(written(), expected);
}

void TestWifiApConfiguration::aTemplateIsRewrittenByteForByte()
{
    writeFile("/usr/share/redpine/hostapd_open.conf",
              "# caf\xc3\xa9 \xff\nssid=old=\nssid = old\n\nssid=\nssid=again\nwpa_passphrase=x\n"
              "bridge=br0");
    begin();

    QCOMPARE(start({{"SSID", QString::fromUtf8("R\xc3\xa9seau")}, {"Password", "a=b \"c\""}}),
             QString("()"));

    QCOMPARE(written(), QByteArray("# caf\xc3\xa9 \xff\nssid=old=\nssid = old\n\n"
                                   "ssid=R\xc3\xa9seau\nssid=R\xc3\xa9seau\n"
                                   "wpa_passphrase=a=b \"c\"\nbridge=br0"));
}

void TestWifiApConfiguration::channelsAreCutToSixteenBits_data()
{
    QTest::addColumn<QVariant>("channel");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("missing") << QVariant() << QByteArray("channel=0");
    QTest::newRow("usual") << QVariant(11) << QByteArray("channel=11");
    QTest::newRow("70000") << QVariant(70000) << QByteArray("channel=4464");
    QTest::newRow("negative") << QVariant(-1) << QByteArray("channel=65535");
    QTest::newRow("unsigned") << QVariant(70000u) << QByteArray("channel=4464");
    QTest::newRow("64 bits") << QVariant(4294967302LL) << QByteArray("channel=6");
    QTest::newRow("byte") << QVariant::fromValue(uchar(6)) << QByteArray("channel=6");
    QTest::newRow("digits") << QVariant("36") << QByteArray("channel=36");
    QTest::newRow("letters") << QVariant("auto") << QByteArray("channel=0");
}

void TestWifiApConfiguration::channelsAreCutToSixteenBits()
{
    QFETCH(QVariant, channel);
    QFETCH(QByteArray, line);
    writeFile("/usr/share/redpine/hostapd_open.conf", "channel=1");
    begin();

    start(channel.isValid() ? QVariantMap{{"Channel", channel}} : QVariantMap());

    QCOMPARE(written(), line);
}

void TestWifiApConfiguration::valuesOfOtherTypesAreEmpty()
{
    writeFile("/usr/share/redpine/hostapd_open.conf",
              "channel=1\nssid=a\nwpa_passphrase=b\nown_ip_addr=c\n");
    begin();

    QCOMPARE(start({{"Channel", QVariant::fromValue(Texts{{"a", "b"}})},
                    {"SSID", QVariantMap{{"a", "b"}}},
                    {"Password", QVariantList{1, 2}},
                    {"Security", QVariant::fromValue(Texts{{"WPA2", "WPA2"}})},
                    {"IP", QVariant::fromValue(QList<int>{1})},
                    {"Other", QVariant::fromValue(Texts())}}),
             QString("()"));

    QCOMPARE(written(), QByteArray("channel=0\nssid=\nwpa_passphrase=\nown_ip_addr=\n"));
}

void TestWifiApConfiguration::anEarlierConfigurationIsReplaced()
{
    writeFile("/tmp/User_part/hostapd.conf", QByteArray(10000, 'a'));
    writeFile("/usr/share/redpine/hostapd_open.conf", "ssid=a\n");
    begin();

    start({{"SSID", "Lab"}});

    QCOMPARE(written(), QByteArray("ssid=Lab\n"));
}

void TestWifiApConfiguration::aTemplateThatCannotBeReadKeepsTheEarlierConfiguration_data()
{
    QTest::addColumn<bool>("isDirectory");
    QTest::newRow("missing") << false;
    QTest::newRow("a directory") << true;
}

void TestWifiApConfiguration::aTemplateThatCannotBeReadKeepsTheEarlierConfiguration()
{
    QFETCH(bool, isDirectory);
    writeFile("/tmp/User_part/hostapd.conf", "earlier");
    removePath("/usr/share/redpine/hostapd_open.conf");
    if (isDirectory)
        QDir().mkdir("/usr/share/redpine/hostapd_open.conf");
    begin();

    QCOMPARE(start({{"SSID", "Lab"}}), cannotCreate);

    QCOMPARE(announced(), failing);
    QCOMPARE(written(), QByteArray("earlier"));
    QCOMPARE(script.log(), QStringList());
    removePath("/usr/share/redpine/hostapd_open.conf");
}

void TestWifiApConfiguration::aConfigurationThatCannotBeWrittenFailsTheConnect_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind :
         {"no directory", "directory", "link", "fifo", "stranger's link to its directory"})
        QTest::newRow(kind) << kind;
}

void TestWifiApConfiguration::aConfigurationThatCannotBeWrittenFailsTheConnect()
{
    QFETCH(QString, kind);
    const QString path = "/tmp/User_part/hostapd.conf";
    const QString precious = "/opt/precious";
    writeFile(precious, "kept");
    begin();
    if (kind == "no directory")
        removePath("/tmp/User_part");
    else if (kind == "directory")
        QVERIFY(QDir().mkdir(path));
    else if (kind == "link")
        QVERIFY(QFile::link(precious, path));
    else if (kind != "fifo")
        plantElsewhere();
    else
        QCOMPARE(mkfifo(qPrintable(path), 0666), 0);

    QCOMPARE(start(lab), cannotCreate);

    QCOMPARE(announced(), failing);
    QCOMPARE(script.log(), QStringList());
    QCOMPARE(readFile(precious), QByteArray("kept"));
    QCOMPARE(snapshot("/opt/victim"), QStringList());
}

/** Replaces the configuration's directory with a link that the user "stranger" owns. */
void TestWifiApConfiguration::plantElsewhere()
{
    const char *const profiles = "/tmp/User_part";
    const uid_t stranger = 61186;
    removePath(profiles);
    QVERIFY(QDir().mkpath("/opt/victim"));
    QVERIFY(QFile::link("/opt/victim", profiles));
    QCOMPARE(lchown(profiles, stranger, stranger), 0);
}

void TestWifiApConfiguration::aFullDiskFailsTheConnect()
{
    begin();
    removePath("/tmp/User_part");
    QDir().mkdir("/tmp/User_part");
    QCOMPARE(mount("tmpfs", "/tmp/User_part", "tmpfs", 0, "size=4k"), 0);
    writeFile("/usr/share/redpine/hostapd_open.conf", QByteArray(5000, '\n') + "ssid=\n");

    const QString reply = start({{"SSID", "Lab"}});

    umount("/tmp/User_part");
    QCOMPARE(reply, cannotCreate);
    QCOMPARE(announced(), failing);
    QCOMPARE(script.log(), QStringList());
}

void TestWifiApConfiguration::aControlCharacterIsRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    for (const char *key : {"SSID", "Password", "IP"}) {
        QTest::addRow("line feed in %s", key) << key << "x\nctrl_interface=/etc";
        QTest::addRow("carriage return in %s", key) << key << "x\r";
        QTest::addRow("delete in %s", key) << key << "\x7f";
    }
}

/**
 * A line feed in a parameter could add any line to hostapd's configuration; hostapd runs as root.
 */
void TestWifiApConfiguration::aControlCharacterIsRefused()
{
    QFETCH(QString, key);
    QFETCH(QString, text);
    writeFile("/tmp/User_part/hostapd.conf", "earlier");
    begin();
    QVariantMap parameters = lab;
    parameters[key] = text;

    QCOMPARE(start(parameters), cannotCreate);

    QCOMPARE(announced(), failing);
    QCOMPARE(written(), QByteArray("earlier"));
    QCOMPARE(script.log(), QStringList());
    QCOMPARE(start(lab), QString("()"));
    QVERIFY(written().contains("\nssid=Lab\n"));
}

WORLD_TEST_MAIN(TestWifiApConfiguration)
#include "test_wifiapconfiguration.moc"
