#include "commandline.h"
#include "help.h"
#include "present.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryFile>
#include <QTest>

/** kyboardctl's parsing of its command line, and its formatting of values. */
class TestKyboardctlCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodArgumentsBecomeValues_data();
    void goodArgumentsBecomeValues();
    void wrongArgumentsAreReported_data();
    void wrongArgumentsAreReported();
    void secretsComeFromAPromptNotFromTheCommandLine();
    void withoutItsSecretsARecordIsIncomplete();
    void aSecretThatIsTooLongIsNotShown();
    void aListOfNumbersCanComeFromAFile();
    void everyCommandIsFoundByItsWords();
    void helpNamesEveryCommand();
    void helpNamesEveryOptionAndStatus();
    void completionOffersTheNextWords_data();
    void completionOffersTheNextWords();
    void valuesForPeople_data();
    void valuesForPeople();
    void valuesForMachines();

private:
    static bool noSecret(const QString &, QString &) { return false; }
    static QVariantList numbers(int count);
    static QString numbersText(int count);
    static const Command &command(const QString &words);
};

const Command &TestKyboardctlCommandLine::command(const QString &words)
{
    int used = 0;
    const Command *found = findCommand(words.split(' '), &used);
    if (!found)
        qFatal("no command %s", qPrintable(words));
    return *found;
}

/** The numbers from 4294967295 downwards. */
QVariantList TestKyboardctlCommandLine::numbers(int count)
{
    QVariantList list;
    for (uint index = 0; index < uint(count); ++index)
        list << 4294967295u - index;
    return list;
}

QString TestKyboardctlCommandLine::numbersText(int count)
{
    return QVariant(numbers(count)).toStringList().join(',');
}

void TestKyboardctlCommandLine::goodArgumentsBecomeValues_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QVariantList>("values");

    QTest::newRow("none") << "user get" << QStringList() << QVariantList();
    QTest::newRow("choice") << "user set" << QStringList{"user4"} << QVariantList{"user4"};
    QTest::newRow("two choices") << "led set" << QStringList{"WIFI", "BLINK_3HZ"}
                                 << QVariantList{"WIFI", "BLINK_3HZ"};
    QTest::newRow("lowest") << "backlight set" << QStringList{"0"} << QVariantList{0};
    QTest::newRow("highest") << "backlight set" << QStringList{"100"} << QVariantList{100};
    QTest::newRow("negative") << "temperature threshold" << QStringList{"SOM", "-2147483648"}
                              << QVariantList{"SOM", int(-2147483647 - 1)};
    QTest::newRow("on") << "module power" << QStringList{"on"} << QVariantList{true};
    QTest::newRow("off") << "backlight set-step" << QStringList{"off", "13"}
                         << QVariantList{false, 13};
    QTest::newRow("settings") << "ethernet set-ipv4"
                              << QStringList{"Method=manual", "Address=10.0.0.2", "DNS1=::1"}
                              << QVariantList{QVariantMap{{"Method", "manual"},
                                                          {"Address", "10.0.0.2"},
                                                          {"DNS1", "::1"}}};
    QTest::newRow("no settings") << "wifi set-ipv4" << QStringList() << QVariantList{QVariantMap()};
    QTest::newRow("equals sign in a value")
        << "ap start" << QStringList{"Channel=6", "SSID=a=b", "Security=open", "IP=192.168.7.1"}
        << QVariantList{QVariantMap{
               {"Channel", 6}, {"SSID", "a=b"}, {"Security", "open"}, {"IP", "192.168.7.1"}}};
    QTest::newRow("numbers") << "eeprom set-measure"
                             << QStringList{"AdjustementSite=1", "AdjustementDate=4294967295",
                                            "NextAdjustementDate=3",
                                            "AdjustementCoefficients=" + numbersText(296)}
                             << QVariantList{
                                    QVariantMap{{"AdjustementSite", 1},
                                                {"AdjustementDate", 4294967295u},
                                                {"NextAdjustementDate", 3},
                                                {"AdjustementCoefficients", numbers(296)}}};
}

void TestKyboardctlCommandLine::goodArgumentsBecomeValues()
{
    QFETCH(QString, words);
    QFETCH(QStringList, arguments);
    QFETCH(QVariantList, values);

    QVariantList parsed;
    QString complaint;
    QVERIFY2(parseArguments(command(words), arguments, noSecret, parsed, complaint),
             qPrintable(complaint));
    QCOMPARE(parsed, values);
}

