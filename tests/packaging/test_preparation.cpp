#include "deadline.h"
#include "files.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** ./test, tools/prepare and tools/package; stand-ins for other programs print their arguments. */
class TestPreparation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void packagesAreNamedBeforeTheyAreInstalled_data();
    void packagesAreNamedBeforeTheyAreInstalled();
    void nothingIsInstalledWhereNothingIsMissing();
    void aFailedInstallationBuildsNothing();
    void aSecondTerminalWaits();
    void aCopiedBuildDirectoryIsCreatedAgain_data();
    void aCopiedBuildDirectoryIsCreatedAgain();
    void eachFormSelectsItsTests_data();
    void eachFormSelectsItsTests();
    void buildDependenciesAreInstalled();
    void installedBuildDependenciesAreNotInstalledAgain();
    void newPackagesReplaceTheOldOnes();
    void theFilesInGitArePackaged();
    void theSourceArchiveHasUncommittedChanges();
    void aFailedBuildLeavesTheOldPackages();

private:
    void stub(const QString &name, const QByteArray &script) const;
    /** The status of a tool, with its stdout and stderr. */
    QPair<int, QStringList> run(const QString &tool, const QStringList &arguments) const;
    QStringList entries(const QString &directory) const;

    QScopedPointer<QTemporaryDir> m_directory;
    QString m_tree;
};

void TestPreparation::init()
{
    m_directory.reset(new QTemporaryDir);
    m_tree = m_directory->path() + "/tree";
    QVERIFY(QDir().mkpath(m_tree + "/tools"));
    QVERIFY(QDir().mkpath(m_tree + "/tests/packaging"));
    QVERIFY(QDir().mkpath(m_directory->path() + "/bin"));
    for (const char *name : {"debian", "test", "tests/packaging/check_source", "tools/package",
                             "tools/prepare", "tools/sources"})
        QCOMPARE(QProcess::execute("cp", {"-a", QString(SOURCES "/") + name,
                                          m_tree + '/' + QString(name).section('/', 0, -2)}),
                 0);
    for (const char *name : {"apt-cache", "cmake", "ninja", "dpkg-checkbuilddeps"})
        stub(name, "exit 0");
    stub("apt-get", "echo apt-get $DEBIAN_FRONTEND \"$@\"");
    stub("sudo", "exec \"$@\"");
    // No package is installed.
    stub("dpkg-query", "exit 1");
    stub("dpkg-buildpackage", "ls; touch ../new.deb");
    writeFile(m_tree + "/tools/peers", "#!/bin/sh\n");
    QFile(m_tree + "/tools/peers").setPermissions(QFile::ReadOwner | QFile::ExeOwner);
}

void TestPreparation::stub(const QString &name, const QByteArray &script) const
{
    const QString path = m_directory->path() + "/bin/" + name;
    writeFile(path, "#!/bin/sh\n" + script + '\n');
    QFile(path).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
}

QPair<int, QStringList> TestPreparation::run(const QString &tool,
                                             const QStringList &arguments) const
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    QProcessEnvironment environment;
    environment.insert("PATH", m_directory->path() + "/bin:/usr/bin:/bin");
    environment.insert("HOME", m_directory->path());
    process.setProcessEnvironment(environment);
    process.start(m_tree + "/tools/" + tool, arguments);
    if (!process.waitForFinished(deadlineMs))
        return {-1, {}};
    return {process.exitCode(),
            QString::fromUtf8(process.readAll()).split('\n', Qt::SkipEmptyParts)};
}

QStringList TestPreparation::entries(const QString &directory) const
{
    return QDir(m_tree + '/' + directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
}

void TestPreparation::packagesAreNamedBeforeTheyAreInstalled_data()
{
    QTest::addColumn<QString>("task");
    for (const char *task : {"run", "panel", "test", "checks", "long", "bench"})
        QTest::newRow(task) << task;
}

void TestPreparation::packagesAreNamedBeforeTheyAreInstalled()
{
    QFETCH(QString, task);
    const auto [status, lines] = run("prepare", {task});
    QCOMPARE(status, 0);
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines.at(0).startsWith("This machine lacks packages"));
    QVERIFY(lines.at(0).contains("README.md"));
    QVERIFY(lines.at(1).startsWith("apt-get installs: g++ cmake "));
    QCOMPARE(lines.at(2), QString("apt-get update"));
    // apt-get asks no question, which would block a script.
    QCOMPARE(lines.at(3), "apt-get noninteractive install --yes --no-install-recommends " +
                              lines.at(1).section(": ", 1));
}

