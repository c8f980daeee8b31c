#include "files.h"
#include "processes.h"
#include "profilefolder.h"
#include "trustedpath.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** Comparing, emptying and filling profile folders. */
class TestProfileFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aDirectoryWithEverythingIsComplete();
    void extraEntriesAndOtherContentsDoNotMatter();
    void aMissingFileIsDetected();
    void aMissingHiddenFileInASubdirectoryIsDetected();
    void aMissingHiddenFileIsDetected();
    void aFileInPlaceOfADirectoryIsDetected();
    void aMissingReferenceMakesEveryDirectoryComplete();
    void comparingWithAReferenceThatContainsItselfEnds();

    void erasingKeepsTheDirectoryItself();
    void erasingRemovesLinksNotTheirTargets();
    void erasingAMissingDirectorySucceeds();
    void aFailedEraseIsReported_data();
    void aFailedEraseIsReported();

    void copyingCreatesTheDestinationWithItsParents();
    void copyingIncludesHiddenFilesAndDirectories();
    void copyingFollowsLinks();
    void copyingKeepsModes();
    void copyingOntoAnExistingFileFails();
    void aCopyLeavesNothingElseBehind();
    void aCopyThatFailsLeavesNothingBehind();
    void thePartialCopyGetsANameThatTheSourceLacks();
    void copyingAMissingSourceCreatesAnEmptyDirectory();
    void aSourceThatContainsItselfIsRefused();
    void aDestinationThatIsAFileIsRefusedAndKept();

    void aPathThatExceedsTheKernelsLimitIsCopiedAndErased();
    void aDirectoryThatIsTooDeepIsRefused();
    void aDirectoryIsIncompleteBeforeItIsErased_data();
    void aDirectoryIsIncompleteBeforeItIsErased();
    void sourceAndDestinationMustNotContainEachOther();
    void aDirectoryWithALoopCannotBeASource();
    void aMissingDirectoryIsAnEmptySource();
    void noDescriptorIsLeftOpen();

private:
    QString path(const char *name) const { return m_root->path() + QLatin1Char('/') + name; }
    Descriptor at(const char *name) const { return openDirectory(path(name)); }
    Descriptor made(const char *name) const { return makeDirectory(path(name)); }
    mode_t modeOf(const char *name) const;

    QScopedPointer<QTemporaryDir> m_root;
};

void TestProfileFolder::init()
{
    m_root.reset(new QTemporaryDir);
    writeFile(path("default/a"), "A");
    writeFile(path("default/.hidden"), "H");
    writeFile(path("default/sub/b"), "B");
    writeFile(path("default/.cache/deep/c"), "C");
}