void TestKyboardctlCommandLine::wrongArgumentsAreReported_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("missing") << "user set" << QStringList() << "USER is missing";
    QTest::newRow("too many") << "user get" << QStringList{"now"} << "'now' is one word too many";
    QTest::newRow("unknown choice")
        << "storage mounted" << QStringList{"sd"} << "DEVICE: 'sd' is not one of SD, USB";
    QTest::newRow("too low") << "temperature interval" << QStringList{"999"}
                             << "MILLISECONDS: '999' is not a whole number from 1000 to 2147483647";
    QTest::newRow("too high") << "backlight set" << QStringList{"101"}
                              << "PERCENT: '101' is not a whole number from 0 to 100";
    QTest::newRow("no number") << "backlight set" << QStringList{"half"}
                               << "PERCENT: 'half' is not a whole number from 0 to 100";
    QTest::newRow("no switch") << "module power" << QStringList{"1"}
                               << "on|off: '1' is not on or off";
    QTest::newRow("unknown key")
        << "wifi set-ipv4" << QStringList{"address=1.2.3.4"}
        << "'address=1.2.3.4' is none of Method=, Address=, Netmask=, Gateway=, DNS1=, DNS2=";
    QTest::newRow("no key") << "wifi set-ipv4" << QStringList{"dhcp"}
                            << "'dhcp' is none of Method=, Address=, Netmask=, Gateway=, DNS1=, "
                               "DNS2=";
    QTest::newRow("twice") << "wifi set-ipv4" << QStringList{"DNS1=1.1.1.1", "DNS1=9.9.9.9"}
                           << "DNS1 is given twice";
    QTest::newRow("required key") << "eeprom set-measure" << QStringList{"AdjustementSite=1"}
                                  << "AdjustementDate= is missing";
    QTest::newRow("byte") << "eeprom set-instrument" << QStringList{"Brand=256"}
                          << "Brand: '256' is not a whole number from 0 to 255";
    QTest::newRow("hexadecimal") << "eeprom set-instrument" << QStringList{"Model=83450"}
                                 << "Model: '83450' is not up to four hexadecimal digits";
    QTest::newRow("no hexadecimal") << "eeprom set-instrument" << QStringList{"Model=0x45"}
                                    << "Model: '0x45' is not up to four hexadecimal digits";
    QTest::newRow("long serial number")
        << "eeprom set-instrument" << QStringList{"SerialNumber=123456789"}
        << "SerialNumber: '123456789' is not up to 8 printable ASCII characters";
    QTest::newRow("long warranty number")
        << "eeprom set-instrument" << QStringList{"WarrantyNumber=1234567890"}
        << "WarrantyNumber: '1234567890' is not up to 9 printable ASCII characters";
    QTest::newRow("encoding") << "eeprom set-instrument" << QStringList{"SerialNumber=caf\u00e9"}
                              << "SerialNumber: 'caf\u00e9' is not up to 8 printable ASCII "
                                 "characters";
    QTest::newRow("line feed") << "eeprom set-instrument" << QStringList{"SerialNumber=a\nb"}
                               << "SerialNumber: 'a\\x0ab' is not up to 8 printable ASCII "
                                  "characters";
    QTest::newRow("plus sign")
        << "eeprom set-measure" << QStringList{"AdjustementDate=+5"}
        << "AdjustementDate: '+5' is not a whole number from 0 to 4294967295";
    QTest::newRow("blank") << "eeprom set-measure" << QStringList{"AdjustementDate= 5"}
                           << "AdjustementDate: ' 5' is not a whole number from 0 to 4294967295";
    QTest::newRow("plus sign in a list")
        << "eeprom set-measure" << QStringList{"AdjustementCoefficients=1,+2"}
        << "AdjustementCoefficients: '+2' is not a whole number from 0 to 4294967295";
    QTest::newRow("number list")
        << "eeprom set-measure" << QStringList{"AdjustementCoefficients=1,x"}
        << "AdjustementCoefficients: 'x' is not a whole number from 0 to 4294967295";
    QTest::newRow("number too high")
        << "eeprom set-measure" << QStringList{"AdjustementCoefficients=4294967296"}
        << "AdjustementCoefficients: '4294967296' is not a whole number from 0 to 4294967295";
    QTest::newRow("few numbers")
        << "eeprom set-measure" << QStringList{"AdjustementCoefficients=" + numbersText(295)}
        << "AdjustementCoefficients: 295 numbers are given, and the record has 296";
    QTest::newRow("many numbers")
        << "eeprom set-measure" << QStringList{"AdjustementCoefficients=" + numbersText(297)}
        << "AdjustementCoefficients: 297 numbers are given, and the record has 296";
    QTest::newRow("no file") << "eeprom set-measure"
                             << QStringList{"AdjustementCoefficients=@/nowhere"}
                             << "AdjustementCoefficients: the file '/nowhere' cannot be read";
    QTest::newRow("site") << "eeprom set-measure" << QStringList{"AdjustementSite=65536"}
                          << "AdjustementSite: '65536' is not a whole number from 0 to 65535";
    QTest::newRow("date") << "eeprom set-measure" << QStringList{"AdjustementDate=2026-11-21"}
                          << "AdjustementDate: '2026-11-21' is not a whole number from 0 to "
                             "4294967295";
    QTest::newRow("address") << "wifi set-ipv4" << QStringList{"Address=999.1.1.1"}
                             << "Address: '999.1.1.1' is not an IPv4 address of a host, as in "
                                "192.168.1.20";
    QTest::newRow("netmask") << "wifi set-ipv4" << QStringList{"Netmask=bogus"}
                             << "Netmask: 'bogus' is not a netmask, as in 255.255.255.0";
    QTest::newRow("name server") << "wifi set-ipv4" << QStringList{"DNS2="}
                                 << "DNS2: '' is not an IPv4 or IPv6 address";
    QTest::newRow("gateway outside")
        << "wifi set-ipv4"
        << QStringList{"Method=manual", "Address=10.0.0.2", "Netmask=255.255.255.0",
                       "Gateway=10.0.1.1"}
        << "Gateway: '10.0.1.1' is not in the network 10.0.0.0/24 of the address";
    QTest::newRow("channel") << "ap start" << QStringList{"Channel=99"}
                             << "Channel: '99' is not a whole number from 1 to 14";
    QTest::newRow("no SSID") << "ap start" << QStringList{"SSID="}
                             << "SSID: '' is not 1 to 32 bytes without control characters";
    QTest::newRow("line feed in an SSID")
        << "ap start" << QStringList{"SSID=a\nwpa=0"}
        << "SSID: 'a\\x0awpa=0' is not 1 to 32 bytes without control characters";
    QTest::newRow("access point's address")
        << "ap start" << QStringList{"IP=nonsense"}
        << "IP: 'nonsense' is not an IPv4 address of a host, as in 192.168.1.20";
    QTest::newRow("encryption left open")
        << "ap start" << QStringList{"SSID=a", "Channel=1", "IP=192.168.7.1"}
        << "Security= is missing";
    QTest::newRow("network") << "wifi connect" << QStringList{"a\tb"}
                             << "NETWORK: 'a\\x09b' is not 1 to 32 characters without control "
                                "characters";
}