void TestPreparation::nothingIsInstalledWhereNothingIsMissing()
{
    stub("dpkg-query", "for package; do echo \"$package installed\"; done");
    const auto [status, lines] = run("prepare", {"checks"});
    QCOMPARE(status, 0);
    QCOMPARE(lines, QStringList());
}

void TestPreparation::aFailedInstallationBuildsNothing()
{
    stub("apt-get", "exit 100");
    stub("ninja", "echo built");
    const auto [status, lines] = run("prepare", {"run"});
    QCOMPARE(status, 100);
    QVERIFY(!lines.contains("built"));
}

/** Two builds at a time would write the same files. */
void TestPreparation::aSecondTerminalWaits()
{
    stub("dpkg-query", "for package; do echo \"$package installed\"; done");
    stub("ninja", "mkdir building || echo two at a time; sleep 0.5; rmdir building");
    QProcess both;
    QProcessEnvironment environment;
    environment.insert("PATH", m_directory->path() + "/bin:/usr/bin:/bin");
    both.setProcessEnvironment(environment);
    both.setProcessChannelMode(QProcess::MergedChannels);
    both.setWorkingDirectory(m_tree);
    both.start("sh", {"-c", "tools/prepare run & tools/prepare run; wait"});
    QVERIFY(both.waitForFinished(deadlineMs));
    QCOMPARE(both.readAll(), QByteArray());
}

void TestPreparation::aCopiedBuildDirectoryIsCreatedAgain_data()
{
    QTest::addColumn<QString>("configuredFor");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("this tree") << "tree" << true;
    QTest::newRow("this tree, by a symbolic link") << "link" << true;
    QTest::newRow("another tree") << "bin" << false;
    QTest::newRow("a tree that is gone") << "gone" << false;
}

/** CMake records the path of the tree: a copied build directory would build the original tree. */
void TestPreparation::aCopiedBuildDirectoryIsCreatedAgain()
{
    QFETCH(QString, configuredFor);
    QFETCH(bool, isKept);
    stub("dpkg-query", "for package; do echo \"$package installed\"; done");
    stub("cmake", "echo cmake \"$@\"");
    QVERIFY(QFile::link(m_tree, m_directory->path() + "/link"));
    QVERIFY(QDir().mkpath(m_tree + "/build"));
    const QString home = m_directory->path() + '/' + configuredFor;
    writeFile(m_tree + "/build/CMakeCache.txt",
              "CMAKE_HOME_DIRECTORY:INTERNAL=" + home.toUtf8() + '\n');
    writeFile(m_tree + "/build/build.ninja", "");

    const auto [status, lines] = run("prepare", {"run"});
    QCOMPARE(status, 0);
    if (isKept) {
        QCOMPARE(lines, QStringList());
        QCOMPARE(entries("build").size(), 2);
    } else {
        QCOMPARE(lines,
                 QStringList({"The build directory was made for " + home + ": creating it again",
                              "cmake --preset release"}));
        QVERIFY(!QFile::exists(m_tree + "/build"));
    }
}

void TestPreparation::eachFormSelectsItsTests_data()
{
    QTest::addColumn<QString>("form");
    QTest::addColumn<QByteArray>("user");
    QTest::addColumn<QString>("selection");
    const QString tests = " --label-exclude campaign|long";
    QTest::newRow("tests") << "" << QByteArray("0") << tests;
    QTest::newRow("tests of an ordinary user") << "" << QByteArray("1000") << tests;
    QTest::newRow("checks") << "--checks" << QByteArray("0") << " --label-exclude long";
    // Ordinary users cannot make the systems in which the packages are installed.
    QTest::newRow("checks of an ordinary user")
        << "--checks" << QByteArray("1000") << " --label-exclude long|root";
    QTest::newRow("long") << "--long" << QByteArray("0") << "";
    // A release needs every check: those that need root fail.
    QTest::newRow("long of an ordinary user") << "--long" << QByteArray("1000") << "";
}

void TestPreparation::eachFormSelectsItsTests()
{
    QFETCH(QString, form);
    QFETCH(QByteArray, user);
    QFETCH(QString, selection);
    stub("dpkg-query", "for package; do echo \"$package installed\"; done");
    stub("id", "echo " + user);
    stub("ctest", "shift 2; echo ctest \"$@\"");
    QVERIFY(QDir().mkpath(m_tree + "/build"));
    const auto [status, lines] = run("../test", form.isEmpty() ? QStringList() : QStringList{form});
    QCOMPARE(status, 0);
    QCOMPARE(lines.last(), "ctest --output-on-failure --no-tests=error" + selection);
    QCOMPARE(lines.filter("left out").size(), selection.endsWith("|root") ? 1 : 0);
}

