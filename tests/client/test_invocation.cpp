#include "invocation.h"
#include "passphrase.h"

#include <QTest>

/** kyboardctl's parsing of options and words, and its handling of passphrases. */
class TestInvocation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void optionsStandAnywhere_data();
    void optionsStandAnywhere();
    void wrongOptionsAreReported_data();
    void wrongOptionsAreReported();
    void optionsBelongToCommands();
    void aPassphraseIsChecked_data();
    void aPassphraseIsChecked();
};

void TestInvocation::optionsStandAnywhere_data()
{
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("before") << QStringList{"--json", "--timeout", "5", "wifi", "scan"}
                            << QStringList{"wifi", "scan"};
    QTest::newRow("behind") << QStringList{"wifi", "scan", "--timeout", "5", "--json"}
                            << QStringList{"wifi", "scan"};
    QTest::newRow("equals sign") << QStringList{"wifi", "--timeout=5", "scan", "--json"}
                                 << QStringList{"wifi", "scan"};
    QTest::newRow("negative number")
        << QStringList{"threshold", "-5", "--json", "--timeout=5", "-17"}
        << QStringList{"threshold", "-5", "-17"};
    QTest::newRow("end of options")
        << QStringList{"--json", "--timeout=5", "--", "--json", "-5", "-h"}
        << QStringList{"--json", "-5", "-h"};
}

void TestInvocation::optionsStandAnywhere()
{
    QFETCH(QStringList, line);
    const Invocation invocation(line);
    QCOMPARE(invocation.complaint(), QString());
    QTEST(invocation.words(), "words");
    QVERIFY(invocation.has("--json"));
    QVERIFY(!invocation.has("--help"));
    QCOMPARE(invocation.number("--timeout"), 5);
    QCOMPARE(invocation.number("--user"), 0);
    QVERIFY(Invocation({"-h"}).has("--help"));
    QCOMPARE(Invocation({"--user=a=b"}).value("--user"), QStringLiteral("a=b"));
}

void TestInvocation::wrongOptionsAreReported_data()
{
    QTest::addColumn<QString>("complaint");
    // The name of each row is its command line.
    const auto row = [](const char *line, const char *complaint) {
        QTest::newRow(line) << complaint;
    };
    row("--loud led list", "unknown option 'loud'");
    row("led list -j", "unknown option 'j'");
    row("--js led list", "unknown option 'js'");
    row("wifi scan --timeout", "missing value after '--timeout'");
    row("--json=3 status", "unexpected value after '--json'");
    row("--timeout=soon wifi scan", "--timeout: 'soon' is not a number of seconds");
    row("--timeout 0 wifi scan", "--timeout: '0' is not a number of seconds");
    row("--timeout -5 wifi scan", "--timeout: '-5' is not a number of seconds");
    row("--timeout 99999999999 wifi scan", "--timeout: '99999999999' is not a number of seconds");
    row("wifi connect x --user=", "--user: NAME is empty");
}

void TestInvocation::wrongOptionsAreReported()
{
    const QString line = QString::fromLatin1(QTest::currentDataTag());
    QTEST(Invocation(line.split(' ')).complaint(), "complaint");
}

void TestInvocation::optionsBelongToCommands()
{
    const auto misplaced = [](const QString &line) {
        const Invocation invocation(line.split(' '));
        int used = 0;
        const Command *command = findCommand(invocation.words(), &used);
        return command ? invocation.misplaced(*command) : QStringLiteral("no such command");
    };
    QCOMPARE(misplaced("wifi connect x --open --no-wait --json --timeout=3"), QString());
    QCOMPARE(misplaced("wifi scan --open"), QStringLiteral("--open does not belong here"));
    QCOMPARE(misplaced("led list --no-wait"), QStringLiteral("--no-wait does not belong here"));
    QCOMPARE(misplaced("led list --timeout 3"), QString());
}

void TestInvocation::aPassphraseIsChecked_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("complaint");

    const QString join = "wifi connect Workshop";
    const QString start = "ap start Channel=6 SSID=Lab IP=192.168.7.1 Security=";
    const QString notOpen = " (--open for none)";
    QTest::newRow("good") << join << "seven seas"
                          << "";
    QTest::newRow("WEP") << join << "seven"
                         << "";
    QTest::newRow("raw key") << join << QString(64, 'a') << "";
    QTest::newRow("short") << join << "seven s"
                           << "Passphrase: what was given is not 8 to 63 ASCII characters (WEP: 5 "
                              "or 13)" +
                                  notOpen;
    QTest::newRow("none") << join << QString() << "no passphrase on standard input" + notOpen;
    QTest::newRow("open") << join + " --open" << QString() << "";
    QTest::newRow("enterprise") << join + " --user=me"
                                << "pw"
                                << "";
    QTest::newRow("no user") << join + " --user=a\tb"
                             << "pw"
                             << "--user: 'a\\x09b' is not up to 255 characters without control "
                                "characters";
    QTest::newRow("line feed") << join + " --user=me"
                               << "p\nw"
                               << "Password: what was given is not 1 to 255 characters without "
                                  "control characters";
    QTest::newRow("open for a user") << join + " --open --user=me"
                                     << "pw"
                                     << "--open and --user exclude each other";
    QTest::newRow("access point") << start + "WPA2"
                                  << "under the dome"
                                  << "";
    QTest::newRow("short for an access point")
        << start + "WPA2"
        << "under"
        << "Password: what was given is not 8 to 63 ASCII characters";
    QTest::newRow("raw key for an access point")
        << start + "WPA2" << QString(64, 'a')
        << "Password: what was given is not 8 to 63 ASCII characters";
    QTest::newRow("none for an access point")
        << start + "WPA2" << QString() << "no password on standard input";
    QTest::newRow("open access point") << start + "open" << QString() << "";
    QTest::newRow("another command") << "user get" << QString() << "";
}

void TestInvocation::aPassphraseIsChecked()
{
    QFETCH(QString, line);
    QFETCH(QString, given);
    QFETCH(QString, complaint);
    const SecretReader reader = [&given](const QString &, QString &secret) {
        secret = given;
        return !given.isNull();
    };
    const Invocation invocation(line.split(' '));
    int used = 0;
    const Command *command = findCommand(invocation.words(), &used);
    QVERIFY(command);
    QVariantList arguments;
    QString actual;
    QVERIFY2(parseArguments(*command, invocation.words().mid(used), reader, arguments, actual),
             qPrintable(actual));

    QCOMPARE(addPassphrase(*command, invocation, reader, arguments, actual), complaint.isEmpty());

    QCOMPARE(actual, complaint);
    if (complaint.isEmpty() && !given.isNull())
        QCOMPARE(arguments.at(0).toMap().value("Password").toString(), given);
    if (line.contains("--user=me") && complaint.isEmpty())
        QCOMPARE(arguments.at(0).toMap().value("User").toString(), QStringLiteral("me"));
}

QTEST_GUILESS_MAIN(TestInvocation)
#include "test_invocation.moc"