void TestKyboardctlCommandLine::wrongArgumentsAreReported()
{
    QFETCH(QString, words);
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);

    QVariantList parsed;
    QString actual;
    QVERIFY(!parseArguments(command(words), arguments, noSecret, parsed, actual));
    QCOMPARE(actual, complaint);
}

void TestKyboardctlCommandLine::secretsComeFromAPromptNotFromTheCommandLine()
{
    const QStringList record = {"Subsidiary=1",     "Fabrication=2", "Brand=3",
                                "Type=4",           "Model=8345",    "SerialNumber=12345678",
                                "WarrantyNumber=W", "RelaunchTag=6", "TroubleshootingTag=5",
                                "FirstPassTag=7"};
    QStringList asked;
    const SecretReader reader = [&asked](const QString &prompt, QString &secret) {
        asked << prompt;
        secret = "of " + prompt.mid(3, 7);
        return true;
    };
    QVariantList parsed;
    QString complaint;

    QVERIFY(parseArguments(command("eeprom set-instrument"), record, reader, parsed, complaint));
    QCOMPARE(asked, (QStringList{"IrdInstrumentPassword", "IrdSessionPassword"}));
    QCOMPARE(parsed.at(0).toMap().value("IrdSessionPassword"), QVariant(QByteArray("of Session")));
    QCOMPARE(parsed.at(0).toMap().value("SerialNumber"), QVariant(QByteArray("12345678")));

    QVERIFY(!parseArguments(command("eeprom set-instrument"),
                            QStringList{"IrdSessionPassword=x"} + record, reader, parsed,
                            complaint));
    QCOMPARE(complaint, QStringLiteral("IrdSessionPassword is not taken from the command line"));
}

