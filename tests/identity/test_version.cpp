#include "board.h"
#include "daemontest.h"
#include "deadline.h"
#include "processes.h"

#include <QElapsedTimer>

#include <sys/stat.h>

/** Board revisions and software versions, on the running daemon. */
class TestVersion : public DaemonTest
{
    Q_OBJECT

private Q_SLOTS:
    void revisionsAreThoseOfTheBoard();
    void revisionsAreReadInOrderAndOnce();
    void fpgaRevisionIsText_data();
    void fpgaRevisionIsText();
    void aRevisionThatCannotBeReadIsLeftOut_data();
    void aRevisionThatCannotBeReadIsLeftOut();
    void aRevisionThatWasMissingStaysMissing();
    void revisionsAreReadAgainIfNoneCouldBeRead();
    void anUnreadableModuleRevisionIsNotSet();
    void aLibraryThatRefusesTheModuleRevisionIsIgnored();
    void revisionsSurviveAnInvalidation();

    void bspVersionIsTheFirstLine_data();
    void bspVersionIsTheFirstLine();
    void bspVersionIsLeftOutWithoutAFile();
    void bspVersionIsLeftOutForADirectory();
    void bspVersionMayBeLong();
    void aBspVersionAboveTheLimitIsLeftOut();
    void bspVersionTooLongForAMessageIsLeftOut();

    void ownVersion();
    void applicationVersionIsItsTrimmedOutput_data();
    void applicationVersionIsItsTrimmedOutput();
    void theApplicationGetsOneArgument();
    void anApplicationVersionAboveTheLimitIsLeftOut();
    void applicationVersionIsLeftOut_data();
    void applicationVersionIsLeftOut();
    void applicationVersionIsLeftOutWithoutTheProgram();
    void applicationVersionIsLeftOutWhenItIsNoProgram();
    void anApplicationThatHangsIsKilledAfterThreeSeconds_data();
    void anApplicationThatHangsIsKilledAfterThreeSeconds();
    void anApplicationWithTooMuchOutputIsKilledAtOnce();
    void anApplicationThatLeavesAChildBehindIsNotWaitedFor();
    void versionsAreGatheredOnce();
    void versionsSurviveAnInvalidation();

private:
    void installApplication(const QByteArray &script);
    int peakMemory() const;

    const Remote version{QStringLiteral("/KyDeviceMgr"), QStringLiteral("Version")};
    const QString ownVersionAlone =
        QStringLiteral("({\"KyBoardManager\": <\"%1\">})").arg(Daemon::version());
};

namespace
{
const QString getRevision = QStringLiteral("getRevision");
const QString getVersions = QStringLiteral("getSoftwareVersions");
const QString application = QStringLiteral("/opt/KyApp");
const QString bspFile = QStringLiteral("/etc/sw_version");

QString withApplication(const QByteArray &output)
{
    return QStringLiteral("({\"KyApp\": <ay:\"%1\">, \"KyBoardManager\": <\"%2\">})")
        .arg(QString::fromLatin1(output.toHex()), Daemon::version());
}

QString withBsp(const QByteArray &line)
{
    return QStringLiteral("({\"BSP\": <ay:\"%1\">, \"KyBoardManager\": <\"%2\">})")
        .arg(QString::fromLatin1(line.toHex()), Daemon::version());
}
} // namespace

void TestVersion::installApplication(const QByteArray &script)
{
    writeFile(application, "#!/bin/sh\n" + script + "\n");
    QVERIFY(chmod(qPrintable(application), 0755) == 0);
}

/** The peak memory of the daemon in KiB; 0 if it is unknown. */
int TestVersion::peakMemory() const
{
    return statusOf(daemon.processId(), "VmHWM").toInt();
}

/** Verifies that the daemon never allocated memory for endless data. */
#define VERIFY_LITTLE_MEMORY()                                                                     \
    do {                                                                                           \
        const int memory = peakMemory();                                                           \
        QVERIFY2(memory > 0 && memory < 200 * 1024, qPrintable(QString::number(memory)));          \
    } while (false)

