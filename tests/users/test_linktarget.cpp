#include "linktarget.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

/** The target of a symbolic link. */
class TestLinkTarget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTargetOfALinkIsAnAbsoluteCleanPath_data();
    void theTargetOfALinkIsAnAbsoluteCleanPath();
    void anythingButALinkHasNoTarget_data();
    void anythingButALinkHasNoTarget();
    void aMissingLinkHasNoTargetAfterAnExistingOne();

private:
    QString pathOf(const QString &name) const { return m_directory.filePath(name); }

    QTemporaryDir m_directory;
};

void TestLinkTarget::theTargetOfALinkIsAnAbsoluteCleanPath_data()
{
    QTest::addColumn<QByteArray>("held");
    QTest::addColumn<QString>("target");

    QTest::newRow("absolute") << QByteArray("/tmp/User_part/user1_profile")
                              << "/tmp/User_part/user1_profile";
    QTest::newRow("a slash at the end")
        << QByteArray("/nowhere/user1_profile/") << "/nowhere/user1_profile";
    QTest::newRow("dots and doubled slashes")
        << QByteArray("/nowhere//user1/./../user2") << "/nowhere/user2";
    QTest::newRow("a doubled slash") << QByteArray("/nowhere//user1") << "/nowhere/user1";
    QTest::newRow("a dot") << QByteArray("/nowhere/./user1") << "/nowhere/user1";
    QTest::newRow("the root") << QByteArray("/") << "/";
    const QByteArray accented = "/nowhere/\xc3\xa9t\xc3\xa9";
    QTest::newRow("a name that is not ASCII") << accented << QFile::decodeName(accented);
    QTest::newRow("relative") << QByteArray("user1_profile") << pathOf("user1_profile");
    QTest::newRow("relative, to a directory") << QByteArray("directory") << pathOf("directory");
    QTest::newRow("relative, upwards") << QByteArray("directory/../user1") << pathOf("user1");
}

void TestLinkTarget::theTargetOfALinkIsAnAbsoluteCleanPath()
{
    QFETCH(QByteArray, held);
    QFETCH(QString, target);
    const QString link = pathOf(QStringLiteral("link"));
    QFile::remove(link);
    QDir(m_directory.path()).mkdir(QStringLiteral("directory"));
    QCOMPARE(symlink(held.constData(), QFile::encodeName(link).constData()), 0);

    QVERIFY(linkTarget(link) == target);
    QCOMPARE(QFile::symLinkTarget(link), target);
}

void TestLinkTarget::anythingButALinkHasNoTarget_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("nothing") << "nothing";
    QTest::newRow("a directory") << ".";
    QTest::newRow("a file") << "file";
}

void TestLinkTarget::anythingButALinkHasNoTarget()
{
    QFETCH(QString, name);
    QFile file(pathOf(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));

    QVERIFY(!linkTarget(pathOf(name)));
}

void TestLinkTarget::aMissingLinkHasNoTargetAfterAnExistingOne()
{
    const QByteArray link = QFile::encodeName(pathOf(QStringLiteral("absolute")));
    QCOMPARE(symlink("/nowhere/user1_profile", link.constData()), 0);
    const QString present = pathOf(QStringLiteral("absolute"));
    const QString missing = pathOf(QStringLiteral("missing"));

    const std::optional<QString> targets[] = {linkTarget(present), linkTarget(missing)};

    QVERIFY(targets[0] == QStringLiteral("/nowhere/user1_profile"));
    QVERIFY(!targets[1]);
}

QTEST_GUILESS_MAIN(TestLinkTarget)
#include "test_linktarget.moc"
