#include "deadline.h"
#include "files.h"

#include <QDir>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

/**
 * The wall around the decisions: the headers that a source of boardlogic or busvalues cannot
 * include, and the functions that it cannot call. The test compiles single lines with the options
 * of a library source.
 */
class TestWall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aLibrarysOwnHeadersCompile_data();
    void aLibrarysOwnHeadersCompile();
    void anIncludeAcrossTheWallDoesNotCompile_data();
    void anIncludeAcrossTheWallDoesNotCompile();
    void noIncludeNamesADirectory();
    void aCallAcrossTheWallDoesNotLink_data();
    void aCallAcrossTheWallDoesNotLink();
    void everySourceIsCompiledByItsOwnPart();

private:
    struct Outcome {
        int status = -1;
        QString errors;
    };
    static Outcome run(const QString &directory, QStringList command, const QByteArray &input = {});
    Outcome compile(const QString &source, const QByteArray &lines) const;
    QString sourceIn(const QString &library, const QString &directory) const;

    QJsonArray m_commands;
};

namespace
{
const char *const directories[] = {"app", "devices", "identity", "network", "users"};

QStringList headersOf(const QString &directory)
{
    return QDir(SOURCES "/src/" + directory).entryList({"*.h"});
}

QString contentOf(const QString &path)
{
    return QString::fromUtf8(readFile(path));
}

/** Returns the sources that a unity source at @p path includes; for any other source, @p path. */
QStringList sourcesOf(const QString &path)
{
    if (!path.contains("/Unity/"))
        return {path};
    static const QRegularExpression include("^#include \"(.*)\"$",
                                            QRegularExpression::MultilineOption);
    QStringList sources;
    for (auto found = include.globalMatch(contentOf(path)); found.hasNext();)
        sources << found.next().captured(1);
    return sources;
}
} // namespace

void TestWall::initTestCase()
{
    m_commands = QJsonDocument::fromJson(readFile(BUILD "/compile_commands.json")).array();
    QVERIFY(m_commands.size() > 50);
}

TestWall::Outcome TestWall::run(const QString &directory, QStringList command,
                                const QByteArray &input)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    process.setProcessChannelMode(QProcess::MergedChannels);
    const QString program = command.takeFirst();
    process.start(program, command);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(deadlineMs) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAll())};
}

/**
 * Compiles @p lines as the library compiles @p source, in the source's directory, so that all
 * headers there are reachable.
 */
TestWall::Outcome TestWall::compile(const QString &source, const QByteArray &lines) const
{
    for (const QJsonValue &entry : m_commands) {
        if (entry["file"].toString() != source)
            continue;
        QStringList command = QProcess::splitCommand(entry["command"].toString());
        command.erase(command.begin(),
                      std::find_if(command.begin(), command.end(),
                                   [](const QString &word) { return word.endsWith("++"); }));
        // The arguments from "-o" on name the object and the source.
        command.erase(command.begin() + command.indexOf("-o"), command.end());
        // It would write a file beside the source.
        command.removeAll("--coverage");
        command << "-fsyntax-only"
                << "-Wfatal-errors"
                << "-x"
                << "c++"
                << "-";
        return run(QFileInfo(source).path(), command, lines);
    }
    return {};
}

/** Returns a source of @p library in @p directory; empty if there is none. */
QString TestWall::sourceIn(const QString &library, const QString &directory) const
{
    for (const QJsonValue &entry : m_commands) {
        const QString source = entry["file"].toString();
        if (QFileInfo(source).path() == SOURCES "/src/" + directory &&
            entry["command"].toString().contains("CMakeFiles/" + library + ".dir/"))
            return source;
    }
    return {};
}

void TestWall::aLibrarysOwnHeadersCompile_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QByteArray>("lines");
    for (const char *directory : directories)
        QTest::addRow("boardlogic, %s", directory)
            << sourceIn("boardlogic", directory)
            << QByteArray("#include \"descriptor.h\"\n#include <QtGlobal>\n");
    QTest::newRow("busvalues, app") << sourceIn("busvalues", "app")
                                    << QByteArray("#include \"busvalue.h\"\n#include <QString>\n");
}

/** Permitted lines compile: the lines of the other functions fail only because of the wall. */
void TestWall::aLibrarysOwnHeadersCompile()
{
    QFETCH(QString, source);
    QFETCH(QByteArray, lines);
    QVERIFY(!source.isEmpty());
    const Outcome outcome = compile(source, lines);
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.status, 0);
}

