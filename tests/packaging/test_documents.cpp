#include "deadline.h"
#include "files.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

/** The names in the documents, and the program that checks that they exist. */
class TestDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingThatTheDocumentsNameExists();
    void missingNamesAreReported_data();
    void missingNamesAreReported();
    void existingNamesAreNotReported();
    void theManualPageHasTheOptionsOfTheInstrument();
    void theManualPageHasTheCommandsInTheInstrument();
    void theInstallingPageListsTheBuildDependencies();
    void theInstallingPageListsTheMinimumVersions();
    void theReadmeListsThePackagesThatPrepareInstalls();
    void theInstallingPageListsTheCampaignsOfThePackages();
    void thePackagesRepeatTheLicenceAndHaveHttpsAddresses();
    void theForgeRunsWhatContributorsRun();

private:
    /** The program's complaints; "none" if there are none. */
    static QString complaints(const QStringList &documents);
    static QString complaintsOf(const QByteArray &text);
    static QString text(const QString &file);
    /** The sorted, unique matches of the expression's group in the text. */
    static QStringList matches(const QString &text, const char *expression);
    static QString manualPage();
};

QString TestDocuments::complaints(const QStringList &documents)
{
    QProcess process;
    process.start(QStringLiteral(CHECKDOCUMENTS),
                  QStringList{"--kyboardctl", KYBOARDCTL} + documents);
    if (!process.waitForFinished(deadlineMs))
        return QStringLiteral("no end");
    const QString text = QString::fromUtf8(process.readAllStandardError()).trimmed();
    return process.exitCode() == 0 && text.isEmpty() ? QStringLiteral("none") : text;
}

QString TestDocuments::complaintsOf(const QByteArray &text)
{
    QTemporaryDir directory;
    writeFile(directory.filePath("other.md"), "# One thing: and another\n\n## Twice\n\n## Twice\n");
    writeFile(directory.filePath("document.md"), text);
    return complaints({directory.filePath("document.md")});
}

void TestDocuments::everythingThatTheDocumentsNameExists()
{
    QCOMPARE(complaints({}), QString("none"));
}

void TestDocuments::missingNamesAreReported_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("complaint");

    const auto row = [](const char *name, const char *text, const char *complaint) {
        QTest::newRow(name) << QByteArray(text)
                            << QStringLiteral("document.md: ") + QString::fromUtf8(complaint);
    };
    row("file of a link", "See [this](missing.md).", "link to missing.md: no such file");
    row("heading", "See [this](other.md#one-thing).",
        "link to other.md#one-thing: no such heading");
    row("own heading", "# Here\n\nSee [this](#there).", "link to #there: no such heading");
    row("file of the tree", "In `src/app/eror.h`.", "src/app/eror.h: no such file");
    row("pattern of files", "In `src/app/eror.*`.", "src/app/eror.*: no such file");
    row("file in an indented block", "Do:\n\n    cat tools/prepared run\n",
        "tools/prepared: no such file");
    row("file in a fenced block", "```\ntools/prepared\n```\n", "tools/prepared: no such file");
    row("script", "Do `./runs`.", "./runs: no such file");
    row("test", "Run `test_user`.", "test_user: no such test");
    row("function of a test",
        "See `test_users`: `setUserSwitches`, `getUserReturnsTheActiveProfile`",
        "test_users: no function setUserSwitches");
    row("function of a command", "Do:\n\n    tools/one test_users setUserSwitches\n",
        "test_users: no function setUserSwitches");
    row("command", "Call `kyboardctl wifi scam`.", "kyboardctl wifi scam: no such command");
    row("command of a block", "Call:\n\n    $ ./run -- kyboardctl users get\n",
        "kyboardctl users get: no such command");
}

void TestDocuments::missingNamesAreReported()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, complaint);
    QCOMPARE(complaintsOf(text), complaint);
}