void TestKyboardctlCommandLine::withoutItsSecretsARecordIsIncomplete()
{
    const QStringList record = {"Subsidiary=1",     "Fabrication=2", "Brand=3",
                                "Type=4",           "Model=8345",    "SerialNumber=12345678",
                                "WarrantyNumber=W", "RelaunchTag=6", "TroubleshootingTag=5",
                                "FirstPassTag=7"};
    QVariantList parsed;
    QString complaint;
    QVERIFY(!parseArguments(command("eeprom set-instrument"), record, noSecret, parsed, complaint));
    QCOMPARE(complaint, QStringLiteral("IrdInstrumentPassword could not be read"));
}

void TestKyboardctlCommandLine::aSecretThatIsTooLongIsNotShown()
{
    const QStringList record = {"Subsidiary=1",     "Fabrication=2", "Brand=3",
                                "Type=4",           "Model=8345",    "SerialNumber=12345678",
                                "WarrantyNumber=W", "RelaunchTag=6", "TroubleshootingTag=5",
                                "FirstPassTag=7"};
    const SecretReader reader = [](const QString &prompt, QString &secret) {
        secret = QString(prompt == "IrdInstrumentPassword" ? 30 : 17, 's');
        return true;
    };
    QVariantList parsed;
    QString complaint;
    QVERIFY(!parseArguments(command("eeprom set-instrument"), record, reader, parsed, complaint));
    QCOMPARE(complaint, QStringLiteral("IrdSessionPassword: what was given is not up to 16 "
                                       "printable ASCII characters"));
}

void TestKyboardctlCommandLine::aListOfNumbersCanComeFromAFile()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("1, 2,3\n4294967295\n" + QByteArray("7 ").repeated(292) + '\n');
    file.flush();
    QVariant value;
    QString complaint;
    const Argument &key = command("eeprom set-measure").arguments.at(0).keys.at(3);
    QVERIFY(parseValue(key, '@' + file.fileName(), value, complaint));
    QCOMPARE(value.toList().mid(0, 5), (QVariantList{1u, 2u, 3u, 4294967295u, 7u}));
    QCOMPARE(value.toList().size(), 296);
}

void TestKyboardctlCommandLine::everyCommandIsFoundByItsWords()
{
    for (const Command &expected : commands()) {
        int used = 0;
        QCOMPARE(findCommand(expected.words.split(' ') + QStringList{"more"}, &used), &expected);
        QCOMPARE(used, expected.words.count(' ') + 1);
    }
    int used = 0;
    QVERIFY(!findCommand({"user"}, &used));
    QVERIFY(!findCommand({}, &used));
}

void TestKyboardctlCommandLine::helpNamesEveryCommand()
{
    const QString text = helpText();
    for (const Command &each : commands()) {
        QVERIFY2(text.contains("  " + synopsis(each)), qPrintable(each.words));
        QVERIFY(!each.help.isEmpty());
    }
    QVERIFY(helpText({"led"}).contains("BAT_RS1, BAT_GS1"));
    QVERIFY(!helpText({"led"}).contains("kyboardctl user"));
    QVERIFY(!helpText({"led", "set"}).contains("kyboardctl led list"));
    QCOMPARE(helpText({"lights"}), QString());
    QVERIFY(helpText({"wifi", "connect"}).contains("    --open "));
    QVERIFY(helpText({"wifi", "scan"}).contains("    --no-wait  "));
    QVERIFY(helpText({"battery", "voltage"}).contains("    --unit UNIT  unit of the voltage"));
    QVERIFY(helpText().contains("  --unit UNIT        battery voltage: unit of the voltage"));
    QVERIFY(!helpText({"wifi", "scan"}).contains("--open"));
    QVERIFY(!helpText({"led", "set"}).contains("--"));
    QVERIFY(helpText({"eeprom", "set-measure"}).contains("296 numbers, separated by commas"));
}

void TestKyboardctlCommandLine::helpNamesEveryOptionAndStatus()
{
    const QString text = helpText();
    for (const Option &option : options())
        QVERIFY2(text.contains(' ' + option.name + ' '), qPrintable(option.name));
    for (const StatusMeaning &status : exitStatuses())
        QVERIFY(text.contains(QString("  %1  %2\n").arg(status.status, -2).arg(status.meaning)));
}

