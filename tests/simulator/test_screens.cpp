#include "deadline.h"
#include "files.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

/** The virtual instrument prints what the documents show. */
class TestScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theInstrumentShowsItsScreen();
    void commandsPrintWhatTheDocumentsShow_data();
    void commandsPrintWhatTheDocumentsShow();

private:
    struct Example {
        QString command;
        QString output;
    };
    static QStringList blocks(const QString &document);
    static QList<Example> examples(const QString &document);
    static void start(QProcess &world, const QStringList &command);
    static QString masked(QString text);
};

/** The indented blocks of a document, without their indentation. */
QStringList TestScreens::blocks(const QString &document)
{
    QStringList result{QString()};
    for (const QString &line :
         QString::fromUtf8(readFile(QStringLiteral(TREE "/") + document)).split('\n')) {
        if (line.startsWith("    "))
            result.last() += line.mid(4) + '\n';
        else if (!result.last().isEmpty())
            result << QString();
    }
    result.removeLast();
    return result;
}

/** The commands in the instrument that a document shows, in order, each with its output. */
QList<TestScreens::Example> TestScreens::examples(const QString &document)
{
    const QString run = QStringLiteral("./run -- ");
    QList<Example> result;
    for (const QString &block : blocks(document)) {
        bool isContinued = false;
        bool isShown = false;
        for (const QString &line : block.split('\n', Qt::SkipEmptyParts)) {
            if (isContinued) {
                result.last().command += '\n' + line;
            } else if (line.startsWith("$ ")) {
                isShown = line.contains(run);
                if (isShown)
                    result << Example{line.mid(2).remove(run), QString()};
            } else if (isShown) {
                result.last().output += line + '\n';
            }
            isContinued = isShown && line.endsWith('\\');
        }
    }
    return result;
}

void TestScreens::start(QProcess &world, const QStringList &command)
{
    world.setWorkingDirectory(TREE);
    world.setProcessChannelMode(QProcess::MergedChannels);
    world.start(WORLD, QString::fromLocal8Bit(qgetenv("WORLD_OPTIONS")).split(' ') +
                           QStringList{INSTRUMENT} + command);
}

/** Masks values that differ each time: leased addresses and PIDs. */
QString TestScreens::masked(QString text)
{
    return text.replace(QRegularExpression("\\b10\\.7([78])\\.0\\.[5-9]\\d\\b"), "10.7\\1.0.N")
        .replace(QRegularExpression("process \\d+"), "process N");
}

void TestScreens::theInstrumentShowsItsScreen()
{
    const QStringList shown = blocks("README.md").filter("The instrument is up:");
    QCOMPARE(shown.size(), 1);
    QProcess world;
    start(world, {});
    QString screen;
    const auto isComplete = [&] {
        screen += QString::fromUtf8(world.readAll());
        return screen.contains("\n\n");
    };
    QVERIFY2(QTest::qWaitFor(isComplete, deadlineMs), qPrintable(screen));
    world.terminate();
    QVERIFY(world.waitForFinished(deadlineMs));
    QCOMPARE(masked(screen.section("\n\n", 0, 0) + '\n'), masked(shown.first()));
}

void TestScreens::commandsPrintWhatTheDocumentsShow_data()
{
    QTest::addColumn<QString>("document");
    for (const char *document :
         {"README.md", "docs/virtual-instrument.md", "docs/your-application.md"})
        QTest::newRow(document) << document;
}

void TestScreens::commandsPrintWhatTheDocumentsShow()
{
    QFETCH(QString, document);
    const QList<Example> shown = examples(document);
    QVERIFY(!shown.isEmpty());
    QString script;
    QString expected;
    for (const Example &example : shown) {
        script += "echo '$ '" + QString(example.command).replace('\'', "'\\''").prepend('\'') +
                  "'\n" + example.command + '\n';
        expected += "$ " + example.command + '\n' + example.output;
    }
    QProcess world;
    start(world, {"bash", "-c", script});
    QVERIFY(world.waitForFinished(deadlineMs));
    const QStringList actual = masked(QString::fromUtf8(world.readAll())).split('\n');
    const QStringList wanted = masked(expected).split('\n');
    for (int line = 0; line < wanted.size(); ++line)
        QVERIFY2(actual.value(line) == wanted.at(line),
                 qPrintable(QString("the commands print:\n%1\ninstead of:\n%2")
                                .arg(QStringList(actual.mid(line, 5)).join('\n'),
                                     QStringList(wanted.mid(line, 5)).join('\n'))));
    QCOMPARE(actual.size(), wanted.size());
}

QTEST_GUILESS_MAIN(TestScreens)
#include "test_screens.moc"
