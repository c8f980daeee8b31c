#include "daemontest.h"
#include "files.h"
#include "trustedpath.h"

#include <QDir>
#include <QTest>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

/** Opening paths through directories that other accounts may own. */
class TestTrustedPath : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void directoriesAreOpened_data();
    void directoriesAreOpened();
    void missingPathsAreAbsent_data();
    void missingPathsAreAbsent();
    void linksOfRootAreFollowed_data();
    void linksOfRootAreFollowed();
    void linksOfStrangersAreNotFollowed_data();
    void linksOfStrangersAreNotFollowed();
    void ownLinksAreFollowed();
    void theLimitOnLinksIsThatOfTheKernel();
    void aLoopOfLinksIsRefused();
    void openingALinkOpensItsTarget();
    void aLinkThatCannotBeReadIsNotFollowed();
    void aDirectoryMayBelongToAStranger();

    void missingDirectoriesAreCreated();
    void noDirectoryIsCreatedThroughALink_data();
    void noDirectoryIsCreatedThroughALink();
    void noDirectoryIsCreatedInAFile();

    void descriptorsAreNotInherited();
    void descriptorsAreClosedOnce();

private:
    static void link(const char *target, const char *path, uid_t owner = 0);
    static QString nameOf(const Descriptor &descriptor);
};

namespace
{
const uid_t member = 61185;
const uid_t stranger = 61186;

const QString root = QStringLiteral("/opt/test");

QString at(const QString &path)
{
    return root + '/' + path;
}

/** Fills the stack of the next call with zeros: a buffer that the call does not write is empty. */
[[gnu::noinline]] void clearStack()
{
    volatile char zeros[4 * PATH_MAX];
    for (volatile char &each : zeros)
        each = 0;
}
} // namespace

void TestTrustedPath::init()
{
    removePath(root);
    writeFile(at("one/two/file"), "text");
}

void TestTrustedPath::link(const char *target, const char *path, uid_t owner)
{
    if (symlink(target, qPrintable(at(path))) != 0 ||
        lchown(qPrintable(at(path)), owner, owner) != 0)
        qFatal("cannot make the link %s", path);
}

/** The path of @p descriptor; empty if there is none. */
QString TestTrustedPath::nameOf(const Descriptor &descriptor)
{
    return QFile::symLinkTarget(QStringLiteral("/proc/self/fd/%1").arg(descriptor.get()));
}

void TestTrustedPath::directoriesAreOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("opened");
    QTest::newRow("the root directory") << "/"
                                        << "/";
    QTest::newRow("in the root directory") << "/opt"
                                           << "/opt";
    QTest::newRow("two names") << root << root;
    QTest::newRow("deeper") << at("one/two") << at("one/two");
    QTest::newRow("a slash at the end") << at("one/") << at("one");
    QTest::newRow("doubled slashes") << "//opt//test///one" << at("one");
    QTest::newRow("dots") << at("one/./two/..") << at("one");
}

void TestTrustedPath::directoriesAreOpened()
{
    QFETCH(QString, path);
    QFETCH(QString, opened);
    const Descriptor directory = openDirectory(path);
    QVERIFY(directory.isOpen());
    QCOMPARE(directory.error(), 0);
    QVERIFY(!directory.isAbsent());
    QCOMPARE(nameOf(directory), opened);
}

void TestTrustedPath::missingPathsAreAbsent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("error");
    QTest::newRow("missing") << at("missing") << ENOENT;
    QTest::newRow("missing parent") << at("missing/two") << ENOENT;
    QTest::newRow("a file") << at("one/two/file") << ENOTDIR;
    QTest::newRow("a file on the way") << at("one/two/file/three") << ENOTDIR;
    QTest::newRow("a dangling link") << at("nowhere") << ENOENT;
}

void TestTrustedPath::missingPathsAreAbsent()
{
    QFETCH(QString, path);
    QFETCH(int, error);
    link("/opt/missing", "nowhere");
    const Descriptor directory = openDirectory(path);
    QVERIFY(!directory.isOpen());
    QCOMPARE(directory.get(), -1);
    QCOMPARE(directory.error(), error);
    QVERIFY(directory.isAbsent());
}

