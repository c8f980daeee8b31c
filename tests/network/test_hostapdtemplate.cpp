#include "hostapdtemplate.h"

#include <QTest>

/** Rewriting the templates of the access point's configuration. */
class TestHostapdTemplate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void securityChoosesTheTemplate_data();
    void securityChoosesTheTemplate();
    void linesAreRewritten_data();
    void linesAreRewritten();
    void valuesAreInsertedAsTheyStand_data();
    void valuesAreInsertedAsTheyStand();
    void channelsAreDecimal_data();
    void channelsAreDecimal();
    void controlCharactersFitNoLine_data();
    void controlCharactersFitNoLine();
    void everyValueIsChecked();
    void aWholeTemplateKeepsAllButTheFourValues();
};

void TestHostapdTemplate::securityChoosesTheTemplate_data()
{
    QTest::addColumn<QString>("security");
    QTest::addColumn<QString>("file");

    const QString encrypted = QStringLiteral("hostapd_ccmp.conf");
    const QString open = QStringLiteral("hostapd_open.conf");
    QTest::newRow("exact") << "WPA2" << encrypted;
    QTest::newRow("other case") << "wpa2" << open;
    QTest::newRow("suffix") << "WPA2-PSK" << open;
    QTest::newRow("blank") << "WPA2 " << open;
    QTest::newRow("other") << "WEP" << open;
    QTest::newRow("empty") << "" << open;
    QTest::newRow("missing") << QString() << open;
}

void TestHostapdTemplate::securityChoosesTheTemplate()
{
    QFETCH(QString, security);
    QFETCH(QString, file);
    QCOMPARE(hostapdTemplateName(security), file);
}

void TestHostapdTemplate::linesAreRewritten_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");

    const auto row = [](const char *name, const QByteArray &text, const QByteArray &expected) {
        QTest::newRow(name) << text << expected;
    };
    row("channel", "channel=1", "channel=11");
    row("network name", "ssid=old", "ssid=Lab");
    row("password", "wpa_passphrase=old", "wpa_passphrase=secret");
    row("address", "own_ip_addr=127.0.0.1", "own_ip_addr=10.0.0.1");
    row("empty value", "ssid=", "ssid=Lab");
    row("two equals signs", "ssid=old=", "ssid=old=");
    row("two values", "ssid=old=older", "ssid=old=older");
    row("no equals sign", "ssid", "ssid");
    row("blanks around the sign", "ssid = old", "ssid = old");
    row("blank before the key", " ssid=old", " ssid=old");
    row("other case", "SSID=old", "SSID=old");
    row("longer key", "ssid2=old", "ssid2=old");
    row("shorter key", "sid=old", "sid=old");
    row("no key", "=old", "=old");
    row("comment", "#ssid=old", "#ssid=old");
    row("other key", "driver=nl80211", "driver=nl80211");
    row("every time", "ssid=a\nssid=b", "ssid=Lab\nssid=Lab");
    row("a value that is a key", "ssid=channel", "ssid=Lab");
    row("empty", "", "");
    row("blank lines", "\n\nssid=a\n\n", "\n\nssid=Lab\n\n");
    row("final line feed", "ssid=a\n", "ssid=Lab\n");
    row("no final line feed", "a\nssid=a", "a\nssid=Lab");
    row("no UTF-8", "# \xff\xfe=\nssid=\xff", "# \xff\xfe=\nssid=Lab");
}

void TestHostapdTemplate::linesAreRewritten()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(hostapdConfiguration(text, {11, QStringLiteral("Lab"), QStringLiteral("secret"),
                                         QStringLiteral("10.0.0.1")}),
             expected);
}

void TestHostapdTemplate::valuesAreInsertedAsTheyStand_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("empty") << "";
    QTest::newRow("equals sign") << "a=b";
    QTest::newRow("quotes and blanks") << " \"a\" #b\\ ";
    QTest::newRow("outside ASCII") << QStringLiteral("caf\u00e9 \u6e2c");
    QTest::newRow("much too long") << QString(1000, QLatin1Char('a'));
}

