#include "files.h"
#include "regularfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

/** Opening files in directories that others can write to. */
class TestRegularFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aMissingFileIsCreatedWithItsMode();
    void aFileIsAppendedTo();
    void aFileIsTruncated();
    void aFileThatIsNotTruncatedKeepsItsEnd();
    void aLinkIsNotFollowed();
    void aDanglingLinkCreatesNoFile();
    void aSecondNameOfAFileIsRefused();
    void aFifoIsNotWaitedFor();
    void aFifoWithAReaderIsNotWrittenTo();
    void aDeviceIsNotWrittenTo();
    void aDirectoryIsRefused();
    void aMissingDirectoryIsNotCreated();
    void childrenDoNotInheritTheDescriptor();

    void aFileIsReadAlsoThroughALink();
    void onlyRegularFilesAreRead_data();
    void onlyRegularFilesAreRead();

private:
    bool append(const QByteArray &text, int flags = O_APPEND);

    QScopedPointer<QTemporaryDir> m_directory;
    QString m_path;
};

void TestRegularFile::init()
{
    m_directory.reset(new QTemporaryDir);
    m_path = m_directory->filePath(QStringLiteral("file"));
}

/** Opens the file and writes @p text; returns false if it was not opened. */
bool TestRegularFile::append(const QByteArray &text, int flags)
{
    const Descriptor descriptor = openRegularFile(qPrintable(m_path), flags, 0640);
    return descriptor.isOpen() &&
           write(descriptor.get(), text.constData(), size_t(text.size())) == text.size();
}

void TestRegularFile::aMissingFileIsCreatedWithItsMode()
{
    const mode_t mask = umask(0);
    QVERIFY(append("text"));
    umask(mask);

    struct stat status = {};
    QCOMPARE(stat(qPrintable(m_path), &status), 0);
    QCOMPARE(status.st_mode, mode_t(S_IFREG | 0640));
    QCOMPARE(readFile(m_path), QByteArray("text"));
}

void TestRegularFile::aFileIsAppendedTo()
{
    writeFile(m_path, "old ");
    QVERIFY(append("new"));
    QCOMPARE(readFile(m_path), QByteArray("old new"));
}

void TestRegularFile::aFileIsTruncated()
{
    writeFile(m_path, "something long");
    QVERIFY(append("new", O_TRUNC));
    QCOMPARE(readFile(m_path), QByteArray("new"));
    QVERIFY(append(QByteArray(), O_TRUNC));
    QCOMPARE(readFile(m_path), QByteArray());
}

void TestRegularFile::aFileThatIsNotTruncatedKeepsItsEnd()
{
    writeFile(m_path, "something long");
    QVERIFY(append("new", 0));
    QCOMPARE(readFile(m_path), QByteArray("newething long"));
}

void TestRegularFile::aLinkIsNotFollowed()
{
    const QString target = m_directory->filePath(QStringLiteral("target"));
    writeFile(target, "precious");
    QVERIFY(QFile::link(target, m_path));

    QVERIFY(!append("new"));
    QVERIFY(!append("new", O_TRUNC));

    QCOMPARE(readFile(target), QByteArray("precious"));
}

void TestRegularFile::aDanglingLinkCreatesNoFile()
{
    const QString target = m_directory->filePath(QStringLiteral("target"));
    QVERIFY(QFile::link(target, m_path));

    QVERIFY(!append("new"));

    QVERIFY(!QFile::exists(target));
}

void TestRegularFile::aSecondNameOfAFileIsRefused()
{
    const QString precious = m_directory->filePath(QStringLiteral("precious"));
    writeFile(precious, "keep");
    QCOMPARE(link(qPrintable(precious), qPrintable(m_path)), 0);
    QVERIFY(!append("text"));
    QVERIFY(!append("text", O_TRUNC));
    QCOMPARE(readFile(precious), QByteArray("keep"));
}

void TestRegularFile::aFifoIsNotWaitedFor()
{
    QCOMPARE(mkfifo(qPrintable(m_path), 0666), 0);
    QVERIFY(!append("new"));
}

void TestRegularFile::aFifoWithAReaderIsNotWrittenTo()
{
    QCOMPARE(mkfifo(qPrintable(m_path), 0666), 0);
    const int reader = open(qPrintable(m_path), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);

    QVERIFY(!append("new"));

    char byte = 0;
    QCOMPARE(read(reader, &byte, 1), ssize_t(0));
    close(reader);
}

void TestRegularFile::aDeviceIsNotWrittenTo()
{
    m_path = QStringLiteral("/dev/null");
    QVERIFY(!append("new"));
    QVERIFY(!append("new", O_TRUNC));
}

void TestRegularFile::aDirectoryIsRefused()
{
    m_path = m_directory->path();
    QVERIFY(!append("new"));
}

void TestRegularFile::aMissingDirectoryIsNotCreated()
{
    m_path = m_directory->filePath(QStringLiteral("directory/file"));
    QVERIFY(!append("new"));
    QVERIFY(!QFile::exists(m_directory->filePath(QStringLiteral("directory"))));
}

void TestRegularFile::childrenDoNotInheritTheDescriptor()
{
    const Descriptor descriptor = openRegularFile(qPrintable(m_path), O_APPEND, 0640);
    QVERIFY(descriptor.isOpen());
    QVERIFY(fcntl(descriptor.get(), F_GETFD) & FD_CLOEXEC);
}

void TestRegularFile::aFileIsReadAlsoThroughALink()
{
    const QString target = m_directory->filePath("target");
    const QString link = m_directory->filePath("link");
    writeFile(target, "a\r\nb");
    QVERIFY(QFile::link(target, link));
    for (const QString &path : {target, link}) {
        QFile file;
        QVERIFY(openForReading(file, path, QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(file.readAll(), QByteArray("a\nb"));
    }
}

void TestRegularFile::onlyRegularFilesAreRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing file") << "missing";
    QTest::newRow("directory") << ".";
    QTest::newRow("fifo") << "fifo";
    QTest::newRow("device") << "/dev/zero";
}

void TestRegularFile::onlyRegularFilesAreRead()
{
    QFETCH(QString, path);
    if (path == "fifo")
        QCOMPARE(mkfifo(qPrintable(m_directory->filePath(path)), 0600), 0);
    QFile file;
    QVERIFY(!openForReading(file, QDir(m_directory->path()).filePath(path), QIODevice::ReadOnly));
    QVERIFY(!file.isOpen());
}

QTEST_GUILESS_MAIN(TestRegularFile)
#include "test_regularfile.moc"