void TestTrustedPath::linksOfRootAreFollowed_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("path");
    QTest::newRow("absolute") << QByteArray("/opt/test/one/two") << "link";
    QTest::newRow("relative") << QByteArray("one/two") << "link";
    QTest::newRow("upwards") << QByteArray("../test/one/two/../two") << "link";
    QTest::newRow("with a slash at the end") << QByteArray("one/two/") << "link";
    QTest::newRow("on the way") << QByteArray("one") << "link/two";
    QTest::newRow("on the way, absolute") << QByteArray("/opt/test/one/") << "link/two";
}

void TestTrustedPath::linksOfRootAreFollowed()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, path);
    link(target.constData(), "link");
    QCOMPARE(nameOf(openDirectory(at(path))), at("one/two"));
    link("link", "again");
    QCOMPARE(nameOf(openDirectory(at(path.replace("link", "again")))), at("one/two"));
}

void TestTrustedPath::linksOfStrangersAreNotFollowed_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QString>("path");
    QTest::newRow("at the end") << QByteArray("/opt/test/one/two") << "link";
    QTest::newRow("on the way") << QByteArray("one") << "link/two";
    QTest::newRow("after a link of root") << QByteArray("one/two") << "roots";
    QTest::newRow("to a link of root's") << QByteArray("good") << "link";
    QTest::newRow("dangling") << QByteArray("nowhere") << "link";
    QTest::newRow("to itself") << QByteArray("link") << "link";
}

void TestTrustedPath::linksOfStrangersAreNotFollowed()
{
    QFETCH(QByteArray, target);
    QFETCH(QString, path);
    link(target.constData(), "link", stranger);
    link("link", "roots");
    link("one/two", "good");
    for (const Descriptor &opened : {openDirectory(at(path)), makeDirectory(at(path)),
                                     openTrusted(AT_FDCWD, QFile::encodeName(at(path)), O_PATH)}) {
        QVERIFY(!opened.isOpen());
        QCOMPARE(opened.error(), EPERM);
        QVERIFY(!opened.isAbsent());
    }
}

void TestTrustedPath::ownLinksAreFollowed()
{
    link("one", "strangers", stranger);
    link("one", "members", member);
    link("one", "roots");
    QCOMPARE(seteuid(stranger), 0);
    const QString opened[] = {nameOf(openDirectory(at("strangers"))),
                              nameOf(openDirectory(at("members"))),
                              nameOf(openDirectory(at("roots")))};
    QCOMPARE(seteuid(0), 0);
    QCOMPARE(opened[0], at("one"));
    QCOMPARE(opened[1], QString());
    QCOMPARE(opened[2], at("one"));
}

void TestTrustedPath::theLimitOnLinksIsThatOfTheKernel()
{
    link("one", "link1");
    for (int index = 2; index <= 41; ++index)
        link(qPrintable(QStringLiteral("link%1").arg(index - 1)),
             qPrintable(QStringLiteral("link%1").arg(index)));
    QCOMPARE(nameOf(openDirectory(at("link40"))), at("one"));
    QCOMPARE(openDirectory(at("link41")).error(), ELOOP);
    const int byKernel[] = {open(qPrintable(at("link40")), O_PATH | O_CLOEXEC),
                            open(qPrintable(at("link41")), O_PATH | O_CLOEXEC)};
    close(byKernel[0]);
    QVERIFY(byKernel[0] >= 0 && byKernel[1] < 0);
}

void TestTrustedPath::aLoopOfLinksIsRefused()
{
    link("link", "link");
    QCOMPARE(openDirectory(at("link")).error(), ELOOP);
    QCOMPARE(openDirectory(at("link/one")).error(), ELOOP);
}

void TestTrustedPath::openingALinkOpensItsTarget()
{
    link("one/two/file", "link");
    const QByteArray path = QFile::encodeName(at("link"));
    for (const int flags : {O_PATH, O_RDONLY})
        QCOMPARE(nameOf(openTrusted(AT_FDCWD, path, flags)), at("one/two/file"));
    const Descriptor from = openDirectory(root);
    QCOMPARE(nameOf(openTrusted(from.get(), "link", O_RDONLY)), at("one/two/file"));
    QVERIFY(openDirectory(at("link")).isAbsent());
}

