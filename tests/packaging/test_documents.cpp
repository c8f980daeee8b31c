#include "files.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/** What the documents name, and the program that looks whether it is there. */
class TestDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingThatTheDocumentsNameIsThere();
    void whatIsNotThereIsNoticed_data();
    void whatIsNotThereIsNoticed();
    void whatIsThereIsNotComplainedOf();

private:
    /** What the program complains of; "none" where it is content. */
    static QString complaints(const QStringList &documents);
    static QString complaintsOf(const QByteArray &text);
};

QString TestDocuments::complaints(const QStringList &documents)
{
    QProcess process;
    process.start(QStringLiteral(CHECKDOCUMENTS),
                  QStringList{"--kyboardctl", KYBOARDCTL} + documents);
    if (!process.waitForFinished(20000))
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

void TestDocuments::everythingThatTheDocumentsNameIsThere()
{
    QCOMPARE(complaints({}), QString("none"));
}

void TestDocuments::whatIsNotThereIsNoticed_data()
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
    row("function of a test", "See `test_users`: `setUserSwitches`, `getUserNamesTheActiveProfile`",
        "test_users: no function setUserSwitches");
    row("command", "Call `kyboardctl wifi scam`.", "kyboardctl wifi scam: no such command");
    row("command of a block", "Call:\n\n    $ ./run -- kyboardctl users get\n",
        "kyboardctl users get: no such command");
}

void TestDocuments::whatIsNotThereIsNoticed()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, complaint);
    QCOMPARE(complaintsOf(text), complaint);
}

void TestDocuments::whatIsThereIsNotComplainedOf()
{
    QCOMPARE(complaintsOf("# Here\n\n[a](other.md#one-thing-and-another) [b](other.md#twice-1) "
                          "[c](#here) [d](https://example.org/x.md) `src/app/error.*` `src/` "
                          "`/usr/src/none` `test_users`: `getUserNamesTheActiveProfile` "
                          "`kyboardctl --json user set user2`\n\n    # kyboardctl monitor  # what\n"
                          "\n<!-- made up: src/none.h -->\n\n`src/none.h`\n"),
             QString("none"));
}

QTEST_GUILESS_MAIN(TestDocuments)
#include "test_documents.moc"