void TestVersion::revisionsAreThoseOfTheBoard()
{
    Board::set("revision/SOM", "4294967295");
    Board::set("revision/HPS", "0");
    Board::set("revision/FPGA", "0x00020003");
    Board::set("revision/MESURE_CARD", "7");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getRevision),
             QStringLiteral("({\"FPGA\": <\"2.3\">, \"HPS\": <u:0>, \"MESURE_CARD\": <u:7>,"
                            " \"SOM\": <u:4294967295>})"));
}

void TestVersion::revisionsAreReadInOrderAndOnce()
{
    Board::set("revision/SOM", "5");
    QVERIFY(daemon.start());
    Board::clearJournal();
    const QString first = version.call(getRevision);
    Board::set("revision/SOM", "6");
    QCOMPARE(version.call(getRevision), first);
    QCOMPARE(Board::journal().filter("KyBoardRev"),
             (QStringList{"KyBoardRev.getRevision(0) = 0 5", "KyBoardRev.setSoMRevision(5) = 0",
                          "KyBoardRev.getRevision(1) = 0 1", "KyBoardRev.getRevision(2) = 0 131075",
                          "KyBoardRev.getRevision(3) = 0 2"}));
}

void TestVersion::fpgaRevisionIsText_data()
{
    QTest::addColumn<QString>("revision");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << "0"
                       << "0.0";
    QTest::newRow("2.3") << "0x00020003"
                         << "2.3";
    QTest::newRow("largest") << "0xffffffff"
                             << "65535.65535";
}

void TestVersion::fpgaRevisionIsText()
{
    QFETCH(QString, revision);
    QFETCH(QString, text);
    Board::set("revision/FPGA", revision);
    QVERIFY(daemon.start());
    QVERIFY(version.call(getRevision).contains(QStringLiteral("\"FPGA\": <\"%1\">").arg(text)));
}

void TestVersion::aRevisionThatCannotBeReadIsLeftOut_data()
{
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("revisions");
    QTest::newRow("SOM") << "SOM"
                         << "({\"FPGA\": <\"2.3\">, \"HPS\": <u:1>, \"MESURE_CARD\": <u:2>})";
    QTest::newRow("HPS") << "HPS"
                         << "({\"FPGA\": <\"2.3\">, \"MESURE_CARD\": <u:2>, \"SOM\": <u:3>})";
    QTest::newRow("FPGA") << "FPGA"
                          << "({\"HPS\": <u:1>, \"MESURE_CARD\": <u:2>, \"SOM\": <u:3>})";
    QTest::newRow("MESURE_CARD") << "MESURE_CARD"
                                 << "({\"FPGA\": <\"2.3\">, \"HPS\": <u:1>, \"SOM\": <u:3>})";
}

void TestVersion::aRevisionThatCannotBeReadIsLeftOut()
{
    QFETCH(QString, device);
    QFETCH(QString, revisions);
    Board::set("revision/" + device, "nonsense");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getRevision), revisions);
}

void TestVersion::aRevisionThatWasMissingStaysMissing()
{
    Board::set("revision/HPS", "nonsense");
    QVERIFY(daemon.start());
    const QString first = version.call(getRevision);
    Board::set("revision/HPS", "1");
    QCOMPARE(version.call(getRevision), first);
    QCOMPARE(Board::journal().filter("getRevision").size(), 4);
}

void TestVersion::revisionsAreReadAgainIfNoneCouldBeRead()
{
    QVERIFY(daemon.start());
    Board::fault("KyBoardRev.getRevision", "always");
    QCOMPARE(version.call(getRevision), QStringLiteral("({})"));
    QCOMPARE(version.call(getRevision), QStringLiteral("({})"));
    QCOMPARE(Board::journal().filter("getRevision").size(), 8);
    Board::clearFaults();
    QCOMPARE(version.call(getRevision),
             QStringLiteral("({\"FPGA\": <\"2.3\">, \"HPS\": <u:1>, \"MESURE_CARD\": <u:2>,"
                            " \"SOM\": <u:3>})"));
}

