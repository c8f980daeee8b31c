#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

/** The instrument has Qt 5.4: daemon and client use no newer API. */
class TestQtNewer : public QObject
{
    Q_OBJECT

private:
    struct Finding {
        QStringList lines;
        int status = -1;
    };
    static Finding check(const QStringList &arguments);

private slots:
    void theDaemonAndTheClientUseNothingNewer();
    void everyListedNameIsFound();
    void commentsAndLongerNamesAreNotFound();
    void functionsOfTheLibrariesAreFoundInAProgram();
    void aProgramWithoutQtIsReported();
    void programsLinkOnlyKnownLibraries_data();
    void programsLinkOnlyKnownLibraries();
    void theDaemonsPackageNeedsNothingOfThePanel();
};

TestQtNewer::Finding TestQtNewer::check(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(SOURCES "/tools/qt-newer", arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit)
        return {};
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return {output.split('\n', Qt::SkipEmptyParts), process.exitCode()};
}

void TestQtNewer::theDaemonAndTheClientUseNothingNewer()
{
    const QString daemonSources = SOURCES "/src";
    const QString clientSources = SOURCES "/client";
    const Finding finding = check({daemonSources, clientSources, "--", DAEMON, CLIENT});
    QCOMPARE(finding.lines, QStringList());
    QCOMPARE(finding.status, 0);
}

void TestQtNewer::everyListedNameIsFound()
{
    QFile list(SOURCES "/tools/qt-newer-names");
    QVERIFY(list.open(QIODevice::ReadOnly));
    const QTemporaryDir directory;
    const QString source = directory.filePath("all.cpp");
    QFile file(source);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QStringList expected;
    while (!list.atEnd()) {
        const QList<QByteArray> entry = list.readLine().trimmed().split(' ');
        if (entry.first().startsWith('#'))
            continue;
        QCOMPARE(entry.size(), 2);
        file.write("    value = " + entry.last() + ";\n");
        expected << QStringLiteral("%1:%2: %3 is of Qt %4")
                        .arg(source, QString::number(expected.size() + 1),
                             QString::fromLatin1(entry.last()), QString::fromLatin1(entry.first()));
    }
    file.close();
    QVERIFY(expected.size() > 150);

    const Finding finding = check({directory.path()});

    QCOMPARE(finding.lines, expected);
    QCOMPARE(finding.status, 1);
}

void TestQtNewer::commentsAndLongerNamesAreNotFound()
{
    const QTemporaryDir directory;
    QFile file(directory.filePath("other.h"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("value = 1; // not QStringView\n"
               "/** Not qAsConst,\n"
               " * and not Q_ENUM. */\n"
               "Q_ENUMS(Kind) myQStringView QString::SkipEmptyParts unchopped(1)\n");
    file.close();

    const Finding finding = check({directory.path()});

    QCOMPARE(finding.lines, QStringList());
    QCOMPARE(finding.status, 0);
}

void TestQtNewer::functionsOfTheLibrariesAreFoundInAProgram()
{
    const QTemporaryDir directory;
    const Finding finding = check({directory.path(), "--", NEWER_PROGRAM});
    const auto found = [](const char *function) {
        return QStringLiteral(NEWER_PROGRAM ": ") + QString::fromLatin1(function);
    };
    // SkipEmptyParts and chopped() are newer, too, but call no newer function of the libraries.
    QCOMPARE(finding.lines,
             (QStringList{found("QDir::isEmpty(QFlags<QDir::Filter>) const is of Qt 5.9"),
                          found("QMessageLogger::info() const is of Qt 5.5")}));
    QCOMPARE(finding.status, 1);
    const QString source = SOURCES "/tests/support/newerqt.cpp";
    QCOMPARE(check({source}).lines, (QStringList{source + ":12: qInfo is of Qt 5.5",
                                                 source + ":13: Qt::SkipEmptyParts is of Qt 5.14",
                                                 source + ":14: chopped is of Qt 5.10"}));
}

void TestQtNewer::aProgramWithoutQtIsReported()
{
    const QTemporaryDir directory;
    const Finding finding = check({directory.path(), "--", "/bin/true"});
    QCOMPARE(finding.lines, QStringList("/bin/true calls nothing of Qt: it cannot be checked"));
    QCOMPARE(finding.status, 1);
}

void TestQtNewer::programsLinkOnlyKnownLibraries_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("libraries");
    // The libraries of the compiler, of its sanitizers and of its coverage count as known, too.
    const QString common = "c|m|gcc_s|stdc\\+\\+|[at]san|ubsan|gcov|Qt5(Core|DBus|Network)";
    QTest::newRow("daemon") << DAEMON << common + "|Ky(Board|Fileaccess|SoC)";
    QTest::newRow("client") << CLIENT << common;
}

/** The package depends on the libraries that its programs link. */
void TestQtNewer::programsLinkOnlyKnownLibraries()
{
    QFETCH(QString, program);
    QFETCH(QString, libraries);
    QProcess process;
    process.start("readelf", {"--dynamic", program});
    QVERIFY(process.waitForFinished());
    QStringList needed;
    for (const QString &line : QString::fromUtf8(process.readAllStandardOutput()).split('\n')) {
        if (line.contains("(NEEDED)"))
            needed << line.section('[', 1).section(']', 0, 0);
    }
    QVERIFY(needed.contains("libQt5DBus.so.5"));
    const QRegularExpression known("^(lib(" + libraries + ")|ld-linux.*)\\.so\\.");
    for (const QString &library : qAsConst(needed))
        QVERIFY2(library.contains(known), qPrintable(library));
}

/** Every build dependency that is not listed here is marked as one of the virtual instrument. */
void TestQtNewer::theDaemonsPackageNeedsNothingOfThePanel()
{
    QFile control(SOURCES "/debian/control");
    QVERIFY(control.open(QIODevice::ReadOnly));
    const QStringList paragraphs = QString::fromUtf8(control.readAll()).split("\n\n");
    // The package names in a field; a comment and the lines of a long field have no field name.
    const auto names = [&](const QString &paragraph, const QString &field) {
        const QRegularExpression content("^" + field + ":((?:.|\n )*)$",
                                         QRegularExpression::MultilineOption);
        QStringList result;
        for (const QString &entry : content.match(paragraph).captured(1).split(',')) {
            if (!entry.contains("<!pkg.kyboardmanager.nosimulator>") && !entry.trimmed().isEmpty())
                result << entry.simplified();
        }
        return result;
    };
    QCOMPARE(names(paragraphs.first(), "Build-Depends"),
             (QStringList{"cmake", "debhelper-compat (= 13)", "ninja-build", "pkg-config",
                          "qtbase5-dev"}));
    const QStringList daemon = paragraphs.filter(QRegularExpression("^Package: kyboardmanager\n"));
    QCOMPARE(daemon.size(), 1);
    QVERIFY(!daemon.first().contains("Pre-Depends"));
    QCOMPARE(names(daemon.first(), "Depends"),
             (QStringList{"default-dbus-system-bus | dbus-system-bus", "systemd", "${misc:Depends}",
                          "${shlibs:Depends}"}));
    QCOMPARE(names(daemon.first(), "Recommends"), QStringList("connman"));
}

QTEST_APPLESS_MAIN(TestQtNewer)
#include "test_qtnewer.moc"
