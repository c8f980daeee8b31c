#include "error.h"
#include "files.h"
#include "profilefolder.h"

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

    void aFolderWithEverythingIsComplete();
    void extraEntriesAndOtherContentsDoNotMatter();
    void aMissingFileIsNoticed();
    void aMissingHiddenFileInASubfolderIsNoticed();
    void aMissingHiddenFileIsNoticed();
    void aFileInPlaceOfAFolderIsNoticed();
    void everythingIsCompleteAgainstAMissingReference();
    void aReferenceThatContainsItselfEndsTheComparison();

    void erasingLeavesTheFolderItself();
    void erasingRemovesLinksNotTheirTargets();
    void aMissingFolderIsErased();
    void whatCannotBeErasedIsTold_data();
    void whatCannotBeErasedIsTold();

    void copyingMakesTheDestinationWithItsParents();
    void copyingTakesHiddenFilesAndFolders();
    void copyingTakesWhatLinksPointAt();
    void copyingKeepsModes();
    void copyingOntoAnExistingFileFails();
    void copyingFromAMissingSourceMakesAnEmptyFolder();
    void aSourceThatContainsItselfIsRefused();
    void aDestinationThatIsAFileIsRefusedAndKept();

    void aFolderTooDeepToReachIsNotCopiedInSilence();
    void foldersInsideEachOtherAreTold();
    void aFolderWithALoopIsNotReadable();
    void aMissingFolderIsReadable();

private:
    QString path(const char *name) const { return m_root->path() + QLatin1Char('/') + name; }

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