void TestVersion::anUnreadableModuleRevisionIsNotSet()
{
    QVERIFY(daemon.start());
    Board::fault("KyBoardRev.getRevision", "1");
    version.call(getRevision);
    QCOMPARE(Board::journal().filter("setSoMRevision"), QStringList());
}

void TestVersion::aLibraryThatRefusesTheModuleRevisionIsIgnored()
{
    QVERIFY(daemon.start());
    Board::fault("KyBoardRev.setSoMRevision", "always");
    QVERIFY(version.call(getRevision).contains("\"SOM\": <u:3>"));
}

void TestVersion::revisionsSurviveAnInvalidation()
{
    QVERIFY(daemon.start());
    const QString first = version.call(getRevision);
    Board::set("revision/SOM", "99");
    QCOMPARE(version.call("invalidateEepromsContent"), QStringLiteral("()"));
    QCOMPARE(version.call(getRevision), first);
}

void TestVersion::bspVersionIsTheFirstLine_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("one line") << QByteArray("1.2.3\n") << QByteArray("1.2.3");
    QTest::newRow("no line's end") << QByteArray("1.2.3") << QByteArray("1.2.3");
    QTest::newRow("white space around") << QByteArray("\t 1.2 3 \t\r\n") << QByteArray("1.2 3");
    QTest::newRow("more lines") << QByteArray("first\nsecond\n") << QByteArray("first");
    QTest::newRow("blank first line") << QByteArray("  \t\nsecond\n") << QByteArray();
    QTest::newRow("empty first line") << QByteArray("\nsecond\n") << QByteArray();
    QTest::newRow("empty file") << QByteArray("") << QByteArray();
    QTest::newRow("no text at all")
        << QByteArray("\xFF\x00\xFE\n", 4) << QByteArray("\xFF\0\xFE", 3);
}

void TestVersion::bspVersionIsTheFirstLine()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, line);
    writeFile(bspFile, content);
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withBsp(line));
}

void TestVersion::bspVersionIsLeftOutWithoutAFile()
{
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::bspVersionIsLeftOutForADirectory()
{
    QVERIFY(QDir().mkpath(bspFile));
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::bspVersionMayBeLong()
{
    const QByteArray line(100000, 'x');
    writeFile(bspFile, line + "\nsecond\n");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withBsp(line));
}

void TestVersion::aBspVersionAboveTheLimitIsLeftOut()
{
    const QByteArray longest(256 * 1024, 'x');
    QVERIFY(daemon.start());
    writeFile(bspFile, longest + '\n');
    QVERIFY(version.call(getVersions) == withBsp(longest));
    daemon.stop();

    writeFile(bspFile, longest + "x\n");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::bspVersionTooLongForAMessageIsLeftOut()
{
    QVERIFY(QFile::link("/dev/zero", bspFile));
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
    VERIFY_LITTLE_MEMORY();
}

void TestVersion::ownVersion()
{
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::applicationVersionIsItsTrimmedOutput_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("output");
    QTest::newRow("one line") << QByteArray("echo 4.5") << QByteArray("4.5");
    QTest::newRow("white space around")
        << QByteArray("printf '\\n\\t 4.5 \\r\\n\\n'") << QByteArray("4.5");
    QTest::newRow("several lines") << QByteArray("echo 4.5; echo beta") << QByteArray("4.5\nbeta");
    QTest::newRow("nothing") << QByteArray("true") << QByteArray();
    QTest::newRow("standard error is not read")
        << QByteArray("echo 4.5; echo warning >&2") << QByteArray("4.5");
    QTest::newRow("output closed early")
        << QByteArray("echo 4.5; exec >&-; sleep 0.2; exit 0") << QByteArray("4.5");
}

void TestVersion::applicationVersionIsItsTrimmedOutput()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, output);
    installApplication(script);
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withApplication(output));
}

void TestVersion::theApplicationGetsOneArgument()
{
    installApplication("echo \"$# $1\"");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withApplication("1 -V"));
}