void TestProfileFolder::aDirectoryWithEverythingIsComplete()
{
    QVERIFY(copyFolder(at("default"), made("user")));
    QVERIFY(isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::extraEntriesAndOtherContentsDoNotMatter()
{
    copyFolder(at("default"), made("user"));
    writeFile(path("user/a"), "another");
    writeFile(path("user/extra/x"), "X");
    QVERIFY(isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::aMissingFileIsDetected()
{
    copyFolder(at("default"), made("user"));
    QVERIFY(QFile::remove(path("user/a")));
    QVERIFY(!isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::aMissingHiddenFileInASubdirectoryIsDetected()
{
    copyFolder(at("default"), made("user"));
    QVERIFY(QFile::remove(path("user/.cache/deep/c")));
    QVERIFY(!isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::aMissingHiddenFileIsDetected()
{
    copyFolder(at("default"), made("user"));
    QVERIFY(QFile::remove(path("user/.hidden")));
    QVERIFY(!isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::aFileInPlaceOfADirectoryIsDetected()
{
    copyFolder(at("default"), made("user"));
    emptyDirectory(path("user/sub"));
    rmdir(qPrintable(path("user/sub")));
    writeFile(path("user/sub"), "no directory");
    QVERIFY(!isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::aMissingReferenceMakesEveryDirectoryComplete()
{
    QVERIFY(isFolderComplete(at("missing"), at("default")));
}

void TestProfileFolder::comparingWithAReferenceThatContainsItselfEnds()
{
    copyFolder(at("default"), made("user"));
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(QFile::link(path("user"), path("user/sub/loop")));
    QVERIFY(!isFolderComplete(at("default"), at("user")));
}

void TestProfileFolder::erasingKeepsTheDirectoryItself()
{
    QVERIFY(eraseFolder(at("default")));
    QCOMPARE(snapshot(m_root->path()), QStringList{QStringLiteral("default")});
}

void TestProfileFolder::erasingRemovesLinksNotTheirTargets()
{
    writeFile(path("precious/file"), "P");
    QVERIFY(QFile::link(path("precious"), path("default/directorylink")));
    QVERIFY(QFile::link(path("precious/file"), path("default/filelink")));
    QVERIFY(QFile::link(path("nowhere"), path("default/sub/dangling")));

    QVERIFY(eraseFolder(at("default")));

    QCOMPARE(snapshot(path("default")), QStringList());
    QCOMPARE(snapshot(path("precious")), QStringList{QStringLiteral("file=P")});
}

void TestProfileFolder::erasingAMissingDirectorySucceeds()
{
    QVERIFY(eraseFolder(at("missing")));
    QVERIFY(!QFile::exists(path("missing")));
}

void TestProfileFolder::aFailedEraseIsReported_data()
{
    QTest::addColumn<QString>("directory");
    // Files and directories in /proc cannot be removed.
    QTest::newRow("files") << "/proc/self/fdinfo";
    QTest::newRow("directories") << "/proc/self/task";
    QTest::newRow("a link to itself") << "circle";
}

void TestProfileFolder::aFailedEraseIsReported()
{
    QFETCH(QString, directory);
    QVERIFY(QFile::link(path("circle"), path("circle")));
    QVERIFY(!eraseFolder(openDirectory(QDir(m_root->path()).absoluteFilePath(directory))));
}

void TestProfileFolder::copyingCreatesTheDestinationWithItsParents()
{
    QVERIFY(copyFolder(at("default"), made("new/parents/user")));
    QCOMPARE(snapshot(path("new/parents/user")), snapshot(path("default")));
}

void TestProfileFolder::copyingIncludesHiddenFilesAndDirectories()
{
    copyFolder(at("default"), made("user"));
    QCOMPARE(snapshot(path("user")), (QStringList{".cache", ".cache/deep", ".cache/deep/c=C",
                                                  ".hidden=H", "a=A", "sub", "sub/b=B"}));
}

void TestProfileFolder::copyingFollowsLinks()
{
    writeFile(path("elsewhere/file"), "E");
    QVERIFY(QFile::link(path("elsewhere/file"), path("default/filelink")));
    QVERIFY(QFile::link(path("elsewhere"), path("default/directorylink")));
    QVERIFY(QFile::link(path("nowhere"), path("default/dangling")));

    QVERIFY(copyFolder(at("default"), made("user")));

    QCOMPARE(readFile(path("user/filelink")), QByteArray("E"));
    QVERIFY(!QFileInfo(path("user/filelink")).isSymLink());
    QVERIFY(!QFileInfo(path("user/directorylink")).isSymLink());
    QCOMPARE(readFile(path("user/directorylink/file")), QByteArray("E"));
    QVERIFY(!QFileInfo(path("user/dangling")).isSymLink());
}

mode_t TestProfileFolder::modeOf(const char *name) const
{
    struct stat status = {};
    return stat(qPrintable(path(name)), &status) == 0 ? status.st_mode & 07777 : 0;
}

void TestProfileFolder::copyingKeepsModes()
{
    QCOMPARE(chmod(qPrintable(path("default/a")), 04640), 0);
    QCOMPARE(chmod(qPrintable(path("default/sub")), 0700), 0);
    QCOMPARE(chmod(qPrintable(path("default/.cache/deep")), 0555), 0);
    QCOMPARE(chmod(qPrintable(path("default/.cache")), 0510), 0);

    QVERIFY(copyFolder(at("default"), made("user")));

    // A copy does not keep the set-user-ID bit.
    QCOMPARE(modeOf("user/a"), mode_t(0640));
    QCOMPARE(modeOf("user/sub"), mode_t(0700));
    QCOMPARE(modeOf("user/.cache/deep"), mode_t(0555));
    QCOMPARE(modeOf("user/.cache"), mode_t(0510));
    // Directories whose modes forbid writing even to their owner can be erased nevertheless.
    QVERIFY(eraseFolder(at("user")));
    QVERIFY(eraseFolder(at("default")));
}

void TestProfileFolder::copyingOntoAnExistingFileFails()
{
    writeFile(path("user/a"), "mine");
    QVERIFY(!copyFolder(at("default"), made("user")));
    QCOMPARE(readFile(path("user/a")), QByteArray("mine"));
    QVERIFY(!QFile::exists(path("user/.rebuild")));
}

void TestProfileFolder::aCopyLeavesNothingElseBehind()
{
    QVERIFY(copyFolder(at("default"), made("user")));
    QCOMPARE(snapshot(path("user")), snapshot(path("default")));
}

void TestProfileFolder::aCopyThatFailsLeavesNothingBehind()
{
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(!copyFolder(at("default"), made("user")));
    QCOMPARE(snapshot(path("user")), QStringList());
}

void TestProfileFolder::thePartialCopyGetsANameThatTheSourceLacks()
{
    writeFile(path("default/.rebuild"), "a file of that name");
    writeFile(path("default/.rebuild+/inside"), "a directory of that name");
    writeFile(path("user/.rebuild++/inside"), "left by a power cut");
    const Descriptor user = at("user");
    makeIncomplete(user, at("default"));
    QVERIFY(eraseFolder(user));
    QVERIFY(copyFolder(at("default"), user));
    QCOMPARE(snapshot(path("user")), snapshot(path("default")));
}

void TestProfileFolder::copyingAMissingSourceCreatesAnEmptyDirectory()
{
    QVERIFY(copyFolder(at("missing"), made("user")));
    QVERIFY(QFileInfo(path("user")).isDir());
    QCOMPARE(snapshot(path("user")), QStringList());
}

void TestProfileFolder::aSourceThatContainsItselfIsRefused()
{
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(!copyFolder(at("default"), made("user")));
}

void TestProfileFolder::aDestinationThatIsAFileIsRefusedAndKept()
{
    writeFile(path("user"), "no directory");
    QVERIFY(eraseFolder(at("user")));
    QVERIFY(!copyFolder(at("default"), made("user")));
    QCOMPARE(readFile(path("user")), QByteArray("no directory"));
}

/** Creates @p depth nested directories, all named @p name. */
static void nest(const QString &start, const QByteArray &name, int depth)
{
    Descriptor directory = openDirectory(start);
    for (int level = 0; level < depth; ++level) {
        if (mkdirat(directory.get(), name.constData(), 0700) != 0)
            qFatal("cannot make level %d", level);
        directory = openTrusted(directory.get(), name, O_PATH | O_DIRECTORY);
    }
    close(openat(directory.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
}

void TestProfileFolder::aPathThatExceedsTheKernelsLimitIsCopiedAndErased()
{
    nest(path("default"), QByteArray(200, 'd'), 25);
    QVERIFY(canReplace(made("user"), at("default")));
    QVERIFY(copyFolder(at("default"), at("user")));
    QVERIFY(isFolderComplete(at("default"), at("user")));
    QVERIFY(eraseFolder(at("user")));
    QCOMPARE(snapshot(path("user")), QStringList());
    // Erase it here: QTemporaryDir cannot erase such a path.
    QVERIFY(eraseFolder(at("default")));
}

void TestProfileFolder::aDirectoryThatIsTooDeepIsRefused()
{
    QVERIFY(QDir().mkdir(path("deep")));
    nest(path("deep"), "d", 256);
    QVERIFY(canReplace(made("user"), at("deep")));
    QVERIFY(copyFolder(at("deep"), at("user")));
    QVERIFY(isFolderComplete(at("deep"), at("user")));

    QVERIFY(QDir().mkdir(path("deeper")));
    nest(path("deeper"), "d", 257);
    QVERIFY(!canReplace(at("user"), at("deeper")));
    QVERIFY(!copyFolder(at("deeper"), made("other")));
    QVERIFY(!isFolderComplete(at("deeper"), at("deeper")));
    QVERIFY(QDir().mkpath(path("cut/.rebuild")));
    QVERIFY(QDir().rename(path("deep/d"), path("cut/.rebuild/d")));
    QVERIFY(eraseFolder(at("cut")));
    QVERIFY(QDir().mkdir(path("cut/d")));
    QVERIFY(QDir().rename(path("deeper/d"), path("cut/d/d")));
    QVERIFY(!eraseFolder(at("cut")));
    QVERIFY(eraseFolder(at("user")));
}

void TestProfileFolder::aDirectoryIsIncompleteBeforeItIsErased_data()
{
    QTest::addColumn<QString>("erased");
    QTest::newRow("with files") << QString();
    QTest::newRow("with subdirectories alone") << "a .hidden";
}

void TestProfileFolder::aDirectoryIsIncompleteBeforeItIsErased()
{
    QFETCH(QString, erased);
    for (const QString &name : erased.split(' ', Qt::SkipEmptyParts))
        QVERIFY(QFile::remove(path("default") + '/' + name));
    copyFolder(at("default"), made("user"));
    writeFile(path("user/extra"), "mine");
    const int entries = snapshot(path("user")).size();
    QVERIFY(isFolderComplete(at("default"), at("user")));

    makeIncomplete(at("user"), at("default"));

    QVERIFY(!isFolderComplete(at("default"), at("user")));
    // The profile is unchanged so far.
    QCOMPARE(snapshot(path("user")).size(), entries);
}

void TestProfileFolder::sourceAndDestinationMustNotContainEachOther()
{
    writeFile(path("defaults/a"), "A");
    QVERIFY(QFile::link(path("default"), path("link")));
    QVERIFY(!canReplace(at("default"), at("default")));
    QVERIFY(!canReplace(at("link"), at("default")));
    QVERIFY(!canReplace(at("link"), at("default/sub")));
    QVERIFY(!canReplace(at("default"), at("default/.cache/deep")));
    QVERIFY(!canReplace(at("default/sub"), at("default")));
    QVERIFY(!canReplace(at("default/.cache/deep"), at("link")));
    QVERIFY(canReplace(at("default"), at("defaults")));
    QVERIFY(canReplace(at("default"), at("missing")));
    QVERIFY(canReplace(at("missing"), at("default")));

    // A link inside the source can also lead into the destination.
    QVERIFY(QFile::link(path("default"), path("defaults/link")));
    QVERIFY(!canReplace(at("default"), at("defaults")));
}

void TestProfileFolder::aDirectoryWithALoopCannotBeASource()
{
    QVERIFY(canReplace(made("user"), at("default")));
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(!canReplace(at("user"), at("default")));
}

void TestProfileFolder::aMissingDirectoryIsAnEmptySource()
{
    QVERIFY(canReplace(at("default"), at("missing")));
    writeFile(path("file"), "no directory");
    QVERIFY(canReplace(at("default"), at("file")));
}

static int openDescriptors()
{
    return descriptorsOf(getpid()).size();
}

void TestProfileFolder::noDescriptorIsLeftOpen()
{
    const int before = openDescriptors();
    canReplace(made("user"), at("default"));
    copyFolder(at("default"), at("user"));
    isFolderComplete(at("default"), at("user"));
    eraseFolder(at("user"));
    QCOMPARE(openDescriptors(), before);
}

QTEST_GUILESS_MAIN(TestProfileFolder)
#include "test_profilefolder.moc"