void TestDocuments::existingNamesAreNotReported()
{
    QCOMPARE(complaintsOf("# Here\n\n[a](other.md#one-thing-and-another) [b](other.md#twice-1) "
                          "[c](#here) [d](https://example.org/x.md) `src/app/error.*` `src/` "
                          "`/usr/src/none` `test_users`: `getUserReturnsTheActiveProfile` "
                          "`kyboardctl --json user set user2`\n\n    # kyboardctl monitor  # what\n"
                          "\n<!-- made up: src/none.h -->\n\n`src/none.h`\n"),
             QString("none"));
}

QString TestDocuments::text(const QString &file)
{
    return QString::fromUtf8(readFile(QStringLiteral(SOURCES "/") + file));
}

QStringList TestDocuments::matches(const QString &text, const char *expression)
{
    QStringList result;
    auto found =
        QRegularExpression(expression, QRegularExpression::MultilineOption).globalMatch(text);
    while (found.hasNext())
        result << found.next().captured(1);
    result.removeDuplicates();
    result.sort();
    return result;
}

QString TestDocuments::manualPage()
{
    return text("simulator/kyboard-instrument.1").replace("\\-", "-");
}

void TestDocuments::theManualPageHasTheOptionsOfTheInstrument()
{
    QProcess run;
    run.start(SOURCES "/run", {"--help"});
    QVERIFY(run.waitForFinished(deadlineMs));
    const QStringList options =
        matches(QString::fromUtf8(run.readAllStandardOutput()), "(?<=[ ])(--[a-z]+)");
    QVERIFY(options.contains("--panel"));
    QCOMPARE(matches(text("simulator/commandline.sh"), "(?<= )(--[a-z]+)(?=\\)| \\| )"), options);
    QCOMPARE(
        matches(manualPage().section(".SH OPTIONS", 1).section(".SH ", 0, 0), "^\\.B.*?(--[a-z]+)"),
        options);
}

void TestDocuments::theManualPageHasTheCommandsInTheInstrument()
{
    // Scripts that start the instrument, or that only other scripts call.
    const QStringList internal{"emulated", "instrument", "kyboard-instrument", "world"};
    QStringList commands{"uevent"};
    for (const char *directory : {"/simulator", "/simulator/network"}) {
        const QDir scripts(QStringLiteral(SOURCES) + directory);
        for (const QString &script : scripts.entryList(QDir::Files | QDir::Executable)) {
            if (!internal.contains(script))
                commands << script;
        }
    }
    commands.sort();
    QCOMPARE(matches(manualPage().section(".SH DESCRIPTION", 1).section(".SH ", 0, 0),
                     "^\\.TP\\n\\.B[RI]? ([a-z]+)"),
             commands);
}

void TestDocuments::theInstallingPageListsTheBuildDependencies()
{
    // Leaves out debhelper, and the packages from libqt5svg5-dev on, which only the virtual
    // instrument needs. Adds g++, which Build-Depends need not name.
    QStringList declared =
        matches(text("debian/control").section("Build-Depends:", 1).section("libqt5svg5-dev", 0, 0),
                "([a-z][a-z0-9+-]+)(?: \\([^)]*\\))?,");
    QVERIFY(declared.removeOne("debhelper-compat"));
    declared << "g++";
    declared.sort();
    QStringList told = matches(text("docs/installing.md"), "^    apt install (.*)$")
                           .filter("g++")
                           .first()
                           .split(' ');
    told.sort();
    QCOMPARE(told, declared);
}