void TestVersion::anApplicationVersionAboveTheLimitIsLeftOut()
{
    installApplication("head -c 262144 /dev/zero | tr '\\0' x");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withApplication(QByteArray(262144, 'x')));
    daemon.stop();

    installApplication("head -c 262145 /dev/zero | tr '\\0' x");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::applicationVersionIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("exit code 1") << QByteArray("echo 4.5; exit 1");
    QTest::newRow("exit code 255") << QByteArray("echo 4.5; exit 255");
    QTest::newRow("crash") << QByteArray("echo 4.5; kill -SEGV $$");
    QTest::newRow("killed") << QByteArray("echo 4.5; kill -KILL $$");
}

void TestVersion::applicationVersionIsLeftOut()
{
    QFETCH(QByteArray, script);
    installApplication(script);
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
    installApplication("echo 4.5");
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::applicationVersionIsLeftOutWithoutTheProgram()
{
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
    installApplication("echo 4.5");
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::applicationVersionIsLeftOutWhenItIsNoProgram()
{
    writeFile(application, "no program");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
}

void TestVersion::anApplicationThatHangsIsKilledAfterThreeSeconds_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("silent") << QByteArray("exec sleep 1000");
    QTest::newRow("with its output closed") << QByteArray("echo 4.5; exec >&- sleep 1000");
    QTest::newRow("writing on and on") << QByteArray("while echo 4.5; do sleep 0.2; done");
}

void TestVersion::anApplicationThatHangsIsKilledAfterThreeSeconds()
{
    QFETCH(QByteArray, script);
    QFile::remove("/tmp/runs");
    installApplication("echo run >> /tmp/runs\necho $$ > /tmp/application.pid\ntrap '' TERM\n" +
                       script);
    QVERIFY(daemon.start());
    QElapsedTimer timer;
    timer.start();

    QCOMPARE(version.call(getVersions), ownVersionAlone);

    QVERIFY(timer.elapsed() >= 3000);
    const int process = readFile("/tmp/application.pid").trimmed().toInt();
    // The process does not even exist as a zombie.
    QTRY_VERIFY_WITH_TIMEOUT(stateOf(process).isEmpty(), deadlineMs);
    QCOMPARE(version.call(getVersions), ownVersionAlone);
    QCOMPARE(readFile("/tmp/runs"), QByteArray("run\n"));
}

void TestVersion::anApplicationWithTooMuchOutputIsKilledAtOnce()
{
    installApplication("echo $$ > /tmp/application.pid\nexec yes");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), ownVersionAlone);
    const int process = readFile("/tmp/application.pid").trimmed().toInt();
    QTRY_VERIFY_WITH_TIMEOUT(stateOf(process).isEmpty(), deadlineMs);
    VERIFY_LITTLE_MEMORY();
}

void TestVersion::anApplicationThatLeavesAChildBehindIsNotWaitedFor()
{
    installApplication("sleep 1000 &\necho 4.5");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withApplication("4.5"));
}

void TestVersion::versionsAreGatheredOnce()
{
    writeFile(bspFile, "1.2");
    QFile::remove("/tmp/runs");
    installApplication("echo run >> /tmp/runs; echo 4.5");
    QVERIFY(daemon.start());
    QVERIFY(!QFile::exists("/tmp/runs"));
    const QString first = version.call(getVersions);
    QCOMPARE(first, QStringLiteral("({\"BSP\": <ay:\"312e32\">, \"KyApp\": <ay:\"342e35\">,"
                                   " \"KyBoardManager\": <\"%1\">})")
                        .arg(Daemon::version()));
    writeFile(bspFile, "1.3");
    QCOMPARE(version.call(getVersions), first);
    QCOMPARE(readFile("/tmp/runs"), QByteArray("run\n"));
}

void TestVersion::versionsSurviveAnInvalidation()
{
    writeFile(bspFile, "1.2");
    QVERIFY(daemon.start());
    QCOMPARE(version.call(getVersions), withBsp("1.2"));
    writeFile(bspFile, "1.3");
    QCOMPARE(version.call("invalidateEepromsContent"), QStringLiteral("()"));
    QCOMPARE(version.call(getVersions), withBsp("1.2"));
}

WORLD_TEST_MAIN(TestVersion)
#include "test_version.moc"