void TestHostapdTemplate::valuesAreInsertedAsTheyStand()
{
    QFETCH(QString, value);
    QCOMPARE(hostapdConfiguration("ssid=\nwpa_passphrase=\nown_ip_addr=", {0, value, value, value}),
             "ssid=" + value.toUtf8() + "\nwpa_passphrase=" + value.toUtf8() +
                 "\nown_ip_addr=" + value.toUtf8());
}

void TestHostapdTemplate::channelsAreDecimal_data()
{
    QTest::addColumn<quint16>("channel");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("none") << quint16(0) << QByteArray("channel=0");
    QTest::newRow("usual") << quint16(13) << QByteArray("channel=13");
    QTest::newRow("greatest") << quint16(65535) << QByteArray("channel=65535");
}

void TestHostapdTemplate::channelsAreDecimal()
{
    QFETCH(quint16, channel);
    QFETCH(QByteArray, expected);
    QCOMPARE(hostapdConfiguration("channel=1", {channel, QString(), QString(), QString()}),
             expected);
}

void TestHostapdTemplate::controlCharactersFitNoLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("fits");

    const auto row = [](const char *name, const QString &text, bool fits) {
        QTest::newRow(name) << text << fits;
    };
    row("empty", QString(), true);
    row("letters", "Lab", true);
    row("blanks and punctuation", " a=b \"c\" #'\\~", true);
    row("accents", QString::fromUtf8("R\xc3\xa9seau"), true);
    row("no-break space, the first after the control characters", QString(QChar(0xa0)), true);
    row("line separator, a line break only for editors", QString(QChar(0x2028)), true);
    row("outside the basic plane", QString::fromUtf8("\xf0\x9f\x93\xb6"), true);
    row("long", QString(100000, 'x'), true);
    row("line feed", "x\nctrl_interface=/etc", false);
    row("line feed alone", "\n", false);
    row("at the end", "Lab\n", false);
    row("carriage return", "x\ry", false);
    row("zero", QString("x") + QChar(0) + "y", false);
    row("tabulator", "x\ty", false);
    row("the last below the blank", QString(QChar(0x1f)), false);
    row("delete", QString(QChar(0x7f)), false);
    row("next line", QString(QChar(0x85)), false);
    row("the last one", QString(QChar(0x9f)), false);
}

void TestHostapdTemplate::controlCharactersFitNoLine()
{
    QFETCH(QString, text);
    QFETCH(bool, fits);
    QCOMPARE(fitsHostapdLines({6, text, "12345678", "10.0.0.1"}), fits);
}

void TestHostapdTemplate::everyValueIsChecked()
{
    QVERIFY(fitsHostapdLines({6, "Lab", "12345678", "10.0.0.1"}));
    QVERIFY(!fitsHostapdLines({6, "Lab\n", "12345678", "10.0.0.1"}));
    QVERIFY(!fitsHostapdLines({6, "Lab", "12345678\n", "10.0.0.1"}));
    QVERIFY(!fitsHostapdLines({6, "Lab", "12345678", "10.0.0.1\n"}));
}

void TestHostapdTemplate::aWholeTemplateKeepsAllButTheFourValues()
{
    const QByteArray text = "# access point\n"
                            "interface=wifi_ap\n"
                            "ssid=TEMPLATE\n"
                            "channel=1\n"
                            "\n"
                            "wpa=2\n"
                            "wpa_key_mgmt=WPA-PSK\n"
                            "wpa_passphrase=TEMPLATE\n"
                            "own_ip_addr=0.0.0.0\n"
                            "vendor_elements=a=b\n";

    QCOMPARE(hostapdConfiguration(text, {6, QStringLiteral("Strandel"), QStringLiteral("12345678"),
                                         QStringLiteral("192.168.2.1")}),
             QByteArray("# access point\n"
                        "interface=wifi_ap\n"
                        "ssid=Strandel\n"
                        "channel=6\n"
                        "\n"
                        "wpa=2\n"
                        "wpa_key_mgmt=WPA-PSK\n"
                        "wpa_passphrase=12345678\n"
                        "own_ip_addr=192.168.2.1\n"
                        "vendor_elements=a=b\n"));
}

QTEST_GUILESS_MAIN(TestHostapdTemplate)
#include "test_hostapdtemplate.moc"
