#include "deadline.h"
#include "files.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** debian/changelog, and tools/release in a copy of the tree's files, with a fake ./test. */
class TestRelease : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void debianChangelogIsUpToDate();
    void aStaleDebianChangelogIsReported();
    void aReleaseChangesTheVersionEverywhere();
    void theChangelogIsClosed();
    void theCommitAndTheTagAreSignedOff();
    void theArchiveHoldsTheRelease();
    void theChecksRunInTheRequestedForm();
    void aFailedCheckLeavesTheTreeAsItWas();
    void aReleaseThatCannotBeMadeIsRefused_data();
    void aReleaseThatCannotBeMadeIsRefused();

private:
    struct Result {
        int status;
        QString output;
        QString complaint;
    };

    Result run(const QString &program, const QStringList &arguments) const;
    Result release(const QStringList &arguments) const;
    QString git(const QStringList &arguments) const;
    QString text(const QString &file) const;
    void replace(const QString &file, const char *before, const char *after) const;
    void letChecksEndWith(int status) const;

    QTemporaryDir m_parent;
    QString m_tree;
};

namespace
{
const QString newest = QStringLiteral("90.12");
}

TestRelease::Result TestRelease::run(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    process.setWorkingDirectory(m_tree);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Independent of the user's git configuration.
    environment.insert("HOME", m_parent.path());
    environment.insert("XDG_CONFIG_HOME", m_parent.path());
    environment.insert("GIT_CONFIG_NOSYSTEM", "1");
    environment.insert("XZ_DEFAULTS", "-0");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    if (!process.waitForFinished(deadlineMs))
        return {-1, QString(), "no end"};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()).trimmed(),
            QString::fromUtf8(process.readAllStandardError()).trimmed()};
}

TestRelease::Result TestRelease::release(const QStringList &arguments) const
{
    return run(m_tree + "/tools/release", arguments);
}

QString TestRelease::git(const QStringList &arguments) const
{
    const Result result = run("git", arguments);
    return result.status == 0 ? result.output : "git: " + result.complaint;
}

QString TestRelease::text(const QString &file) const
{
    return QString::fromUtf8(readFile(m_tree + '/' + file));
}

void TestRelease::replace(const QString &file, const char *before, const char *after) const
{
    writeFile(m_tree + '/' + file, text(file).replace(before, after).toUtf8());
}

/** Replaces ./test with a script that writes its arguments to a file beside the tree. */
void TestRelease::letChecksEndWith(int status) const
{
    writeFile(m_tree + "/test",
              "#!/bin/sh\necho \"$@\" >../arguments\nexit " + QByteArray::number(status) + '\n');
    QFile(m_tree + "/test").setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void TestRelease::init()
{
    m_tree = m_parent.path() + "/tree";
    QVERIFY(QDir(m_tree).removeRecursively());
    QFile::remove(m_parent.path() + "/arguments");
    QVERIFY(QDir().mkpath(m_tree + "/tools"));
    for (const char *name : {"CHANGELOG.md", "CMakeLists.txt", "README.md", "debian", "docs",
                             "tools/debchangelog", "tools/release"}) {
        const QString copied = QFileInfo(m_tree + '/' + name).path();
        QCOMPARE(QProcess::execute("cp", {"-a", QString(SOURCES "/") + name, copied}), 0);
    }
    letChecksEndWith(0);
    replace("CHANGELOG.md", "## [Unreleased]\n",
            "## [Unreleased]\n\n### Fixed\n\n- The `last` fix.\n");
    QVERIFY(run("git", {"init", "--quiet"}).status == 0);
    git({"config", "user.name", "A Maintainer"});
    git({"config", "user.email", "maintainer@example.org"});
    // As in our tree, git ignores build/: the archive must not block the next release.
    writeFile(m_tree + "/.gitignore", "/build/\n");
    git({"add", "--all"});
    QCOMPARE(git({"commit", "--quiet", "--message", "all"}), QString());
}

void TestRelease::debianChangelogIsUpToDate()
{
    QProcess process;
    process.start(SOURCES "/tools/debchangelog", {"--check"});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(run("dpkg-parsechangelog", {"--show-field", "Version"}).output,
             QStringLiteral(VERSION));
}

void TestRelease::aStaleDebianChangelogIsReported()
{
    replace("CHANGELOG.md", "- The first release", "- The very first release");
    const Result result = run(m_tree + "/tools/debchangelog", {"--check"});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.complaint,
             QStringLiteral("debian/changelog is out of date: run tools/debchangelog"));
}

void TestRelease::aReleaseChangesTheVersionEverywhere()
{
    const QString measurements = text("docs/measurements.md");
    QVERIFY(text("README.md").contains("KyBoardManager=" VERSION "\n"));
    const Result result = release({newest});
    QVERIFY2(result.status == 0, qPrintable(result.complaint));
    QVERIFY(text("CMakeLists.txt").contains("project(KyBoardManager VERSION 90.12 LANGUAGES CXX)"));
    for (const char *file : {"README.md", "docs/in-the-field.md"}) {
        QVERIFY(text(file).contains("KyBoardManager=90.12\n"));
        QVERIFY(!text(file).contains("KyBoardManager=" VERSION));
    }
    // Figures in this document can look like the version.
    QCOMPARE(text("docs/measurements.md"), measurements);
    QCOMPARE(git({"status", "--porcelain"}), QString());
}

