#include "board.h"
#include "busmonitor.h"
#include "client.h"
#include "daemontest.h"

#include <QJsonDocument>
#include <QJsonObject>

/** Dump and restore of the identification records, on the running daemon. */
class TestKyboardctlRecords : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void restoringGivesBackEveryField_data();
    void restoringGivesBackEveryField();
    void onlyTheOwnerCanReadACopy();
    void aCopyIsNeverReplaced();
    void aFileThatCannotBeWrittenSendsNothing();
    void aFileWithoutANameSendsNothing();
    void anInvalidRecordIsNotCopied_data();
    void anInvalidRecordIsNotCopied();
    void aTruncatedOrChangedFileSendsNothing();
    void nothingIsRestoredWithoutConfirmation();
    void aRecordThatIsNotWrittenIsNamed();

private:
    static QByteArray instrument() { return Board::bytes("eeprom/instrument").left(74); }
    static QByteArray measure() { return Board::bytes("eeprom/measure").left(1196); }
    void restart();
};

void TestKyboardctlRecords::init()
{
    DaemonTest::init();
    removePath("/tmp/copies");
    QVERIFY(QDir().mkpath("/tmp/copies"));
    QVERIFY(daemon.start());
}

/** A restart clears the daemon's cache of the EEPROMs. */
void TestKyboardctlRecords::restart()
{
    daemon.stop();
    QVERIFY(daemon.start());
}

void TestKyboardctlRecords::restoringGivesBackEveryField_data()
{
    QTest::addColumn<QVariantMap>("changes");
    QTest::newRow("as it left the factory") << QVariantMap();
    QTest::newRow("other bytes") << QVariantMap{
        {"SerialNumber", QByteArray("\x00\xff\"\\\n\x80 x", 8)},
        {"WarrantyNumber", QByteArray("\x7f\x1b[2J\xc3\xa9\0z", 9)},
        {"IrdInstrumentPassword", QByteArray(30, '\xff')},
        {"IrdSessionPassword", QByteArray(16, '\0')},
        {"Model", "8347"},
        {"Brand", 255}};
    QTest::newRow("short values") << QVariantMap{{"SerialNumber", QByteArray("A")},
                                                 {"IrdSessionPassword", QByteArray("b")}};
}

void TestKyboardctlRecords::restoringGivesBackEveryField()
{
    QFETCH(QVariantMap, changes);
    const Remote version("/KyDeviceMgr", "Version");
    if (!changes.isEmpty()) {
        QVariantMap record = {{"Subsidiary", 1},
                              {"Fabrication", 2},
                              {"Type", 4},
                              {"TroubleshootingTag", 5},
                              {"RelaunchTag", 6},
                              {"FirstPassTag", 7},
                              {"WarrantyNumber", "W"},
                              {"Model", "8345"},
                              {"Brand", 3},
                              {"IrdInstrumentPassword", QByteArray("secret")}};
        for (auto change = changes.constBegin(); change != changes.constEnd(); ++change)
            record[change.key()] = change.value();
        QCOMPARE(version.call("setEepromInstrument", {record}), QString("()"));
    }
    const QByteArray instrumentBefore = instrument();
    const QByteArray measureBefore = measure();

    const ClientResult dumped = runClient({"eeprom", "dump", "/tmp/copies/one"});
    QCOMPARE(dumped.complaint, QString());
    QCOMPARE(dumped.output, QString());
    QCOMPARE(dumped.status, 0);
    // Another board, without these records.
    Board::setBytes("eeprom/instrument", QByteArray(128, '\xff'));
    Board::setBytes("eeprom/measure", QByteArray(2048, '\xff'));
    restart();
    QCOMPARE(version.call("getEepromMesure"), QString("({\"CRC\": <false>})"));
    const ClientResult restored = runClient({"eeprom", "restore", "/tmp/copies/one", "--yes"});
    QCOMPARE(restored.complaint, QString());
    QCOMPARE(restored.status, 0);

    QCOMPARE(instrument().toHex(), instrumentBefore.toHex());
    QCOMPARE(measure().toHex(), measureBefore.toHex());
    restart();
    QVERIFY(version.call("getEepromMesure").contains("\"CRC\": <true>"));
    QVERIFY(version.call("getEepromInstrument").contains("\"CRC\": <true>"));
    QCOMPARE(runClient({"eeprom", "dump", "/tmp/copies/two"}).status, 0);
    QCOMPARE(readFile("/tmp/copies/two"), readFile("/tmp/copies/one"));
}

void TestKyboardctlRecords::onlyTheOwnerCanReadACopy()
{
    QCOMPARE(runClient({"eeprom", "dump", "/tmp/copies/one"}).status, 0);
    const QFile::Permissions owner = QFile::ReadOwner | QFile::WriteOwner;
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                      QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    const QFile::Permissions actual = QFile("/tmp/copies/one").permissions();
    QCOMPARE(actual & (owner | others), owner);
    const QJsonObject copy = QJsonDocument::fromJson(readFile("/tmp/copies/one")).object();
    QCOMPARE(copy.value("instrument").toObject().size(), 13);
    QCOMPARE(copy.value("measure").toObject().size(), 5);
    QVERIFY(copy.value("instrument")
                .toObject()
                .value("IrdSessionPassword")
                .toString()
                .startsWith("session"));
}