void TestPreparation::buildDependenciesAreInstalled()
{
    stub("dpkg-checkbuilddeps", "exit 1");
    const auto [status, lines] = run("package", {});
    QCOMPARE(status, 0);
    QCOMPARE(
        lines.filter("apt-get"),
        QStringList({"apt-get noninteractive update",
                     "apt-get noninteractive install --yes --no-install-recommends dpkg-dev",
                     "apt-get noninteractive build-dep --yes --no-install-recommends " + m_tree}));
}

void TestPreparation::installedBuildDependenciesAreNotInstalledAgain()
{
    const auto [status, lines] = run("package", {});
    QCOMPARE(status, 0);
    QCOMPARE(lines.filter("apt-get"), QStringList());
}

/** The tree has no git repository, like an unpacked source archive. */
void TestPreparation::newPackagesReplaceTheOldOnes()
{
    QVERIFY(QDir().mkpath(m_tree + "/build/package"));
    writeFile(m_tree + "/build/package/old.deb", "");
    const auto [status, lines] = run("package", {});
    QCOMPARE(status, 0);
    // dpkg-buildpackage works on a copy of the source without build/.
    QCOMPARE(lines, QStringList({"debian", "test", "tests", "tools"}));
    QCOMPARE(entries("build/package"), QStringList{"new.deb"});
    QCOMPARE(entries("build"), QStringList{"package"});
}

/**
 * Files that git ignores are not packaged. The clone may belong to another user, as in a forge's
 * container.
 */
void TestPreparation::theFilesInGitArePackaged()
{
    writeFile(m_tree + "/.gitignore", "/build/\n/ignored\n");
    writeFile(m_tree + "/ignored", "");
    QCOMPARE(QProcess::execute("git", {"-C", m_tree, "init", "--quiet"}), 0);
    stub("git", "GIT_TEST_ASSUME_DIFFERENT_OWNER=1 exec /usr/bin/git \"$@\"");
    stub("dpkg-buildpackage", "ls -A; touch ../new.deb");
    const auto [status, lines] = run("package", {});
    QCOMPARE(status, 0);
    QCOMPARE(lines, QStringList({".gitignore", "debian", "test", "tests", "tools"}));
}

/** tools/release runs the checks before it commits the new version. */
void TestPreparation::theSourceArchiveHasUncommittedChanges()
{
    const QString build = m_tree + "/build";
    QVERIFY(QDir().mkpath(build + "/package"));
    writeFile(build + "/package/kyboardmanager_90.12_all.deb", "");
    writeFile(m_tree + "/.gitignore", "/build/\n");
    const QStringList inTree{"-C", m_tree, "-c", "user.name=A", "-c", "user.email=a@example.org"};
    QCOMPARE(QProcess::execute("git", inTree + QStringList{"init", "--quiet"}), 0);
    QCOMPARE(QProcess::execute("git", inTree + QStringList{"add", "--all"}), 0);
    QCOMPARE(QProcess::execute("git", inTree + QStringList{"commit", "--quiet", "-m", "all"}), 0);
    writeFile(m_tree + "/debian/changelog", "kyboardmanager (90.12) unstable; urgency=medium\n");
    writeFile(m_tree + "/tools/repositories", "#!/bin/sh\n");
    QFile(m_tree + "/tools/repositories").setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    // Builds an empty package.
    stub("mmdebstrap",
         "cd " + build.toUtf8() +
             "/sourcepackage; tar xf source.tar; mkdir built;\n"
             "version=$(sed -n 's/.*(\\(.*\\)).*/\\1/p;q' kyboardmanager/debian/changelog)\n"
             "touch built/kyboardmanager_${version}_all.deb");
    stub("dpkg-deb", "exit 0");
    const auto [status, lines] = run("../tests/packaging/check_source", {m_tree, build});
    QCOMPARE(lines, QStringList());
    QCOMPARE(status, 0);
}

void TestPreparation::aFailedBuildLeavesTheOldPackages()
{
    stub("dpkg-buildpackage", "touch ../new.deb; exit 2");
    QVERIFY(QDir().mkpath(m_tree + "/build/package"));
    writeFile(m_tree + "/build/package/old.deb", "");
    QCOMPARE(run("package", {}).first, 2);
    QCOMPARE(entries("build/package"), QStringList{"old.deb"});
    QCOMPARE(entries("build"), QStringList{"package"});
}

QTEST_GUILESS_MAIN(TestPreparation)
#include "test_preparation.moc"