void TestKyboardctlCommandLine::completionOffersTheNextWords_data()
{
    QTest::addColumn<QStringList>("words");
    QTest::addColumn<QStringList>("candidates");
    QTest::newRow("group") << QStringList{"us"} << QStringList{"user"};
    QTest::newRow("special") << QStringList{"s"} << QStringList{"status", "storage", "shutdown"};
    QTest::newRow("verb") << QStringList{"user", ""} << QStringList{"get", "set", "reset"};
    QTest::newRow("choice") << QStringList{"led", "set", "WI"} << QStringList{"WIFI"};
    QTest::newRow("second") << QStringList{"led", "set", "WIFI", "B"}
                            << QStringList{"BLINK_1HZ", "BLINK_3HZ"};
    QTest::newRow("switch") << QStringList{"module", "power", ""} << QStringList{"on", "off"};
    QTest::newRow("key") << QStringList{"wifi", "set-ipv4", "Method=dhcp", "DNS"}
                         << QStringList{"DNS1=", "DNS2="};
    QTest::newRow("whole key") << QStringList{"wifi", "set-ipv4", "Meth"} << QStringList{"Method="};
    QTest::newRow("value of a key") << QStringList{"wifi", "set-ipv4", "Method="}
                                    << QStringList{"Method=dhcp", "Method=manual", "Method=off"};
    QTest::newRow("begun value of a key")
        << QStringList{"wifi", "set-ipv4", "Method=m"} << QStringList{"Method=manual"};
    QTest::newRow("key without known values")
        << QStringList{"wifi", "set-ipv4", "Address="} << QStringList();
    QTest::newRow("option") << QStringList{"wifi", "connect", "Cafe", "--o"}
                            << QStringList{"--open"};
    QTest::newRow("after an option") << QStringList{"--json", "wifi", "sc"} << QStringList{"scan"};
    QTest::newRow("after an option's value")
        << QStringList{"--timeout", "5", "ap", "sta"} << QStringList{"start"};
    QTest::newRow("option's value")
        << QStringList{"battery", "voltage", "--unit", ""} << QStringList{"mV", "V"};
    QTest::newRow("option's unknown value")
        << QStringList{"battery", "--timeout", ""} << QStringList();
    QTest::newRow("help") << QStringList{"help", "wifi", "sc"} << QStringList{"scan"};
    QTest::newRow("nothing") << QStringList{"user", "get", ""} << QStringList();
}

void TestKyboardctlCommandLine::completionOffersTheNextWords()
{
    QFETCH(QStringList, words);
    QFETCH(QStringList, candidates);
    QCOMPARE(completions(words), candidates);
}

void TestKyboardctlCommandLine::valuesForPeople_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QVariantList() << "";
    QTest::newRow("text") << QVariantList{"user1"} << "user1\n";
    QTest::newRow("boolean") << QVariantList{true} << "yes\n";
    QTest::newRow("number") << QVariantList{-3} << "-3\n";
    QTest::newRow("byte") << QVariantList{QVariant::fromValue(uchar(72))} << "72\n";
    QTest::newRow("text bytes") << QVariantList{QByteArray("AB\0\0", 4)} << "AB\n";
    QTest::newRow("other bytes") << QVariantList{QByteArray("\x01\xff", 2)} << "0x01ff\n";
    QTest::newRow("list") << QVariantList{QVariantList{1u, 2u}} << "1, 2\n";
    QTest::newRow("map") << QVariantList{QVariantMap{{"a", 1}, {"long", QStringList{"x", "y"}}}}
                         << "a     1\nlong  x, y\n";
    QTest::newRow("inner map") << QVariantList{QVariantMap{{"IPv4", QVariantMap{{"A", "1"}}}}}
                               << "IPv4  A=1\n";
}

void TestKyboardctlCommandLine::valuesForPeople()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, text);
    QCOMPARE(replyText(values), text);
}

void TestKyboardctlCommandLine::valuesForMachines()
{
    QCOMPARE(replyJson({}), QJsonValue());
    QCOMPARE(replyJson({QVariant("user1")}), QJsonValue("user1"));
    QCOMPARE(replyJson({QVariant(false)}), QJsonValue(false));
    QCOMPARE(replyJson({QVariant::fromValue(uchar(7))}), QJsonValue(7));
    QCOMPARE(replyJson({QVariant(QByteArray("A\0", 2))}), QJsonValue(QString("A") + QChar(0)));
    QCOMPARE(replyJson({QVariant(QVariantList{1u, 2u})}), QJsonValue(QJsonArray{1, 2}));
    QCOMPARE(replyJson({QVariant(QVariantMap{{"k", QStringList{"x"}}})}),
             QJsonValue(QJsonObject{{"k", QJsonArray{"x"}}}));
}

QTEST_GUILESS_MAIN(TestKyboardctlCommandLine)
#include "test_kyboardctl_commandline.moc"