void TestDocuments::theInstallingPageListsTheMinimumVersions()
{
    const QString document = text("docs/installing.md");
    const auto version = [&](const char *file, const char *expression) {
        return matches(text(file), expression).value(0);
    };
    const QString cmake = version("CMakeLists.txt", "^cmake_minimum_required\\(VERSION (.*)\\)$");
    const QString presets = version("CMakePresets.json", "\"cmakeMinimumRequired\": \\{ (.*) \\}");
    const QString qt = version("CMakeLists.txt", "^find_package\\(Qt5 ([0-9.]+) ");
    const QString standard = version("CMakeLists.txt", "^set\\(CMAKE_CXX_STANDARD ([0-9]+)\\)$");
    QCOMPARE(presets, QStringLiteral("\"major\": 3, \"minor\": 25"));
    QVERIFY(document.contains(QStringLiteral("| compiler | C++%1 |").arg(standard)));
    QVERIFY(
        document.contains(QStringLiteral("| CMake | %1 | `cmake_minimum_required`; the presets, "
                                         "and so `./run` and `./test`, need 3.25 |")
                              .arg(cmake)));
    QVERIFY(document.contains(QStringLiteral("| Qt | %1 |").arg(qt)));
}

void TestDocuments::theReadmeListsThePackagesThatPrepareInstalls()
{
    const QString prepare = text("tools/prepare");
    QStringList installed;
    for (const char *list : {"packages", "example", "panel", "tests", "campaigns"}) {
        const QString words =
            matches(prepare, qPrintable(QStringLiteral("(?s)^%1=\\((.*?)\\)$").arg(list))).value(0);
        QVERIFY2(!words.isEmpty(), list);
        installed += words.split(QRegularExpression("\\s+")).filter(QRegularExpression("^[a-z]"));
    }
    const QString readme = text("README.md");
    for (const QString &package : qAsConst(installed))
        QVERIFY2(readme.contains('`' + package + '`'), qPrintable(package));
}

void TestDocuments::theInstallingPageListsTheCampaignsOfThePackages()
{
    const QString document = text("docs/installing.md").section("## How it is tested", 1);
    const QString definitions = text("tests/packaging/CMakeLists.txt");
    const QStringList checks = matches(document, "^\\| `(campaign_[a-z]+)` \\| `--checks` \\|");
    QCOMPARE(checks, QStringList({"campaign_autopkgtest", "campaign_package",
                                  "campaign_simulatorpackage", "campaign_sourcepackage"}));
    for (const QString &campaign : checks)
        QVERIFY2(definitions.contains("add_campaign(" + campaign + "\n"), qPrintable(campaign));
    for (const QString &campaign : matches(document, "^\\| `(campaign_[a-z]+)` \\| `--long` \\|"))
        QVERIFY2(definitions.contains("add_campaign(" + campaign + " LONG\n"),
                 qPrintable(campaign));
}

void TestDocuments::thePackagesRepeatTheLicenceAndHaveHttpsAddresses()
{
    const QString copyright = text("debian/copyright").section("\nFiles: *\n", 1);
    QString packaged =
        "Copyright " + copyright.section("Copyright: ", 1).section('\n', 0, 0) + "\n\n";
    packaged += copyright.section("License: proprietary\n ", 1);
    QCOMPARE(packaged, text("LICENSE"));
    QCOMPARE(matches(text("debian/control"), "^(Homepage|Vcs-[A-Z][a-z]+): https://\\S+$"),
             QStringList({"Homepage", "Vcs-Browser", "Vcs-Git"}));
}

void TestDocuments::theForgeRunsWhatContributorsRun()
{
    QVERIFY(matches(text(".github/workflows/checks.yml"), "^ +run: (.*)$").contains(".ci/run"));
    QVERIFY(text(".ci/run").endsWith("\nexec ./test --checks\n"));
    const QString limit =
        matches(text(".github/workflows/checks.yml"), "timeout-minutes: ([0-9]+)$").value(0);
    QVERIFY(!limit.isEmpty());
    const QString promised = text("CONTRIBUTING.md").section("## What CI demands", 1).simplified();
    QVERIFY(promised.contains(".ci/run`, which is `./test --checks`"));
    QVERIFY(promised.contains("within " + limit + " minutes"));
}

QTEST_GUILESS_MAIN(TestDocuments)
#include "test_documents.moc"