/** A zombie has links to its directories, but the kernel has forgotten their targets. */
void TestTrustedPath::aLinkThatCannotBeReadIsNotFollowed()
{
    const pid_t zombie = fork();
    if (zombie == 0)
        _exit(0);
    siginfo_t ended = {};
    QCOMPARE(waitid(P_PID, id_t(zombie), &ended, WEXITED | WNOWAIT), 0);
    const QByteArray path = "/proc/" + QByteArray::number(zombie) + "/cwd";

    clearStack();
    const Descriptor directory = openDirectory(path);
    const int error = directory.error();
    QCOMPARE(waitpid(zombie, nullptr, 0), zombie);

    QVERIFY(!directory.isOpen());
    QCOMPARE(error, ENOENT);
}

void TestTrustedPath::aDirectoryMayBelongToAStranger()
{
    QCOMPARE(chown(qPrintable(at("one")), stranger, stranger), 0);
    QCOMPARE(nameOf(openDirectory(at("one/two"))), at("one/two"));
}

void TestTrustedPath::missingDirectoriesAreCreated()
{
    QCOMPARE(nameOf(makeDirectory(at("one"))), at("one"));
    const mode_t mask = umask(027);
    QCOMPARE(nameOf(makeDirectory(at("new/parents/too"))), at("new/parents/too"));
    umask(mask);
    struct stat status = {};
    QCOMPARE(stat(qPrintable(at("new/parents")), &status), 0);
    QCOMPARE(status.st_mode, mode_t(S_IFDIR | 0750));
}

void TestTrustedPath::noDirectoryIsCreatedThroughALink_data()
{
    QTest::addColumn<uint>("owner");
    QTest::newRow("root's") << 0U;
    QTest::newRow("stranger's") << stranger;
}

void TestTrustedPath::noDirectoryIsCreatedThroughALink()
{
    QFETCH(uint, owner);
    link("/opt/test/missing", "link", owner);
    QVERIFY(!makeDirectory(at("link")).isOpen());
    QVERIFY(!makeDirectory(at("link/inside")).isOpen());
    QVERIFY(!QFile::exists(at("missing")));
    if (owner == stranger) {
        link("one", "other", owner);
        QVERIFY(!makeDirectory(at("other/inside")).isOpen());
        QVERIFY(!QFile::exists(at("one/inside")));
    }
}

void TestTrustedPath::noDirectoryIsCreatedInAFile()
{
    const Descriptor directory = makeDirectory(at("one/two/file/three"));
    QVERIFY(directory.isAbsent());
    QCOMPARE(readFile(at("one/two/file")), QByteArray("text"));
}

void TestTrustedPath::descriptorsAreNotInherited()
{
    link("one/two", "link");
    for (const QString &path : {root, at("one"), at("link"), QStringLiteral("/")})
        QVERIFY(fcntl(openDirectory(path).get(), F_GETFD) & FD_CLOEXEC);
    QVERIFY(fcntl(makeDirectory(at("new")).get(), F_GETFD) & FD_CLOEXEC);
}

void TestTrustedPath::descriptorsAreClosedOnce()
{
    Descriptor first = openDirectory(root);
    const int number = first.get();
    {
        const Descriptor moved = std::move(first);
        QCOMPARE(moved.get(), number);
    }
    QCOMPARE(fcntl(number, F_GETFD), -1);

    Descriptor second = openDirectory(root);
    second = openDirectory(at("missing"));
    QCOMPARE(second.error(), ENOENT);
    QCOMPARE(fcntl(number, F_GETFD), -1);

    Descriptor third = openDirectory(root);
    const int released = third.release();
    third = Descriptor();
    QCOMPARE(close(released), 0);
    QVERIFY(!Descriptor().isOpen());
    QVERIFY(!Descriptor().isAbsent());
}

WORLD_TEST_MAIN(TestTrustedPath)
#include "test_trustedpath.moc"