void TestWall::anIncludeAcrossTheWallDoesNotCompile_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("error");
    const QString logic = sourceIn("boardlogic", "devices");
    for (const QString &header : headersOf("platform"))
        QTest::addRow("boardlogic, %s", qPrintable(header))
            << logic << "#include \"" + header.toUtf8() + "\"\n"
            << header + ": No such file";
    QTest::newRow("busvalues, kyals.h")
        << sourceIn("busvalues", "app") << QByteArray("#include \"kyals.h\"\n")
        << "kyals.h: No such file";
    int adaptors = 0;
    for (const char *directory : directories) {
        for (const QString &header : headersOf(directory)) {
            const QString content = contentOf(SOURCES "/src/" + QString(directory) + '/' + header);
            if (!content.contains("public QDBusAbstractAdaptor"))
                continue;
            ++adaptors;
            for (const char *library : {"boardlogic", "busvalues"})
                QTest::addRow("%s, %s", library, qPrintable(header))
                    << sourceIn(library, library == QString("busvalues") ? "app" : directory)
                    << "#include \"" + header.toUtf8() + "\"\n"
                    << "(QDBus\\w+|\\w+\\.h): No such file|expected class-name";
        }
    }
    QVERIFY(adaptors > 12);
    for (const char *header : {"QDBusMessage", "QDBusArgument", "QDBusConnection", "QtDBus"})
        QTest::addRow("boardlogic, <%s>", header)
            << logic << QByteArray("#include <") + header + ">\n"
            << header + QString(": No such file");
    for (const char *header : {"QDBusMessage", "QDBusArgument", "QDBusConnection", "QtDBus"})
        QTest::addRow("boardlogic, <QtDBus/%s>", header)
            << logic << QByteArray("#include <QtDBus/") + header + ">\n"
            << "Q_DBUS_EXPORT";
}

void TestWall::anIncludeAcrossTheWallDoesNotCompile()
{
    QFETCH(QString, source);
    QFETCH(QByteArray, line);
    QFETCH(QString, error);
    const Outcome outcome = compile(source, line);
    QVERIFY(outcome.status > 0);
    QVERIFY2(QRegularExpression(error).match(outcome.errors).hasMatch(),
             qPrintable(outcome.errors));
}

/**
 * Headers are found only by the library's include path; generated files have a directory of their
 * own.
 */
void TestWall::noIncludeNamesADirectory()
{
    static const QRegularExpression named("#include \"(?!introspection/)[^\"]*/");
    QStringList found;
    for (QDirIterator files(SOURCES "/src", QDir::Files, QDirIterator::Subdirectories);
         files.hasNext();) {
        const QString file = files.next();
        if (contentOf(file).contains(named))
            found << file;
    }
    QCOMPARE(found, QStringList());
}

void TestWall::aCallAcrossTheWallDoesNotLink_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QString>("missing");
    const QString logic = "tests/support/boardlogicalone";
    const QString values = "tests/support/busvaluesalone";
    const QByteArray harmless = "void crossing() {}\n";
    QTest::newRow("boardlogic alone") << logic << harmless << QString();
    QTest::newRow("busvalues alone") << values << harmless << QString();
    QTest::newRow("boardlogic replies")
        << logic
        << QByteArray("class QDBusMessage; class QString;\n"
                      "void sendErrorReply(int, const QString &, const QDBusMessage &);\n"
                      "void crossing(QString &s, QDBusMessage &m) { sendErrorReply(1, s, m); }\n")
        << "sendErrorReply";
    QTest::newRow("boardlogic reads a value of the bus")
        << logic
        << QByteArray("class QVariant;\nint sizeOnBus(const QVariant &, int);\n"
                      "int crossing(QVariant &value) { return sizeOnBus(value, 1); }\n")
        << "sizeOnBus";
    QTest::newRow("busvalues replies")
        << values
        << QByteArray("class QDBusMessage; class QString;\n"
                      "void sendErrorReply(int, const QString &, const QDBusMessage &);\n"
                      "void crossing(QString &s, QDBusMessage &m) { sendErrorReply(1, s, m); }\n")
        << "sendErrorReply";
}

/** The program links the whole of its library, and only the libraries that this one may use. */
void TestWall::aCallAcrossTheWallDoesNotLink()
{
    QFETCH(QString, program);
    QFETCH(QByteArray, source);
    QFETCH(QString, missing);
    const QTemporaryDir directory;
    const QString object = directory.filePath("crossing.o");
    const Outcome compiled =
        run(directory.path(), {CXX, "-fPIC", "-std=c++17", "-x", "c++", "-c", "-", "-o", object},
            source);
    QCOMPARE(compiled.errors, QString());

    const Outcome listed = run(BUILD, {"ninja", "-t", "commands", "-s", program});
    QString line = listed.errors.trimmed();
    line.remove(QRegularExpression("^: && ")).remove(QRegularExpression(" && :$"));
    QStringList command = QProcess::splitCommand(line);
    command[command.indexOf("-o") + 1] = directory.filePath("program");
    command.insert(command.indexOf("-o"), object);
    const Outcome linked = run(BUILD, command);
    QVERIFY2(linked.errors.contains(missing), qPrintable(linked.errors));
    QCOMPARE(linked.status == 0, missing.isEmpty());
}

void TestWall::everySourceIsCompiledByItsOwnPart()
{
    static const QRegularExpression output(" -o (\\S+) ");
    QStringList strangers;
    int count = 0;
    for (const QJsonValue &entry : m_commands) {
        const QString object = output.match(entry["command"].toString()).captured(1);
        for (const QString &path : sourcesOf(entry["file"].toString())) {
            // Ignore generated sources, which are in the build directory.
            if (!QDir(BUILD).relativeFilePath(path).startsWith(".."))
                continue;
            ++count;
            const QString source = QDir(SOURCES).relativeFilePath(path);
            // The preset "coverage" links this source into the daemon.
            if (source == "tools/coverage-dump.cpp")
                continue;
            if (source.section('/', 0, 0) != object.section('/', 0, 0))
                strangers << source + " for " + object;
        }
    }
    QCOMPARE(strangers, QStringList());
    QVERIFY(count > 250);
}

QTEST_GUILESS_MAIN(TestWall)
#include "test_wall.moc"