void TestKyboardctlRecords::aCopyIsNeverReplaced()
{
    writeFile("/tmp/copies/one", "older");
    BusMonitor monitor;
    monitor.take();
    const ClientResult result = runClient({"eeprom", "dump", "/tmp/copies/one"});
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: eeprom dump: '/tmp/copies/one' exists already\n"));
    QCOMPARE(result.status, 2);
    QCOMPARE(readFile("/tmp/copies/one"), QByteArray("older"));
    QVERIFY(monitor.take().isEmpty());
}

void TestKyboardctlRecords::aFileThatCannotBeWrittenSendsNothing()
{
    BusMonitor monitor;
    monitor.take();
    const ClientResult result = runClient({"eeprom", "dump", "/nowhere/one"});
    QCOMPARE(result.complaint, QStringLiteral("kyboardctl: eeprom dump: '/nowhere/one' cannot be "
                                              "written: No such file or directory\n"));
    QCOMPARE(result.status, 2);
    QVERIFY(monitor.take().isEmpty());
}

void TestKyboardctlRecords::aFileWithoutANameSendsNothing()
{
    BusMonitor monitor;
    monitor.take();
    const QStringList commands{"dump", "restore"};
    for (const QString &command : commands) {
        const ClientResult result = runClient({"eeprom", command, ""});
        QCOMPARE(result.complaint,
                 "kyboardctl: eeprom " + command + ": FILE: '' is not the name of a file\n");
        QCOMPARE(result.status, 2);
    }
    QVERIFY(monitor.take().isEmpty());
}

void TestKyboardctlRecords::anInvalidRecordIsNotCopied_data()
{
    QTest::addColumn<QString>("record");
    QTest::newRow("instrument") << "instrument";
    QTest::newRow("measure") << "measure";
}

void TestKyboardctlRecords::anInvalidRecordIsNotCopied()
{
    QFETCH(QString, record);
    QByteArray bytes = Board::bytes("eeprom/" + record);
    bytes[20] = char(bytes.at(20) ^ 1);
    Board::setBytes("eeprom/" + record, bytes);
    restart();
    const ClientResult result = runClient({"eeprom", "dump", "/tmp/copies/one"});
    QCOMPARE(result.complaint, "kyboardctl: eeprom dump: the " + record +
                                   " record is not valid; no file is written\n");
    QCOMPARE(result.status, 10);
    QCOMPARE(QDir("/tmp/copies").entryList(QDir::Files), QStringList());
}

void TestKyboardctlRecords::aTruncatedOrChangedFileSendsNothing()
{
    QCOMPARE(runClient({"eeprom", "dump", "/tmp/copies/one"}).status, 0);
    const QByteArray whole = readFile("/tmp/copies/one");
    const QByteArray before = instrument() + measure();
    writeFile("/tmp/copies/cut", whole.left(whole.size() / 2));
    QByteArray changed = whole;
    writeFile("/tmp/copies/changed", changed.replace("8388610", "8388611"));
    BusMonitor monitor;
    monitor.take();

    const ClientResult cut = runClient({"eeprom", "restore", "/tmp/copies/cut", "--yes"});
    QCOMPARE(cut.complaint, QStringLiteral("kyboardctl: eeprom restore: '/tmp/copies/cut': it is "
                                           "not whole: unterminated array\n"));
    QCOMPARE(cut.status, 2);
    const ClientResult other = runClient({"eeprom", "restore", "/tmp/copies/changed", "--yes"});
    QCOMPARE(other.complaint,
             QStringLiteral("kyboardctl: eeprom restore: '/tmp/copies/changed': the measure record "
                            "is not what was copied: its CRC is another\n"));
    QCOMPARE(other.status, 2);
    const ClientResult none = runClient({"eeprom", "restore", "/tmp/copies/none", "--yes"});
    QCOMPARE(none.complaint, QStringLiteral("kyboardctl: eeprom restore: '/tmp/copies/none' cannot "
                                            "be read: No such file or directory\n"));
    QCOMPARE(none.status, 2);
    QCOMPARE(runClient({"eeprom", "restore", "/dev/zero", "--yes"}).status, 2);

    QVERIFY(monitor.take().isEmpty());
    QCOMPARE(instrument() + measure(), before);
}

void TestKyboardctlRecords::nothingIsRestoredWithoutConfirmation()
{
    QCOMPARE(runClient({"eeprom", "dump", "/tmp/copies/one"}).status, 0);
    BusMonitor monitor;
    monitor.take();
    const ClientResult result = runClient({"eeprom", "restore", "/tmp/copies/one"}, "y\n");
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: eeprom restore: this would overwrite both records in the "
                            "EEPROMs; without a terminal to ask at, --yes is needed\n"));
    QCOMPARE(result.status, 9);
    QVERIFY(monitor.take().isEmpty());
}

void TestKyboardctlRecords::aRecordThatIsNotWrittenIsNamed()
{
    QCOMPARE(runClient({"eeprom", "dump", "/tmp/copies/one"}).status, 0);
    Board::fault("KyEeprom.writeEeprom", "always after 1");
    const ClientResult result = runClient({"eeprom", "restore", "/tmp/copies/one", "--yes"});
    QCOMPARE(result.complaint,
             QStringLiteral("kyboardctl: Not able to write in eeprom "
                            "(com.orvendis.Strandel.BoardManager.Error.Write)\n"
                            "kyboardctl: eeprom restore: the instrument record is written, the "
                            "measure record is not\n"));
    QCOMPARE(result.status, 1);
}

WORLD_TEST_MAIN(TestKyboardctlRecords)
#include "test_kyboardctl_records.moc"