void TestRelease::theChangelogIsClosed()
{
    QCOMPARE(release({newest}).status, 0);
    const QString today = run("date", {"--utc", "+%F"}).output;
    QVERIFY(text("CHANGELOG.md")
                .contains("## [Unreleased]\n\n## [90.12] - " + today +
                          "\n\n### Fixed\n\n- The `last` fix.\n"));
    QVERIFY(text("debian/changelog")
                .startsWith("kyboardmanager (90.12) unstable; urgency=medium\n\n"
                            "  * The last fix.\n"));
    QCOMPARE(run("dpkg-parsechangelog", {"--show-field", "Version"}).output, newest);
}

void TestRelease::theCommitAndTheTagAreSignedOff()
{
    QCOMPARE(release({newest}).status, 0);
    const QString signedOff = "Signed-off-by: A Maintainer <maintainer@example.org>";
    QCOMPARE(git({"log", "-1", "--format=%B"}), "release: 90.12\n\n" + signedOff);
    QCOMPARE(git({"cat-file", "-t", "v90.12"}), QString("tag"));
    QCOMPARE(git({"tag", "--list", "--format=%(contents)"}),
             "KyBoardManager 90.12\n\n" + signedOff);
    QCOMPARE(git({"rev-parse", "v90.12^{commit}"}), git({"rev-parse", "HEAD"}));
}

void TestRelease::theArchiveHoldsTheRelease()
{
    const Result result = release({newest});
    const QString archive = QStringLiteral("build/release/kyboardmanager-90.12.tar.xz");
    QCOMPARE(result.output.section('\n', -1), archive);
    QVERIFY(run("tar", {"tf", archive}).output.contains("kyboardmanager-90.12/debian/changelog\n"));
    QVERIFY(run("tar", {"xOf", archive, "kyboardmanager-90.12/debian/changelog"})
                .output.startsWith("kyboardmanager (90.12)"));
    QCOMPARE(run("sh", {"-c", "cd build/release && sha256sum --check --status *.sha256"}).status,
             0);
}

void TestRelease::theChecksRunInTheRequestedForm()
{
    QCOMPARE(release({"--checks", newest}).status, 0);
    QCOMPARE(readFile(m_parent.path() + "/arguments"), QByteArray("--checks\n"));
    QCOMPARE(git({"reset", "--quiet", "--hard", "HEAD~"}), QString());
    git({"tag", "--delete", "v90.12"});
    QCOMPARE(release({newest}).status, 0);
    QCOMPARE(readFile(m_parent.path() + "/arguments"), QByteArray("--long\n"));
}

void TestRelease::aFailedCheckLeavesTheTreeAsItWas()
{
    letChecksEndWith(1);
    git({"commit", "--quiet", "--all", "--message", "checks that fail"});
    const QString before = git({"rev-parse", "HEAD"});
    const Result result = release({newest});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.complaint, QStringLiteral("release: not released: see above"));
    QVERIFY(QFile::exists(m_parent.path() + "/arguments"));
    QCOMPARE(git({"status", "--porcelain"}), QString());
    QCOMPARE(git({"rev-parse", "HEAD"}), before);
    QCOMPARE(git({"tag"}), QString());
    QVERIFY(!QFile::exists(m_tree + "/build"));
}

void TestRelease::aReleaseThatCannotBeMadeIsRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("no version") << QStringList{} << ""
                                << "which version?";
    QTest::newRow("one digit") << QStringList{"90.1"} << ""
                               << "a version reads as in 2.07, not 90.1";
    QTest::newRow("the same") << QStringList{VERSION} << ""
                              << VERSION " is not later than " VERSION;
    QTest::newRow("an earlier one") << QStringList{"1.99"} << ""
                                    << "1.99 is not later than " VERSION;
    QTest::newRow("uncommitted changes") << QStringList{newest} << "uncommitted"
                                         << "there are changes that are not committed";
    QTest::newRow("tagged already") << QStringList{newest} << "tagged"
                                    << "v90.12 is tagged already";
    QTest::newRow("nothing changed") << QStringList{newest} << "nothing unreleased"
                                     << "CHANGELOG.md lists nothing under Unreleased";
}

void TestRelease::aReleaseThatCannotBeMadeIsRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, state);
    QFETCH(QString, complaint);
    if (state == "uncommitted")
        writeFile(m_tree + "/README.md", "changed");
    if (state == "tagged")
        git({"tag", "v90.12"});
    if (state == "nothing unreleased") {
        const QString log = text("CHANGELOG.md");
        const int begin = log.indexOf("## [Unreleased]");
        writeFile(
            m_tree + "/CHANGELOG.md",
            (log.left(begin) + "## [Unreleased]\n\n" + log.mid(log.indexOf("## [2.06]"))).toUtf8());
        git({"commit", "--quiet", "--all", "--message", "nothing new"});
    }
    const QString before = git({"rev-parse", "HEAD"});
    const Result result = release(arguments);
    QCOMPARE(result.status, 1);
    QCOMPARE(result.complaint, "release: " + complaint);
    QCOMPARE(git({"rev-parse", "HEAD"}), before);
    QVERIFY(!QFile::exists(m_parent.path() + "/arguments"));
}

QTEST_GUILESS_MAIN(TestRelease)
#include "test_release.moc"
