#include "deadline.h"
#include "errorcode.h"
#include "files.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** The document of the D-Bus interfaces, and the program that generates it. */
class TestApiDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDocumentIsWhatTheProgramPrints();
    void everyErrorNameHasItsMeaning();
    void omissionsAreReported_data();
    void omissionsAreReported();
    void everyTextIsNeeded_data();
    void everyTextIsNeeded();

private:
    struct Result {
        int status;
        QByteArray document;
        QByteArray complaint;
    };
    static Result run(const QStringList &options);

    /** The program's result after a change in one place of an introspection document. */
    Result runAfter(const QString &file, const QByteArray &content);
};

namespace
{
const QString prefix = QStringLiteral("com.orvendis.Strandel.BoardManager.");

QByteArray original(const QString &file)
{
    return readFile(QStringLiteral(INTROSPECTION "/") + file);
}
} // namespace

TestApiDocument::Result TestApiDocument::run(const QStringList &options)
{
    QProcess process;
    process.start(QStringLiteral(APIDOCUMENT), options);
    if (!process.waitForFinished(deadlineMs))
        return {-1, QByteArray(), "no end"};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

TestApiDocument::Result TestApiDocument::runAfter(const QString &file, const QByteArray &content)
{
    QTemporaryDir directory;
    const QDir documents(QStringLiteral(INTROSPECTION));
    for (const QString &name : documents.entryList({QStringLiteral("*.xml")}))
        QFile::copy(documents.filePath(name), directory.filePath(name));
    QFile::remove(directory.filePath(file));
    writeFile(directory.filePath(file), content);
    return run({QStringLiteral("--directory"), directory.path()});
}

void TestApiDocument::theDocumentIsWhatTheProgramPrints()
{
    const Result result = run({});
    QCOMPARE(result.complaint, QByteArray());
    QCOMPARE(result.status, 0);
    QVERIFY2(readFile(QStringLiteral(DOCUMENT)) == result.document,
             "docs/dbus-api.md is out of date; run: ninja -C build documents");
}

void TestApiDocument::everyErrorNameHasItsMeaning()
{
    const QByteArray document = readFile(QStringLiteral(DOCUMENT));
    for (int code = Error::None; code <= Error::Initialisation; ++code) {
        const QString name = Error::nameOf(code).section(QLatin1Char('.'), -1);
        QVERIFY2(document.contains("\n| `" + name.toLatin1() + "` | "), qPrintable(name));
    }
}

void TestApiDocument::omissionsAreReported_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QByteArray>("found");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addColumn<QByteArray>("complaint");

    const auto row = [](const char *name, const char *interface, const char *found,
                        const char *replacement, const char *complaint) {
        QTest::newRow(name) << QString(interface) << QByteArray(found) << QByteArray(replacement)
                            << QByteArray(complaint);
    };
    row("argument's name", "Backlight", "<arg name=\"backlight\" type=\"i\" direction=\"in\">",
        "<arg type=\"i\" direction=\"in\">", "setBacklight has an argument without a name");
    row("unit", "Backlight", "<annotation name=\"com.orvendis.Strandel.BoardManager.Doc.Unit\"",
        "<annotation name=\"org.qtproject.QtDBus.QtTypeName.X\"", "backlight has no unit");
    row("range", "Storage", "<annotation name=\"com.orvendis.Strandel.BoardManager.Doc.Range\"",
        "<annotation name=\"org.qtproject.QtDBus.QtTypeName.X\"", "device has no range");
    row("keys", "LED", "<annotation name=\"com.orvendis.Strandel.BoardManager.Doc.Key\"",
        "<annotation name=\"org.qtproject.QtDBus.QtTypeName.X\"", "states has no keys");
    row("form of a key", "LED", "{led} (s): ", "{led}: ", "not a key");
    row("form of an error", "Users", "Read `Not able", "Read Not able", "not an error");
    row("name of an error", "Users", "Read `Not able", "Raed `Not able", "no such error: Raed");
    row("unknown annotation", "Users", "Doc.Error", "Doc.Eror", "unknown annotation");
    row("Qt's type", "LED", "QtTypeName.Out0", "QtTypeName.Out1", "Qt's types should be");
    row("name of the interface", "LED", "interface name=\"com.", "interface name=\"net.",
        "not one interface of that name");
    row("object", "LED", "/KyDeviceMgr", "/KyDeviceManager", "unknown object");
    row("readable document", "LED", "</node>", "", "no element found");
}

void TestApiDocument::omissionsAreReported()
{
    QFETCH(QString, interface);
    QFETCH(QByteArray, found);
    QFETCH(QByteArray, replacement);
    QFETCH(QByteArray, complaint);
    const QString file = prefix + interface + ".xml";
    QByteArray content = original(file);
    const int place = content.indexOf(found);
    QVERIFY(place >= 0);

    const Result result = runAfter(file, content.replace(place, found.size(), replacement));

    QCOMPARE(result.status, 1);
    QCOMPARE(result.document, QByteArray());
    QVERIFY2(result.complaint.contains(complaint), result.complaint.constData());
}

void TestApiDocument::everyTextIsNeeded_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("place");
    const QString file = prefix + "Storage.xml";
    const QByteArray content = original(file);
    const QByteArray text = "org.gtk.GDBus.DocString";
    for (int place = content.indexOf(text); place >= 0; place = content.indexOf(text, place + 1))
        QTest::newRow(QByteArray::number(place).constData()) << file << place;
}

void TestApiDocument::everyTextIsNeeded()
{
    QFETCH(QString, file);
    QFETCH(int, place);
    QByteArray content = original(file);
    const int begin = content.lastIndexOf('<', place);
    content.remove(begin, content.indexOf("/>", place) + 2 - begin);

    const Result result = runAfter(file, content);

    QCOMPARE(result.status, 1);
    QVERIFY2(result.complaint.contains("has no text"), result.complaint.constData());
}

QTEST_GUILESS_MAIN(TestApiDocument)
#include "test_apidocument.moc"
