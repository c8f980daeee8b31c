#include "board.h"
#include "busmonitor.h"
#include "client.h"
#include "commands.h"
#include "daemontest.h"
#include "deadline.h"
#include "ethernettest.h"
#include "terminalprogram.h"

#include <QJsonDocument>
#include <QJsonObject>

/**
 * kyboardctl destroys nothing without confirmation, shows no secrets, and fails if the daemon does
 * not reply.
 */
class TestKyboardctlSafety : public EthernetTest
{
    Q_OBJECT

private Q_SLOTS:
    void withoutATerminalNothingIsDestroyed_data();
    void withoutATerminalNothingIsDestroyed();
    void atATerminalTheUserIsAsked_data();
    void atATerminalTheUserIsAsked();
    void aQuestionIsSeenWithoutStandardError();
    void withoutAControllingTerminalNoQuestionIsAsked();
    void otherCommandsNeedNoConfirmation();
    void passwordsStayHidden();
    void missingConnectionsAreReported_data();
    void missingConnectionsAreReported();
    void connectingAConnectedEthernetSucceeds();

private:
    static QStringList calls(BusMonitor &monitor);
};

/** The calls to the daemon's own interfaces since the last take(). */
QStringList TestKyboardctlSafety::calls(BusMonitor &monitor)
{
    QStringList lines;
    for (const BusMessage &message : monitor.take()) {
        if (message.type == BusMessage::Call &&
            message.interface.startsWith("com.orvendis.Strandel."))
            lines << message.interface.section('.', 4) + '.' + message.member;
    }
    return lines;
}

void TestKyboardctlSafety::withoutATerminalNothingIsDestroyed_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("question");
    QTest::addColumn<QString>("call");

    QTest::newRow("reset") << "user reset user3"
                           << "replace all files of the profile by the factory default"
                           << "Users.factoryReset";
    QTest::newRow("invalidate") << "eeprom invalidate"
                                << "make both records in the EEPROMs invalid"
                                << "Version.invalidateEepromsContent";
    QString numbers = "0";
    for (int number = 1; number < 296; ++number)
        numbers += ',' + QString::number(number);
    QTest::newRow("measure") << "eeprom set-measure AdjustementSite=1 AdjustementDate=2 "
                                "NextAdjustementDate=3 AdjustementCoefficients=" +
                                    numbers
                             << "overwrite the measure-card record, with all adjustment "
                                "coefficients, in the EEPROM"
                             << "Version.setEepromMesure";
    QTest::newRow("instrument") << "eeprom set-instrument Subsidiary=1 Fabrication=2 Brand=3 "
                                   "Type=4 Model=8347 SerialNumber=1 WarrantyNumber=2 "
                                   "TroubleshootingTag=5 RelaunchTag=6 FirstPassTag=7"
                                << "overwrite the instrument record in the EEPROM"
                                << "Version.setEepromInstrument";
}

void TestKyboardctlSafety::withoutATerminalNothingIsDestroyed()
{
    QFETCH(QString, line);
    QFETCH(QString, question);
    QFETCH(QString, call);
    startDaemon();
    BusMonitor monitor;
    const QStringList words = line.split(' ');

    const ClientResult refused = runClient(words, "secret\nsecret\ny\n");
    QCOMPARE(refused.status, 9);
    QCOMPARE(refused.complaint, "kyboardctl: " + QStringList(words.mid(0, 2)).join(' ') +
                                    ": this would " + question +
                                    "; without a terminal to ask at, --yes is needed\n");
    QCOMPARE(calls(monitor), QStringList());

    const ClientResult confirmed = runClient(words + QStringList{"--yes"}, "secret\nsecret\n");
    QCOMPARE(confirmed.complaint, QString());
    QCOMPARE(confirmed.status, 0);
    QCOMPARE(calls(monitor), QStringList{call});
}

void TestKyboardctlSafety::atATerminalTheUserIsAsked_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("status");
    QTest::newRow("y") << QByteArray("y\n") << 0;
    QTest::newRow("yes") << QByteArray("Yes\n") << 0;
    QTest::newRow("no") << QByteArray("n\n") << 9;
    QTest::newRow("return") << QByteArray("\n") << 9;
    QTest::newRow("other") << QByteArray("yess\n") << 9;
    QTest::newRow("end") << QByteArray("\x04") << 9;
}

void TestKyboardctlSafety::atATerminalTheUserIsAsked()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, status);
    startDaemon();
    writeFile(profile("user3") + "/notes", "mine");
    TerminalProgram client("kyboardctl", {"user", "reset", "user3"});
    QVERIFY2(client.shows("Replace all files of the profile by the factory default? [y/N] "),
             client.shown().constData());
    client.type(answer);
    QCOMPARE(client.waitForEnd(), status);
    QCOMPARE(QFile::exists(profile("user3") + "/notes"), status != 0);
    // The program's name comes before this text, but is coloured.
    QCOMPARE(client.shown().contains(" user reset: not confirmed"), status != 0);
}