void TestProfileFolder::aFolderWithEverythingIsComplete()
{
    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::None));
    QVERIFY(isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::extraEntriesAndOtherContentsDoNotMatter()
{
    copyFolder(path("default"), path("user"));
    writeFile(path("user/a"), "another");
    writeFile(path("user/extra/x"), "X");
    QVERIFY(isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::aMissingFileIsNoticed()
{
    copyFolder(path("default"), path("user"));
    QVERIFY(QFile::remove(path("user/a")));
    QVERIFY(!isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::aMissingHiddenFileInASubfolderIsNoticed()
{
    copyFolder(path("default"), path("user"));
    QVERIFY(QFile::remove(path("user/.cache/deep/c")));
    QVERIFY(!isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::aMissingHiddenFileIsNoticed()
{
    copyFolder(path("default"), path("user"));
    QVERIFY(QFile::remove(path("user/.hidden")));
    QVERIFY(!isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::aFileInPlaceOfAFolderIsNoticed()
{
    copyFolder(path("default"), path("user"));
    emptyFolder(path("user/sub"));
    rmdir(qPrintable(path("user/sub")));
    writeFile(path("user/sub"), "no folder");
    QVERIFY(!isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::everythingIsCompleteAgainstAMissingReference()
{
    QVERIFY(isFolderComplete(path("missing"), path("default")));
}

void TestProfileFolder::aReferenceThatContainsItselfEndsTheComparison()
{
    copyFolder(path("default"), path("user"));
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(QFile::link(path("user"), path("user/sub/loop")));
    QVERIFY(!isFolderComplete(path("default"), path("user")));
}

void TestProfileFolder::erasingLeavesTheFolderItself()
{
    QCOMPARE(eraseFolder(path("default")), int(Error::None));
    QCOMPARE(snapshot(m_root->path()), QStringList{QStringLiteral("default")});
}

void TestProfileFolder::erasingRemovesLinksNotTheirTargets()
{
    writeFile(path("precious/file"), "P");
    QVERIFY(QFile::link(path("precious"), path("default/folderlink")));
    QVERIFY(QFile::link(path("precious/file"), path("default/filelink")));
    QVERIFY(QFile::link(path("nowhere"), path("default/sub/dangling")));

    QCOMPARE(eraseFolder(path("default")), int(Error::None));

    QCOMPARE(snapshot(path("default")), QStringList());
    QCOMPARE(snapshot(path("precious")), QStringList{QStringLiteral("file=P")});
}

void TestProfileFolder::aMissingFolderIsErased()
{
    QCOMPARE(eraseFolder(path("missing")), int(Error::None));
    QVERIFY(!QFile::exists(path("missing")));
}

void TestProfileFolder::whatCannotBeErasedIsTold_data()
{
    QTest::addColumn<QString>("folder");
    // The kernel lets nobody remove anything there.
    QTest::newRow("files") << "/proc/self/fdinfo";
    QTest::newRow("folders") << "/proc/self/task";
    QTest::newRow("a link to itself") << "circle";
}

void TestProfileFolder::whatCannotBeErasedIsTold()
{
    QFETCH(QString, folder);
    QVERIFY(QFile::link(path("circle"), path("circle")));
    QCOMPARE(eraseFolder(QDir(m_root->path()).absoluteFilePath(folder)), int(Error::Write));
}

void TestProfileFolder::copyingMakesTheDestinationWithItsParents()
{
    QCOMPARE(copyFolder(path("default"), path("new/parents/user")), int(Error::None));
    QCOMPARE(snapshot(path("new/parents/user")), snapshot(path("default")));
}

void TestProfileFolder::copyingTakesHiddenFilesAndFolders()
{
    copyFolder(path("default"), path("user"));
    QCOMPARE(snapshot(path("user")), (QStringList{".cache", ".cache/deep", ".cache/deep/c=C",
                                                  ".hidden=H", "a=A", "sub", "sub/b=B"}));
}

void TestProfileFolder::copyingTakesWhatLinksPointAt()
{
    writeFile(path("elsewhere/file"), "E");
    QVERIFY(QFile::link(path("elsewhere/file"), path("default/filelink")));
    QVERIFY(QFile::link(path("elsewhere"), path("default/folderlink")));
    QVERIFY(QFile::link(path("nowhere"), path("default/dangling")));

    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::None));

    QCOMPARE(readFile(path("user/filelink")), QByteArray("E"));
    QVERIFY(!QFileInfo(path("user/filelink")).isSymLink());
    QVERIFY(!QFileInfo(path("user/folderlink")).isSymLink());
    QCOMPARE(readFile(path("user/folderlink/file")), QByteArray("E"));
    QVERIFY(!QFileInfo(path("user/dangling")).isSymLink());
}

void TestProfileFolder::copyingKeepsModes()
{
    QCOMPARE(chmod(qPrintable(path("default/a")), 0640), 0);
    QCOMPARE(chmod(qPrintable(path("default/sub")), 0700), 0);

    copyFolder(path("default"), path("user"));

    struct stat status = {};
    QCOMPARE(stat(qPrintable(path("user/a")), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0640);
    QCOMPARE(stat(qPrintable(path("user/sub")), &status), 0);
    QCOMPARE(int(status.st_mode & 0777), 0700);
}

void TestProfileFolder::copyingOntoAnExistingFileFails()
{
    writeFile(path("user/a"), "mine");
    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::Write));
    QCOMPARE(readFile(path("user/a")), QByteArray("mine"));
}

void TestProfileFolder::copyingFromAMissingSourceMakesAnEmptyFolder()
{
    QCOMPARE(copyFolder(path("missing"), path("user")), int(Error::None));
    QVERIFY(QFileInfo(path("user")).isDir());
    QCOMPARE(snapshot(path("user")), QStringList());
}

void TestProfileFolder::aSourceThatContainsItselfIsRefused()
{
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::Write));
}

void TestProfileFolder::aDestinationThatIsAFileIsRefusedAndKept()
{
    writeFile(path("user"), "no folder");
    QCOMPARE(eraseFolder(path("user")), int(Error::None));
    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::Write));
    QCOMPARE(readFile(path("user")), QByteArray("no folder"));
}

void TestProfileFolder::aFolderTooDeepToReachIsNotCopiedInSilence()
{
    // One name further and the path is longer than the kernel takes.
    const QByteArray name(200, 'd');
    const int start = open(".", O_RDONLY | O_DIRECTORY);
    QCOMPARE(chdir(qPrintable(path("default"))), 0);
    for (int level = 0; level < 25; ++level) {
        QCOMPARE(mkdir(name.constData(), 0700), 0);
        QCOMPARE(chdir(name.constData()), 0);
    }
    QCOMPARE(fchdir(start), 0);
    close(start);

    QVERIFY(!isFolderReadable(path("default")));
    QCOMPARE(copyFolder(path("default"), path("user")), int(Error::Write));
}

void TestProfileFolder::foldersInsideEachOtherAreTold()
{
    writeFile(path("defaults/a"), "A");
    QVERIFY(QFile::link(path("default"), path("link")));
    QVERIFY(isInsideEachOther(path("default"), path("default")));
    QVERIFY(isInsideEachOther(path("default"), path("link")));
    QVERIFY(isInsideEachOther(path("default/sub"), path("link")));
    QVERIFY(isInsideEachOther(path("default"), path("default/sub")));
    QVERIFY(!isInsideEachOther(path("default"), path("defaults")));
    QVERIFY(!isInsideEachOther(path("default"), path("missing")));
    QVERIFY(!isInsideEachOther(path("missing"), path("default")));
}

void TestProfileFolder::aFolderWithALoopIsNotReadable()
{
    QVERIFY(isFolderReadable(path("default")));
    QVERIFY(QFile::link(path("default"), path("default/sub/loop")));
    QVERIFY(!isFolderReadable(path("default")));
}

void TestProfileFolder::aMissingFolderIsReadable()
{
    QVERIFY(isFolderReadable(path("missing")));
}

QTEST_GUILESS_MAIN(TestProfileFolder)
#include "test_profilefolder.moc"