/** A redirection of stderr applies to error messages, but not to questions. */
void TestKyboardctlSafety::aQuestionIsSeenWithoutStandardError()
{
    startDaemon();
    writeFile(profile("user3") + "/notes", "mine");
    TerminalProgram client("sh", {"-c", "kyboardctl user reset user3 2>/dev/null"});
    QVERIFY2(client.shows("Replace all files of the profile by the factory default? [y/N] "),
             client.shown().constData());
    client.type("y\n");
    QCOMPARE(client.waitForEnd(), 0);
    QVERIFY(!QFile::exists(profile("user3") + "/notes"));

    TerminalProgram secret("sh", {"-c", "kyboardctl wifi connect Cafe 2>/dev/null"});
    QVERIFY2(secret.shows("Passphrase: "), secret.shown().constData());
    QTRY_VERIFY_WITH_TIMEOUT(!secret.echoes(), deadlineMs);
    secret.type("six ch\n");
    QCOMPARE(secret.waitForEnd(), 2);
}

/** kyboardctl has no controlling terminal, although its standard input is a terminal. */
void TestKyboardctlSafety::withoutAControllingTerminalNoQuestionIsAsked()
{
    startDaemon();
    BusMonitor monitor;
    TerminalProgram client("sh", {"-c", "setsid --wait kyboardctl user reset user3 2>/tmp/said"});
    QCOMPARE(client.waitForEnd(), 9);
    QVERIFY2(readFile("/tmp/said").contains("without a terminal to ask at, --yes is needed"),
             readFile("/tmp/said").constData());
    TerminalProgram secret("sh", {"-c", "setsid --wait kyboardctl wifi connect Cafe 2>/tmp/said"});
    QCOMPARE(secret.waitForEnd(), 2);
    QVERIFY2(readFile("/tmp/said").contains("no passphrase on standard input"),
             readFile("/tmp/said").constData());
    QCOMPARE(calls(monitor), QStringList());
}

void TestKyboardctlSafety::otherCommandsNeedNoConfirmation()
{
    QStringList asking;
    for (const Command &command : commands()) {
        if (!command.question.isEmpty())
            asking << command.words;
    }
    QCOMPARE(asking, (QStringList{"user reset", "eeprom set-instrument", "eeprom set-measure",
                                  "eeprom invalidate"}));
    const ClientResult result = runClient({"user", "get", "--yes"});
    QCOMPARE(result.status, 2);
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: user get: --yes does not belong here\n"));
}

void TestKyboardctlSafety::passwordsStayHidden()
{
    startDaemon();
    const QString text = runClient({"eeprom", "instrument"}).output;
    QVERIFY2(text.contains("\nIrdInstrumentPassword  hidden (--show-secrets)\n"), qPrintable(text));
    QVERIFY2(text.contains("\nIrdSessionPassword     hidden (--show-secrets)\n"), qPrintable(text));
    const QJsonObject object =
        QJsonDocument::fromJson(runClient({"--json", "eeprom", "instrument"}).output.toUtf8())
            .object();
    QCOMPARE(object.size(), 13);
    QVERIFY(object.contains("IrdSessionPassword"));
    QVERIFY(object.value("IrdSessionPassword").isNull());
    QVERIFY(object.value("IrdInstrumentPassword").isNull());
    QVERIFY(runClient({"eeprom", "instrument", "--show-secrets"})
                .output.contains("\nIrdInstrumentPassword  instrument\nIrdSessionPassword     "
                                 "session\n"));
    QVERIFY(runClient({"eeprom", "instrument", "--show-secrets", "--json"})
                .output.contains("\"session"));
}

void TestKyboardctlSafety::missingConnectionsAreReported_data()
{
    QTest::addColumn<QString>("complaint");
    const auto row = [](const char *line, const char *complaint) {
        QTest::newRow(line) << complaint;
    };
    row("ethernet ipv4", "not connected");
    row("wifi ipv4", "not connected");
    row("ap ipv4", "not connected");
    row("wifi strength", "no network is joined");
    row("ethernet hardware", "there is no such network interface");
    row("wifi hardware", "there is no such network interface");
    row("ap hardware", "there is no such network interface");
    row("temperature list", "no sensor answers");
    row("led list", "no LED answers");
    row("version revisions", "no revision can be read");
}

void TestKyboardctlSafety::missingConnectionsAreReported()
{
    QFETCH(QString, complaint);
    const QString line = QTest::currentDataTag();
    startDaemon();
    Board::fault("KyTemperature.getTemperature", "always");
    Board::fault("KyLeds.getLedState", "always");
    Board::fault("KyBoardRev.getRevision", "always");
    const ClientResult text = runClient(line.split(' '));
    QCOMPARE(text.complaint, "kyboardctl: " + line + ": " + complaint + '\n');
    QCOMPARE(text.output, QString());
    QCOMPARE(text.status, 8);
    const ClientResult json = runClient(line.split(' ') + QStringList{"--json"});
    QCOMPARE(json.output, QStringLiteral("null\n"));
    QCOMPARE(json.complaint, text.complaint);
    QCOMPARE(json.status, 8);
}

void TestKyboardctlSafety::connectingAConnectedEthernetSucceeds()
{
    startDaemon();
    connectUntil("online");
    BusMonitor monitor;
    const ClientResult text = runClient({"ethernet", "connect"});
    QCOMPARE(text.complaint, QString());
    QCOMPARE(text.output, QStringLiteral("online\n"));
    QCOMPARE(text.status, 0);
    QCOMPARE(runClient({"ethernet", "connect", "--json"}).output, QStringLiteral("[\"online\"]\n"));
    QCOMPARE(calls(monitor), (QStringList{"Ethernet.getIPv4", "Ethernet.getIPv4"}));
}

WORLD_TEST_MAIN(TestKyboardctlSafety)
#include "test_kyboardctl_safety.moc"
